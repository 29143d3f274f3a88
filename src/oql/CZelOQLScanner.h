// The scanner of one OQL text.
#pragma once

#include "oql/ZelOQLFlexLexer.h"

class QUINTOR_API CZelOQLScanner final : public ZelOQLFlexLexer {
public:
    CZelOQLScanner(const char *text, unsigned int length);  // the text outlives the scanner
};
