// What the grammar of statements builds beside the shared parts. Finished statements go to the results.
#pragma once

#include "oql/CZelGrammarActionsImpl.h"

class CZelDbObject;
class CZelTableProps;

class CZelStatementActions : public CZelGrammarActions {
public:
    // Both outlive the object.
    CZelStatementActions(const CZelTextLexer &scanner, CZelStack &results)
        : CZelGrammarActions(scanner), m_results(results) {}

    void Push(CZelDbObject *statement) const;

    // --- create table ---

    void PushTable(CZelDbEntity *table, CZelStack *attributes) const;
    static CZelStack *AddAttribute(CZelStack *attributes, CZelTblAttr *attribute);  // null stack: a new one
    // The type with its name and options: those that stand first in the text have the last word.
    CZelTblAttr *Column(SZelSlice name, CZelColDef *type, CZelStack *options) const;
    static CZelStack *AddOption(CZelStack *options, CZelColDef *option);
    static CZelColDef *NotNullOption(int (CZelColDef::*also)(__boolean));  // null for nothing else
    static CZelColDef *DefaultOption(CZelAtom *value);
    static CZelTblAttr *Constraint(void (CZelTableProps::*setter)(CZelAtomVector *), CZelAtomVector *names);
    static CZelTblAttr *NoConstraint();
    CZelAtomVector *AddName(CZelAtomVector *names, SZelSlice name) const;

    // --- other definitions ---

    void PushDatabase(SZelSlice name) const;
    void PushShow(const SZelSlice *database, const SZelSlice *table) const;  // null names are absent
    void PushBareShow() const;

    // --- insert ---

    static CZelExprComplex *ListValue(CZelDoubleList *members);    // null: empty
    static CZelExprComplex *ObjectValue(CZelDoubleList *members);  // null: empty
    CZelExprComplexVarBind *Member(SZelSlice name, CZelExprComplex *value) const;
    static CZelDoubleList *AddValue(CZelDoubleList *values, CZelExprComplex *value);
    static CZelDoubleList *AddMember(CZelDoubleList *members, CZelExprComplexVarBind *member);

private:
    CZelStack &m_results;
};
