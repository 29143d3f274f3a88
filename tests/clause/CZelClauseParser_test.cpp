#include "clause/CZelClauseParser.h"

#include <pthread.h>

#include <functional>

#include "foundations/base/CZelBag.h"
#include "oql/CZelClauseScanner.h"
#include "oql/ZelClause.tab.h"
#include "tests/clause/ClauseFixture.h"

namespace {

class ClauseParserTest : public ClauseFixture {
protected:
    // The value of a text and what its parse printed.
    std::string evaluatePrinting(const std::string &text, std::string &printed) {
        ::testing::internal::CaptureStdout();
        std::string value = evaluate(text);
        printed = ::testing::internal::GetCapturedStdout();
        return value;
    }

    void expectError(const std::string &text, const std::string &kept,
                     const char *message = "ZelClause parse error\n") {
        reports.Clear();
        std::string printed;
        EXPECT_EQ(kept, evaluatePrinting(text, printed)) << text.substr(0, 50);
        EXPECT_EQ(message, printed) << text.substr(0, 50);
        EXPECT_TRUE(reports.Holds(E_RCNoMemory, "CZelClauseParser::ROPParse")) << text.substr(0, 50);
        EXPECT_EQ(1U, reports.Count());
    }

    static void runOnSmallStack(const std::function<void()> &work) {
        pthread_attr_t attributes;
        pthread_attr_init(&attributes);
        pthread_attr_setstacksize(&attributes, 1 << 20);
        pthread_t thread;
        const auto run = [](void *what) -> void * {
            (*static_cast<const std::function<void()> *>(what))();
            return nullptr;
        };
        ASSERT_EQ(0, pthread_create(&thread, &attributes, run, const_cast<std::function<void()> *>(&work)));
        pthread_join(thread, nullptr);
        pthread_attr_destroy(&attributes);
    }

    static std::string repeat(const std::string &text, int count) {
        std::string all;
        for (int i = 0; i < count; ++i)
            all += text;
        return all;
    }

    // Token codes with their values, "+ &ab 12".
    static std::string tokens(const std::string &text) {
        CZelClauseScanner scanner(text.data(), static_cast<unsigned int>(text.size()));
        std::string all;
        UZelScanValue value;
        for (int token = scanner.yylex(&value); token != 0; token = scanner.yylex(&value))
            all += (all.empty() ? "" : " ") + name(token, value, scanner);
        return all;
    }

    static std::string name(int token, const UZelScanValue &value, const CZelClauseScanner &scanner) {
        switch (token) {
            case __ZEL_C_INTNUM:
                return std::to_string(value.m_int);
            case __ZEL_C_APPROXNUM:
                return CZelMallocText(CZelAtom(value.m_float).RAStrRep()).get();
            case __ZEL_C_AMPERSAND:
                return "A" + std::string(scanner.SliceText(value.m_slice));
            case __ZEL_C_DOLLAR:
                return "D" + std::string(scanner.SliceText(value.m_slice));
            case __ZEL_C_AMPDOLLAR:
                return "AD" + std::string(scanner.SliceText(value.m_slice));
            case __ZEL_C_OBJIDENT:
                return "O" + std::string(scanner.SliceText(value.m_slice));
            case __ZEL_C_ABS_VAL:
                return "`" + std::string(scanner.SliceText(value.m_slice)) + "`";
            default:
                return "#" + std::to_string(token - __ZEL_C_CAT);
        }
    }
    static std::string code(int token) { return "#" + std::to_string(token - __ZEL_C_CAT); }
};

}  // namespace

TEST_F(ClauseParserTest, ScansTheLongestTokenAndSkipsTheRest) {
    EXPECT_EQ("", tokens("&a $b abc ? \t\r \x80\xff"));
    EXPECT_EQ("Aab A&ab A&& Aa.b&c", tokens("&ab &&ab &&& &a.b&c"));
    EXPECT_EQ("Dab D$ab ADab ADab", tokens("$ab $$ab &$ab &&$ab"));
    EXPECT_EQ("Oab " + code(__ZEL_C_OBJ_PTR) + " Dab " + code(__ZEL_C_OBJ_PTR) + " 1", tokens("->ab ->$ab ->a 1"));
    EXPECT_EQ("12 1.0 0.0 0.5 100.0 0.15 1", tokens("12 1. . .5 1e2 1.5E-1 1e"));
    EXPECT_EQ(code(__ZEL_C_MINUS) + " 1 2", tokens("-1_2"));
    EXPECT_EQ("`it's\na $text` 1", tokens("`it's\na $text` 1"));
    EXPECT_EQ(code(__ZEL_C_THIS) + " " + code(__ZEL_C_CAT) + " " + code(__ZEL_C_APPEND_UNIQUE) + " " +
                  code(__ZEL_C_APPEND) + " " + code(__ZEL_C_RECORD_NAMES),
              tokens("athis CATalog appendUNIQUE appenduniq Record_Names"));
    EXPECT_EQ("1 2", tokens(std::string("1 \0 2", 5)));
    EXPECT_EQ("1", tokens("`open 1"));
}

TEST_F(ClauseParserTest, LineFeedsGoToTheOutputAndAnOpenTextIsDropped) {
    std::string printed;
    EXPECT_EQ("int 3", evaluatePrinting("1 +\n2\n", printed));
    EXPECT_EQ("\n\n", printed);
    EXPECT_EQ("int 2", evaluatePrinting("1 `open\n2", printed));
    EXPECT_EQ("ZelClause Unterminated string\n\n", printed);
    EXPECT_EQ(0U, reports.Count());
}

TEST_F(ClauseParserTest, ASyntaxErrorKeepsWhatWasCompleteAndIsNotParsedAgain) {
    expectError("", "null");
    expectError("&a", "null");
    expectError("1 +", "null");
    expectError("1 2 )", "int 2");
    expectError("1 2 + * 3", "int 1");
    expectError("`text`", "null");
    expectError("cat()", "null");
    expectError("cat(1)", "null");
    expectError("length(`x`)", "null");
    expectError("cat(&ab, `x`, length(&cd))", "null");
    expectError("lookup(`x`, `y`)", "null");
    expectError("&ab(1)->cd(2", "null");
    expectError("this(1,2)->Name", "null");
    ::testing::internal::CaptureStdout();
    const auto broken = clause("1 2 )");
    EXPECT_EQ("int 2", evaluate(*broken));
    reports.Clear();
    EXPECT_EQ("int 2", evaluate(*broken));
    EXPECT_EQ("int 2", evaluate(*std::make_unique<CZelEvalClause>(*broken)));
    EXPECT_EQ(0U, reports.Count());
    EXPECT_EQ("ZelClause parse error\n", ::testing::internal::GetCapturedStdout());
    CZelEvalClause textless(nullptr, nullptr);
    EXPECT_EQ("null", evaluate(textless));
    EXPECT_TRUE(reports.Holds(E_RCBadArgument));
}

TEST_F(ClauseParserTest, LongAndDeepTextsNeedNoDeepStack) {
    compiler.RCCAddToConstStore(new CZelVarBind("Zero", 0));
    setLiteral(current, "ab", "[0]");
    runOnSmallStack([this] {
        EXPECT_EQ("int 500001", evaluate("1" + repeat("+1", 500000)));
        EXPECT_EQ("int 1", evaluate(repeat("(", 9000) + "1" + repeat(")", 9000)));
        EXPECT_EQ("int 3001", evaluate(repeat("1+(", 3000) + "1" + repeat(")", 3000)));
        EXPECT_EQ("int 1", evaluate(repeat("-", 9000) + "1"));
        EXPECT_EQ("int 1", evaluate(repeat("1 ", 200000)));
        EXPECT_EQ("none", evaluate("&ab" + repeat("(0)", 200000)));
        EXPECT_EQ("text " + std::string(200000, '0'), evaluate("cat($Zero" + repeat(",$Zero", 199999) + ")"));
        EXPECT_EQ("int 0", evaluate(repeat("&ab(", 1000) + "$Zero" + repeat(")", 1000)));
        auto deep = clause(repeat("1+(2*", 1500) + "1" + repeat(")", 1500) + repeat("-1", 100000));
        const std::string value = evaluate(*deep);
        CZelEvalClause copy(*deep);
        deep.reset();
        EXPECT_EQ(value, evaluate(copy));
    });
    EXPECT_EQ(0U, reports.Count());
}

TEST_F(ClauseParserTest, TextsThatAreTooDeepAreSyntaxErrors) {
    expectError(repeat("(", 10000) + "1" + repeat(")", 10000), "null", "ZelClause parser stack overflow\n");
    expectError(repeat("1+(", 500000), "null", "ZelClause parser stack overflow\n");
    expectError(repeat("&ab(", 1002) + "1" + repeat(")", 1002), "null");
}

TEST_F(ClauseParserTest, OnlyAnEvalReadsAsAClause) {
    CZelClauseParser parser;
    const std::unique_ptr<CZelEvalClause> found(parser.ParseToClause("eval(list type int,'&ab')"));
    ASSERT_NE(nullptr, found);
    EXPECT_STREQ("&ab", found->RECCompileable());
    EXPECT_EQ(E_RDTList, found->RECColDef()->RCDDataType());
    EXPECT_EQ(0U, reports.Count());
    for (const char *other :
         {"&a", "b", "1", "eval(char,'&ab')", "eval(int,'1') and b = 1", "(select a from t)", "eval(int,'1'); ", ""})
        EXPECT_EQ(nullptr, parser.ParseToClause(other)) << other;
}
