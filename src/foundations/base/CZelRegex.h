// A compiled regular expression with captures. Matching takes linear time whatever the pattern.
#pragma once

#include <string_view>

#include "foundations/base/ZelEnums.h"
#include "foundations/port/ZelExport.h"

class QUINTOR_API CZelRegex {
public:
    // Flags: 2, extended syntax, is what every caller passes. Patterns are those of RE2, in UTF-8 or else in bytes:
    // leftmost match, . takes a line feed too, ^ and $ are the ends of the text; back-references don't
    // compile.
    CZelRegex(const char *pattern, int flags);
    CZelRegex(const CZelRegex &) = delete;
    CZelRegex &operator=(const CZelRegex &) = delete;
    virtual ~CZelRegex();

    __boolean RRCompiledCorrectly() const;

    // Searches the text, which stays alive while captures are read. Non-zero on a match.
    int RRStep(const char *text);

    // Start and end of sub-expression n of the last match (0 is the whole match, 9 the last that is kept),
    // into the text; null when it took no part.
    const char *SubExprStart(int n) const;
    const char *SubExprEnd(int n) const;

    // Searches, gives sub-expression n and keeps nothing, so that threads may share the object. Empty with null data
    // when there is no match or n, 1 to 9, took no part in it.
    std::string_view RRFind(std::string_view text, int n) const;

private:
    struct Impl;
    Impl *m_impl;
};
