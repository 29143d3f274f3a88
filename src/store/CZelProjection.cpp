#include "store/CZelProjection.h"

#include <utility>

#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelExpr.h"

namespace {

CZelAtom nameFrom(const CZelAtom &text) {
    return text.RAType() == E_RDTText ? CZelAtom::RAName(text.RAString(), text.RATextLength()) : CZelAtom(text);
}

// A nested value takes the name of its last key.
const CZelAtom *lastNameOf(const CZelDbEntity &entity) {
    const CZelDoubleList *keys = entity.RDEColSpec();
    if (keys == nullptr || keys->RDLTail() == nullptr)
        return entity.RDEColNameAtom();
    return static_cast<const CZelExpr *>(keys->RDLTail())->REAtomVal();
}

CZelAtom asName(const CZelAtom &key) {
    CZelAtom name = nameFrom(key);
    const int status = name.RACoerce(E_RDTText);
    if (status != 1)
        ZEL_REPORT(status, "CZelStore::RSCreateRecord: the last key of a column can't be a name");
    return name;
}

}  // namespace

CZelProjection::CZelProjection(const CZelBag &entities) {
    for (const CZelPointer *node = entities.RBFirst(); node != nullptr; node = CZelBag::RBNext(node)) {
        const auto *entity = static_cast<const CZelDbEntity *>(node->RPData());
        CZelAtom name = entity != nullptr ? nameOf(*entity) : CZelAtom();
        if (!CZelAtom::RAIsNull(&name))
            m_columns.push_back({std::move(name), CZelColumnReader(entity->RDEColNameAtom(), entity->RDEColSpec())});
    }
}

CZelAtom CZelProjection::nameOf(const CZelDbEntity &entity) {
    const CZelAtom *name = lastNameOf(entity);
    return CZelAtom::RAIsNull(name) ? CZelAtom() : asName(*name);
}

CZelRecord *CZelProjection::project(const CZelBaseRecord &row) const {
    auto *record = new CZelRecord;
    for (const Column &column : m_columns) {
        const CZelAtom *value = column.reader.value(row);
        if (value != nullptr)
            record->RRAddValue(new CZelVarBind(column.name, CZelAtom(*value)));
    }
    return record;
}
