#include "oql/CZelAtomParser.h"

#include <gtest/gtest.h>

#include <memory>

#include "Statements.h"
#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/port/CZelErrorCapture.h"
#include "foundations/port/ZelCodes.h"
#include "store/CZelColDef.h"

namespace {

class AtomParserTest : public testing::Test {
protected:
    std::unique_ptr<CZelAtom> parse(const std::string &text, int expected = 1) {
        int status = 0;
        std::unique_ptr<CZelAtom> atom(m_parser.RAPParse(text.c_str(), &status));
        EXPECT_EQ(expected, status) << text;
        return atom;
    }

    std::string literal(const CZelAtom *atom) { return CZelMallocText(atom->RAListAsString(E_RBTrue)).get(); }

    // A list read, coerced to lists of lists of ... `type`, and printed.
    std::string coerced(const char *text, int depth, EZelDataType type) {
        CZelColDef *inner = new CZelColDef(nullptr, type, nullptr, -1);
        for (int i = 0; i < depth; ++i)
            inner = new CZelColDef(nullptr, E_RDTList, inner, -1);
        const std::unique_ptr<CZelColDef> definition(inner);
        const std::unique_ptr<CZelAtom> list = parse(text);
        EXPECT_EQ(1, m_parser.RAPCoerceList(definition.get(), list.get()));
        return literal(list.get());
    }

    CZelAtomParser m_parser;
};

TEST_F(AtomParserTest, LiteralsAreReadToTheirTypes) {
    const std::unique_ptr<CZelAtom> list = parse("[1,2.5,'x',TRUE,false,[],{}]");
    const EZelDataType types[] = {E_RDTInt, E_RDTFloat, E_RDTText, E_RDTInt, E_RDTInt, E_RDTList, E_RDTObject};
    ASSERT_EQ(std::size(types), list->RAList()->RAVSize());
    for (unsigned int i = 0; i < std::size(types); ++i)
        EXPECT_EQ(types[i], list->RAList()->RAVGetValue(i)->RAType()) << i;
    EXPECT_EQ("[1,2.5,'x',1,0,[],{}]", literal(list.get()));
    const std::unique_ptr<CZelAtom> object = parse("{a=1, b=[1,2]}");
    EXPECT_EQ(2U, object->RASubVal("b")->RAList()->RAVSize());
    EXPECT_EQ(-1, parse("-1")->RAInt());
    EXPECT_EQ(1, parse("+1 -- one\n")->RAInt());
    EXPECT_EQ(1215752191, parse("99999999999")->RAInt());
    EXPECT_STREQ("it's", parse("\"it's\"")->RAString());
}

TEST_F(AtomParserTest, OtherTextsAreRefusedOnStandardError) {
    for (const char *text :
         {"", "x", "=", "[1,]", "[1] [2]", "- 1", "{a}", "{1=2}", "[1", "NULL", "a=1", "1 2", "[1}"}) {
        const std::string line = std::to_string(1);
        testing::internal::CaptureStderr();
        EXPECT_EQ(nullptr, parse(text, E_RCSyntax));
        EXPECT_EQ(0U, testing::internal::GetCapturedStderr().find("ZelAtom parse error at line ")) << text;
    }
    testing::internal::CaptureStderr();
    EXPECT_EQ(nullptr, m_parser.RAPParse("'open\n", nullptr));
    EXPECT_EQ(0U, testing::internal::GetCapturedStderr().find("ZelAtom Unterminated string at line "));
}

TEST_F(AtomParserTest, ElementsAreCoercedToTheTypeOfTheList) {
    EXPECT_EQ("['1','2']", coerced("[1,2]", 1, E_RDTText));
    EXPECT_EQ("[1,2,3]", coerced("['1',2.5,3]", 1, E_RDTInt));
    EXPECT_EQ("[['1'],['2']]", coerced("[[1],[2]]", 2, E_RDTText));
}

TEST_F(AtomParserTest, ElementsThatCannotBeCoercedAreReportedAndStay) {
    const CZelErrorCapture reports;
    EXPECT_EQ("['x',2,[1]]", coerced("['x','2',[1]]", 1, E_RDTInt));
    EXPECT_EQ("[1,['2']]", coerced("[1,[2]]", 2, E_RDTText));
    EXPECT_EQ("[1]", coerced("[1]", 1, E_RDTObject));
    EXPECT_EQ(4U, reports.Count());
    EXPECT_TRUE(reports.Holds(E_RCBadType, "CZelAtomParser::RAPCoerceList"));
    CZelColDef untyped(nullptr, E_RDTList, nullptr, -1);
    CZelAtom number(1);
    EXPECT_EQ(E_RCBadType, m_parser.RAPCoerceList(&untyped, &number));
    EXPECT_EQ(E_RCBadType, m_parser.RAPCoerceList(&untyped, nullptr));
    EXPECT_EQ(1, m_parser.RAPCoerceList(&untyped, parse("[1,'x']").get()));
}

}  // namespace
