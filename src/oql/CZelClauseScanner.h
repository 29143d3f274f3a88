// The scanner of one clause.
#pragma once

#include "foundations/base/ZelMalloc.h"
#include "oql/ZelClauseFlexLexer.h"

class QUINTOR_API CZelClauseScanner final : public ZelClauseFlexLexer {
public:
    CZelClauseScanner() = default;                             // without a text
    CZelClauseScanner(const char *text, unsigned int length);  // copies

private:
    CZelMallocText m_copy;
};
