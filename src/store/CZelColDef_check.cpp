// The check of values against a column.
#include <memory>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/base/CZelVBList.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelExpr.h"
#include "store/CZelColDef.h"

namespace {

// A copy in another type, or null when the value can't be.
CZelAtom *coerced(const CZelAtom &value, EZelDataType type) {
    auto copy = std::make_unique<CZelAtom>(value);
    return copy->RACoerce(type) == 1 ? copy.release() : nullptr;
}

bool isTooLong(const CZelAtom &text, int maxLen) {
    return maxLen >= 0 && text.RATextLength() > static_cast<std::size_t>(maxLen);
}

CZelAtom *cut(const CZelAtom &text, int maxLen) {
    return new CZelAtom(text.RAString(), static_cast<std::size_t>(maxLen));
}

// An element as it goes into a rebuilt list or object: its replacement, or a copy; null for no value.
CZelAtom *rebuilt(const CZelAtom *value, CZelAtom *replacement) {
    if (replacement != nullptr || value == nullptr)
        return replacement;
    return new CZelAtom(*value);
}

}  // namespace

// A value that is there, against the type alone.
bool CZelColDef::fits(const CZelAtom &value, CZelAtom **replacement) {
    switch (m_dataType) {
        case E_RDTInt:
        case E_RDTLong:
        case E_RDTFloat:
        case E_RDTLong64:
            if (value.RAType() == m_dataType)
                return true;
            *replacement = coerced(value, m_dataType);
            return *replacement != nullptr;
        case E_RDTText:
            if (value.RAType() == E_RDTText && isTooLong(value, m_maxLen))
                *replacement = cut(value, m_maxLen);
            return value.RAType() == E_RDTText;
        case E_RDTList:
            return value.RAList() != nullptr && RCDCheckListContentType(*value.RAList(), replacement) == E_RBTrue;
        case E_RDTObject:
            return value.RAObject() != nullptr && RCDCheckObjectContentType(*value.RAObject(), replacement) == E_RBTrue;
        case E_RDTUndefined:
            return true;
        default:
            return value.RAType() == m_dataType;
    }
}

__boolean CZelColDef::RCDTypeMatches(const CZelAtom *value, CZelAtom **replacement) {
    if (replacement == nullptr) {
        ZEL_REPORT(E_RCNull, "CZelColDef::RCDTypeMatches");
        return E_RBFalse;
    }
    *replacement = nullptr;
    if (!CZelAtom::RAIsNull(value))
        return ZelBool(fits(*value, replacement));
    if (!CZelAtom::RAIsNull(m_default)) {
        *replacement = new CZelAtom(*m_default);
        return E_RBTrue;
    }
    return ZelBool(takesNull());
}

bool CZelColDef::takesNull() const {
    return m_nullable == E_RBTrue && m_unique != E_RBTrue && m_index != E_RBTrue;
}

// The first element that has to change makes the whole list be built anew.
__boolean CZelColDef::RCDCheckListContentType(const CZelAtomVector &list, CZelAtom **replacement) {
    CZelAtom *changed = nullptr;
    for (unsigned int i = 0; m_defined != nullptr && changed == nullptr && i < list.RAVSize(); ++i)
        if (m_defined->RCDTypeMatches(list.RAVGetValue(i), &changed) != E_RBTrue)
            return E_RBFalse;
    if (changed == nullptr)
        return E_RBTrue;
    delete changed;
    auto elements = std::make_unique<CZelAtomVector>(list.RAVSize());
    for (unsigned int i = 0; i < list.RAVSize(); ++i) {
        CZelAtom *element = nullptr;
        if (m_defined->RCDTypeMatches(list.RAVGetValue(i), &element) != E_RBTrue)
            return E_RBFalse;
        CZelAtom *atom = rebuilt(list.RAVGetValue(i), element);
        elements->RAVAddToEnd(atom != nullptr ? atom : new CZelAtom());
    }
    *replacement = new CZelAtom(elements.release());
    return E_RBTrue;
}

__boolean CZelColDef::RCDCheckObjectContentType(const CZelVBList &object, CZelAtom **replacement) {
    CZelAtom *changed = nullptr;
    for (const CZelVarBind *member = object.RVBLHead(); m_defined != nullptr && changed == nullptr && member != nullptr;
         member = object.RVBLGetNext(member))
        if (m_defined->RCDTypeMatches(member->RVBValue(), &changed) != E_RBTrue)
            return E_RBFalse;
    if (changed == nullptr)
        return E_RBTrue;
    delete changed;
    auto members = std::make_unique<CZelVBList>();
    for (const CZelVarBind *member = object.RVBLHead(); member != nullptr; member = object.RVBLGetNext(member)) {
        CZelAtom *value = nullptr;
        if (m_defined->RCDTypeMatches(member->RVBValue(), &value) != E_RBTrue)
            return E_RBFalse;
        CZelAtom *atom = rebuilt(member->RVBValue(), value);
        members->RVBLAddToListEnd(new CZelVarBind(member->RVBName(), &atom));
    }
    *replacement = new CZelAtom(members.release());
    return E_RBTrue;
}

__boolean CZelColDef::RCDTypeMatches(CZelRecord &record) {
    CZelVarBind *binding = record.RRValuePairOf(m_name);
    CZelAtom *replacement = nullptr;
    if (RCDTypeMatches(binding != nullptr ? binding->RVBValue() : nullptr, &replacement) != E_RBTrue)
        return E_RBFalse;
    if (replacement == nullptr)
        return E_RBTrue;
    const int status =
        binding != nullptr ? binding->RVBSetValue(&replacement) : record.RRAddValue(m_name, &replacement);
    if (status != 1)
        ZEL_REPORT(status, "CZelColDef::RCDTypeMatches");
    return E_RBTrue;
}

__boolean CZelColDef::RCDUpdateTypeMatches(CZelExpr *expression) {
    const CZelAtom *value = expression->REHeadAtomVal();
    if (CZelAtom::RAIsNull(value))
        return ZelBool(takesNull());
    CZelAtom *replacement = nullptr;
    const __boolean matches = RCDTypeMatches(value, &replacement);
    if (replacement != nullptr)
        expression->RESetHeadAtomVal(replacement);
    delete replacement;
    return matches;
}

// A copy that fits the type, or null. Elements of lists and objects are not looked at.
CZelAtom *CZelColDef::forgivingCopy(const CZelAtom &value) const {
    switch (m_dataType) {
        case E_RDTInt:
        case E_RDTLong:
        case E_RDTFloat:
        case E_RDTLong64:
            return value.RAType() == m_dataType ? new CZelAtom(value) : coerced(value, m_dataType);
        case E_RDTText:
            if (value.RAType() == E_RDTText && isTooLong(value, m_maxLen))
                return cut(value, m_maxLen);
            [[fallthrough]];
        default:
            return value.RAType() == m_dataType ? new CZelAtom(value) : nullptr;
    }
}

CZelAtom *CZelColDef::RCDCoerceType(CZelAtom *value) {
    CZelAtom *result = value != nullptr ? forgivingCopy(*value) : nullptr;
    if (!CZelAtom::RAIsNull(result))
        return result;
    if (m_nullable != E_RBTrue) {
        delete result;
        return nullptr;
    }
    if (m_default == nullptr)
        return result;
    delete result;
    return new CZelAtom(*m_default);
}
