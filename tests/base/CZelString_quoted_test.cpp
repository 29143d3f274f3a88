// What is written as a literal is read back here by the rules of the statement language.
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelString.h"
#include "foundations/base/ZelEscape.h"
#include "foundations/port/CZelErrorCapture.h"
#include "foundations/port/ZelCodes.h"
#include "support/TestRandom.h"

namespace {

// The character that a backslash and this one stand for.
char unescaped(char character) {
    switch (character) {
        case 'b':
            return '\b';
        case 'n':
            return '\n';
        case 't':
            return '\t';
        default:
            return character;
    }
}

std::string withoutEscapes(const std::string &raw) {
    std::string value;
    for (std::size_t i = 0; i < raw.size(); ++i)
        value += raw[i] == '\\' && i + 1 < raw.size() ? unescaped(raw[++i]) : raw[i];
    return value;
}

// The value of a literal at the start of a text, and in *length where it ends; none if it does not close.
std::optional<std::string> readLiteral(const std::string &text, bool escapes, std::size_t *length) {
    char quote = text.empty() ? '\0' : text[0];
    if (quote != '\'' && quote != '"')
        return std::nullopt;
    std::size_t close = text.find(quote, 1);
    while (escapes && close != std::string::npos && text[close - 1] == '\\')
        close = text.find(quote, close + 1);
    if (close == std::string::npos)
        return std::nullopt;
    *length = close + 1;
    std::string raw = text.substr(1, close - 1);
    return escapes ? withoutEscapes(raw) : raw;
}

class QuotedTest : public testing::TestWithParam<bool> {
protected:
    QuotedTest() { ZelSetEscape(escapes()); }
    ~QuotedTest() override { ZelSetEscape(false); }
    static bool escapes() { return GetParam(); }

    static std::string quoted(const char *text, bool doubly) {
        CZelString out;
        if (doubly)
            out.RSStrCatDoubleQuoted(text);
        else
            out.RSStrCatQuoted(text);
        return out.RSString() == nullptr ? "" : out.RSString();
    }
    template <class Value>
    static std::string quotedAtom(Value value) {
        CZelAtom atom(value);
        CZelString out;
        out.RSStrCatQuoted(&atom);
        return out.RSString();
    }
    // Is there a literal for the text at all?
    static bool canBeSpelled(const std::string &text) {
        if (escapes())
            return text.empty() || text.back() != '\\';
        return text.find('\'') == std::string::npos || text.find('"') == std::string::npos;
    }
    // Whatever the text: one literal that closes at its end, and the text itself unless that was reported.
    static void check(const std::string &text, bool doubly) {
        CZelErrorCapture reports;
        std::string literal = quoted(text.c_str(), doubly);
        std::size_t length = 0;
        std::optional<std::string> value = readLiteral(literal, escapes(), &length);
        ASSERT_TRUE(value.has_value()) << literal;
        ASSERT_EQ(literal.size(), length) << literal << " closes early";
        ASSERT_EQ(canBeSpelled(text), *value == text) << literal;
        ASSERT_EQ(canBeSpelled(text) ? 0U : 1U, reports.Count());
        ASSERT_EQ(canBeSpelled(text) ? 0 : E_RCBadValue, reports.LastCode());
    }
};

TEST_P(QuotedTest, PrefersItsQuoteAndTakesTheOtherWhereTheTextNeedsIt) {
    EXPECT_EQ("'plain'", quoted("plain", false));
    EXPECT_EQ("\"plain\"", quoted("plain", true));
    EXPECT_EQ("\"it's\"", quoted("it's", false));
    EXPECT_EQ("'say \"x\"'", quoted("say \"x\"", true));
    EXPECT_EQ("''", quoted("", false));
    EXPECT_EQ("", quoted(nullptr, false));
    EXPECT_EQ("'two\nlines'", quoted("two\nlines", false));
}

TEST_P(QuotedTest, AtomsGoByTheirType) {
    EXPECT_EQ("\"it's\"", quotedAtom("it's"));
    EXPECT_EQ("-7", quotedAtom(-7));
    EXPECT_EQ("4294967296", quotedAtom(1LL << 32));
    EXPECT_EQ("1.5", quotedAtom(1.5F));
    const unsigned char bytes[] = {0, 0xA5};
    CZelAtom data(bytes, 2), undefined;
    auto *list = new CZelAtomVector(2);
    list->RAVAddToEnd(new CZelAtom("x"));
    list->RAVAddToEnd(new CZelAtom(1));
    CZelAtom listAtom(list);
    CZelString out;
    out.RSStrCatDoubleQuoted(&undefined);
    out.RSStrCatQuoted(static_cast<const CZelAtom *>(nullptr));
    out.RSStrCatQuoted(&listAtom);
    EXPECT_STREQ("NULLNULL['x',1]", out.RSString());
    out.RSSetToNull();
    out.RSStrCatDoubleQuoted(&data);
    EXPECT_EQ('"', out.RSString()[0]);
    EXPECT_EQ('"', out.RSString()[out.RSStringLength() - 1]);
}

TEST_P(QuotedTest, EveryShortTextReadsBackOrIsReported) {
    const std::string letters = "'\"\\nx";
    for (unsigned length = 0, count = 1; length <= 6; ++length, count *= 5) {
        for (unsigned number = 0; number < count; ++number) {
            std::string text;
            for (unsigned i = 0, rest = number; i < length; ++i, rest /= 5)
                text += letters[rest % 5];
            check(text, false);
            check(text, true);
        }
    }
}

TEST_P(QuotedTest, RandomBytesReadBackOrAreReported) {
    TestRandom random;
    for (int i = 0; i < 20000; ++i) {
        std::string text;
        for (unsigned length = random.below(30); length > 0; --length)
            text += random.oneIn(3) ? "'\"\\bnt"[random.below(6)] : static_cast<char>(random.below(255) + 1);
        check(text, random.oneIn(2));
    }
}

INSTANTIATE_TEST_SUITE_P(Switch, QuotedTest, testing::Bool(),
                         [](const auto &kind) { return kind.param ? "EscapeOn" : "EscapeOff"; });

// The forms that lose something, word for word.
TEST(QuotedLossTest, WhatCantBeSpelledStillClosesWhereItShould) {
    CZelErrorCapture reports;
    CZelString off, on;
    off.RSStrCatQuoted("a'b\"c'; delete from t;");
    ZelSetEscape(true);
    on.RSStrCatQuoted("c:\\dir\\\\");
    on.RSStrCatQuoted("\\");
    ZelSetEscape(false);
    EXPECT_STREQ("'a\"b\"c\"; delete from t;'", off.RSString());
    EXPECT_STREQ("'c:\\\\dir'''", on.RSString());
    EXPECT_EQ(3U, reports.Count());
    EXPECT_TRUE(reports.Holds(E_RCBadValue));
}

}  // namespace
