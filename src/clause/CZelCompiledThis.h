// this: neighbours of the current entity in the topology graph.
#pragma once

#include "clause/CZelCompiledClause.h"

class QUINTOR_API CZelCompiledThis : public CZelCompiledClause {
public:
    // Take over; the path may be null. How far up, how far down, and what counts; the name of the relation.
    CZelCompiledThis(CZelCompiledClause *first, CZelCompiledClause *second, CZelCompiledClause *third, char *name,
                     CZelBag *path);
    CZelCompiledThis(int first, int second, int third, char *name, CZelBag *path);
    ~CZelCompiledThis() override;

    CZelAtom *RCCEvaluateToAtom(CZelCmdCmplr &compiler) const override;
    CZelCompiledClause *RCCClone() const override;

private:
    static int number(const CZelCompiledClause *clause, CZelCmdCmplr &compiler);

    CZelCompiledClause *m_first;
    CZelCompiledClause *m_second;
    CZelCompiledClause *m_third;
    char *m_name;
    CZelBag *m_path;
};
