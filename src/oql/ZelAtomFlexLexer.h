// The tokens of literal values.
#pragma once

#include "oql/CZelTextLexer.h"

class QUINTOR_API ZelAtomFlexLexer : public CZelTextLexer {
public:
    int yylex(UZelScanValue *value) override;
    // The same for the parser, where Bison makes yylex a macro.
    int NextToken(UZelScanValue *value) { return ZelAtomFlexLexer::yylex(value); }

    // The process's counter of lines in literals, for all threads and never set back.
    static int LineCount();

    // Writes what is wrong with a literal, and the line, to standard error.
    static void Message(const char *message);

protected:
    ZelAtomFlexLexer();
};
