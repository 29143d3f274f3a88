// Records through column specifications.
#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelROMPer.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/base/CZelStack.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelExpr.h"

namespace {

// The name under which a column is written: that of its last key, or its own.
const CZelAtom *outputName(const CZelDbEntity &column) {
    const CZelDoubleList *keys = column.RDEColSpec();
    if (keys == nullptr)
        return column.RDEColNameAtom();
    const auto *last = static_cast<const CZelExpr *>(keys->RDLTail());
    return last != nullptr ? last->REAtomVal() : nullptr;
}

}  // namespace

void CZelRecord::RRSubKeysFromExprs(const CZelDoubleList *colSpec, CZelStack &keys) {
    for (CZelListable *key = colSpec->RDLHead(); key != nullptr; key = colSpec->RDLGetNext(key))
        if (const CZelAtom *atom = static_cast<CZelExpr *>(key)->REAtomVal())
            keys.RSPush(const_cast<CZelAtom *>(atom));
}

const CZelAtom *CZelRecord::RRValueOfExprList(const CZelAtom *name, const CZelDoubleList *colSpec) const {
    const CZelAtom *value = name != nullptr ? RRValueOf(name) : nullptr;
    if (colSpec == nullptr)
        return value;
    for (CZelListable *key = colSpec->RDLHead(); key != nullptr && value != nullptr; key = colSpec->RDLGetNext(key))
        if (const CZelAtom *atom = static_cast<CZelExpr *>(key)->REAtomVal())
            value = RRStep(value, *atom);
    return value;
}

int CZelRecord::RRAddOrSetValueExprList(const CZelAtom &name, CZelDoubleList *colSpec, const CZelAtom *value) {
    if (colSpec == nullptr)
        return RRAddOrSetValue(&name, value);
    CZelStack keys(-1);
    RRSubKeysFromExprs(colSpec, keys);
    return RRAddOrSetValueNested(name, keys, value);
}

void CZelRecord::ROMEncodeSubSet(unsigned char **data, int *length, CZelBag *columns) const {
    if (data == nullptr || length == nullptr) {
        ZEL_REPORT(E_RCNull, "CZelRecord::ROMEncodeSubSet");
        return;
    }
    CZelROMPer packet(CZelROMPer::INITIAL_SIZE);
    for (CZelPointer *node = columns->RBFirst(); node != nullptr; node = CZelBag::RBNext(node)) {
        const auto *column = static_cast<const CZelDbEntity *>(node->RPData());
        const CZelAtom *name = outputName(*column);
        const CZelAtom *value = RRValueOfExprList(column->RDEColNameAtom(), column->RDEColSpec());
        const int status = name != nullptr && value != nullptr ? packet.RRAddAttrVal(name, value) : 1;
        if (status != 1)
            ZEL_REPORT(status, "CZelRecord::ROMEncodeSubSet");
    }
    *length = packet.RRCreatedLength();
    *data = packet.RRTakePacket();
}
