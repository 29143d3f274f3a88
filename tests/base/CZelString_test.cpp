#include "foundations/base/CZelString.h"

#include <climits>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/ZelMalloc.h"

namespace {

TEST(StringTest, AppendsTextsNumbersAndValues) {
    CZelString text("a");
    CZelString other(text);
    CZelAtom word("word"), number(-7), real(1.5F), wide(LLONG_MIN);
    text.RSStrCat(static_cast<const char *>(nullptr));
    text.RSStrCat(static_cast<const CZelAtom *>(nullptr));
    text.RSStrCat(static_cast<const CZelString *>(nullptr));
    text.RSStrCat('\0');
    text.RSStrCat(INT_MIN);
    text.RSStrCat(' ');
    text.RSStrCat(&wide);
    for (const CZelAtom *value : {&word, &number, &real})
        text.RSStrCat(value);
    text.RSStrCat(&other);
    text.RSNewLine();
    text.RSSpaces(3);
    text.RSSpaces(0);
    text.RSSpaces(-1);
    EXPECT_STREQ("a-2147483648 -9223372036854775808word-71.5a\n   ", text.RSString());
    EXPECT_EQ(std::string(text.RSString()).size(), text.RSStringLength());
}

TEST(StringTest, IsNullOnlyBeforeAnythingWasAppended) {
    CZelString text;
    EXPECT_EQ(nullptr, text.RSString());
    EXPECT_STREQ("", CZelMallocText(text.RSStringCopy()).get());
    EXPECT_STREQ("", CZelMallocText(text.RSTakeString()).get());
    EXPECT_STREQ("", std::unique_ptr<CZelAtom>(text.RSStringAsAtom())->RAString());
    EXPECT_EQ(nullptr, CZelString(text).RSString());
    text.RSStrCat("");
    EXPECT_STREQ("", text.RSString());
}

TEST(StringTest, TakingLeavesAnEmptyStringAndCopiesStayApart) {
    CZelString text("first");
    CZelString copy;
    copy = text;
    CZelMallocText taken(text.RSTakeString());
    EXPECT_STREQ("first", taken.get());
    EXPECT_EQ(0U, text.RSStringLength());
    text.RSStrCat("second");
    EXPECT_STREQ("second", text.RSString());
    EXPECT_STREQ("first", copy.RSString());
    copy.RSSetToNull();
    EXPECT_STREQ("", copy.RSString());
    const CZelString &same = text;
    text = same;
    EXPECT_STREQ("second", text.RSString());
}

TEST(StringTest, AppendsItself) {
    CZelString text("0123456789");
    std::string model(text.RSString());
    for (int i = 0; i < 12; ++i) {
        text.RSStrCat(&text);
        text.RSStrCat(text.RSString() + text.RSStringLength() - 3);
        model += model;
        model += model.substr(model.size() - 3);
    }
    EXPECT_EQ(model, text.RSString());
}

TEST(StringTest, ReplacesEveryOccurrenceFromTheLeft) {
    struct {
        const char *text, *what, *with, *expected;
    } const rows[] = {
        {"abcabc", "b", "--", "a--ca--c"},  {"aaaa", "aa", "b", "bb"},    {"aaa", "aa", "", "a"},
        {"abc", "abc", "abcabc", "abcabc"}, {"abc", "x", "y", "abc"},     {"abc", "", "y", "abc"},
        {"a.b", ".", nullptr, "ab"},        {"abc", nullptr, "y", "abc"}, {"", "a", "b", ""},
    };
    for (const auto &row : rows) {
        CZelString text(row.text);
        text.RSSearchAndReplace(row.what, row.with);
        EXPECT_STREQ(row.expected, text.RSString());
    }
    CZelString never;
    never.RSSearchAndReplace("a", "b");
    EXPECT_EQ(nullptr, never.RSString());
}

// A search that starts again behind each partial match would compare 10^11 bytes here.
TEST(StringTest, ReplacingTakesLinearTime) {
    CZelString text(std::string(1000000, 'a').c_str());
    text.RSSearchAndReplace((std::string(100000, 'a') + "b").c_str(), "x");
    EXPECT_EQ(1000000U, text.RSStringLength());
}

}  // namespace
