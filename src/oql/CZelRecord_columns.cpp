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

// The atom that names a column in the packed form: that of its last key, or its own.
const CZelAtom *nameOf(const CZelDbEntity &column) {
    const CZelDoubleList *keys = column.RDEColSpec();
    if (keys == nullptr || keys->RDLTail() == nullptr)
        return column.RDEColNameAtom();
    return static_cast<const CZelExpr *>(keys->RDLTail())->REAtomVal();
}

// An element is named by its index: only texts are names.
int addPair(CZelROMPer &packet, const CZelAtom &name, const CZelAtom &value) {
    if (name.RAType() == E_RDTText)
        return packet.RRAddAttrVal(&name, &value);
    CZelAtom text(name);
    const int status = text.RACoerce(E_RDTText);
    return status == 1 ? packet.RRAddAttrVal(&text, &value) : status;
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
    const CZelPointer *node = columns != nullptr ? columns->RBFirst() : nullptr;
    for (; node != nullptr; node = CZelBag::RBNext(node)) {
        const auto *column = static_cast<const CZelDbEntity *>(node->RPData());
        const CZelAtom *name = nameOf(*column);
        const CZelAtom *value = RRValueOfExprList(column->RDEColNameAtom(), column->RDEColSpec());
        const int status = name != nullptr && value != nullptr ? addPair(packet, *name, *value) : 1;
        if (status != 1)
            ZEL_REPORT(status, "CZelRecord::ROMEncodeSubSet: a column can't be packed");
    }
    if (packet.RRCreatedLength() == 0)
        packet.RRAddPad();
    *length = packet.RRCreatedLength();
    *data = packet.RRTakePacket();
}
