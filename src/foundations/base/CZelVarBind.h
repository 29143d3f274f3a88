// A name with a value. The name is interned where it can be; the value lies in the binding.
//
// 32 bytes: a record of eight columns is eight of them in a row. A binding without any value is not the
// same as one whose value is undefined: RVBValue() is null only for the first.
#pragma once

#include <utility>

#include "foundations/base/CZelName.h"

class QUINTOR_API CZelVarBind {
public:
    ZEL_POOLED_AS(ROWS)

    // Values: an atom copied, an atom taken over (the caller's pointer becomes null), a text, an int. A null
    // atom or text gives a binding without a value.
    CZelVarBind(const char *name, const CZelAtom *value);
    CZelVarBind(const char *name, CZelAtom **value);
    CZelVarBind(const char *name, const char *value);
    CZelVarBind(const char *name, int value);
    CZelVarBind(const CZelAtom &name, const CZelAtom *value);
    CZelVarBind(const CZelAtom &name, CZelAtom **value);
    CZelVarBind(const CZelAtom &name, const char *value);
    CZelVarBind(const CZelAtom &name, int value);
    CZelVarBind(const CZelAtom &name, CZelAtom &&value)  // moves the value in
        : m_name(nameOf(name)), m_value(std::move(value)) {}
    explicit CZelVarBind(const CZelAtom *interned) : m_name(interned) {}  // a name of CZelName; the value is undefined
    CZelVarBind(const CZelVarBind &other)                                 // deep; not linked anywhere
        : m_name(other.m_name->RAIsInterned() ? other.m_name : new CZelAtom(*other.m_name)), m_value(other.m_value) {}
    CZelVarBind &operator=(const CZelVarBind &) = delete;
    ~CZelVarBind() {
        if (!m_name->RAIsInterned())
            delete m_name;
    }

    const CZelAtom &RVBName() const { return *m_name; }
    const CZelAtom *RVBValue() const { return hasValue() ? &m_value : nullptr; }
    CZelAtom *RVBValue() { return hasValue() ? &m_value : nullptr; }

    // The value to be changed in place, undefined at first where there is none.
    CZelAtom *RVBForWriting() {
        m_value.m_heap.flags &= static_cast<std::uint8_t>(~CZelAtom::ABSENT);
        return &m_value;
    }

    // Is this its name? Addresses first, bytes only where one of the two is not interned.
    bool RVBNamed(const CZelAtom &name) const { return CZelName::RNSame(*m_name, name); }
    bool RVBNamed(const char *name) const;

    void RVBSetName(const CZelAtom &name);

    // Replace the value; 1.
    int RVBSetValue(int value);
    int RVBSetValue(float value);
    int RVBSetValue(const CZelAtom *value);  // copies; null leaves the binding without a value
    int RVBSetValue(CZelAtom **value);       // takes over

    // Appends a copy to a list value; a binding without a value gets a list first. 1 or E_RCBadType.
    int RVBAppendToListVal(const CZelAtom &element);

    // Sets element `index` of a list value; at or past its end the element is added. 1 or E_RCBadType.
    int RVBAddOrSetListVal(const CZelAtom &element, unsigned int index);

    // "name=value", new from malloc; the value as RAStrRep gives it, NULL when there is none
    // or it is undefined.
    char *RVBVbAsString() const;

private:
    friend class CZelVBList;

    bool hasValue() const { return (m_value.m_heap.flags & CZelAtom::ABSENT) == 0; }
    CZelAtomVector *listForWriting();
    static const CZelAtom *nameOf(const char *text);
    static const CZelAtom *nameOf(const CZelAtom &name) {
        const CZelAtom *interned = CZelName::RNAtomOf(name);
        return interned != nullptr ? interned : newName(name);
    }
    static const CZelAtom *newName(const CZelAtom &name);

    CZelVarBind *m_next = nullptr;
    const CZelAtom *m_name;  // of CZelName, or owned when not interned
    CZelAtom m_value;
};
static_assert(sizeof(CZelVarBind) == 32);
