#include "clause/CZelCompiledRegExpMatch.h"

#include "clause/CZelClauseValue.h"
#include "foundations/base/CZelRegex.h"
#include "foundations/base/CZelString.h"
#include "foundations/port/CZelError.h"

namespace {

void reportType(const CZelAtom &value) {
    CZelString report("CZelCompiledRegExpMatch::RCCEvaluateToAtom: Expected String but got: ");
    report.RSStrCat(&value);
    ZEL_REPORT(E_RCBadType, report.RSString());
}

}  // namespace

CZelCompiledRegExpMatch::CZelCompiledRegExpMatch(CZelCompiledClause *clause, const char *pattern)
    : m_clause(clause), m_pattern(pattern != nullptr ? pattern : ""), m_regex(new CZelRegex(m_pattern.c_str(), 2)) {
    requireOperand(clause);
}

CZelCompiledRegExpMatch::CZelCompiledRegExpMatch(CZelCompiledClause *clause, const CZelCompiledRegExpMatch &other)
    : m_clause(clause), m_pattern(other.m_pattern), m_regex(other.m_regex) {}

CZelCompiledRegExpMatch::~CZelCompiledRegExpMatch() {
    delete m_clause;
}

CZelAtom *CZelCompiledRegExpMatch::RCCEvaluateToAtom(CZelCmdCmplr &compiler) const {
    return newAtom(compiler);
}

void CZelCompiledRegExpMatch::RCCEvaluate(CZelCmdCmplr &compiler, CZelClauseValue &value) const {
    value.Clear();
    if (m_clause != nullptr)
        m_clause->RCCEvaluate(compiler, value);
    CZelAtom group;
    if (value.HasValue() && value.Get()->RAType() == E_RDTText)
        group = match(*value.Get());
    else if (value.HasValue())
        reportType(*value.Get());
    value.Set(std::move(group));
}

// The first group of the first match; undefined when there is none, or nothing in it.
CZelAtom CZelCompiledRegExpMatch::match(const CZelAtom &text) const {
    if (m_regex->RRCompiledCorrectly() != E_RBTrue) {
        const std::string report = "CZelCompiledRegExpMatch: Failed to compile regular expression: " + m_pattern;
        ZEL_REPORT(E_RCBadValue, report.c_str());
        return {};
    }
    const std::string_view group = m_regex->RRFind(text.RATextView(), 1);
    return group.empty() ? CZelAtom() : CZelAtom(group.data(), group.size());
}

CZelCompiledClause *CZelCompiledRegExpMatch::RCCClone() const {
    return new CZelCompiledRegExpMatch(cloneOf(m_clause), *this);
}
