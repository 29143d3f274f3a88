#include "oql/CZelFilterScanner.h"

#include <gtest/gtest.h>

#include "Tokens.h"
#include "foundations/base/ZelEscape.h"
#include "foundations/port/CZelErrorCapture.h"
#include "foundations/port/ZelCodes.h"
#include "oql/ZelFilter.tab.h"

namespace {

const TokenList TOKENS({{__ZEL_IDENT, {"IDENT", 't'}},
                        {__ZEL_STRING, {"STRING", 't'}},
                        {__ZEL_INTNUM, {"INT", 'i'}},
                        {__ZEL_APPROXNUM, {"REAL", 'd'}},
                        {__ZEL_OBJPOINTER, {"->"}},
                        {__ZEL_EQ, {"EQ"}},
                        {__ZEL_NONE, {"NONE"}},
                        {__ZEL_FUNC, {"AVG"}},
                        {__ZEL_NEXT, {"NEXT"}},
                        {__ZEL_LONGLONG, {"LONG64"}},
                        {__ZEL_WHERE, {"WHERE"}}});

std::string tokens(const std::string &text) {
    return TOKENS.Of<CZelFilterScanner>(text);
}

TEST(FilterScannerTest, WordsOfStatementsAloneAreNames) {
    for (const char *word :
         {"COUNTER", "CREATE", "DATABASE",  "DATABASES", "DEFAULT", "DELETE",  "DROP",    "EXTERNAL", "INDEX",
          "INSERT",  "INTO",   "KEY",       "OFF",       "ON",      "PRIMARY", "SET",     "SHOW",     "SHUTDOWN",
          "TABLE",   "TABLES", "TIMESTAMP", "UNIQUE",    "UPDATE",  "VALUES",  "VOLATILE"})
        EXPECT_EQ(std::string("IDENT(") + word + ")", tokens(word));
    EXPECT_EQ("NONE AVG NEXT LONG64 WHERE", tokens("none Avg next long64 where"));
}

TEST(FilterScannerTest, IntegersKeepTheirLowThirtyTwoBits) {
    const CZelErrorCapture reports;
    EXPECT_EQ("INT(1215752191) INT(-1) INT(0) INT(-5) REAL(1.5)",
              tokens("99999999999 99999999999999999999 -99999999999999999999 -5 1.5"));
    EXPECT_EQ(0U, reports.Count());
}

TEST(FilterScannerTest, BackslashesKeepAQuoteWhateverTheSwitchAndStayInTheValue) {
    for (const bool escapes : {false, true}) {
        ZelSetEscape(escapes);
        EXPECT_EQ("STRING(a\\tb)", tokens("'a\\tb'"));
        EXPECT_EQ("STRING(a\\'b) IDENT(c)", tokens("'a\\'b' c"));
    }
    ZelSetEscape(false);
}

TEST(FilterScannerTest, CountHasNoStarForm) {
    const CZelErrorCapture reports;
    EXPECT_EQ("( * )", tokens("count(*)"));
    EXPECT_TRUE(reports.Holds(E_RCUnsupported, "The OQL function COUNT is not currently supported\n"));
}

TEST(FilterScannerTest, ReadsACopyOfItsText) {
    std::string text = "abc";
    CZelFilterScanner scanner(text.data(), 3);
    text = "xyz";
    UZelScanValue value;
    EXPECT_EQ(__ZEL_IDENT, scanner.yylex(&value));
    EXPECT_EQ("abc", scanner.SliceText(value.m_slice));
    CZelFilterScanner empty;
    EXPECT_EQ(0, empty.yylex(&value));
}

}  // namespace
