#include "foundations/base/CZelBaseRecord.h"

#include <iostream>

#include "foundations/base/CZelROMPer.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/CZelError.h"

CZelBaseRecord::CZelBaseRecord(const CZelVBList *values) {
    if (values != nullptr)
        RRInitFromVarList(new CZelVBList(*values));
}

CZelBaseRecord::CZelBaseRecord(CZelVBList *values) {
    if (values != nullptr)
        RRInitFromVarList(values);
}

CZelBaseRecord::CZelBaseRecord(const CZelBaseRecord &other) : CZelListable(other), m_values(other.m_values) {}

CZelListable *CZelBaseRecord::RLTargetDeepCopy(const CZelListable *) const {
    return new CZelBaseRecord(*this);
}

int CZelBaseRecord::RRAddValue(const char *name, const char *value) {
    if (name == nullptr)
        return E_RCBadArgument;
    const CZelAtom *interned = nameBehindLast(name);
    return RRAddValue(interned != nullptr ? new CZelVarBind(*interned, value) : new CZelVarBind(name, value));
}

int CZelBaseRecord::RRAddValue(const char *name, CZelAtom **value) {
    const CZelAtom *interned = name != nullptr ? nameBehindLast(name) : nullptr;
    if (interned != nullptr)
        return RRAddValue(interned, value);
    const CZelAtom key(true, name);
    return RRAddValue(name == nullptr ? nullptr : &key, value);
}

// Records of one kind mostly have their names in one order. Null when the name can't be interned.
const CZelAtom *CZelBaseRecord::nameBehindLast(const char *name) const {
    const CZelVarBind *last = m_values.RVBLTail();
    return CZelName::RNInternNext(last != nullptr ? CZelName::RNAtomOf(last->RVBName()) : nullptr, name);
}

int CZelBaseRecord::RRAddValue(const CZelAtom *name, CZelAtom **value) {
    if (name != nullptr)
        return RRAddValue(new CZelVarBind(*name, value));
    discard(value);
    return E_RCBadArgument;
}

int CZelBaseRecord::RRAddValue(CZelVarBind *binding) {
    return m_values.RVBLAddToListEnd(binding);
}

int CZelBaseRecord::RRSetValueOf(const CZelAtom *name, const CZelAtom *value) {
    if (name == nullptr)
        return E_RCBadArgument;
    CZelVarBind *binding = RRValuePairOf(name);
    return binding == nullptr ? E_RCNotFound : binding->RVBSetValue(value);
}

int CZelBaseRecord::RRSetValueOf(const CZelAtom *name, CZelAtom **value) {
    CZelVarBind *binding = RRValuePairOf(name);
    if (binding != nullptr)
        return binding->RVBSetValue(value);
    discard(value);
    return name == nullptr ? E_RCBadArgument : E_RCNotFound;
}

int CZelBaseRecord::RRAddOrSetValue(const char *name, int value) {
    if (name == nullptr)
        return E_RCBadArgument;
    CZelVarBind *binding = m_values.RVBLFind(name);
    return binding != nullptr ? binding->RVBSetValue(value) : RRAddValue(new CZelVarBind(name, value));
}

int CZelBaseRecord::RRAddOrSetValue(const CZelAtom *name, const CZelAtom *value) {
    if (name == nullptr)
        return E_RCBadArgument;
    CZelVarBind *binding = RRValuePairOf(name);
    return binding != nullptr ? binding->RVBSetValue(value) : RRAddValue(new CZelVarBind(*name, value));
}

int CZelBaseRecord::RRDeleteValueOf(const CZelAtom &name) {
    return m_values.RVBLRemove(m_values.RVBLFind(name));
}

const CZelAtom *CZelBaseRecord::RRValueOf(const CZelAtom *name) const {
    const CZelVarBind *binding = RRValuePairOf(name);
    return binding == nullptr ? nullptr : binding->RVBValue();
}

const CZelAtom *CZelBaseRecord::RRValueOf(const char *name) const {
    const CZelVarBind *binding = m_values.RVBLFind(name);
    return binding == nullptr ? nullptr : binding->RVBValue();
}

CZelVarBind *CZelBaseRecord::RRValuePairOf(const CZelAtom *name) const {
    return name == nullptr ? nullptr : m_values.RVBLFind(*name);
}

CZelVBList *CZelBaseRecord::RRTakeValues() {
    CZelVBList *values = new CZelVBList;
    values->RVBLMoveFrom(m_values);
    return values;
}

CZelAtom *CZelBaseRecord::RRRecordAsAtom() const {
    return new CZelAtom(new CZelVBList(m_values));
}

void CZelBaseRecord::ROMEncode(unsigned char **data, int *length) const {
    if (data == nullptr || length == nullptr) {
        ZEL_REPORT(E_RCNull, "CZelBaseRecord::ROMEncode has no place for its result.");
        return;
    }
    CZelROMPer packet(CZelROMPer::INITIAL_SIZE);
    static_cast<void>(ROMEncode(packet));
    *length = packet.RRCreatedLength();
    *data = packet.RRTakePacket();
}

int CZelBaseRecord::ROMEncode(CZelROMPer &packet) const {
    int result = E_RCOk;
    for (const CZelVarBind *pair = m_values.RVBLHead(); pair != nullptr; pair = m_values.RVBLGetNext(pair)) {
        int status = packet.RRAddAttrVal(&pair->RVBName(), pair->RVBValue());
        if (status != E_RCOk)
            result = ZEL_FAIL(status, "CZelBaseRecord::ROMEncode can't pack a value.");
    }
    if (packet.RRCreatedLength() == 0)
        packet.RRAddPad();
    return result;
}

void CZelBaseRecord::RRPrint() const {
    std::cout << this;
}

int CZelBaseRecord::RRInitFromVarList(CZelVBList *values) {
    if (values == nullptr)
        return E_RCBadArgument;
    m_values.RVBLEmptyList();
    m_values.RVBLMoveFrom(*values);
    delete values;
    return E_RCOk;
}

void CZelBaseRecord::discard(CZelAtom **value) {
    if (value == nullptr)
        return;
    delete *value;
    *value = nullptr;
}

std::ostream &operator<<(std::ostream &out, const CZelBaseRecord *record) {
    if (record == nullptr)
        return out << "<NULL>\n";
    const CZelVBList *values = record->RRVbIterator();
    for (const CZelVarBind *pair = values->RVBLHead(); pair != nullptr; pair = values->RVBLGetNext(pair))
        out << CZelMallocText(pair->RVBVbAsString()).get() << '\n';
    return out;
}
