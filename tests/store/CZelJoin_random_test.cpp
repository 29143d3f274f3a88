// Joins of two to four small tables, with and without indexes, against nested loops over std:: data. Conditions of
// kinds that the model leaves out are compared with the walk done step by step.
#include <gtest/gtest.h>

#include <optional>
#include <variant>

#include "foundations/port/CZelErrorCapture.h"
#include "tests/store/Joins.h"
#include "tests/support/SplitAll.h"
#include "tests/support/TestRandom.h"

using namespace joins;

namespace {

using Value = std::variant<std::monostate, int, std::string>;
using Members = std::vector<Value>;

bool isNull(const Value &value) {
    return value.index() == 0;
}

CZelAtom atomOf(const Value &value) {
    if (const int *number = std::get_if<int>(&value))
        return CZelAtom(*number);
    const std::string *text = std::get_if<std::string>(&value);
    return text != nullptr ? CZelAtom(text->c_str()) : CZelAtom();
}

CZelAtom atomOf(const Members &members) {
    auto *vector = new CZelAtomVector;
    for (const Value &member : members)
        vector->RAVAddToEnd(new CZelAtom(atomOf(member)));
    return CZelAtom(vector);
}

struct Row {
    int id;
    Value n, m, s;                  // n may be indexed
    std::optional<Members> values;  // a list of numbers
};
using Rows = std::vector<Row>;

constexpr int NO_KEY = 1000;
constexpr int ANY = E_RLUAny, ALL = E_RLUAll;

// A side of a comparison: a column of a table, a column with a key or selector, or a constant.
struct Side {
    int table = -1;  // -1: a constant
    std::string column;
    int key = NO_KEY;
    Value value;
    Members list;  // of a constant, when isList
    bool isList = false;
    int subquery = -1;  // the list is column m of this table

    bool isColumn() const { return table >= 0; }
    bool isWild() const { return key == ANY || key == ALL; }
};

struct Condition {
    EZelAlgebraic joiner = E_RANoOp;
    std::vector<Condition> branches;
    EZelOper op = E_ROEqual;
    Side left, right;
};

bool ordered(EZelOper op, const Value &a, const Value &b) {
    if (a.index() != b.index())
        return op == E_RONotEqual;
    switch (op) {
        case E_ROEqual:
            return a == b;
        case E_RONotEqual:
            return a != b;
        case E_ROLess:
            return a < b;
        case E_ROLessEqual:
            return a <= b;
        case E_ROGreater:
            return a > b;
        default:
            return a >= b;
    }
}

// Two values, one of them possibly missing.
bool compare(EZelOper op, const Value &a, const Value &b) {
    if (op == E_ROIsNull || op == E_ROIsNotNull)
        return isNull(a) == (op == E_ROIsNull);
    if (isNull(a) || isNull(b))
        return (isNull(a) && isNull(b)) ? op == E_ROEqual : op == E_RONotEqual;
    if (op == E_ROLike)
        return a.index() == 2 && std::get<std::string>(a).starts_with(std::get<std::string>(b).substr(0, 1));
    return ordered(op, a, b);
}

bool compareList(EZelOper op, const Value &a, const Members &list) {
    if (op == E_ROExists)
        return !list.empty();
    if (isNull(a))
        return false;
    if (op == E_ROIn || op == E_RONotIn)
        return (std::find(list.begin(), list.end(), a) != list.end()) == (op == E_ROIn);
    const bool isBetween = list[0] <= a && a <= list[1];
    return isBetween == (op == E_ROBetween);
}

class Model {
public:
    std::vector<Rows> tables;
    std::vector<const Row *> chosen;

    bool holds(const Condition &condition) const {
        if (condition.joiner == E_RANot)
            return !holds(condition.branches[0]);
        if (condition.joiner == E_RANoOp)
            return holdsLeaf(condition);
        const bool left = holds(condition.branches[0]), right = holds(condition.branches[1]);
        return condition.joiner == E_RAAnd ? left && right : left || right;
    }

    struct Possible {
        bool passes, isOpen;
    };
    // As far as table `at` can tell: what it can't answer does not narrow its rows.
    Possible possible(const Condition &condition, int at) const {
        if (condition.joiner == E_RANoOp) {
            const bool open = isOpen(condition.left, at) || isOpen(condition.right, at);
            return {open || holdsLeaf(condition), open};
        }
        const Possible left = possible(condition.branches[0], at);
        if (condition.joiner == E_RANot)
            return {left.isOpen || !left.passes, left.isOpen};
        const Possible right = possible(condition.branches[1], at);
        const bool passes = condition.joiner == E_RAAnd ? left.passes && right.passes : left.passes || right.passes;
        return {passes, left.isOpen || right.isOpen};
    }

    Texts run(const Condition *condition, const std::vector<std::string> &names) {
        chosen.assign(tables.size(), nullptr);
        Texts found;
        descend(0, condition, names, found);
        std::sort(found.begin(), found.end());
        return found;
    }

private:
    void descend(std::size_t at, const Condition *condition, const std::vector<std::string> &names, Texts &found) {
        const bool isFirst = std::all_of(chosen.begin(), chosen.end(), [](const Row *row) { return row == nullptr; });
        if (at == tables.size()) {
            if (!isFirst && (condition == nullptr || holds(*condition)))
                found.push_back(text(names));
            return;
        }
        bool isAny = false;
        for (const Row &row : tables[at]) {
            chosen[at] = &row;
            if (!isFirst && condition != nullptr && !possible(*condition, static_cast<int>(at)).passes)
                continue;
            isAny = true;
            descend(at + 1, condition, names, found);
        }
        chosen[at] = nullptr;
        if (!isAny)
            descend(at + 1, condition, names, found);
    }

    std::string text(const std::vector<std::string> &names) const {
        Texts parts;
        for (std::size_t i = 0; i < chosen.size(); ++i) {
            if (chosen[i] != nullptr)
                parts.push_back("d_" + names[i] + ":" + std::to_string(chosen[i]->id));
        }
        std::sort(parts.begin(), parts.end());
        std::string all;
        for (const std::string &part : parts)
            all += (all.empty() ? "" : " ") + part;
        return all;
    }

    bool isOpen(const Side &side, int at) const {
        if (!side.isColumn())
            return false;
        return side.isWild() ? side.table != at : chosen[static_cast<std::size_t>(side.table)] == nullptr;
    }

    const Row *rowOf(const Side &side) const { return chosen[static_cast<std::size_t>(side.table)]; }

    Value valueOf(const Side &side) const {
        if (!side.isColumn())
            return side.value;
        const Row *row = rowOf(side);
        if (row == nullptr || side.column == "missing")
            return {};
        if (side.column == "l") {
            const int index = side.isWild() ? 0 : side.key;
            const bool isThere = row->values && index < static_cast<int>(row->values->size());
            return isThere ? (*row->values)[static_cast<std::size_t>(index)] : Value{};
        }
        return side.column == "id"  ? Value{row->id}
               : side.column == "n" ? row->n
               : side.column == "m" ? row->m
                                    : row->s;
    }

    const Members *membersOf(const Side &side) const {
        const Row *row = side.isWild() ? rowOf(side) : nullptr;
        return row != nullptr && row->values ? &*row->values : nullptr;
    }

    template <class Test>
    static bool overMembers(const Members &members, int selector, Test test) {
        if (members.empty())
            return false;
        return selector == ANY ? std::any_of(members.begin(), members.end(), test)
                               : std::all_of(members.begin(), members.end(), test);
    }

    Members listOf(const Side &side) const {
        Members list = side.list;
        for (const Row &row : side.subquery >= 0 ? tables[static_cast<std::size_t>(side.subquery)] : Rows()) {
            if (!isNull(row.m))
                list.push_back(row.m);
        }
        return list;
    }

    bool holdsLeaf(const Condition &leaf) const {
        if (leaf.right.isList) {
            const Members list = listOf(leaf.right);
            const auto test = [&](const Value &value) { return compareList(leaf.op, value, list); };
            const Members *members = membersOf(leaf.left);
            return members != nullptr ? overMembers(*members, leaf.left.key, test) : test(valueOf(leaf.left));
        }
        const Members *mine = membersOf(leaf.left), *theirs = membersOf(leaf.right);
        const auto against = [&](const Value &left) {
            const auto test = [&](const Value &right) { return compare(leaf.op, left, right); };
            return theirs != nullptr ? overMembers(*theirs, leaf.right.key, test) : test(valueOf(leaf.right));
        };
        return mine != nullptr ? overMembers(*mine, leaf.left.key, against) : against(valueOf(leaf.left));
    }
};

// A store of tables with the data of a model.
class JoinWorld {
public:
    explicit JoinWorld(TestRandom &random) : m_random(random) {
        const int count = 2 + static_cast<int>(random.below(3));
        for (int i = 0; i < count; ++i)
            addTable(std::string(1, static_cast<char>('a' + (i * 3 + 2) % 4)));
    }

    Model model;
    Tables tables;
    std::vector<std::string> names;

    Condition condition(int depth) {
        Condition made;
        const unsigned kind = depth == 0 ? 9 : m_random.below(10);
        if (kind > 6)
            return leaf();
        made.joiner = kind < 4 ? E_RAAnd : kind < 6 ? E_RAOr : E_RANot;
        made.branches.push_back(condition(depth - 1));
        if (made.joiner != E_RANot)
            made.branches.push_back(condition(depth - 1));
        return made;
    }

    CZelFilter *filterOf(const Condition &condition) const {
        if (condition.joiner == E_RANot)
            return negated(filterOf(condition.branches[0]));
        if (condition.joiner != E_RANoOp)
            return node(filterOf(condition.branches[0]), condition.joiner, filterOf(condition.branches[1]));
        if (condition.right.subquery < 0)
            return leafOf(condition);
        const std::string &table = names[static_cast<std::size_t>(condition.right.subquery)];
        return new CZelFilter(
            new CZelBoolean(exprOf(condition.left), select(table.c_str(), {col("m")}, nullptr), condition.op));
    }

    // Any operator between any two sides, also where the step is not the same as the whole.
    CZelFilter *oddLeaf() {
        constexpr EZelOper OPS[] = {E_ROIn, E_RONotIn, E_ROLike, E_RONotLike, E_ROBetween, E_ROIsNull, E_ROLess};
        const EZelOper op = OPS[m_random.below(7)];
        CZelExpr *left = m_random.oneIn(3) ? val(atomOf(value())) : exprOf(column());
        return joins::leaf(left, op, exprOf(column()));
    }

private:
    void addTable(const std::string &name) {
        const bool isIndexed = m_random.oneIn(2);
        OpenTable *made = m_store.add(table("d", name.c_str(),
                                            {{"id", E_RDTInt, m_random.oneIn(2)},
                                             {"n", E_RDTInt},
                                             {"m", E_RDTInt},
                                             {"s", E_RDTText},
                                             {"l", E_RDTList}}));
        if (isIndexed)
            addIndex(*made, "n");
        if (m_random.oneIn(3))
            addIndex(*made, "s");
        tables.push_back(made);
        names.push_back(name);
        Rows rows;
        const unsigned count = m_random.oneIn(5)   ? 0
                               : m_random.oneIn(8) ? 40 / (tables.size() * tables.size())
                                                   : 1 + m_random.below(5);
        for (unsigned i = 0; i < count; ++i)
            rows.push_back(row(static_cast<int>(i)));
        for (const Row &one : rows)
            insert(*made, recordOf(one));
        model.tables.push_back(rows);
    }

    Value value() {
        if (m_random.oneIn(5))
            return {};
        return static_cast<int>(m_random.below(4));
    }
    Value text() {
        constexpr const char *TEXTS[] = {"a", "ab", "b"};
        return m_random.oneIn(5) ? Value{} : Value{std::string(TEXTS[m_random.below(3)])};
    }

    Row row(int id) {
        Row made{id, value(), value(), text(), {}};
        if (m_random.oneIn(4))
            return made;
        made.values.emplace();
        for (unsigned i = m_random.below(4); i > 0; --i)
            made.values->push_back(static_cast<int>(m_random.below(4)));
        return made;
    }

    static CZelRecord *recordOf(const Row &row) {
        auto *record = new CZelRecord;
        const auto add = [record](const char *name, const CZelAtom &value) {
            record->RRAddValue(new CZelVarBind(name, &value));
        };
        add("id", CZelAtom(row.id));
        if (!isNull(row.n))
            add("n", atomOf(row.n));
        if (!isNull(row.m))
            add("m", atomOf(row.m));
        if (!isNull(row.s))
            add("s", atomOf(row.s));
        if (row.values)
            add("l", atomOf(*row.values));
        return record;
    }

    Side column() {
        constexpr const char *COLUMNS[] = {"n", "n", "m", "s", "id", "missing"};
        Side side;
        side.table = static_cast<int>(m_random.below(static_cast<unsigned>(tables.size())));
        side.column = COLUMNS[m_random.below(6)];
        if (m_random.oneIn(5)) {
            constexpr int KEYS[] = {ANY, ALL, 0, 1};
            side.column = "l";
            side.key = KEYS[m_random.below(4)];
        }
        return side;
    }

    Condition leaf() {
        Condition made;
        made.left = column();
        const unsigned kind = m_random.below(12);
        if (kind < 6)
            made.right = column();
        else if (kind < 8)
            made.right.value = value();
        if (kind < 8)
            made.op = m_random.oneIn(2) ? E_ROEqual : static_cast<EZelOper>(m_random.below(6));
        else if (kind < 9)
            made.op = m_random.oneIn(2) ? E_ROIsNull : E_ROIsNotNull;
        else if (kind < 10)
            setList(made);
        else if (kind < 11)
            setSubquery(made);
        else
            setPattern(made);
        return made;
    }

    void setPattern(Condition &made) {
        made.left.column = "s";
        made.left.key = NO_KEY;
        made.op = E_ROLike;
        made.right.value = std::string("a%");
    }

    void setList(Condition &made) {
        made.op = m_random.oneIn(2)   ? E_ROIn
                  : m_random.oneIn(2) ? E_RONotIn
                  : m_random.oneIn(2) ? E_ROBetween
                                      : E_RONotBetween;
        made.right.isList = true;
        const int low = static_cast<int>(m_random.below(3));
        made.right.list = {low, low + 1};
        if (made.left.column == "s" || made.left.column == "missing")
            made.left.column = "n";
    }

    void setSubquery(Condition &made) {
        made.op = m_random.oneIn(3) ? E_RONotIn : E_ROIn;
        made.right.isList = true;
        made.right.subquery = static_cast<int>(m_random.below(static_cast<unsigned>(tables.size())));
        if (m_random.oneIn(4)) {
            made.left = Side();
            made.op = E_ROExists;
        }
    }

    CZelExpr *exprOf(const Side &side) const {
        if (side.isList)
            return val(atomOf(side.list));
        if (!side.isColumn())
            return isNull(side.value) ? none() : val(atomOf(side.value));
        CZelExpr *made = col("d", names[static_cast<std::size_t>(side.table)].c_str(), side.column.c_str());
        if (side.key != NO_KEY)
            made->REEntityVal()->RDESetColSpec(keys({CZelAtom(side.key)}));
        return made;
    }

    CZelFilter *leafOf(const Condition &condition) const {
        return joins::leaf(exprOf(condition.left), condition.op, exprOf(condition.right));
    }

    TestRandom &m_random;
    LiveStore m_store;
};

std::string printed(CZelFilter *filter) {
    return filter != nullptr ? taken(filter->RFPrint()) : "no condition";
}

// Every row of the first table brought along as a tuple, the rest walked.
Texts joinBehindFirst(CZelFilter *filter, const Tables &tables) {
    const auto list = listOf(tables);
    CZelBag out;
    const std::unique_ptr<CZelBag> rows(tables.front()->RTReturnRows(nullptr));
    for (CZelRecord *row : contents<CZelRecord>(rows.get())) {
        CZelTuple tuple(tables.front()->RTIdentifier(), row);
        tables.front()->RTExecJoinedQuery(filter, &out, list.get(), static_cast<CZelPointer *>(list->RDLHead()),
                                          &tuple);
    }
    Texts texts = textsOf(out);
    tables.front()->RTPurgeGarbage();
    return texts;
}

void checkOne(JoinWorld &world, TestRandom &random, int number) {
    const bool hasFilter = !random.oneIn(20);
    const Condition condition = world.condition(static_cast<int>(random.below(4)));
    const std::unique_ptr<CZelFilter> filter(hasFilter ? world.filterOf(condition) : nullptr);
    const Texts expected = world.model.run(hasFilter ? &condition : nullptr, world.names);
    ASSERT_EQ(expected, join(filter.get(), world.tables)) << printed(filter.get());
    ASSERT_EQ(static_cast<int>(expected.size()),
              world.tables.front()->RTCountJoinedQuery(filter.get(), listOf(world.tables).get()));
    ASSERT_EQ(Sequence(filter.get(), world.tables, 1).texts,
              Sequence(filter.get(), world.tables, 2 + random.below(6)).texts)
        << printed(filter.get());
    const SplitAll split;
    ASSERT_EQ(Sequence(filter.get(), world.tables, 1).texts,
              Sequence(filter.get(), world.tables, 2 + random.below(6)).texts)
        << "two threads: " << printed(filter.get());
    ASSERT_EQ(static_cast<int>(expected.size()),
              world.tables.front()->RTCountJoinedQuery(filter.get(), listOf(world.tables).get()));
    if (number % 10 == 0) {
        ASSERT_EQ(expected, StepByStep(filter.get(), world.tables).run()) << printed(filter.get());
    }
    if (number % 10 == 1 && !world.model.tables.front().empty()) {
        ASSERT_EQ(expected, joinBehindFirst(filter.get(), world.tables)) << printed(filter.get());
    }
}

void checkOdd(JoinWorld &world, TestRandom &random) {
    std::unique_ptr<CZelFilter> filter(world.oddLeaf());
    for (unsigned i = random.below(3); i > 0; --i) {
        CZelFilter *other = random.oneIn(2) ? world.oddLeaf() : world.filterOf(world.condition(1));
        filter.reset(node(filter.release(), random.oneIn(3) ? E_RAOr : E_RAAnd, other));
    }
    ASSERT_EQ(StepByStep(filter.get(), world.tables).run(), join(filter.get(), world.tables)) << printed(filter.get());
}

}  // namespace

TEST(JoinRandomTest, TenThousandJoinsGiveWhatNestedLoopsGive) {
    TestRandom random;
    const CZelErrorCapture reports;
    for (int worlds = 0; worlds < 500; ++worlds) {
        JoinWorld world(random);
        for (int i = 0; i < 20; ++i) {
            checkOne(world, random, i);
            if (testing::Test::HasFatalFailure())
                return;
        }
        for (int i = 0; i < 4 && !testing::Test::HasFatalFailure(); ++i)
            checkOdd(world, random);
    }
}
