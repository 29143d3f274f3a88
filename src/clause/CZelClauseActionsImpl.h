// What the grammar of clauses builds. The actions take over every node that they are given and give new ones; the
// texts of tokens are copied out of the scanner.
#pragma once

#include "clause/CZelCompiledExpr.h"
#include "foundations/base/ZelEnums.h"
#include "oql/CZelTextLexer.h"

class CZelBag;
class CZelCompiledClause;

class CZelClauseActions {
public:
    CZelClauseActions(const CZelTextLexer &scanner, CZelBag &out) : m_scanner(scanner), m_out(out) {}

    // References stand in brackets of references, but not without end: who works on them later recurses. False when
    // it is too deep, which is a syntax error.
    bool EnterReference() { return ++m_referenceDepth <= MAX_REFERENCE_DEPTH; }
    void LeaveReference() { --m_referenceDepth; }

    void AddResult(CZelCompiledClause *clause);
    static CZelBag *AddTo(CZelBag *bag, CZelCompiledClause *clause);  // null: a new bag

    static CZelCompiledClause *Integer(int number);
    static CZelCompiledClause *Real(float number);
    CZelCompiledClause *Text(SZelSlice text) const;
    CZelCompiledClause *Name(SZelSlice name) const;  // a text, interned where it can be

    CZelCompiledClause *Dollar(SZelSlice name) const;
    static CZelCompiledClause *Reference(CZelCompiledClause *name, CZelBag *path);
    CZelCompiledClause *Append(SZelSlice list, SZelSlice item, __boolean unique) const;
    CZelCompiledClause *Delete(SZelSlice list, SZelSlice item) const;
    static CZelCompiledClause *Cat(CZelBag *parts);
    static CZelCompiledClause *Length(CZelCompiledClause *clause);
    static CZelCompiledClause *Record(__boolean values);
    static CZelCompiledClause *Timestamp(CZelCompiledClause *clause);
    CZelCompiledClause *Timestamp(CZelCompiledClause *clause, SZelSlice format) const;
    CZelCompiledClause *RegExpMatch(CZelCompiledClause *clause, SZelSlice pattern) const;
    static CZelCompiledClause *IpToLong(CZelCompiledClause *clause);
    static CZelCompiledClause *LongToIp(CZelCompiledClause *clause);
    static CZelCompiledClause *Lookup(CZelCompiledClause *key, CZelCompiledClause *name, CZelCompiledClause *fallback);
    CZelCompiledClause *This(CZelCompiledClause *first, CZelCompiledClause *second, CZelCompiledClause *third,
                             SZelSlice name, CZelBag *path) const;

    static CZelCompiledClause *Compute(CZelCompiledClause *left, EZelClauseOpr op, CZelCompiledClause *right);
    static CZelCompiledClause *Negate(CZelCompiledClause *operand);

private:
    static constexpr int MAX_REFERENCE_DEPTH = 1000;

    const CZelTextLexer &m_scanner;
    CZelBag &m_out;
    int m_referenceDepth = 0;
};
