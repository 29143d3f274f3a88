// One value slot of a statement: a constant, a reference to a database entity, or an `eval` clause whose
// result comes later. The store reads it through REHeadAtomVal, REAtomVal and REBagVal without knowing
// which of them it was.
//
// A constant lies in the expression; an entity or clause is owned by it. An override is not owned.
#pragma once

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelListable.h"
#include "foundations/base/CZelPool.h"

class CZelAtomVector;
class CZelBag;
class CZelBoolean;
class CZelDbEntity;
class CZelEvalClause;
class CZelString;
class CZelVarBind;

class QUINTOR_API CZelExpr : public CZelListable {
public:
    ZEL_POOLED

    CZelExpr();                                 // a function: no value
    explicit CZelExpr(const CZelAtom *atom);    // copies; null: an atom expression without a value
    explicit CZelExpr(CZelAtom **atom);         // takes over and clears the pointer; null likewise
    explicit CZelExpr(CZelAtom &&atom);         // moves the value in
    explicit CZelExpr(CZelDbEntity *entity);    // takes over
    explicit CZelExpr(CZelEvalClause *clause);  // takes over
    CZelExpr(const CZelExpr &other);            // constant, entity or clause; not override, clause value and holder
    CZelExpr &operator=(const CZelExpr &) = delete;
    ~CZelExpr() override;
    CZelListable *RLTargetDeepCopy(const CZelListable *source) const override;  // a copy of `source`

    EZelExprType REType() const { return m_type; }

    // Makes the expression an atom expression whose value is `atom`, which stays the caller's and may be null
    // for "no value". What an entity or clause expression held is deleted; a constant stays behind it. The
    // holder re-establishes its shape.
    void RESetOverride(const CZelAtom *atom);

    // Stores the result of evaluating the clause: a binding with a list value, or null. Takes it over.
    void RESetClauseVal(CZelVarBind *value);
    CZelVarBind *RETakeClauseVal();

    // Replaces the first value. 1; E_RCBadValue for an entity or function; E_RCNull, reported, for a clause
    // without a result or a null atom.
    int RESetHeadAtomVal(const CZelAtom *atom);

    // The same with the value moved in. In the place of an override the expression then has a value of its own.
    int RESetHeadAtomVal(CZelAtom &&atom);

    // The value: override, constant, or first element of the clause's result; null when there is none.
    const CZelAtom *REHeadAtomVal() const;
    const CZelAtom *REAtomVal() const { return REHeadAtomVal(); }

    // All values in a new bag, the caller's; the atoms stay the expression's. A constant without a value gives
    // one null entry; a clause without a result, an entity and a function give null.
    CZelBag *REBagVal();

    // How many values REBagVal would give, -1 where it gives null. Makes nothing and reports nothing.
    int REValueCount() const;

    // What it holds; null when it is of another type.
    CZelDbEntity *REEntityVal() const { return m_type == E_RETEntity ? m_entity : nullptr; }
    CZelEvalClause *REClauseVal() { return m_type == E_RETClause ? m_clause : nullptr; }
    const CZelEvalClause *REClauseVal() const { return m_type == E_RETClause ? m_clause : nullptr; }
    CZelEvalClause *RETakeEvalClause();  // detaches; the type stays
    const CZelVarBind *REClauseResult() const { return m_clauseValue; }

    // Folding of constants, in place; nothing when this is no constant with a value. int and long compute as
    // int, long64 as long64, float with anything as float; whole numbers wrap; a division by zero and other
    // types leave the value as it is.
    void REAddVal(const CZelAtom *other);
    void RESubVal(const CZelAtom *other);
    void REMulVal(const CZelAtom *other);
    void REDivVal(const CZelAtom *other);
    void REPositivise();
    void RENegativise();

    // OQL text, new from malloc; empty for a function. Null when it can't be written (reported).
    char *REPrint();
    bool REAppendPrint(CZelString &out) const;
    void REDump();

    void RESetHolder(CZelBoolean *holder) { m_holder = holder; }
    CZelBag *RECopyAtomBag(CZelBag *atoms);   // a new bag of copies; null for null
    void REDeleteAtomBag(CZelBag *atoms);     // deletes the atoms, not the bag
    int RESetInternal(CZelDbEntity *entity);  // replaces the entity; 1, or E_RCBadType for another type

private:
    void clearHeld();
    CZelAtom *ownConstant();  // the value that folding may change, or null
    const CZelAtomVector *resultList() const;

    EZelExprType m_type;
    bool m_hasAtom = false;       // m_atom is a value
    bool m_isOverridden = false;  // m_override counts, null included
    CZelAtom m_atom;
    union {
        CZelDbEntity *m_entity;
        CZelEvalClause *m_clause;
    };
    const CZelAtom *m_override = nullptr;
    CZelVarBind *m_clauseValue = nullptr;
    CZelBoolean *m_holder = nullptr;
};
