// What the grammars of statements and of conditions build alike. The actions take over every object that they
// are given and give new ones; what turns out to be of no use is deleted.
#pragma once

#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelStack.h"
#include "foundations/base/ZelEnums.h"
#include "oql/CZelExpr.h"
#include "oql/CZelTextLexer.h"
#include "oql/UZelGrammarValueImpl.h"

// Deletes a bag or stack with the objects in it; null is accepted.
template <class T>
void ZelDeleteBag(CZelBag *bag) {
    const CZelBagGuard<T> guard(bag);
}

template <class T>
void ZelDeleteStack(CZelStack *stack) {
    while (stack != nullptr && stack->RSLength() > 0)
        delete static_cast<T *>(stack->RSPop());
    delete stack;
}

class CZelGrammarActions {
public:
    explicit CZelGrammarActions(const CZelTextLexer &scanner) : m_scanner(scanner) {}

    // Literals, types and subqueries may be nested, but not without end: who works on them later recurses. False
    // when it is too deep, which is a syntax error.
    bool EnterLiteral() { return ++m_literalDepth <= MAX_LITERAL_DEPTH; }
    void LeaveLiteral() { --m_literalDepth; }
    bool EnterType() { return ++m_typeDepth <= MAX_LITERAL_DEPTH; }
    void LeaveType() { --m_typeDepth; }
    bool EnterQuery() { return ++m_queryDepth <= MAX_QUERY_DEPTH; }
    void LeaveQuery() { --m_queryDepth; }

    // --- literals ---

    CZelAtom *Text(SZelSlice text) const { return new CZelAtom(m_scanner.SliceAtom(text)); }
    static CZelAtom *Real(double number);
    static CZelAtomVector *AddAtom(CZelAtomVector *atoms, CZelAtom *atom);  // null atoms: a new vector
    static CZelAtom *ListAtom(CZelAtomVector *atoms);                       // null: the empty list
    static CZelAtom *ObjectAtom(CZelVBList *bindings);
    CZelVarBind *Binding(SZelSlice name, CZelAtom *value) const;
    static CZelVBList *AddBinding(CZelVBList *bindings, CZelVarBind *binding);

    // --- references ---

    CZelExpr *Name(SZelSlice name) const;
    CZelExpr *QuotedName(SZelSlice name) const;
    static CZelExpr *ClauseValue(CZelEvalClause *clause);
    static CZelExpr *EntityValue(CZelDbEntity *entity);
    CZelEvalClause *Clause(CZelColDef *type, SZelSlice text);
    bool HasClauses() const { return m_hasClauses; }  // was one made?
    static CZelDbEntity *WithKeys(CZelDbEntity *entity, CZelDoubleList *keys);
    static CZelExpr *Key(int key);  // an index or an EZelListUpdateType
    static CZelDoubleList *AddKey(CZelDoubleList *keys, CZelExpr *key);

    // --- types ---

    static CZelColDef *Type(EZelDataType type, CZelColDef *element = nullptr);
    CZelColDef *NamedType(SZelSlice name) const;

    // --- expressions ---

    static CZelExpr *AtomValue(CZelAtom *atom);  // null: no value
    CZelExpr *TextValue(SZelSlice text) const;
    static CZelExpr *RealValue(double number);
    template <class Whole>
    static CZelExpr *Value(Whole number) {
        return new CZelExpr(CZelAtom(number));
    }
    static CZelExpr *Signed(CZelExpr *value, bool isNegative);
    // Folds constants into the left operand. A right one without a value is reported and left out.
    static CZelExpr *Fold(CZelExpr *left, void (CZelExpr::*operation)(const CZelAtom *), CZelExpr *right);
    static CZelBag *AddTo(CZelBag *bag, void *object);  // null bag: a new one; a null object is left out

    // --- conditions: null when an operand is null ---

    static CZelFilter *Join(CZelFilter *left, EZelAlgebraic joiner, CZelFilter *right);
    static CZelFilter *Kernel(CZelBoolean *comparison);
    static CZelBoolean *Compare(CZelExpr *left, EZelOper op, CZelExpr *right);
    static CZelBoolean *Compare(CZelExpr *left, EZelOper op, CZelQuery *right);
    static CZelBoolean *TestForNull(CZelDbEntity *column, EZelOper op);
    static CZelBoolean *Exists(CZelQuery *query);
    static CZelBoolean *LikeAtom(CZelExpr *left, EZelOper op, CZelAtom *pattern, CZelAtom *escape);
    static CZelBoolean *InAtoms(CZelExpr *left, EZelOper op, CZelAtomVector *atoms);
    // The bounds must be constants; of others nothing is kept. One without a value is reported.
    static CZelBoolean *Between(CZelExpr *left, EZelOper op, CZelExpr *low, CZelExpr *high);

    // --- queries ---

    static CZelStack *AddTable(CZelStack *tables, CZelDbEntity *table);
    static CZelQuery *Query(CZelStack *tables, CZelFilter *where, CZelBag *groups, CZelFilter *having, CZelBag *order);
    static CZelQuery *Select(CZelQuery *query, __boolean all, CZelBag *selection);
    static CZelBag *OrderList(CZelBag *orders);  // null when no entry is left

protected:
    const CZelTextLexer &m_scanner;

private:
    static constexpr int MAX_LITERAL_DEPTH = 1000;
    static constexpr int MAX_QUERY_DEPTH = 100;

    int m_literalDepth = 0;
    int m_typeDepth = 0;
    int m_queryDepth = 0;
    bool m_hasClauses = false;
};
