// Statements printed, read and printed again are the same: printed statements are what travels to other stores.
#include <gtest/gtest.h>

#include "Statements.h"
#include "foundations/base/ZelEscape.h"
#include "foundations/port/CZelErrorCapture.h"
#include "support/TestRandom.h"

namespace {

// A list of tables turns round each time that it is read, so it takes two more readings to come back.
void expectToSettle(const std::string &text) {
    const std::vector<std::string> first = printedStatements(text);
    ASSERT_EQ(1U, first.size()) << text;
    ASSERT_NE("error", first[0]) << text;
    const std::vector<std::string> second = printedStatements(first[0]);
    ASSERT_EQ(1U, second.size()) << first[0];
    EXPECT_NE("error", second[0]) << first[0];
    EXPECT_EQ(first, printedStatements(second[0])) << text;
    if (text.find("from t, u") == std::string::npos) {
        EXPECT_EQ(first, second) << text;
    }
}

// Random statements of all kinds that have a text form.
class StatementMaker {
public:
    std::string statement() {
        switch (m_random.below(8)) {
            case 0:
                return "create table " + table() + " (" + columns() + constraint() + ");";
            case 1:
                return "insert into " + table() + insertNames() + " values (" + values(2) + ");";
            case 2:
                return "update " + table() + " set " + column() + " = " + operand() + optionalWhere() + ";";
            case 3:
                return "delete from " + table() + optionalWhere() + ";";
            case 4:
                return "select a, b into " + table() + pick({"", " unique (a, b)"}) + " from t" + optionalWhere() + ";";
            case 5:
                return "create index i on " + table() + " (a, b);";
            default:
                return query() + ";";
        }
    }

private:
    std::string pick(std::initializer_list<const char *> choices) {
        return choices.begin()[m_random.below(static_cast<unsigned>(choices.size()))];
    }

    std::string query() {
        return "select " + pick({"*", "a", "all a, d.t.b", "a->m(1), 'x'"}) + " from " + pick({"t", "d.t", "t, u"}) +
               optionalWhere() + pick({"", " group by a, b"}) + (m_random.oneIn(3) ? " having " + condition(1) : "") +
               pick({"", " order by a desc", " order by 1, t.b"});
    }

    std::string optionalWhere() { return m_random.oneIn(4) ? "" : " where " + condition(3); }

    std::string condition(int depth) {
        if (depth == 0 || m_random.oneIn(3))
            return predicate(depth);
        switch (m_random.below(4)) {
            case 0:
                return condition(depth - 1) + " or " + condition(depth - 1);
            case 1:
                return condition(depth - 1) + " and " + condition(depth - 1);
            case 2:
                return "not " + condition(depth - 1);
            default:
                return "(" + condition(depth - 1) + ")";
        }
    }

    std::string predicate(int depth) {
        const std::string negation = pick({"", "not "});
        switch (m_random.below(8)) {
            case 0:
                return column() + " is " + negation + "null";
            case 1:
                return operand() + " " + negation + "like '%x_'";
            case 2:
                return column() + " " + negation + "in " + pick({"(1,'x',NULL)", "[1.5]", "(b)", "([1,2])"});
            case 3:
                return column() + " " + negation + "between -1 and 2147483648";
            case 4:
                return depth > 0 ? column() + " " + negation + "in ((" + query() + "))" : "a = 1";
            default:
                return operand() + pick({" = ", " <> ", " < ", " > ", " <= ", " >= "}) + operand();
        }
    }

    std::string operand() { return m_random.oneIn(2) ? column() : literal(2); }
    std::string column() { return pick({"a", "t.b", "d.t.c", "a->m", "a(1)(next)", "l(*)->m(any)"}); }
    std::string table() { return pick({"t", "d.t", "net_1.node&x"}); }

    std::string literal(int depth) {
        const unsigned kind = m_random.below(depth > 0 ? 8 : 5);
        if (kind == 6)
            return "[" + literal(depth - 1) + "," + literal(depth - 1) + "]";
        if (kind == 7)
            return "{m=" + literal(depth - 1) + ",n=" + pick({"[]", "{}", "'y'"}) + "}";
        switch (kind) {
            case 0:
                return std::to_string(static_cast<int>(m_random.bits()));
            case 1:
                return std::to_string(static_cast<long long>(m_random.bits()));
            case 2:
                return pick({"1.5", "-0.1", "1e30", ".5", "3.", "1e-40", "1e999"});
            case 3:
                return pick({"'x'", "'it is \"so\"'", "\"it's\"", "''", "'a\\b'", "'two\nlines -- no comment'"});
            default:
                return "7";
        }
    }

    std::string insertNames() {
        return pick({"", " (a, b)", " unique (a)", " unique (b) (a, b)", " (a, b) unique (a)"});
    }

    std::string values(int count) {
        std::string all;
        for (int i = 0; i < count; ++i)
            all += (i > 0 ? ", " : "") + literal(2);
        return all;
    }

    std::string columns() {
        std::string all;
        for (const char *name : {"a", "b", "c"})
            all += (all.empty() ? "" : ", ") + (name + std::string(" ")) +
                   pick({"int", "text", "long64", "float", "list type list type int", "object type text", "named"}) +
                   pick({"", " not null", " not null unique", " default 3", " not null primary key", " default 'x'"});
        return all;
    }

    std::string constraint() {
        return pick({"", ", unique (a, b)", ", primary key (a)", ", counter (c)", ", timestamp (b)"});
    }

    TestRandom m_random;
};

class RoundTripTest : public testing::Test {
protected:
    ~RoundTripTest() override { ZelSetEscape(false); }
    CZelErrorCapture m_quiet;
};

TEST_F(RoundTripTest, RandomStatementsSettle) {
    StatementMaker maker;
    for (int i = 0; i < 3000 && !HasFailure(); ++i)
        expectToSettle(maker.statement());
}

TEST_F(RoundTripTest, StatementsWithComputedPartsSettle) {
    for (const char *text : {"drop database d;", "drop table eval(text,'x').t;", "drop index i;", "show databases;",
                             "show tables from d;", "show table d.t;", "shutdown;", "create database d;",
                             "select eval(list type int,'&x'), a(eval(int,'&n'))->b from eval(text,'$d').t;",
                             "delete from t where a in (eval(list type list type text,'&x'));"})
        expectToSettle(text);
}

TEST_F(RoundTripTest, StringsSettleUnderEachSettingOfTheEscapeSwitch) {
    for (const char *literal : {"'a\\\\b'", "'it\\'s \\\"so\\\"'", "\"a\\tb\\n\"", "'x'", "'\"'"}) {
        ZelSetEscape(true);
        expectToSettle(std::string("insert into t (a) values (") + literal + ");");
        expectToSettle(std::string("update t set a = ") + literal + " where b = [" + literal + "];");
    }
}

}  // namespace
