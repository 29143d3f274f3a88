#include "foundations/base/CZelRegex.h"

#include <string>

#include <gtest/gtest.h>

namespace {

// What sub-expression n of the first match holds, or why there is none.
std::string search(const char *pattern, const char *text, int n = 0) {
    CZelRegex regex(pattern, 2);
    if (regex.RRCompiledCorrectly() != E_RBTrue)
        return "<bad pattern>";
    if (regex.RRStep(text) != 1)
        return "<no match>";
    if (regex.SubExprStart(n) == nullptr)
        return "<no part>";
    return std::string(regex.SubExprStart(n), regex.SubExprEnd(n));
}

TEST(RegexTest, FindsTheLeftmostMatchAndItsParts) {
    EXPECT_EQ("ab12", search("[a-z]+[0-9]+", "--ab12cd3"));
    EXPECT_EQ("12", search("[a-z]+([0-9]+)", "--ab12cd3", 1));
    EXPECT_EQ("<no part>", search("(a)|(b)", "b", 1));
    EXPECT_EQ("b", search("(a)|(b)", "b", 2));
    EXPECT_EQ("<no part>", search("(a)", "a", 2));
    EXPECT_EQ("<no part>", search("(a)", "a", -1));
    EXPECT_EQ("", search("x*", "abc"));
    EXPECT_EQ("", search("", ""));
    EXPECT_EQ("<no match>", search("^b", "ab"));
    EXPECT_EQ("<no match>", search("^b", "a\nb"));
    EXPECT_EQ("a\nb", search("a.b", "a\nb"));
    EXPECT_EQ("5", search("(?i)PORT-(\\d)", "port-5", 1));
}

TEST(RegexTest, ASearchThatKeepsNothingFindsTheSame) {
    const CZelRegex regex("([a-z]+)(x)?", 2);
    EXPECT_EQ("ab", regex.RRFind("--ab12", 1));
    EXPECT_EQ("ab", regex.RRFind("--ab12", 0));
    EXPECT_EQ(nullptr, regex.RRFind("--ab12", 2).data());
    EXPECT_EQ(nullptr, regex.RRFind("--ab12", 3).data());
    EXPECT_EQ(nullptr, regex.RRFind("12", 1).data());
    EXPECT_EQ(nullptr, regex.SubExprStart(0));
    EXPECT_EQ(nullptr, CZelRegex("(", 2).RRFind("(", 0).data());
}

TEST(RegexTest, TakesAnyBytes) {
    EXPECT_EQ("\xc3\xa9", search("[\xc3\xa9\xc3\xa8]", "caf\xc3\xa9"));
    EXPECT_EQ("\xe9", search("\xe9", "caf\xe9"));
    EXPECT_EQ("x", search("x",
                          "\x80\xff"
                          "x"));
}

TEST(RegexTest, BadPatternsAreKnownAndMatchNothing) {
    for (const char *pattern : {"(", "[a", "a{2,1}", "*", "\\1", "a**", "(?<n>a)(?P<n"}) {
        testing::internal::CaptureStderr();
        CZelRegex regex(pattern, 2);
        EXPECT_EQ(E_RBFalse, regex.RRCompiledCorrectly()) << pattern;
        EXPECT_EQ(0, regex.RRStep("a"));
        EXPECT_EQ(nullptr, regex.SubExprStart(0));
        EXPECT_EQ("", testing::internal::GetCapturedStderr());
    }
    CZelRegex none(nullptr, 2);
    EXPECT_EQ(E_RBFalse, none.RRCompiledCorrectly());
    EXPECT_EQ(0, CZelRegex("a", 2).RRStep(nullptr));
}

TEST(RegexTest, AFailedSearchForgetsTheLastMatch) {
    CZelRegex regex("(a)", 2);
    EXPECT_EQ(1, regex.RRStep("a"));
    EXPECT_EQ(0, regex.RRStep("b"));
    EXPECT_EQ(nullptr, regex.SubExprStart(1));
    EXPECT_EQ(nullptr, regex.SubExprEnd(1));
}

// A search that goes back and tries again would not end on these.
TEST(RegexTest, NoPatternTakesMoreThanLinearTime) {
    std::string letters(200000, 'a');
    for (const char *pattern : {"(a+)+$", "(a|aa)+$", "(a*)*b", "(.*)(.*)(.*)(.*)(.*)x", "^(([a-z])+.)+[A-Z]([a-z])+$"})
        EXPECT_NE("<bad pattern>", search(pattern, (letters + "!").c_str())) << pattern;
    EXPECT_EQ("<bad pattern>", search("((a{1000}){1000}){1000}", "a"));
}

TEST(RegexTest, APatternOfVeryManyPartsKeepsTheFirstNine) {
    std::string deep = std::string(100000, '(') + "a" + std::string(100000, ')');
    EXPECT_EQ("a", search(deep.c_str(), "ba", 9));
    EXPECT_EQ("<no part>", search(deep.c_str(), "ba", 10));
}

}  // namespace
