#include "programs/oql/CZelSplitter.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "foundations/base/ZelEscape.h"
#include "foundations/port/CZelErrorCapture.h"
#include "oql/CZelOQLScanner.h"
#include "oql/UZelScanValue.h"
#include "tests/support/TestRandom.h"

namespace {

class SplitterTest : public testing::Test {
protected:
    void TearDown() override { ZelSetEscape(false); }

    // The texts of all pieces, fed in blocks of `block` bytes.
    static std::vector<std::string> split(const std::string &text, std::size_t block) {
        CZelSplitter splitter;
        std::vector<std::string> pieces;
        for (std::size_t i = 0; i < text.size(); i += block) {
            splitter.Feed(text.substr(i, block));
            take(splitter, pieces);
        }
        splitter.Finish();
        take(splitter, pieces);
        return pieces;
    }

    // However it comes in, it splits the same.
    static std::vector<std::string> split(const std::string &text) {
        std::vector<std::string> whole = split(text, text.size() + 1);
        for (std::size_t block : {1U, 2U, 3U, 7U})
            EXPECT_EQ(whole, split(text, block)) << text << " in blocks of " << block;
        return whole;
    }

    static void take(CZelSplitter &splitter, std::vector<std::string> &pieces) {
        SZelPiece piece;
        while (splitter.Next(piece)) {
            pieces.emplace_back(piece.m_text);
            if (piece.m_text == "set escape on;")
                ZelSetEscape(true);
            if (piece.m_text == "set escape off;")
                ZelSetEscape(false);
        }
    }
};

using Pieces = std::vector<std::string>;

TEST_F(SplitterTest, EndsAtSemicolonsOutsideOfStringsAndComments) {
    EXPECT_EQ((Pieces{"a;", "b;"}), split("a; b;"));
    EXPECT_EQ((Pieces{";", ";"}), split(";;"));
    EXPECT_EQ((Pieces{"a 'x;y' \"z;'\";", "b;"}), split("a 'x;y' \"z;'\";b;"));
    EXPECT_EQ((Pieces{"a -- x; '\n;", "b // \";\n;"}), split("a -- x; '\n;b // \";\n;"));
    EXPECT_EQ((Pieces{"a 'two\nlines;'\n;"}), split("a 'two\nlines;'\n;"));
    EXPECT_EQ((Pieces{"a->b - 1 / 2;"}), split("a->b - 1 / 2;"));
    EXPECT_EQ((Pieces{"a--;\n;"}), split("a--;\n;"));
}

TEST_F(SplitterTest, LeavesOutWhatIsNoStatement) {
    EXPECT_EQ((Pieces{}), split(""));
    EXPECT_EQ((Pieces{}), split(" \t\r\n -- only a comment"));
    EXPECT_EQ((Pieces{"a;"}), split("-- first;\n a; // last;"));
}

TEST_F(SplitterTest, GivesWhatTheEndCutsOffWithAFinalNewLine) {
    EXPECT_EQ((Pieces{"a;", "b\n"}), split("a; b"));
    EXPECT_EQ((Pieces{"b -- c\n"}), split("b -- c"));
    EXPECT_EQ((Pieces{"-\n"}), split("-"));
    EXPECT_EQ((Pieces{".\n"}), split("."));
}

TEST_F(SplitterTest, PassesOverAQuoteThatNothingCloses) {
    EXPECT_EQ((Pieces{"a 'x;\n b;", "c;"}), split("a 'x;\n b; c;"));
    EXPECT_EQ((Pieces{"a \"x;\n b;", "c 'y;';"}), split("a \"x;\n b; c 'y;';"));
    EXPECT_EQ((Pieces{"a 'x; b\n"}), split("a 'x; b"));
}

TEST_F(SplitterTest, KnowsTheEscapeSwitchAsItChanges) {
    EXPECT_EQ((Pieces{"a 'x\\';", "b;"}), split("a 'x\\';b;"));
    EXPECT_EQ((Pieces{"set escape on;", "a 'x\\';y';", "set escape off;", "a 'x\\';", "b;"}),
              split("set escape on;a 'x\\';y';set escape off;a 'x\\';b;"));
    // A backslash that is itself escaped keeps the string open all the same.
    EXPECT_EQ((Pieces{"set escape on;", "a 'x\\\\';b';"}), split("set escape on;a 'x\\\\';b';"));
}

TEST_F(SplitterTest, FindsCommandsOnlyWhereNoStatementIsUnderWay) {
    EXPECT_EQ((Pieces{".read a;b 'c", "a;"}), split(".read a;b 'c\na;"));
    EXPECT_EQ((Pieces{"a;", ".quit", "b\n.quit\n"}), split("a; .quit\nb\n.quit"));
    EXPECT_EQ((Pieces{".5;"}), split(".5;"));
}

TEST_F(SplitterTest, TellsPlaceAndLead) {
    CZelSplitter splitter;
    splitter.Feed("-- one\n  a\n 'x\ny'; b;");
    SZelPiece piece;
    ASSERT_TRUE(splitter.Next(piece));
    EXPECT_EQ("-- one\n  ", piece.m_lead);
    EXPECT_EQ(2, piece.m_line);
    EXPECT_EQ(3, piece.m_column);
    ASSERT_TRUE(splitter.Next(piece));
    EXPECT_EQ(4, piece.m_line);
    EXPECT_EQ(5, piece.m_column);
    EXPECT_FALSE(splitter.Next(piece));
}

TEST_F(SplitterTest, DroppingForgetsWhatWasBegunAndKeepsCountingLines) {
    CZelSplitter splitter;
    splitter.Feed("select 'half\n");
    SZelPiece piece;
    EXPECT_FALSE(splitter.Next(piece));
    EXPECT_TRUE(splitter.IsUnderWay());
    splitter.Drop();
    EXPECT_FALSE(splitter.IsUnderWay());
    splitter.Feed("show;");
    ASSERT_TRUE(splitter.Next(piece));
    EXPECT_EQ("show;", piece.m_text);
    EXPECT_EQ(2, piece.m_line);
}

TEST_F(SplitterTest, IsLinearInUnclosedQuotes) {
    std::string text;
    for (int i = 0; i < 200000; ++i)
        text += "\\'\n";
    ZelSetEscape(true);
    EXPECT_EQ(1U, split(text, text.size()).size());
}

TEST_F(SplitterTest, AQuoteThatABackslashKeepsIsTheOneLeftOpen) {
    ZelSetEscape(true);
    EXPECT_EQ(1U, split("'a;1\n\"b\\'--;\"; \n\\'\n", 100).size());
}

// Does the scanner see a `;` as the last token and none before?
bool isOneStatement(const std::string &text) {
    CZelErrorCapture quiet;
    CZelOQLScanner scanner(text.c_str(), static_cast<unsigned>(text.size()));
    UZelScanValue value = {};
    int semicolons = 0;
    int last = 0;
    for (int token = scanner.yylex(&value); token != 0; token = scanner.yylex(&value)) {
        semicolons += token == ';' ? 1 : 0;
        last = token;
    }
    return semicolons == 1 && last == ';';
}

TEST_F(SplitterTest, CutsWhereTheScannerWould) {
    TestRandom random;
    static const char *const BITS[] = {"'", "\"", "\\", ";", "-", "/", "\n", " ", "a", "1", "--", "'a'", "\\'"};
    for (int round = 0; round < 20000; ++round) {
        std::string text;
        for (unsigned i = random.below(24); i > 0; --i)
            text += BITS[random.below(std::size(BITS))];
        ZelSetEscape(random.oneIn(2));
        for (const std::string &piece : split(text, 1 + random.below(8))) {
            if (piece.back() == ';')
                EXPECT_TRUE(isOneStatement(piece)) << text << "\n=> " << piece << "\nescape " << ZelEscapeIsOn();
            else
                EXPECT_FALSE(isOneStatement(piece)) << text << "\n=> " << piece << "\nescape " << ZelEscapeIsOn();
        }
        if (HasFailure())
            return;
    }
}

}  // namespace
