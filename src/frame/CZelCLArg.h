// One option of a command line: how it is spelled, what it takes, and the value that was found.
#pragma once

#include "foundations/base/CZelListable.h"
#include "foundations/base/ZelEnums.h"
#include "foundations/port/ZelExport.h"

class CZelAtom;

// A row of a program's table of options.
struct SZelCLArgRec {
    const char *m_Name;    // as typed, with its dash
    const char *m_Desc;    // the usage text
    EZelDataType m_Type;   // E_RDTInt or E_RDTText; others are refused when the option is met
    __boolean m_HasParam;  // the next word is the option's value
    __boolean m_Required;  // the option has to be given
};

class QUINTOR_API CZelCLArg : public CZelListable {
public:
    CZelCLArg(const char *name, EZelDataType type, __boolean hasParam, const char *desc, __boolean required);
    CZelCLArg(const CZelCLArg &other);  // with the value
    CZelCLArg &operator=(const CZelCLArg &) = delete;
    ~CZelCLArg() override;

    CZelListable *RLTargetDeepCopy(const CZelListable *source) const override;

    const char *RCLAGetName() const { return m_Name; }
    const char *RCLAGetDesc() const { return m_Desc; }
    const CZelAtom *RCLAArgVal() const { return m_Val; }  // null until the option was found
    EZelDataType RCLAArgType() const { return m_Type; }
    __boolean RCLAHasParam() const { return m_HasParam; }
    __boolean RCLAIsRequired() const { return m_Required; }

    // Takes over the atom and frees the old value. 1; E_RCSameValue for the very atom that is held;
    // E_RCBadArgument for null, which leaves no value.
    int RCLASetVal(CZelAtom *value);

    // Copies the atom and frees the old value. 1, or E_RCBadArgument for null, as above.
    int RCLASetVal(const CZelAtom *value);

protected:
    // Takes over both texts, which come from malloc.
    CZelCLArg(char *name, EZelDataType type, __boolean hasParam, char *desc, __boolean required);

private:
    char *m_Name;
    char *m_Desc;
    CZelAtom *m_Val;
    EZelDataType m_Type;
    __boolean m_HasParam;
    __boolean m_Required;
};
