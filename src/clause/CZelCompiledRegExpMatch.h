// regexpmatch: the text that the first group of a pattern matches.
#pragma once

#include <memory>
#include <string>

#include "clause/CZelCompiledClause.h"

class CZelRegex;

class QUINTOR_API CZelCompiledRegExpMatch : public CZelCompiledClause {
public:
    // Takes the clause over, copies the pattern; null is the empty one.
    CZelCompiledRegExpMatch(CZelCompiledClause *clause, const char *pattern);
    ~CZelCompiledRegExpMatch() override;

    CZelAtom *RCCEvaluateToAtom(CZelCmdCmplr &compiler) const override;
    CZelCompiledClause *RCCClone() const override;
    void RCCEvaluate(CZelCmdCmplr &compiler, CZelClauseValue &value) const override;

private:
    CZelCompiledRegExpMatch(CZelCompiledClause *clause, const CZelCompiledRegExpMatch &other);
    CZelAtom match(const CZelAtom &text) const;

    CZelCompiledClause *m_clause;
    std::string m_pattern;
    std::shared_ptr<const CZelRegex> m_regex;  // the pattern never changes: compiled once, for all clones
};
