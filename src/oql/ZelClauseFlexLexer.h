// The tokens of clauses. There are no other words than the keywords: one is found wherever it begins, and what
// begins no token is skipped, byte by byte.
#pragma once

#include "oql/CZelTextLexer.h"

class QUINTOR_API ZelClauseFlexLexer : public CZelTextLexer {
public:
    // A line feed is no token: it is copied to the output stream.
    int yylex(UZelScanValue *value) override;
    // The same for the parser, where Bison makes yylex a macro.
    int NextToken(UZelScanValue *value) { return ZelClauseFlexLexer::yylex(value); }

    // Writes what is wrong with a clause to standard output.
    static void Message(const char *message);

protected:
    ZelClauseFlexLexer();

private:
    int scanAmpersand(UZelScanValue *value);
    int scanDollar(UZelScanValue *value);
    int scanMinus(UZelScanValue *value);
    int scanKeyword();
    int scanNumber(UZelScanValue *value);
    int scanText(UZelScanValue *value);
    int scanUnclosed();
    int takeName(int signs, unsigned char beginning, unsigned char inside, int token, UZelScanValue *value);
    int skip();
};
