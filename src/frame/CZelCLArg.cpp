#include "frame/CZelCLArg.h"

#include <cstdlib>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/ZelCodes.h"

CZelCLArg::CZelCLArg(const char *name, EZelDataType type, __boolean hasParam, const char *desc, __boolean required)
    : CZelCLArg(ZelStrDup(name), type, hasParam, ZelStrDup(desc), required) {}

CZelCLArg::CZelCLArg(char *name, EZelDataType type, __boolean hasParam, char *desc, __boolean required)
    : m_Name(name), m_Desc(desc), m_Val(nullptr), m_Type(type), m_HasParam(hasParam), m_Required(required) {}

CZelCLArg::CZelCLArg(const CZelCLArg &other)
    : CZelListable(other),
      m_Name(ZelStrDup(other.m_Name)),
      m_Desc(ZelStrDup(other.m_Desc)),
      m_Val(other.m_Val != nullptr ? new CZelAtom(*other.m_Val) : nullptr),
      m_Type(other.m_Type),
      m_HasParam(other.m_HasParam),
      m_Required(other.m_Required) {}

CZelCLArg::~CZelCLArg() {
    std::free(m_Name);
    std::free(m_Desc);
    delete m_Val;
}

CZelListable *CZelCLArg::RLTargetDeepCopy(const CZelListable *source) const {
    return new CZelCLArg(*static_cast<const CZelCLArg *>(source));
}

int CZelCLArg::RCLASetVal(CZelAtom *value) {
    if (value != nullptr && value == m_Val)
        return E_RCSameValue;
    delete m_Val;
    m_Val = value;
    return value != nullptr ? E_RCOk : E_RCBadArgument;
}

int CZelCLArg::RCLASetVal(const CZelAtom *value) {
    return RCLASetVal(value != nullptr ? new CZelAtom(*value) : nullptr);
}
