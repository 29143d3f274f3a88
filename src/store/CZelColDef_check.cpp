// The check of values against a column.
#include <memory>
#include <utility>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/base/CZelVBList.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelExpr.h"
#include "store/CZelColDef.h"

namespace {

// What a check says of a value: it must not stand, it may stand, or another has to stand in its place.
enum Verdict { REFUSED, FITS, REPLACED };

Verdict check(const CZelColDef &column, const CZelAtom *value, CZelAtom &replacement, int level);

bool takesNull(const CZelColDef &column) {
    return column.RCDNullable() == E_RBTrue && column.RCDUnique() != E_RBTrue && column.RCDIndex() != E_RBTrue;
}

Verdict checkNull(const CZelColDef &column, CZelAtom &replacement) {
    if (CZelAtom::RAIsNull(column.RCDDefault()))
        return takesNull(column) ? FITS : REFUSED;
    replacement = *column.RCDDefault();
    return REPLACED;
}

Verdict checkNumber(EZelDataType type, const CZelAtom &value, CZelAtom &replacement) {
    if (value.RAType() == type)
        return FITS;
    if (!value.RAIsNumber() && value.RAType() != E_RDTText)
        return REFUSED;
    replacement = value;
    return replacement.RACoerce(type) == 1 ? REPLACED : REFUSED;
}

bool isTooLong(const CZelAtom &text, int maxLen) {
    return maxLen >= 0 && text.RATextLength() > static_cast<std::size_t>(maxLen);
}

CZelAtom cut(const CZelAtom &text, int maxLen) {
    return CZelAtom(text.RAString(), static_cast<std::size_t>(maxLen));
}

Verdict checkText(int maxLen, const CZelAtom &value, CZelAtom &replacement) {
    if (value.RAType() != E_RDTText)
        return REFUSED;
    if (!isTooLong(value, maxLen))
        return FITS;
    replacement = cut(value, maxLen);
    return REPLACED;
}

// An element as it goes into a list that is built anew, after its check; null where there was none.
CZelAtom *checkedElement(const CZelAtom *value, Verdict verdict, CZelAtom &replacement) {
    if (verdict == REPLACED)
        return new CZelAtom(std::move(replacement));
    return value != nullptr ? new CZelAtom(*value) : nullptr;
}

// From the first element that has to change on, the list is built anew; each element is checked once.
Verdict checkList(const CZelColDef *defined, const CZelAtomVector &list, CZelAtom &replacement, int level) {
    std::unique_ptr<CZelAtomVector> rebuilt;
    for (unsigned int i = 0; defined != nullptr && i < list.RAVSize(); ++i) {
        CZelAtom element;
        const Verdict verdict = check(*defined, list.RAVGetValue(i), element, level);
        if (verdict == REFUSED)
            return REFUSED;
        if (verdict == REPLACED && rebuilt == nullptr) {
            rebuilt = std::make_unique<CZelAtomVector>(list.RAVSize());
            for (unsigned int before = 0; before < i; ++before)
                rebuilt->RAVAddToEnd(checkedElement(list.RAVGetValue(before), FITS, element));
        }
        if (rebuilt != nullptr)
            rebuilt->RAVAddToEnd(checkedElement(list.RAVGetValue(i), verdict, element));
    }
    if (rebuilt == nullptr)
        return FITS;
    replacement = CZelAtom(rebuilt.release());
    return REPLACED;
}

CZelVarBind *checkedMember(const CZelVarBind &member, Verdict verdict, CZelAtom &replacement) {
    return verdict == REPLACED ? new CZelVarBind(member.RVBName(), std::move(replacement)) : new CZelVarBind(member);
}

// The same for an object; members keep their names and their order.
Verdict checkObject(const CZelColDef *defined, const CZelVBList &object, CZelAtom &replacement, int level) {
    std::unique_ptr<CZelVBList> rebuilt;
    const CZelVarBind *member = defined != nullptr ? object.RVBLHead() : nullptr;
    for (; member != nullptr; member = object.RVBLGetNext(member)) {
        CZelAtom value;
        const Verdict verdict = check(*defined, member->RVBValue(), value, level);
        if (verdict == REFUSED)
            return REFUSED;
        if (verdict == REPLACED && rebuilt == nullptr) {
            rebuilt = std::make_unique<CZelVBList>();
            for (const CZelVarBind *before = object.RVBLHead(); before != member; before = object.RVBLGetNext(before))
                rebuilt->RVBLAddToListEnd(new CZelVarBind(*before));
        }
        if (rebuilt != nullptr)
            rebuilt->RVBLAddToListEnd(checkedMember(*member, verdict, value));
    }
    if (rebuilt == nullptr)
        return FITS;
    replacement = CZelAtom(rebuilt.release());
    return REPLACED;
}

// Requires: the value is not null. `level` counts the lists and objects around it.
Verdict checkPresent(const CZelColDef &column, const CZelAtom &value, CZelAtom &replacement, int level) {
    switch (column.RCDDataType()) {
        case E_RDTInt:
        case E_RDTLong:
        case E_RDTFloat:
        case E_RDTLong64:
            return checkNumber(column.RCDDataType(), value, replacement);
        case E_RDTText:
            return checkText(column.RCDMaxLen(), value, replacement);
        case E_RDTList:
            if (value.RAList() == nullptr)
                return REFUSED;
            return checkList(column.RCDDefined(), *value.RAList(), replacement, level + 1);
        case E_RDTObject:
            if (value.RAObject() == nullptr)
                return REFUSED;
            return checkObject(column.RCDDefined(), *value.RAObject(), replacement, level + 1);
        case E_RDTUndefined:
            return FITS;
        default:
            return value.RAType() == column.RCDDataType() ? FITS : REFUSED;
    }
}

Verdict check(const CZelColDef &column, const CZelAtom *value, CZelAtom &replacement, int level) {
    if (CZelAtom::RAIsNull(value))
        return checkNull(column, replacement);
    return level < CZelAtom::MAX_NESTING ? checkPresent(column, *value, replacement, level) : REFUSED;
}

// The verdict in the form of the interface.
__boolean answer(Verdict verdict, CZelAtom &replacement, CZelAtom **out) {
    if (verdict == REPLACED)
        *out = new CZelAtom(std::move(replacement));
    return ZelBool(verdict != REFUSED);
}

bool takesReplacement(CZelAtom **replacement) {
    if (replacement != nullptr) {
        *replacement = nullptr;
        return true;
    }
    ZEL_REPORT(E_RCNull, "CZelColDef: a check without a place for the replacement");
    return false;
}

CZelAtom *coercedCopy(const CZelAtom &value, EZelDataType type) {
    auto copy = std::make_unique<CZelAtom>(value);
    return copy->RACoerce(type) == 1 ? copy.release() : nullptr;
}

}  // namespace

__boolean CZelColDef::RCDTypeMatches(const CZelAtom *value, CZelAtom **replacement) {
    if (!takesReplacement(replacement))
        return E_RBFalse;
    CZelAtom changed;
    return answer(check(*this, value, changed, 0), changed, replacement);
}

__boolean CZelColDef::RCDCheckListContentType(const CZelAtomVector &list, CZelAtom **replacement) {
    if (!takesReplacement(replacement))
        return E_RBFalse;
    CZelAtom changed;
    return answer(checkList(m_defined, list, changed, 1), changed, replacement);
}

__boolean CZelColDef::RCDCheckObjectContentType(const CZelVBList &object, CZelAtom **replacement) {
    if (!takesReplacement(replacement))
        return E_RBFalse;
    CZelAtom changed;
    return answer(checkObject(m_defined, object, changed, 1), changed, replacement);
}

__boolean CZelColDef::RCDTypeMatches(CZelRecord &record) {
    CZelVarBind *binding = record.RRValuePairOf(m_name);
    CZelAtom changed;
    const Verdict verdict = check(*this, binding != nullptr ? binding->RVBValue() : nullptr, changed, 0);
    if (verdict != REPLACED)
        return ZelBool(verdict == FITS);
    if (binding != nullptr)
        *binding->RVBForWriting() = std::move(changed);
    else if (m_name != nullptr)
        record.RRAddValue(new CZelVarBind(*m_name, std::move(changed)));
    else
        ZEL_REPORT(E_RCBadArgument, "CZelColDef::RCDTypeMatches: a column without a name");
    return E_RBTrue;
}

__boolean CZelColDef::RCDUpdateTypeMatches(CZelExpr *expression) {
    const CZelAtom *value = expression->REHeadAtomVal();
    if (CZelAtom::RAIsNull(value))
        return ZelBool(takesNull(*this));
    CZelAtom changed;
    const Verdict verdict = check(*this, value, changed, 0);
    if (verdict == REPLACED)
        expression->RESetHeadAtomVal(std::move(changed));
    return ZelBool(verdict != REFUSED);
}

// A copy that fits the type, or null. Elements of lists and objects are not looked at.
CZelAtom *CZelColDef::forgivingCopy(const CZelAtom &value) const {
    switch (m_dataType) {
        case E_RDTInt:
        case E_RDTLong:
        case E_RDTFloat:
        case E_RDTLong64:
            return coercedCopy(value, m_dataType);
        case E_RDTText:
            if (value.RAType() == E_RDTText && isTooLong(value, m_maxLen))
                return new CZelAtom(cut(value, m_maxLen));
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
