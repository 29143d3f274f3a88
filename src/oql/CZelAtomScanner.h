// The scanner of one literal.
#pragma once

#include "foundations/base/ZelMalloc.h"
#include "oql/ZelAtomFlexLexer.h"

class QUINTOR_API CZelAtomScanner final : public ZelAtomFlexLexer {
public:
    CZelAtomScanner() = default;                             // without a text
    CZelAtomScanner(const char *text, unsigned int length);  // copies

private:
    CZelMallocText m_copy;
};
