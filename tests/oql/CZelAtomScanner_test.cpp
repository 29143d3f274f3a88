#include "oql/CZelAtomScanner.h"

#include <gtest/gtest.h>

#include "Tokens.h"
#include "oql/ZelAtom.tab.h"

namespace {

const TokenList TOKENS({{__ZEL_AP_IDENT, {"IDENT", 't'}},
                        {__ZEL_AP_STRING, {"STRING", 't'}},
                        {__ZEL_AP_INTNUM, {"INT", 'i'}},
                        {__ZEL_AP_APPROXNUM, {"REAL", 'd'}},
                        {__ZEL_AP_EQ, {"EQ"}},
                        {__ZEL_AP_TRUE, {"TRUE"}},
                        {__ZEL_AP_FALSE, {"FALSE"}}});

std::string tokens(const std::string &text) {
    return TOKENS.Of<CZelAtomScanner>(text);
}

TEST(AtomScannerTest, KnowsOnlyLiterals) {
    EXPECT_EQ("TRUE FALSE IDENT(trues) IDENT(select) IDENT(min)", tokens("True FALSE trues select min"));
    EXPECT_EQ("IDENT(a) & IDENT(b) - > < EQ !", tokens("a&b -> <= !"));
    EXPECT_EQ("INT(-1) INT(1) - INT(1) REAL(0.5) INT(-1) REAL(0)", tokens("-1 +1 - 1 .5 99999999999999999999 -."));
    EXPECT_EQ("{ IDENT(a) EQ [ STRING(x\\'y) , STRING() ] }", tokens("{a=['x\\'y',\"\"]} -- end\n"));
}

TEST(AtomScannerTest, AnOpenQuoteIsToldWithTheLineThatIsNeverSetBack) {
    const int line = ZelAtomFlexLexer::LineCount();
    testing::internal::CaptureStderr();
    EXPECT_EQ("IDENT(b)", tokens("\n'a\nb"));
    EXPECT_EQ("ZelAtom Unterminated string at line " + std::to_string(line + 1) + "\n",
              testing::internal::GetCapturedStderr());
    EXPECT_EQ(line + 2, ZelAtomFlexLexer::LineCount());
}

}  // namespace
