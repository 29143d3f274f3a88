// The tokens of OQL statements.
#pragma once

#include "oql/CZelTextLexer.h"

class QUINTOR_API ZelOQLFlexLexer : public CZelTextLexer {
public:
    int yylex(UZelScanValue *value) override;
    // The same for the parser, where Bison makes yylex a macro.
    int NextToken(UZelScanValue *value) { return ZelOQLFlexLexer::yylex(value); }

    // The process's counter of lines in OQL texts, for all threads: set to 1 before a parse.
    static int LineCount();
    static void ResetLineCount();

protected:
    ZelOQLFlexLexer();
};
