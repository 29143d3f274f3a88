#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/base/CZelString.h"
#include "foundations/base/CZelTreeList.h"
#include "foundations/base/CZelVBList.h"
#include "foundations/base/CZelVarBind.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelDbEntity.h"
#include "store/CZelColDef.h"
#include "store/CZelTable.h"

namespace {

void appendNames(CZelString &out, const CZelAtomVector &names) {
    for (unsigned int i = 0; i < names.RAVSize(); ++i) {
        if (i > 0)
            out.RSStrCat(" , ");
        out.RSStrCat(names.RAVGetValue(i));
    }
}

void addMember(CZelVBList &object, const char *name, const char *value) {
    object.RVBLAddToListEnd(new CZelVarBind(name, value));
}

void addMember(CZelVBList &object, const char *name, bool value) {
    addMember(object, name, value ? "Y" : "N");
}

}  // namespace

char *CZelTable::RDOAsString() {
    if (m_entity == nullptr && (m_databaseName == nullptr || m_name == nullptr)) {
        ZEL_REPORT(E_RCNull, "CZelTable::RDOAsString: the table has no name");
        return nullptr;
    }
    CZelString text("create table ");
    if (m_entity != nullptr) {
        text.RSStrCat(CZelMallocText(m_entity->RDEPrint()).get());
    } else {
        text.RSStrCat(m_databaseName);
        text.RSStrCat('.');
        text.RSStrCat(m_name);
    }
    text.RSStrCat(" (\n");
    const CZelDoubleList *columns = m_columns->RTLIterator();
    for (CZelListable *node = columns->RDLHead(); node != nullptr; node = columns->RDLGetNext(node)) {
        if (node != columns->RDLHead())
            text.RSStrCat(" , \n");
        auto *column = static_cast<CZelColDef *>(static_cast<CZelPointer *>(node)->RPData());
        text.RSStrCat(CZelMallocText(column->RCDOQLDefinition()).get());
    }
    appendSystemColumns(text);
    text.RSStrCat("\n); \n");
    return text.RSTakeString();
}

void CZelTable::appendSystemColumns(CZelString &out) const {
    bool isFirst = m_columns->RTLLength() == 0;
    const struct {
        const CZelAtomVector *m_names;
        const char *m_word;
    } kinds[] = {{m_counters, " counter ( "}, {m_timestamps, " timestamp ( "}};
    for (const auto &kind : kinds) {
        if (kind.m_names == nullptr || kind.m_names->RAVSize() == 0)
            continue;
        if (!isFirst)
            out.RSStrCat(" , \n");
        isFirst = false;
        out.RSStrCat(kind.m_word);
        appendNames(out, *kind.m_names);
        out.RSStrCat(" ) ");
    }
}

CZelRecord *CZelTable::RTGetSchema() const {
    if (m_columns == nullptr) {
        ZEL_REPORT(E_RCBadArgument, "CZelTable::RTGetSchema: the table has no columns");
        return nullptr;
    }
    auto *members = new CZelVBList();
    const CZelDoubleList *columns = m_columns->RTLIterator();
    for (CZelListable *node = columns->RDLHead(); node != nullptr; node = columns->RDLGetNext(node))
        members->RVBLAddToListEnd(columnSchema(*static_cast<CZelColDef *>(static_cast<CZelPointer *>(node)->RPData())));
    auto *record = new CZelRecord();
    record->RRAddValue(new CZelVarBind(CZelAtom::RAName("Schema"), CZelAtom(members)));
    return record;
}

CZelVarBind *CZelTable::columnSchema(CZelColDef &column) const {
    auto *object = new CZelVBList();
    addMember(*object, "DataType", CZelMallocText(column.RCDTypeText()).get());
    if (column.RCDDefault() != nullptr)
        object->RVBLAddToListEnd(new CZelVarBind("Default", static_cast<const CZelAtom *>(column.RCDDefault())));
    const CZelAtom *name = column.RCDName();
    addMember(*object, "NotNull", column.RCDNullable() != E_RBTrue);
    addMember(*object, "PrimaryKey", m_primaryKeys->RTLGet(name) != nullptr);
    addMember(*object, "Indexed", m_indexCounts->RTLGet(name) != nullptr);
    addMember(*object, "Unique", m_uniques->RTLGet(name) != nullptr);
    return new CZelVarBind(*name, CZelAtom(object));
}
