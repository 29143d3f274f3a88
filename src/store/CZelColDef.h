// A column's definition, and the check that every value for it passes: it decides whether a value fits, and
// converts, cuts or defaults it where the column allows that. Values are looked at CZelAtom::MAX_NESTING levels
// deep; one whose declared elements lie deeper does not fit.
#pragma once

#include "foundations/base/CZelAtom.h"
#include "store/CZelTblAttr.h"

class CZelAtomVector;
class CZelBag;
class CZelExpr;
class CZelRecord;
class CZelVBList;
class CZelVarBind;

class QUINTOR_API CZelColDef : public CZelTblAttr {
public:
    CZelColDef();
    // Takes over name (may be null) and element definition. maxLen: longest text in bytes, -1 for no limit.
    CZelColDef(char *name, EZelDataType type, CZelColDef *defined, int maxLen);
    CZelColDef(const CZelColDef &other);  // deep
    CZelColDef &operator=(const CZelColDef &) = delete;
    ~CZelColDef() override;

    // Setters give 1.
    int RCDSetName(char *name);  // takes over
    int RCDSetName(const CZelAtom &name);
    int RCDSetNamedTypeName(const char *name);
    int RCDSetNullable(__boolean nullable);
    int RCDSetUnique(__boolean unique);
    int RCDSetIndex(__boolean index);
    int RCDSetDefault(const CZelAtom *value);  // copies, a number in the type of the column; null removes

    CZelAtom *RCDName() { return m_name; }
    const CZelAtom *RCDName() const { return m_name; }
    const char *RCDNamedTypeName() const { return m_namedType; }
    int RCDMaxLen() const { return m_maxLen; }
    CZelColDef *RCDDefined() { return m_defined; }
    const CZelColDef *RCDDefined() const { return m_defined; }
    EZelDataType RCDDataType() const { return m_dataType; }
    __boolean RCDNullable() const { return m_nullable; }
    __boolean RCDUnique() const { return m_unique; }
    __boolean RCDIndex() const { return m_index; }  // (part of) the primary key
    CZelAtom *RCDDefault() { return m_default; }
    const CZelAtom *RCDDefault() const { return m_default; }
    // Can a tree hold its values? int to long64.
    bool RCDIndexable() const { return m_dataType >= E_RDTInt && m_dataType <= E_RDTLong64; }

    // Does the value fit as it stands, as is plain to see? A no only means that it has to be looked at.
    bool RCDFitsPlainly(const CZelAtom *value) const {
        return value != nullptr && value->RAType() == m_dataType && RCDIndexable() &&
               (m_dataType != E_RDTText || m_maxLen < 0);
    }

    // Does the record's value fit? The record is corrected where it has to be: default added, text cut,
    // number converted. E_RBFalse leaves it unchanged.
    __boolean RCDTypeMatches(CZelRecord &record);

    // The check itself. *replacement becomes null, or a new atom, the caller's, to store in place of the value.
    __boolean RCDTypeMatches(const CZelAtom *value, CZelAtom **replacement);
    __boolean RCDCheckListContentType(const CZelAtomVector &list, CZelAtom **replacement);
    __boolean RCDCheckObjectContentType(const CZelVBList &object, CZelAtom **replacement);

    // The check of an update's value; a replacement goes back into the expression. Defaults play no part.
    __boolean RCDUpdateTypeMatches(CZelExpr *value);

    // The forgiving twin: a new atom of the column's type, or null.
    CZelAtom *RCDCoerceType(CZelAtom *value);

    const char *RCDDataTypeAsString() const;  // "int", "long", ..., new from malloc
    // The type with its " type ..." chain, and the column as it stands in a create table: new from malloc, null
    // (reported) when a type has no name.
    char *RCDTypeText() const;
    char *RCDOQLDefinition();

    // The scalar members of an object value, by path: bindings "prefix.name.member", or only the paths as text
    // atoms. A null bag makes a new one; the caller owns bag and contents.
    CZelBag *RCDValueBag(const CZelVarBind *object, const char *prefix, CZelBag *bag);
    CZelBag *RCDIndexBag(CZelVarBind *object, const char *prefix, CZelBag *bag);

private:
    void copyOwn(const CZelColDef &other);
    CZelAtom *forgivingCopy(const CZelAtom &value) const;

    CZelAtom *m_name = nullptr;
    int m_maxLen = -1;
    EZelDataType m_dataType = E_RDTUndefined;
    char *m_namedType = nullptr;
    CZelColDef *m_defined = nullptr;
    __boolean m_nullable = E_RBTrue;
    __boolean m_unique = E_RBFalse;
    __boolean m_index = E_RBFalse;
    CZelAtom *m_default = nullptr;
};
