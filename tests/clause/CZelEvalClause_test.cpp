#include "clause/CZelEvalClause.h"

#include <regex>
#include <string>
#include <thread>
#include <vector>

#include "tests/clause/ClauseFixture.h"
#include "tests/support/TestRandom.h"

namespace {

struct SExample {
    const char *text;
    const char *value;
};

class EvalClauseTest : public ClauseFixture {
protected:
    EvalClauseTest() {
        set(current, "Speed", CZelAtom(100));
        set(current, "Load", CZelAtom(0.5F));
        set(current, "Octets", CZelAtom(5000000000LL));
        set(current, "Ticks", CZelAtom(7L));
        set(current, "Name", CZelAtom("eth0"));
        set(current, "Address", CZelAtom("1.2.3.4"));
        set(current, "Nothing", CZelAtom());
        setLiteral(current, "List", "[10,20,30]");
        setLiteral(current, "Empty", "[]");
        setLiteral(current, "Object", "{ab=1,Deep={Ports=[{No=5},{No=6}]}}");
        set(outer, "Name", CZelAtom("switch"));
        compiler.RCCAddToConstStore(new CZelVarBind("Field", "Name"));
        compiler.RCCAddToConstStore(new CZelVarBind("Two", 2));
        compiler.RCCAddToConstStore(new CZelVarBind("ListName", "List"));
        compiler.RCCAddToConstStore(new CZelVarBind("Member", "Deep"));
        compiler.RCCAddToConstStore(new CZelVarBind("Indirect", "Two"));
    }

    // A sum over fields and constants.
    static std::string randomSum(TestRandom &random, int depth) {
        static const char *const fields[] = {"Speed", "Load", "Octets", "Ticks", "Zero", "Name", "Nothing", "Missing"};
        static const char *const operators[] = {" + ", " - ", " * ", " / "};
        if (depth == 0 || random.oneIn(4))
            return random.oneIn(5) ? "3" : "&" + std::string(fields[random.below(random.oneIn(3) ? 8 : 5)]);
        if (random.oneIn(6))
            return "-(" + randomSum(random, depth - 1) + ")";
        const std::string left = randomSum(random, depth - 1);
        const char *op = operators[random.below(4)];
        return "(" + left + op + randomSum(random, depth - 1) + ")";
    }

    void expect(const std::vector<SExample> &examples) {
        for (const SExample &example : examples)
            EXPECT_EQ(example.value, evaluate(example.text)) << example.text;
    }
};

}  // namespace

TEST_F(EvalClauseTest, ArithmeticBindsAndGroupsAsUsual) {
    expect({{"1 + 2 * 3", "int 7"},
            {"(1 + 2) * 3", "int 9"},
            {"10 - 4 - 3", "int 3"},
            {"24 / 4 / 2", "int 3"},
            {"8 / 4 * 2", "int 4"},
            {"-2 * 3", "int -6"},
            {"2 - -3", "int 5"},
            {"- - 4", "int 4"},
            {"+5", "int 5"},
            {"2 * (3 + 4 * (5 - 2)) - 1", "int 29"},
            {"1 - (2 - (3 - (4 - 5)))", "int 3"},
            {"2 + 3 * (4 + 5) * 6 / (7 - 4)", "int 56"},
            {"7 / 2", "int 3"},
            {"7.0 / 2", "float 3.5"},
            {"7 / 0", "int 7"},
            {"2147483647 + 1", "int -2147483648"},
            {"(0 - 2147483647 - 1) / -1", "int -2147483648"},
            {"99999999999", "int 1215752191"},
            {".5 + 1.", "float 1.5"},
            {"1e2", "float 100.0"},
            {"1 2 3", "int 3"},
            {"1 -2", "int -1"},
            {"&Speed * &Load", "float 50.0"},
            {"&Octets + &Speed", "long64 5000000100"},
            {"&Ticks * &Ticks", "int 49"},
            {"&Name + 1", "text eth0"},
            {"1 + &Name", "int 1"}});
    EXPECT_EQ(0U, reports.Count());
}

// A field whose name a constant gives is no plain operand: such a sum takes the road of any values.
TEST_F(EvalClauseTest, NumbersInPlainFieldsComputeAsAnyValues) {
    set(current, "Zero", CZelAtom(4294967296L));
    for (const char *name : {"Speed", "Load", "Octets", "Ticks", "Zero", "Name", "Nothing", "Missing"})
        compiler.RCCAddToConstStore(new CZelVarBind(name, name));
    TestRandom random;
    for (int i = 0; i < 2000; ++i) {
        const std::string fields = randomSum(random, i % 100 == 0 ? 10 : 4);
        const std::string value = evaluate(fields);
        const std::size_t reported = reports.Count();
        reports.Clear();
        EXPECT_EQ(evaluate(std::regex_replace(fields, std::regex("&"), "&$$")), value) << fields;
        EXPECT_EQ(reports.Count(), reported) << fields;
        reports.Clear();
    }
}

TEST_F(EvalClauseTest, ReferencesReachFieldsMembersElementsAndConstants) {
    expect({{"&Name", "text eth0"},
            {"&&Name", "text switch"},
            {"&&&Name", "none"},
            {"&$Field", "text eth0"},
            {"&Object->ab", "int 1"},
            {"&List(1)", "int 20"},
            {"&List(3)", "none"},
            {"&List($Two)", "int 30"},
            {"&Object->Deep->Ports(1)->No", "int 6"},
            {"&Object->$Member->Ports(0)", "object {No=5}"},
            {"&List(&Object->ab)", "int 20"},
            {"&Name->ab", "none"},
            {"&Missing", "none"},
            {"&Missing->ab(&Missing)", "none"},
            {"$Two", "int 2"},
            {"$$Indirect", "int 2"},
            {"$Two + $AF_INET6 - $physical", "int 27"},
            {"$NoSuchConstantAtAll", "none"},
            {"&Nothing", "undefined undefined"}});
    EXPECT_EQ(0U, reports.Count());
}

TEST_F(EvalClauseTest, FieldsNamedByAConstant) {
    compiler.RCCAddToConstStore(new CZelVarBind("Outer", "&Name"));
    expect({{"&$ListName(0)", "int 10"},
            {"length(&$ListName)", "int 3"},
            {"&$Outer", "text switch"},
            {"&$Two", "none"},
            {"&$NoSuchConstantAtAll", "none"}});
    EXPECT_EQ(0U, reports.Count());
}

TEST_F(EvalClauseTest, FunctionsInAnyCase) {
    expect({{"cat(&Name, `: `, &Speed, `/`, $Two)", "text eth0: 100/2"},
            {"CAT(&Missing)", "text <NULL>"},
            {"cat(``)", "text "},
            {"Length(&List) + length(&Object)", "int 5"},
            {"length(&Speed)", "int 0"},
            {"length(&Missing)", "int 0"},
            {"append(&List, &Speed)", "list [10,20,30,100]"},
            {"append(&Absent, &&Name)", "list ['switch']"},
            {"append(&Name, &Speed)", "none"},
            {"appendunique(&List, &Speed)", "list [10,20,30,100]"},
            {"delete(&List, &Speed)", "list [10,20,30]"},
            {"iptolong(&Address)", "long64 16909060"},
            {"iptolong(&Name)", "long64 0"},
            {"iptolong(&Missing) + 1", "long64 1"},
            {"longtoip(16909060)", "text 1.2.3.4"},
            {"longtoip(&Octets)", "text 0.0.0.0"},
            {"lookup(`ab`, &Object)", "int 1"},
            {"lookup($Two, &List)", "int 30"},
            {"lookup(`zz`, &Object)", "undefined undefined"},
            {"lookup(`zz`, &Object, `none`)", "text none"},
            {"lookup(&Missing, &Object, &Name)", "text eth0"},
            {"lookup(`zz`, &Object, &Missing)", "none"},
            {"regexpmatch(&Name, `^([a-z]+)`)", "text eth"},
            {"regexpmatch(&Name, `[a-z]+`)", "undefined undefined"},
            {"regexpmatch(&Name, `h(x*)0`)", "undefined undefined"},
            {"regexpmatch(&Name, `(x)`)", "undefined undefined"},
            {"regexpmatch(&Missing, `(x)`)", "undefined undefined"},
            {"timestamp(&Ticks, `%Y`)", "text 1970"},
            {"timestamp(&Octets, `%Y`)", "text 1970"}});
    EXPECT_EQ(0U, reports.Count());
    EXPECT_EQ(plain("timestamp(&Ticks)"), plain("timestamp(&Ticks, ``)"));
    EXPECT_EQ(19U, plain("timestamp(&Ticks)").size());
    EXPECT_EQ("text ", evaluate("timestamp(&Ticks, `" + std::string(200, 'x') + "`)"));
}

TEST_F(EvalClauseTest, TheWholeRecordAsALastingList) {
    CZelRecord small;
    set(small, "ab", CZelAtom(1));
    set(small, "cd", CZelAtom("x"));
    compiler.RCCAppendCurrentRec(&small);
    expect({{"record_names()", "text ab, text cd"},
            {"record_values()", "int 1, text x"},
            {"record_names() + 1", "text ab, text cd"},
            {"-record_values()", "int 1, text x"},
            {"1 + record_values()", "int 2"},
            {"&Missing + record_values()", "int 1, text x"}});
    EXPECT_EQ(0U, reports.Count());
}

TEST_F(EvalClauseTest, MissingOperandsLeaveWhatIsThere) {
    expect({{"&Missing + &Speed", "int 100"}, {"&Missing + &Missing", "none"}, {"&Speed + &Missing", "int 100"}});
    EXPECT_EQ(0U, reports.Count());
    expect({{"&Missing - 1", "none"}, {"&Missing * (2 + 3)", "none"}, {"-&Missing", "none"}});
    EXPECT_EQ(0U, reports.Count());
    EXPECT_EQ("int 100", evaluate("&Speed - &Missing"));
    EXPECT_TRUE(reports.Holds(E_RCBadArgument));
    reports.Clear();
    EXPECT_EQ("int 100", evaluate("&Speed + &Nothing"));
    EXPECT_EQ(1U, reports.Count());
}

TEST_F(EvalClauseTest, WrongTypesAreReportedWithTheirTexts) {
    EXPECT_EQ("undefined undefined", evaluate("regexpmatch(&Speed, `(x)`)"));
    EXPECT_TRUE(reports.Holds(E_RCBadType, "CZelCompiledRegExpMatch::RCCEvaluateToAtom: Expected String but got: 100"));
    for (const char *pattern : {"(", "(a)\\1"}) {
        EXPECT_EQ("undefined undefined", evaluate(std::string("regexpmatch(&Name, `") + pattern + "`)"));
        EXPECT_EQ(std::string("CZelCompiledRegExpMatch: Failed to compile regular expression: ") + pattern,
                  reports.LastText());
    }
    EXPECT_EQ("undefined undefined", evaluate("this->Speed"));
    EXPECT_TRUE(reports.Holds(E_RCNotInTree, "graph not defined"));
    reports.Clear();
    EXPECT_EQ("undefined undefined", evaluate("this($physical, $Field, $includerecursed)->Name->Sub(1)"));
    ASSERT_EQ(2U, reports.Count());  // the text of a number, and no graph
    EXPECT_EQ(E_RCBadValue, reports.Reports().front().m_code);
}

TEST_F(EvalClauseTest, ValuesTakeTheTypeOfTheClause) {
    EXPECT_EQ("text 3", evaluate("1 + 2", type(E_RDTText)));
    EXPECT_EQ("int 3", evaluate("7.0 / 2", type(E_RDTInt)));
    EXPECT_EQ("long64 100", evaluate("&Speed", type(E_RDTLong64)));
    EXPECT_EQ("undefined undefined", evaluate("&Nothing", type(E_RDTInt)));
    EXPECT_EQ("undefined undefined", evaluate("&Nothing", type(E_RDTList, type(E_RDTInt))));
    EXPECT_EQ("object {No=5}", evaluate("&Object->Deep->Ports(0)", type(E_RDTObject, type(E_RDTInt))));
    EXPECT_EQ("none", evaluate("&Missing", type(E_RDTText)));
    EXPECT_EQ(0U, reports.Count());
    EXPECT_EQ("text eth0", evaluate("&Name", type(E_RDTInt)));
    EXPECT_TRUE(reports.Holds(E_RCBadType, "Could not convert value for clause:&Name"));
    EXPECT_EQ("text eth0", evaluate("&Name", type(E_RDTObject, type(E_RDTInt))));
    EXPECT_EQ(2U, reports.Count());
}

TEST_F(EvalClauseTest, TextsBecomeListsByTheSyntaxOfLiterals) {
    set(current, "Text", CZelAtom("[1,'2']"));
    set(current, "Other", CZelAtom("{ab=1}"));
    EXPECT_EQ("list [1,2]", evaluate("&Text", type(E_RDTList, type(E_RDTInt))));
    EXPECT_EQ("list ['10','20','30']", evaluate("&List", type(E_RDTList, type(E_RDTText))));
    EXPECT_EQ(0U, reports.Count());
    EXPECT_EQ("object {ab=1}", evaluate("&Other", type(E_RDTList, type(E_RDTInt))));
    EXPECT_TRUE(reports.Holds(E_RCBadType, "Could not convert list for clause:&Other"));
    EXPECT_EQ("int 100", evaluate("&Speed", type(E_RDTList, type(E_RDTInt))));
    ::testing::internal::CaptureStderr();
    reports.Clear();
    EXPECT_EQ("undefined undefined", evaluate("&Name", type(E_RDTList, type(E_RDTInt))));
    EXPECT_EQ(0U, ::testing::internal::GetCapturedStderr().find("ZelAtom parse error at line "));
    EXPECT_TRUE(reports.Holds(E_RCNull, "Could not parse atom for clause:&Name"));
    EXPECT_EQ(1U, reports.Count());
}

TEST_F(EvalClauseTest, CopiesHaveNodesOfTheirOwn) {
    for (const char *text :
         {"1 + 2 * (3 - &Speed) / -4", "cat(&Name, `x`, $Two)", "append(&List, &Speed)", "delete(&List, &Speed)",
          "length(&$ListName)", "&Object->Deep->Ports(1)->No", "regexpmatch(&Name, `^([a-z]+)`)", "iptolong(&Address)",
          "longtoip(16909060)", "lookup(`zz`, &Object, `none`)", "timestamp(&Ticks, `%Y`)", "record_names()", "1 2"}) {
        auto original = clause(text, type(E_RDTText));
        const CZelEvalClause unparsed(*original);
        const std::string value = evaluate(*original);
        auto copy = std::make_unique<CZelEvalClause>(*original);
        auto late = std::make_unique<CZelEvalClause>(unparsed);
        original.reset();
        EXPECT_EQ(value, evaluate(*copy)) << text;
        EXPECT_EQ(value, evaluate(*late)) << text;
    }
}

TEST_F(EvalClauseTest, OneClauseServesManyRecords) {
    const auto sum = clause("&Speed + &&Base");
    for (int i = 0; i < 3; ++i) {
        set(current, "Speed", CZelAtom(i));
        set(outer, "Base", CZelAtom(10 * i));
        EXPECT_EQ("int " + std::to_string(11 * i), evaluate(*sum));
    }
    EXPECT_STREQ("&Speed + &&Base", sum->RECCompileable());
    EXPECT_STREQ("eval(,'&Speed + &&Base')", CZelMallocText(sum->RECPrint()).get());
}

TEST_F(EvalClauseTest, ThreadsThatShareAClauseParseItOnce) {
    const auto shared = clause("1 + 2 + 3 + 4");
    std::vector<std::thread> threads;
    threads.reserve(8);
    for (int i = 0; i < 8; ++i)
        threads.emplace_back([&shared] {
            CZelCmdCmplr own;
            const std::unique_ptr<CZelVarBind> result(shared->RECEvaluateClause(own));
            EXPECT_EQ(10, result->RVBValue()->RAList()->RAVGetValue(0)->RAInt());
        });
    for (std::thread &thread : threads)
        thread.join();
}
