#include <ctime>
#include <memory>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelDoubleList.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/base/CZelString.h"
#include "foundations/base/CZelTreeList.h"
#include "foundations/base/CZelVBList.h"
#include "foundations/base/CZelVarBind.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelDelete.h"
#include "oql/CZelExpr.h"
#include "oql/CZelInsert.h"
#include "store/CZelBoolean.h"
#include "store/CZelCacheWalk.h"
#include "store/CZelColDef.h"
#include "store/CZelFilter.h"
#include "store/CZelStoreGuard.h"
#include "store/CZelTable.h"
#include "store/CZelTable_plan.h"
#include "store/CZelTblCallback.h"

namespace {

CZelRecord *rowIn(const CZelPointer *node) {
    return static_cast<CZelRecord *>(node->RPData());
}

CZelColDef *columnIn(const CZelListable *node) {
    return static_cast<CZelColDef *>(static_cast<const CZelPointer *>(node)->RPData());
}

// column = value
CZelFilter *equals(const CZelAtom &column, const CZelAtom &value) {
    auto *entity = new CZelDbEntity();
    entity->RDESetColName(column);
    return new CZelFilter(new CZelBoolean(new CZelExpr(entity), new CZelExpr(&value), E_ROEqual));
}

CZelFilter *both(CZelFilter *left, CZelFilter *right) {
    auto *filter = new CZelFilter();
    filter->RFSetOp(E_RAAnd);
    filter->RFAddLeft(left);
    filter->RFAddRight(right);
    return filter;
}

// Whole numbers wrap around.
void raise(CZelAtom &counter) {
    switch (counter.RAType()) {
        case E_RDTInt:
            counter.RASet(static_cast<int>(static_cast<unsigned int>(counter.RAInt()) + 1U));
            return;
        case E_RDTLong:
            counter.RASet(static_cast<long>(static_cast<unsigned long>(counter.RALong()) + 1UL));
            return;
        case E_RDTLong64:
            counter.RASet(static_cast<long long>(static_cast<unsigned long long>(counter.RALongLong()) + 1ULL));
            return;
        case E_RDTFloat:
            counter.RASet(counter.RAFloat() + 1.0F);
            return;
        default:
            return;
    }
}

int keyMissing(const char *operation, const CZelAtom *column) {
    CZelString text(operation);
    text.RSStrCat(": no value for the key column ");
    text.RSStrCat(column);
    return ZEL_FAIL(E_RCKeyMissing, text.RSString());
}

// " containing atoms of type int , text BAD  , ..."
class ElementTypes {
public:
    ElementTypes(CZelString &out, EZelDataType expected) : m_out(out), m_expected(expected) {}
    void add(const CZelAtom *element) {
        const EZelDataType type = element != nullptr ? element->RAType() : E_RDTUndefined;
        m_out.RSStrCat(m_isFirst ? " containing atoms of type " : " , ");
        m_isFirst = false;
        m_out.RSStrCat(CZelAtom::RAGetDataTypeString(type));
        if (type != m_expected)
            m_out.RSStrCat(" BAD ");
    }

private:
    CZelString &m_out;
    EZelDataType m_expected;
    bool m_isFirst = true;
};

void appendElementTypes(CZelString &out, const CZelAtom &value, EZelDataType expected) {
    ElementTypes types(out, expected);
    if (const CZelAtomVector *list = value.RAList())
        for (unsigned int i = 0; i < list->RAVSize(); ++i)
            types.add(list->RAVGetValue(i));
    if (const CZelVBList *object = value.RAObject())
        for (const CZelVarBind *member = object->RVBLHead(); member != nullptr; member = object->RVBLGetNext(member))
            types.add(member->RVBValue());
}

}  // namespace

// What every row operation asks first: 1, or why the table can't carry it out.
int CZelTable::refuse(const char *operation, const void *argument) const {
    if (argument != nullptr && isLive())
        return 1;
    CZelString text(operation);
    text.RSStrCat(argument == nullptr ? ": nothing to work on" : ": the table is not live");
    return ZEL_FAIL(E_RCBadArgument, text.RSString());
}

int CZelTable::RTAddRow(CZelInsert *statement, __boolean flag) {
    const int status = refuse("CZelTable::RTAddRow", statement);
    if (status != 1)
        return status;
    CZelRecord *record = statement->RICreateRecord(m_columns);
    return record != nullptr ? RTTakeRow(record, statement->RIUniques(), flag) : 1;
}

int CZelTable::RTTakeRow(CZelRecord *record, const CZelAtomVector *uniques, __boolean flag) {
    const bool isDuplicate = uniques != nullptr && RTCheckUniques(record, *uniques, flag) != E_RBTrue;
    const int status = isDuplicate ? E_RCDuplicate : RTAddRow(record, flag);
    if (status != 1)
        record->DroppedFromDatabase();
    return status;
}

int CZelTable::RTAddRow(CZelRecord *record, __boolean flag) {
    int status = refuse("CZelTable::RTAddRow", record);
    if (status != 1)
        return status;
    if (m_active != nullptr && m_active->RTCPreAdd(this, record, m_activeArgument, flag) != E_RBTrue)
        return E_RCRefused;
    status = RTCheckRecord(record);
    if (status != 1)
        return ZEL_FAIL(status, "CZelTable::RTAddRow: the row does not fit its columns");
    status = checkKeys(record);
    if (status != 1)
        return status;
    return m_cache != nullptr ? addCachedRow(record, flag) : addPlainRow(record, flag);
}

int CZelTable::addPlainRow(CZelRecord *record, __boolean flag) {
    const int status = plan().enter(*record, record);
    if (status != 1)
        return status == E_RCKeyExists ? status : ZEL_FAIL(status, "CZelTable::RTAddRow: an index refused the row");
    m_rows->RDLAddToListEnd(record);
    record->UsedByDatabase();
    if (m_active != nullptr)
        m_active->RTCPostAdd(this, record, m_activeArgument, flag);
    return 1;
}

int CZelTable::checkKeys(CZelRecord *record) {
    const int status = plan().checkKey(*record);
    if (status != E_RCKeyMissing)
        return status;
    CZelBag keys;  // says which column it is
    RTMakePrimKeyVbBag(record, &keys);
    return status;
}

int CZelTable::RTCheckRecord(CZelRecord *record) {
    if (record == nullptr || !isLive())
        return E_RCBadArgument;
    for (const CZelTablePlan::Column &column : plan().columns()) {
        const CZelAtom *value = record->RRValueOf(column.m_name);
        if (column.m_definition->RCDFitsPlainly(value) || column.m_definition->RCDTypeMatches(*record) == E_RBTrue)
            continue;
        RTOperationError(column.m_definition, value);
        return E_RCBadColumnValue;
    }
    return 1;
}

int CZelTable::RTMakePrimKeyVbBag(CZelRecord *record, CZelBag *bindings) {
    if (record == nullptr || bindings == nullptr)
        return ZEL_FAIL(E_RCBadArgument, "CZelTable::RTMakePrimKeyVbBag: no record or no bag");
    const CZelDoubleList *keys = m_primaryKeys->RTLIterator();
    for (CZelListable *node = keys->RDLHead(); node != nullptr; node = keys->RDLGetNext(node)) {
        const int status = RTAddToIndexBags(record, columnIn(node), bindings, nullptr);
        if (status == E_RCKeyMissing) {
            bindings->RBEmptyBag();
            return keyMissing("CZelTable::RTMakePrimKeyVbBag", columnIn(node)->RCDName());
        }
        if (status != 1)
            ZEL_REPORT(status, "CZelTable::RTMakePrimKeyVbBag");
    }
    return 1;
}

int CZelTable::RTMakeIndexBags(CZelRecord *record, CZelBag *bindings, CZelBag *nulls) {
    if (bindings == nullptr || nulls == nullptr)
        return E_RCBadArgument;
    const CZelDoubleList *indexed = m_indexedColumns->RTLIterator();
    for (CZelListable *node = indexed->RDLHead(); node != nullptr; node = indexed->RDLGetNext(node)) {
        const int status = RTAddToIndexBags(record, columnIn(node), bindings, nulls);
        if (status != 1)
            ZEL_REPORT(status, "CZelTable::RTMakeIndexBags");
    }
    return 1;
}

int CZelTable::RTAddToIndexBags(CZelRecord *record, CZelColDef *column, CZelBag *bindings, CZelBag *nulls) {
    if (record == nullptr || column == nullptr || bindings == nullptr)
        return E_RCBadArgument;
    if (!column->RCDIndexable())
        return 1;
    CZelVarBind *binding = record->RRValuePairOf(column->RCDName());
    if (binding != nullptr)
        return bindings->RBAdd(static_cast<void *>(binding));
    if (nulls != nullptr)
        return nulls->RBAdd(static_cast<void *>(column->RCDName()));
    return keyMissing("CZelTable::RTAddToIndexBags", column->RCDName());
}

__boolean CZelTable::RTCheckUniques(CZelRecord *record, const CZelAtomVector &columns, __boolean flag) {
    if (refuse("CZelTable::RTCheckUniques", record) != 1)
        return E_RBTrue;
    const std::unique_ptr<CZelFilter> filter(equalityFilter(*record, columns));
    if (filter == nullptr)
        return E_RBTrue;
    CZelRecord *row = firstMatch(*filter);
    if (row == nullptr)
        return E_RBTrue;
    if (m_active != nullptr)
        m_active->RTCPreDuplicate(this, row, m_activeArgument, flag);
    countDuplicate(*row);
    if (m_active != nullptr)
        m_active->RTCPostDuplicate(this, row, m_activeArgument, flag);
    if (m_cache != nullptr)
        delete row;
    return E_RBFalse;
}

// The first row that matches, or null: the stored row of a plain table, a copy of a cached one.
CZelRecord *CZelTable::firstMatch(CZelFilter &filter) {
    const std::unique_ptr<CZelBag> rows(RTEvalFilter(&filter));
    if (rows == nullptr || rows->RBLength() == 0)
        return nullptr;
    if (m_cache == nullptr)
        return rowIn(rows->RBFirst());
    const CZelStoreGuard guard(*m_lock, CZelStoreGuard::WRITER);
    const CZelCacheWalk walk(*m_cache, rows.get());
    return walk.hasRow() ? new CZelRecord(walk.record()) : nullptr;
}

// Equality in every one of the columns that the record has a value for; null when it has none.
CZelFilter *CZelTable::equalityFilter(const CZelRecord &record, const CZelAtomVector &columns) const {
    CZelFilter *filter = nullptr;
    for (unsigned int i = 0; i < columns.RAVSize(); ++i) {
        const CZelAtom *column = columns.RAVGetValue(i);
        const CZelAtom *value = record.RRValueOf(column);
        if (CZelAtom::RAIsNull(value))
            continue;
        CZelFilter *kernel = equals(*column, *value);
        filter = filter != nullptr ? both(filter, kernel) : kernel;
    }
    return filter;
}

// No index has to know: counters and timestamps have none.
void CZelTable::countDuplicate(CZelRecord &row) const {
    row.BeginWrite();
    for (unsigned int i = 0; m_counters != nullptr && i < m_counters->RAVSize(); ++i) {
        CZelVarBind *counter = row.RRValuePairOf(m_counters->RAVGetValue(i));
        if (counter != nullptr && counter->RVBValue() != nullptr)
            raise(*counter->RVBValue());
    }
    if (m_timestamps != nullptr)
        stamp(row, CZelAtom(static_cast<long>(std::time(nullptr))));
    row.EndWrite();
}

// The present time takes the place of each timestamp that the row has.
void CZelTable::stamp(CZelRecord &row, const CZelAtom &now) const {
    for (unsigned int i = 0; m_timestamps != nullptr && i < m_timestamps->RAVSize(); ++i) {
        CZelVarBind *stamp = row.RRValuePairOf(m_timestamps->RAVGetValue(i));
        if (stamp != nullptr && stamp->RVBValue() != nullptr && stamp->RVBValue()->RAType() == E_RDTLong)
            stamp->RVBSetValue(&now);
    }
}

int CZelTable::RTDeleteRows(CZelDelete *statement, __boolean flag) {
    const int status = refuse("CZelTable::RTDeleteRows", statement);
    if (status != 1)
        return status;
    if (m_cache != nullptr)
        return deleteCachedRows(*statement, flag);
    const std::unique_ptr<CZelBag> rows(RTReturnRows(statement->RDFilter()));
    if (rows == nullptr || rows->RBLength() == 0)
        return E_RCNotFound;
    for (CZelPointer *node = rows->RBFirst(); node != nullptr; node = CZelBag::RBNext(node))
        if (m_active == nullptr || m_active->RTCPreDelete(this, rowIn(node), m_activeArgument, flag) == E_RBTrue)
            deleteRow(rowIn(node), flag);
    return 1;
}

void CZelTable::deleteRow(CZelRecord *row, __boolean flag) {
    plan().leave(*row, row);
    m_rows->RDLSpliceAndJoinAt(row);
    if (m_active != nullptr)
        m_active->RTCPostDelete(this, row, m_activeArgument, flag);
    row->DroppedFromDatabase();
}

void CZelTable::RTOperationError(CZelColDef *column, const CZelAtom *value) {
    const EZelDataType type = column->RCDDataType();
    const EZelDataType subtype = column->RCDDefined() != nullptr ? column->RCDDefined()->RCDDataType() : E_RDTUndefined;
    const bool mayBeNull =
        column->RCDNullable() == E_RBTrue && column->RCDUnique() != E_RBTrue && column->RCDIndex() != E_RBTrue;
    CZelString text("The operation is attempting to set column ");
    text.RSStrCat(column->RCDName());
    text.RSStrCat(" which is of type ");
    text.RSStrCat(CZelAtom::RAGetDataTypeString(type));
    text.RSStrCat(mayBeNull ? "" : " not null ");
    if (type == E_RDTList || type == E_RDTObject) {
        text.RSStrCat(" which has a subtype of ");
        text.RSStrCat(CZelAtom::RAGetDataTypeString(subtype));
    }
    text.RSStrCat(" with the value ");
    text.RSStrCat(value != nullptr ? CZelMallocText(value->RAStrRep()).get() : "<NULL>");
    text.RSStrCat(", which is of type ");
    text.RSStrCat(CZelAtom::RAGetDataTypeString(value != nullptr ? value->RAType() : E_RDTUndefined));
    if (value != nullptr)
        appendElementTypes(text, *value, subtype);
    if (m_databaseName != nullptr && m_name != nullptr) {
        text.RSStrCat(" for the table ");
        text.RSStrCat(m_databaseName);
        text.RSStrCat('.');
        text.RSStrCat(m_name);
    }
    ZEL_REPORT(E_RCBadColumnValue, text.RSString());
}
