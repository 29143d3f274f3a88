#include "foundations/base/CZelRegex.h"

#include <re2/re2.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

namespace {

constexpr int64_t MOST_MEMORY = 16 << 20;
constexpr int MOST_GROUPS = 10;  // with the whole match; each takes memory for every place in the pattern

RE2::Options options(RE2::Options::Encoding encoding) {
    RE2::Options result;
    result.set_encoding(encoding);
    result.set_log_errors(false);
    result.set_max_mem(MOST_MEMORY);
    result.set_dot_nl(true);  // as in the extended syntax: a text is one line
    return result;
}

// A pattern is UTF-8, or else plain bytes.
std::unique_ptr<RE2> compile(const char *pattern) {
    auto compiled = std::make_unique<RE2>(pattern, options(RE2::Options::EncodingUTF8));
    if (compiled->error_code() == RE2::ErrorBadUTF8)
        compiled = std::make_unique<RE2>(pattern, options(RE2::Options::EncodingLatin1));
    return compiled;
}

std::size_t groupsToKeep(const RE2 &pattern) {
    return static_cast<std::size_t>(std::min(pattern.NumberOfCapturingGroups() + 1, MOST_GROUPS));
}

}  // namespace

struct CZelRegex::Impl {
    std::unique_ptr<RE2> m_pattern;          // null when there was no pattern
    std::vector<re2::StringPiece> m_groups;  // of the last search; 0 is the whole match
};

CZelRegex::CZelRegex(const char *pattern, int) : m_impl(new Impl) {
    if (pattern == nullptr)
        return;
    m_impl->m_pattern = compile(pattern);
    if (m_impl->m_pattern->ok())
        m_impl->m_groups.resize(groupsToKeep(*m_impl->m_pattern));
}

CZelRegex::~CZelRegex() {
    delete m_impl;
}

__boolean CZelRegex::RRCompiledCorrectly() const {
    return ZelBool(m_impl->m_pattern != nullptr && m_impl->m_pattern->ok());
}

int CZelRegex::RRStep(const char *text) {
    std::vector<re2::StringPiece> &groups = m_impl->m_groups;
    std::fill(groups.begin(), groups.end(), re2::StringPiece());
    if (text == nullptr || RRCompiledCorrectly() != E_RBTrue)
        return 0;
    re2::StringPiece all(text, std::strlen(text));
    bool found =
        m_impl->m_pattern->Match(all, 0, all.size(), RE2::UNANCHORED, groups.data(), static_cast<int>(groups.size()));
    return found ? 1 : 0;
}

std::string_view CZelRegex::RRFind(std::string_view text, int n) const {
    re2::StringPiece groups[MOST_GROUPS];
    if (RRCompiledCorrectly() != E_RBTrue || n < 0 || static_cast<std::size_t>(n) >= m_impl->m_groups.size())
        return {};
    const re2::StringPiece all(text.data(), text.size());
    if (!m_impl->m_pattern->Match(all, 0, all.size(), RE2::UNANCHORED, groups, n + 1))
        return {};
    return {groups[n].data(), groups[n].size()};
}

const char *CZelRegex::SubExprStart(int n) const {
    const std::vector<re2::StringPiece> &groups = m_impl->m_groups;
    return n < 0 || static_cast<std::size_t>(n) >= groups.size() ? nullptr : groups[static_cast<std::size_t>(n)].data();
}

const char *CZelRegex::SubExprEnd(int n) const {
    const char *start = SubExprStart(n);
    return start == nullptr ? nullptr : start + m_impl->m_groups[static_cast<std::size_t>(n)].size();
}
