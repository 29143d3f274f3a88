// The tokens of conditions that stand alone.
#pragma once

#include "oql/CZelTextLexer.h"

class QUINTOR_API ZelFilterFlexLexer : public CZelTextLexer {
public:
    int yylex(UZelScanValue *value) override;
    // The same for the parser, where Bison makes yylex a macro.
    int NextToken(UZelScanValue *value) { return ZelFilterFlexLexer::yylex(value); }

    // The process's counter of lines in such texts, for all threads: set to 1 before a parse.
    static int LineCount();
    static void ResetLineCount();

protected:
    ZelFilterFlexLexer();
};
