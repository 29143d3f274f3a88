// The scanner of one condition.
#pragma once

#include "foundations/base/ZelMalloc.h"
#include "oql/ZelFilterFlexLexer.h"

class QUINTOR_API CZelFilterScanner final : public ZelFilterFlexLexer {
public:
    CZelFilterScanner() = default;                             // without a text
    CZelFilterScanner(const char *text, unsigned int length);  // copies

private:
    CZelMallocText m_copy;
};
