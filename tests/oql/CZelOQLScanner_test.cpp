#include "oql/CZelOQLScanner.h"

#include <gtest/gtest.h>

#include <sstream>
#include <thread>

#include "Tokens.h"
#include "foundations/base/ZelEscape.h"
#include "foundations/port/CZelErrorCapture.h"
#include "foundations/port/ZelCodes.h"
#include "oql/ZelOQL.tab.h"

namespace {

struct Case {
    const char *text;
    const char *tokens;
};

const TokenList TOKENS({{__ZEL_IDENT, {"IDENT", 't'}},
                        {__ZEL_STRING, {"STRING", 't'}},
                        {__ZEL_INTNUM, {"INT", 'i'}},
                        {__ZEL_LONGLONGNUM, {"LONG64", 'l'}},
                        {__ZEL_APPROXNUM, {"REAL", 'd'}},
                        {__ZEL_OBJPOINTER, {"->"}},
                        {__ZEL_EQ, {"EQ"}},
                        {__ZEL_NEQ, {"NEQ"}},
                        {__ZEL_LT, {"LT"}},
                        {__ZEL_GT, {"GT"}},
                        {__ZEL_LTE, {"LTE"}},
                        {__ZEL_GTE, {"GTE"}},
                        {__ZEL_COUNTSTAR, {"COUNTSTAR"}},
                        {__ZEL_COUNTER, {"COUNTER"}},
                        {__ZEL_TABLE, {"TABLE"}},
                        {__ZEL_SELECT, {"SELECT"}},
                        {CZelTextLexer::NUL_TOKEN, {"NUL"}}});

std::string tokens(const std::string &text) {
    return TOKENS.Of<CZelOQLScanner>(text);
}

class OQLScannerTest : public testing::Test {
protected:
    ~OQLScannerTest() override { ZelSetEscape(false); }
    CZelErrorCapture m_reports;
};

TEST_F(OQLScannerTest, EveryKeywordIsFoundInAnyCaseAndNoLongerWordIs) {
    const std::pair<const char *, int> keywords[] = {{"ALL", __ZEL_ALL},
                                                     {"AND", __ZEL_AND},
                                                     {"AVG", __ZEL_FUNC},
                                                     {"COUNTER", __ZEL_COUNTER},
                                                     {"ANY", __ZEL_ANY},
                                                     {"ARRAY", __ZEL_ARRAY},
                                                     {"ASC", __ZEL_ASC},
                                                     {"BETWEEN", __ZEL_BETWEEN},
                                                     {"BY", __ZEL_BY},
                                                     {"CHAR", __ZEL_CHARACTER},
                                                     {"CREATE", __ZEL_CREATE},
                                                     {"CHARACTER", __ZEL_CHARACTER},
                                                     {"DATA", __ZEL_DATA},
                                                     {"DATABASE", __ZEL_DATABASE},
                                                     {"DEFAULT", __ZEL_DEFAULT},
                                                     {"DELETE", __ZEL_DELETE},
                                                     {"DESC", __ZEL_DESC},
                                                     {"DISTINCT", __ZEL_DISTINCT},
                                                     {"DROP", __ZEL_DROP},
                                                     {"ESCAPE", __ZEL_ESCAPE},
                                                     {"EXISTS", __ZEL_EXISTS},
                                                     {"EXTERNAL", __ZEL_EXTERNAL},
                                                     {"EVAL", __ZEL_EVAL},
                                                     {"FLOAT", __ZEL_FLOAT},
                                                     {"FROM", __ZEL_FROM},
                                                     {"GROUP", __ZEL_GROUP},
                                                     {"HAVING", __ZEL_HAVING},
                                                     {"IN", __ZEL_IN},
                                                     {"INSERT", __ZEL_INSERT},
                                                     {"INT", __ZEL_INTEGER},
                                                     {"INTO", __ZEL_INTO},
                                                     {"INTEGER", __ZEL_INTEGER},
                                                     {"IS", __ZEL_IS},
                                                     {"IPADDRESS", __ZEL_IPADDRESS},
                                                     {"KEY", __ZEL_KEY},
                                                     {"LIKE", __ZEL_LIKE},
                                                     {"LIST", __ZEL_LIST},
                                                     {"LONG", __ZEL_LONG},
                                                     {"LONG64", __ZEL_LONGLONG},
                                                     {"LOCATOR", __ZEL_LOCATOR},
                                                     {"NEXT", __ZEL_NEXT},
                                                     {"NOT", __ZEL_NOT},
                                                     {"NULL", __ZEL_NULLX},
                                                     {"OBJECT", __ZEL_OBJECT},
                                                     {"OR", __ZEL_OR},
                                                     {"ORDER", __ZEL_ORDER},
                                                     {"PRIMARY", __ZEL_PRIMARY},
                                                     {"SELECT", __ZEL_SELECT},
                                                     {"SET", __ZEL_SET},
                                                     {"SHUTDOWN", __ZEL_SHUTDOWN},
                                                     {"SOME", __ZEL_SOME},
                                                     {"SMALLINT", __ZEL_SMALLINT},
                                                     {"TABLE", __ZEL_TABLE},
                                                     {"TIME", __ZEL_TIME},
                                                     {"TEXT", __ZEL_TEXT},
                                                     {"TIMESTAMP", __ZEL_TIMESTAMP},
                                                     {"TYPE", __ZEL_TYPE},
                                                     {"UNIQUE", __ZEL_UNIQUE},
                                                     {"UPDATE", __ZEL_UPDATE},
                                                     {"VARCHAR", __ZEL_VARCHAR},
                                                     {"VALUES", __ZEL_VALUES},
                                                     {"VOLATILE", __ZEL_VOLATILE},
                                                     {"WHERE", __ZEL_WHERE},
                                                     {"INDEX", __ZEL_INDEX},
                                                     {"OFF", __ZEL_OFF},
                                                     {"ON", __ZEL_ON},
                                                     {"SHOW", __ZEL_SHOW},
                                                     {"TABLES", __ZEL_TABLES},
                                                     {"COUNT(*)", __ZEL_COUNTSTAR},
                                                     {"DATABASES", __ZEL_DATABASES}};
    for (const auto &[word, token] : keywords) {
        std::string text = word;
        CZelOQLScanner upper(text.data(), static_cast<unsigned int>(text.size()));
        UZelScanValue value;
        EXPECT_EQ(token, upper.yylex(&value)) << text;
        for (std::size_t i = 0; i < text.size(); i += 2)
            text[i] = static_cast<char>(std::tolower(text[i]));
        CZelOQLScanner mixed(text.data(), static_cast<unsigned int>(text.size()));
        EXPECT_EQ(token, mixed.yylex(&value)) << text;
        if (text.back() != ')') {
            EXPECT_EQ("IDENT(" + text + "x)", tokens(text + "x"));
            EXPECT_EQ("IDENT(" + text + "_)", tokens(text + "_"));
        }
    }
}

TEST_F(OQLScannerTest, NamesNumbersAndOperatorsAreTheLongestMatch) {
    const Case cases[] = {
        {"COUNTERS MAXIMUM tableau CoUnTeR", "IDENT(COUNTERS) IDENT(MAXIMUM) IDENT(tableau) COUNTER"},
        {"a_1&b _a &b", "IDENT(a_1&b) _ IDENT(a) & IDENT(b)"},
        {"a -1 a - 1 a+1", "IDENT(a) INT(-1) IDENT(a) - INT(1) IDENT(a) INT(1)"},
        {"10abc 1e5x 1e 1e+ 2E-3",
         "INT(10) IDENT(abc) REAL(100000) IDENT(x) INT(1) IDENT(e) INT(1) IDENT(e) + "
         "REAL(0.002)"},
        {". +. -. .5 1. -1.5 1.2.3 t.a",
         ". REAL(0) REAL(0) REAL(0.5) REAL(1) REAL(-1.5) REAL(1.2) REAL(0.3) "
         "IDENT(t) . IDENT(a)"},
        {".e5 -.5e1 1.e2 1e999 -1e999 1e-999", "REAL(0) REAL(-5) REAL(100) REAL(inf) REAL(-inf) REAL(0)"},
        {"-2147483648 2147483647 2147483648 -2147483649",
         "INT(-2147483648) INT(2147483647) LONG64(2147483648) LONG64(-2147483649)"},
        {"9223372036854775807 -9223372036854775808", "LONG64(9223372036854775807) LONG64(-9223372036854775808)"},
        {"007 +7", "INT(7) INT(7)"},
        {"->=<><=>=!=<>!~:;", "-> EQ NEQ LTE GTE NEQ NEQ ! ~ : ;"},
        {"- -> --5 ->a", "- -> - INT(-5) -> IDENT(a)"},
        {"[{()}],*/?@", "[ { ( ) } ] , * / ? @"},
        {"\x80\xff", "#128 #255"},
        {"select\ttable\r\n\f", "SELECT TABLE \f"},
        {"count(*)count(*) counT(*)", "COUNTSTAR COUNTSTAR COUNTSTAR"}};
    for (const Case &c : cases)
        EXPECT_EQ(c.tokens, tokens(c.text)) << c.text;
    EXPECT_EQ(0U, m_reports.Count());
    EXPECT_EQ("IDENT(a) NUL IDENT(b)", tokens(std::string("a\0b", 3)));
}

TEST_F(OQLScannerTest, FunctionsThatAreNotCarriedOutAreReportedAndGiveNoToken) {
    EXPECT_EQ("( IDENT(a) )", tokens("MIN(a)"));
    EXPECT_TRUE(m_reports.Holds(E_RCUnsupported, "The OQL function MIN is not currently supported\n"));
    EXPECT_EQ("", tokens("max Sum"));
    EXPECT_TRUE(m_reports.Holds(E_RCUnsupported, "The OQL function MAX is not currently supported\n"));
    EXPECT_TRUE(m_reports.Holds(E_RCUnsupported, "The OQL function SUM is not currently supported\n"));
    EXPECT_EQ("( * )", tokens("count( * )"));
    EXPECT_TRUE(m_reports.Holds(E_RCUnsupported, "The OQL function COUNT is not currently supported\n"));
    EXPECT_EQ("( *", tokens("count(*"));
    EXPECT_EQ(5U, m_reports.Count());
}

TEST_F(OQLScannerTest, IntegersBeyondSixtyFourBitsAreCutAndReported) {
    EXPECT_EQ("LONG64(9223372036854775807)", tokens("9223372036854775808"));
    EXPECT_TRUE(m_reports.Holds(E_RCUnsupported,
                                "Overflow - The large integer 9223372036854775808 found in an OQL statement has been "
                                "truncated to 9223372036854775807"));
    EXPECT_EQ("LONG64(-9223372036854775808)", tokens("-99999999999999999999"));
    EXPECT_TRUE(m_reports.Holds(E_RCUnsupported,
                                "Overflow - The large integer -99999999999999999999 found in an OQL statement has been "
                                "truncated to -9223372036854775808"));
    EXPECT_EQ("LONG64(9223372036854775807)", tokens("+9999999999999999999"));
    EXPECT_EQ(3U, m_reports.Count());
}

TEST_F(OQLScannerTest, CommentsEndWithALineThatEnds) {
    const Case cases[] = {{"a--b\nc", "IDENT(a) IDENT(c)"},
                          {"a // b 'c\n d", "IDENT(a) IDENT(d)"},
                          {"a -- b", "IDENT(a) - - IDENT(b)"},
                          {"a // b", "IDENT(a) / / IDENT(b)"},
                          {"--\n--->", "- - ->"},
                          {"a - - b\n", "IDENT(a) - - IDENT(b)"}};
    for (const Case &c : cases)
        EXPECT_EQ(c.tokens, tokens(c.text)) << c.text;
}

TEST_F(OQLScannerTest, WithoutEscapesAStringIsWhatStandsBetweenItsQuotes) {
    const Case cases[] = {{"'a' \"b\" ''", "STRING(a) STRING(b) STRING()"},
                          {"'a\\'", "STRING(a\\)"},
                          {"'a\"b' \"a'b\"", "STRING(a\"b) STRING(a'b)"},
                          {"'a\n-- b' c", "STRING(a\n-- b) IDENT(c)"},
                          {"'a\\tb'", "STRING(a\\tb)"}};
    for (const Case &c : cases)
        EXPECT_EQ(c.tokens, tokens(c.text)) << c.text;
}

TEST_F(OQLScannerTest, WithEscapesABackslashKeepsTheQuoteAndIsReplaced) {
    ZelSetEscape(true);
    const Case cases[] = {{"'a\\tb\\nc\\bd'", "STRING(a\tb\nc\bd)"},
                          {"'a\\'b'", "STRING(a'b)"},
                          {"'a\\''", "STRING(a')"},
                          {"'a\\\\b\\qc'", "STRING(a\\bqc)"},
                          {"'a\\\\'b'", "STRING(a\\'b)"},  // an escaped backslash keeps the quote too
                          {"'a' \"b\\\"c\"", "STRING(a) STRING(b\"c)"},
                          {"'a\\'", "'"},
                          {"'a\\'b\nc", "IDENT(c)"},
                          {"'a\\\nb' c", "STRING(a\nb) IDENT(c)"}};
    for (const Case &c : cases)
        EXPECT_EQ(c.tokens, tokens(c.text)) << c.text;
}

TEST_F(OQLScannerTest, AQuoteThatIsNeverClosedDropsItsLine) {
    const Case cases[] = {{"'ab\nc", "IDENT(c)"},
                          {"x 'ab \"q\" \n c \"d\"", "IDENT(x) IDENT(c) STRING(d)"},
                          {"'ab\nc'd", "STRING(ab\nc) IDENT(d)"},
                          {"'ab", "' IDENT(ab)"},
                          {"a\n\"b", "IDENT(a) \" IDENT(b)"}};
    for (const Case &c : cases)
        EXPECT_EQ(c.tokens, tokens(c.text)) << c.text;
}

TEST_F(OQLScannerTest, CountsLinesOutsideStringsAndPlacesTokensInAll) {
    const std::string text = "a\n'b\nc'\n-- d\n  e";
    CZelOQLScanner scanner(text.data(), static_cast<unsigned int>(text.size()));
    ZelOQLFlexLexer::ResetLineCount();
    UZelScanValue value;
    int line = 0, column = 0;
    EXPECT_EQ(__ZEL_IDENT, scanner.yylex(&value));
    EXPECT_EQ(__ZEL_STRING, scanner.yylex(&value));
    EXPECT_EQ(2, scanner.Line());
    EXPECT_EQ(__ZEL_IDENT, scanner.yylex(&value));
    scanner.TokenPlace(&line, &column);
    EXPECT_EQ(4, scanner.Line());
    EXPECT_EQ(4, ZelOQLFlexLexer::LineCount());
    EXPECT_EQ(5, line);
    EXPECT_EQ(3, column);
    ZelOQLFlexLexer::ResetLineCount();
    EXPECT_EQ(1, ZelOQLFlexLexer::LineCount());
}

TEST_F(OQLScannerTest, ReadsSeveralBuffersEachFromItsOwnPosition) {
    CZelOQLScanner scanner("a b c", 5);
    SZelScanBuffer *other = scanner.yy_create_buffer("x y", 3);
    UZelScanValue value;
    const auto next = [&] {
        return scanner.yylex(&value) == 0 ? std::string() : std::string(scanner.SliceText(value.m_slice));
    };
    EXPECT_EQ("a", next());
    scanner.yy_switch_to_buffer(other);
    EXPECT_EQ("x", next());
    scanner.ReinitialiseBuffer();
    EXPECT_EQ("x", next());
    char bytes[8] = {};
    EXPECT_EQ(2, scanner.LexerInput(bytes, 8));
    EXPECT_STREQ(" y", bytes);
    EXPECT_EQ(0, scanner.LexerInput(bytes, 8));
    EXPECT_EQ("", next());
    scanner.yyrestart("z", 1);
    EXPECT_EQ("z", next());
    scanner.yy_delete_buffer(other);
    EXPECT_EQ("", next());
    scanner.ReinitialiseBuffer();
    scanner.yyrestart("again", 5);
    EXPECT_EQ("again", next());
}

TEST_F(OQLScannerTest, OutputGoesToItsStreamAndAnInnerFaultEndsTheProcess) {
    CZelOQLScanner scanner("", 0);
    std::ostringstream out;
    scanner.switch_streams(&out);
    scanner.switch_streams(nullptr);
    scanner.LexerOutput("abc", 2);
    EXPECT_EQ("ab", out.str());
    EXPECT_EXIT(scanner.LexerError("input in flex scanner failed"), testing::ExitedWithCode(2),
                "input in flex scanner failed\n");
}

// Each of these would take hours if the scanner looked at the rest of the text more than once.
TEST_F(OQLScannerTest, TimeIsLinearInTextsThatInviteLookingAhead) {
    constexpr int PIECES = 1 << 21;
    for (const bool escapes : {false, true}) {
        ZelSetEscape(escapes);
        for (const char *piece : {"-", "/", "\\'", "'\\", "\"\n", "'\n\"", "1e+", "-\n", "a", ".", "'\"--"}) {
            std::string text;
            for (int i = 0; i < PIECES; ++i)
                text += piece;
            CZelOQLScanner scanner(text.data(), static_cast<unsigned int>(text.size()));
            UZelScanValue value;
            int count = 0;
            while (scanner.yylex(&value) != 0)
                ++count;
            EXPECT_LE(count, static_cast<int>(text.size()));
        }
    }
}

}  // namespace
