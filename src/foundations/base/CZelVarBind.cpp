#include "foundations/base/CZelVarBind.h"

#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelString.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/ZelCodes.h"

const CZelAtom *CZelVarBind::nameOf(const char *text) {
    return newName(CZelAtom(true, text == nullptr ? "" : text));
}

// Interned where it can be; otherwise an atom of the binding's own.
const CZelAtom *CZelVarBind::newName(const CZelAtom &name) {
    bool isText = name.RAType() == E_RDTText;
    const CZelAtom *interned = isText ? CZelName::RNIntern(name.RAString(), name.RATextLength()) : nullptr;
    return interned != nullptr ? interned : new CZelAtom(name);
}

void CZelVarBind::RVBSetName(const CZelAtom &name) {
    const CZelAtom *former = m_name;
    m_name = nameOf(name);
    if (!former->RAIsInterned())
        delete former;
}

CZelVarBind::CZelVarBind(const char *name, const CZelAtom *value) : m_name(nameOf(name)) {
    RVBSetValue(value);
}

CZelVarBind::CZelVarBind(const char *name, CZelAtom **value) : m_name(nameOf(name)) {
    RVBSetValue(value);
}

CZelVarBind::CZelVarBind(const char *name, const char *value) : m_name(nameOf(name)), m_value(value) {
    if (value == nullptr)
        m_value.setAbsent();
}

CZelVarBind::CZelVarBind(const char *name, int value) : m_name(nameOf(name)), m_value(value) {}

CZelVarBind::CZelVarBind(const CZelAtom &name, const CZelAtom *value) : m_name(nameOf(name)) {
    RVBSetValue(value);
}

CZelVarBind::CZelVarBind(const CZelAtom &name, CZelAtom **value) : m_name(nameOf(name)) {
    RVBSetValue(value);
}

CZelVarBind::CZelVarBind(const CZelAtom &name, const char *value) : m_name(nameOf(name)), m_value(value) {
    if (value == nullptr)
        m_value.setAbsent();
}

CZelVarBind::CZelVarBind(const CZelAtom &name, int value) : m_name(nameOf(name)), m_value(value) {}

bool CZelVarBind::RVBNamed(const char *name) const {
    return name != nullptr && m_name->RATextView() == name;
}

int CZelVarBind::RVBSetValue(int value) {
    m_value.RASet(value);
    return E_RCOk;
}

int CZelVarBind::RVBSetValue(float value) {
    m_value.RASet(value);
    return E_RCOk;
}

int CZelVarBind::RVBSetValue(const CZelAtom *value) {
    if (value == nullptr)
        m_value.setAbsent();
    else
        m_value.RASet(value);
    return E_RCOk;
}

int CZelVarBind::RVBSetValue(CZelAtom **value) {
    CZelAtom *owned = value == nullptr ? nullptr : std::exchange(*value, nullptr);
    if (owned == nullptr) {
        m_value.setAbsent();
        return E_RCOk;
    }
    m_value.RASet(owned);
    delete owned;
    return E_RCOk;
}

int CZelVarBind::RVBAppendToListVal(const CZelAtom &element) {
    CZelAtomVector *list = listForWriting();
    return list == nullptr ? E_RCBadType : list->RAVAddToEnd(new CZelAtom(element));
}

int CZelVarBind::RVBAddOrSetListVal(const CZelAtom &element, unsigned int index) {
    CZelAtomVector *list = listForWriting();
    if (list == nullptr)
        return E_RCBadType;
    CZelAtom *copy = new CZelAtom(element);
    return index < list->RAVSize() ? list->RAVSetValue(index, copy) : list->RAVAddToEnd(copy);
}

// The list value, made where there is no value yet; null for a value of another type.
CZelAtomVector *CZelVarBind::listForWriting() {
    bool isBare = m_value.RAIsUndefined() || (m_value.RAType() == E_RDTList && m_value.RAList() == nullptr);
    if (isBare)
        m_value = CZelAtom(new CZelAtomVector);
    return m_value.RAList();
}

char *CZelVarBind::RVBVbAsString() const {
    CZelString text;
    text.RSStrCat(m_name);
    text.RSStrCat('=');
    if (CZelAtom::RAIsNull(RVBValue()))
        text.RSStrCat("NULL");
    else
        text.RSStrCat(RVBValue());
    return text.RSTakeString();
}
