// Random conditions over random rows. The model reads the rules twice: once as the truth of each row, which
// gives the set, and once as lists of rows, which gives the order. Records asked one by one must agree.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/store/LiveTable.h"
#include "tests/store/ModelBags.h"
#include "tests/support/SplitAll.h"
#include "tests/support/TestRandom.h"

using namespace conditions;

namespace {

using Rows = model::Rows<CZelRecord>;

// --- values ---

struct Cell {
    enum Kind { NOTHING, NUMBER, TEXT, LIST } kind = NOTHING;
    int number = 0;
    std::string text;
    std::vector<Cell> list;
};

Cell numberCell(int number) {
    return {Cell::NUMBER, number, "", {}};
}

Cell textCell(const std::string &text) {
    return {Cell::TEXT, 0, text, {}};
}

CZelAtom atomOf(const Cell &cell) {
    if (cell.kind == Cell::NUMBER)
        return CZelAtom(cell.number);
    if (cell.kind == Cell::TEXT)
        return CZelAtom(cell.text.c_str());
    if (cell.kind == Cell::NOTHING)
        return CZelAtom();
    auto *values = new CZelAtomVector;
    for (const Cell &element : cell.list)
        values->RAVAddToEnd(new CZelAtom(atomOf(element)));
    return CZelAtom(values);
}

// Orders by kind, then by value: null, numbers, texts, lists.
int order(const Cell &left, const Cell &right) {
    if (left.kind != right.kind)
        return left.kind < right.kind ? -1 : 1;
    if (left.kind == Cell::NUMBER)
        return (left.number > right.number) - (left.number < right.number);
    if (left.kind == Cell::TEXT)
        return left.text.compare(right.text);
    for (std::size_t i = 0; i < left.list.size() && i < right.list.size(); ++i) {
        if (order(left.list[i], right.list[i]) != 0)
            return order(left.list[i], right.list[i]);
    }
    return static_cast<int>(left.list.size()) - static_cast<int>(right.list.size());
}

bool isAmong(const Cell &value, const Cell &list) {
    return std::any_of(list.list.begin(), list.list.end(),
                       [&](const Cell &element) { return order(value, element) == 0; });
}

bool isWithin(const Cell &value, const Cell &bounds) {
    return order(bounds.list[0], value) <= 0 && order(value, bounds.list[1]) <= 0;
}

bool areComparable(const Cell &value, const Cell &bounds) {
    return bounds.kind == Cell::LIST && bounds.list.size() >= 2 && bounds.list[0].kind == value.kind &&
           bounds.list[1].kind == value.kind;
}

bool holdsOfValues(const Cell &left, EZelOper op, const Cell &right) {
    const bool sameKind = left.kind == right.kind;
    const int sign = order(left, right);
    switch (op) {
        case E_ROEqual:
            return sign == 0;
        case E_RONotEqual:
            return sign != 0;
        case E_ROLess:
            return sameKind && sign < 0;
        case E_ROLessEqual:
            return sameKind && sign <= 0;
        case E_ROGreater:
            return sameKind && sign > 0;
        case E_ROGreaterEqual:
            return sameKind && sign >= 0;
        case E_ROIn:
            return right.kind == Cell::LIST && isAmong(left, right);
        case E_RONotIn:
            return right.kind == Cell::LIST && !isAmong(left, right);
        case E_ROBetween:
            return areComparable(left, right) && isWithin(left, right);
        case E_RONotBetween:
            return areComparable(left, right) && !isWithin(left, right);
        default:
            return false;  // is null, of a value
    }
}

bool holds(const Cell &left, EZelOper op, const Cell &right) {
    const bool leftNull = left.kind == Cell::NOTHING, rightNull = right.kind == Cell::NOTHING;
    if (op == E_ROIsNull)
        return leftNull;
    if (op == E_ROIsNotNull)
        return !leftNull;
    if (leftNull && rightNull)
        return op == E_ROEqual;
    if (leftNull || rightNull)
        return op == E_RONotEqual || (op == E_RONotIn && rightNull);
    return holdsOfValues(left, op, right);
}

// --- rows and conditions ---

enum ColumnNumber { K, A, S, U, L, COLUMNS };
const char *const NAMES[] = {"k", "a", "s", "u", "l"};

struct Row {
    Cell cells[COLUMNS];
    CZelRecord *record;
};

struct Condition {
    EZelAlgebraic joiner = E_RANoOp;
    std::unique_ptr<Condition> left, right;
    EZelBoolEvalType shape = E_RBEColumnValue;
    EZelOper op = E_ROEqual;
    int column = 0, other = 0;
    Cell value, otherValue;
    int selector = 0;  // of the column
};

bool truthOfList(const Cell &list, const Condition &leaf) {
    const auto holdsOf = [&](const Cell &element) { return holds(element, leaf.op, leaf.value); };
    if (list.list.empty())
        return false;
    return leaf.selector == E_RLUAny ? std::any_of(list.list.begin(), list.list.end(), holdsOf)
                                     : std::all_of(list.list.begin(), list.list.end(), holdsOf);
}

bool truth(const Condition &at, const Row &row) {
    if (at.joiner == E_RAAnd)
        return truth(*at.left, row) && truth(*at.right, row);
    if (at.joiner == E_RAOr)
        return truth(*at.left, row) || truth(*at.right, row);
    if (at.joiner == E_RANot)
        return !truth(*at.right, row);
    const Cell &cell = row.cells[at.column];
    switch (at.shape) {
        case E_RBEColumnValue:
            if (at.selector != 0)
                return cell.kind == Cell::LIST ? truthOfList(cell, at) : holds(Cell(), at.op, at.value);
            return holds(cell, at.op, at.value);
        case E_RBEValueColumn:
            return holds(at.value, at.op, cell);
        case E_RBEColumnColumn:
            return holds(cell, at.op, row.cells[at.other]);
        default:
            return holds(at.value, at.op, at.otherValue);
    }
}

CZelExpr *columnOf(const Condition &leaf) {
    return leaf.selector != 0 ? col(NAMES[leaf.column], {leaf.selector}) : col(NAMES[leaf.column]);
}

CZelFilter *filterOf(const Condition &at) {
    if (at.joiner == E_RANot)
        return negated(filterOf(*at.right));
    if (at.joiner != E_RANoOp)
        return node(filterOf(*at.left), at.joiner, filterOf(*at.right));
    switch (at.shape) {
        case E_RBEColumnValue:
            return leaf(columnOf(at), at.op, val(atomOf(at.value)));
        case E_RBEValueColumn:
            return leaf(val(atomOf(at.value)), at.op, columnOf(at));
        case E_RBEColumnColumn:
            return leaf(columnOf(at), at.op, col(NAMES[at.other]));
        default:
            return leaf(val(atomOf(at.value)), at.op, val(atomOf(at.otherValue)));
    }
}

// --- the order of a result ---

class OrderModel {
public:
    OrderModel(const std::vector<Row> &rows, bool indexed) : m_rows(rows), m_indexed(indexed) {}

    Rows answer(const Condition &condition) const { return evaluate(condition, nullptr).rows; }

private:
    struct Answer {
        Rows rows;
        bool all;
    };

    Answer complete(Rows rows) const {
        const bool all = rows.size() == m_rows.size();
        return {std::move(rows), all};
    }

    Answer evaluate(const Condition &at, const Rows *input) const {
        if (at.joiner == E_RANoOp)
            return complete(leafRows(at, input));
        if (at.joiner == E_RANot) {
            const Answer right = evaluate(*at.right, input);
            return complete(right.all ? Rows() : model::rest(everything(), right.rows));
        }
        const Answer left = evaluate(*at.left, input);
        const bool isAnd = at.joiner == E_RAAnd;
        const Answer right =
            isAnd && left.rows.empty() ? Answer{{}, false} : evaluate(*at.right, isAnd ? &left.rows : input);
        if (left.all)
            return complete(isAnd && !right.all ? right.rows : left.rows);
        if (right.all)
            return complete(isAnd ? left.rows : right.rows);
        return complete((isAnd ? model::both(left.rows, right.rows) : model::either(left.rows, right.rows)).rows);
    }

    Rows leafRows(const Condition &at, const Rows *input) const {
        const bool hasColumn = at.shape == E_RBEColumnValue || at.shape == E_RBEValueColumn;
        const bool byTree = m_indexed && hasColumn && at.column <= S && at.op <= E_ROGreaterEqual;
        const bool isMembership = (at.op == E_ROIn || at.op == E_RONotIn) && at.value.kind == Cell::LIST;
        const bool byKey = byTree || (at.shape == E_RBEColumnValue && isMembership && at.selector == 0);
        if (at.shape == E_RBEValueColumn && isMembership)
            return {};
        std::vector<const Row *> found;
        for (const Row *row : rowsOf(byTree ? nullptr : input)) {
            if (truth(at, *row))
                found.push_back(row);
        }
        if (byKey)
            std::stable_sort(found.begin(), found.end(), [&](const Row *left, const Row *right) {
                return order(left->cells[at.column], right->cells[at.column]) < 0;
            });
        return recordsOf(found);
    }

    std::vector<const Row *> rowsOf(const Rows *input) const {
        std::vector<const Row *> found;
        for (const Row &row : m_rows)
            found.push_back(&row);
        if (input == nullptr)
            return found;
        std::vector<const Row *> chosen;
        for (const CZelRecord *wanted : *input)
            chosen.push_back(
                *std::find_if(found.begin(), found.end(), [&](const Row *row) { return row->record == wanted; }));
        return chosen;
    }

    static Rows recordsOf(const std::vector<const Row *> &rows) {
        Rows records;
        for (const Row *row : rows)
            records.push_back(row->record);
        return records;
    }

    Rows everything() const { return recordsOf(rowsOf(nullptr)); }

    const std::vector<Row> &m_rows;
    bool m_indexed;
};

// --- random choices ---

Cell randomValue(TestRandom &random, int column) {
    if (random.oneIn(6))
        return {};
    if (column == S)
        return textCell(std::string(1 + random.below(2), static_cast<char>('a' + random.below(4))));
    return numberCell(static_cast<int>(random.below(column == K ? 40 : 6)));
}

Cell randomList(TestRandom &random, int column, unsigned least) {
    Cell list{Cell::LIST, 0, "", {}};
    for (unsigned length = least + random.below(5); length > 0; --length)
        list.list.push_back(random.oneIn(8) ? randomValue(random, random.oneIn(2) ? S : U)
                                            : randomValue(random, column));
    return list;
}

std::vector<Row> randomRows(TestRandom &random, CZelTable &table) {
    std::vector<Row> rows(random.below(random.oneIn(2) ? 13 : 41));
    int key = static_cast<int>(random.below(40));
    for (Row &row : rows) {
        auto *values = new CZelRecord;
        for (int column = 0; column < COLUMNS; ++column) {
            Cell &cell = row.cells[column];
            cell = column == L && !random.oneIn(4) ? randomList(random, U, 0) : randomValue(random, column);
            if (column == L && cell.kind == Cell::LIST)  // of whole numbers
                std::erase_if(cell.list, [](const Cell &element) { return element.kind != Cell::NUMBER; });
            if (column == L && cell.kind == Cell::NUMBER)
                cell = Cell();
            if (column == K)  // a unique column is never null
                cell = numberCell(key = (key + 7) % 41);
            const CZelAtom atom = atomOf(cell);
            if (cell.kind != Cell::NOTHING)
                values->RRAddValue(new CZelVarBind(NAMES[column], &atom));
        }
        row.record = insert(table, values);
        EXPECT_NE(nullptr, row.record);
    }
    return rows;
}

void chooseOperands(TestRandom &random, Condition &leaf) {
    constexpr EZelOper OTHERS[] = {E_ROIn, E_RONotIn, E_ROBetween, E_RONotBetween, E_ROIsNull, E_ROIsNotNull};
    leaf.op = random.oneIn(3) ? OTHERS[random.below(6)] : static_cast<EZelOper>(random.below(6));
    leaf.column = static_cast<int>(random.below(COLUMNS));
    leaf.other = static_cast<int>(random.below(COLUMNS));
    const bool isNullTest = leaf.op == E_ROIsNull || leaf.op == E_ROIsNotNull;
    const bool takesList = leaf.op >= E_ROIn && !isNullTest;
    leaf.value =
        takesList ? randomList(random, leaf.column, 2) : randomValue(random, random.oneIn(8) ? S : leaf.column);
    if (random.oneIn(20))
        leaf.value = randomList(random, U, 0);
    if (isNullTest)
        leaf.value = Cell();
    leaf.otherValue = leaf.value;
    if (leaf.shape == E_RBEValueValue)
        leaf.value = randomValue(random, U);
    if (leaf.column == L && leaf.shape == E_RBEColumnValue && !random.oneIn(3))
        leaf.selector = random.oneIn(2) ? E_RLUAny : E_RLUAll;
}

std::unique_ptr<Condition> randomCondition(TestRandom &random, int depth) {
    auto made = std::make_unique<Condition>();
    if (depth == 0 || random.oneIn(4)) {
        constexpr EZelBoolEvalType RARE[] = {E_RBEValueColumn, E_RBEColumnColumn, E_RBEValueValue};
        made->shape = random.oneIn(3) ? RARE[random.below(3)] : E_RBEColumnValue;
        chooseOperands(random, *made);
        const bool isNullTest = made->op == E_ROIsNull || made->op == E_ROIsNotNull;
        if (isNullTest && made->shape == E_RBEValueColumn)
            made->op = E_ROEqual;
        return made;
    }
    constexpr EZelAlgebraic JOINERS[] = {E_RAAnd, E_RAAnd, E_RAOr, E_RAOr, E_RANot};
    made->joiner = JOINERS[random.below(5)];
    made->right = randomCondition(random, depth - 1);
    if (made->joiner != E_RANot)
        made->left = randomCondition(random, depth - 1);
    return made;
}

// A list behind In on the other side of a column answers nothing from a table, whatever the rows hold.
bool isReversedMembership(const Condition &at) {
    if (at.joiner != E_RANoOp)
        return (at.left != nullptr && isReversedMembership(*at.left)) || isReversedMembership(*at.right);
    return at.shape == E_RBEValueColumn && (at.op == E_ROIn || at.op == E_RONotIn) && at.value.kind == Cell::LIST;
}

void expectSameSet(const Condition &condition, CZelFilter &filter, const std::vector<Row> &rows, const Rows &found) {
    const Rows sorted = model::sorted(found);
    for (const Row &row : rows) {
        const bool expected = truth(condition, row);
        ASSERT_EQ(expected, std::binary_search(sorted.begin(), sorted.end(), row.record));
        ASSERT_EQ(ZelBool(expected), filter.RFFilterRecord(row.record));
    }
}

void compareWithModel(bool indexed, int rounds = 300) {
    TestRandom random;
    for (int round = 0; round < rounds; ++round) {
        LiveStore store;
        OpenTable &t = *store.add(
            table("d", "t",
                  {{"k", E_RDTInt, indexed}, {"a", E_RDTInt}, {"s", E_RDTText}, {"u", E_RDTInt}, {"l", E_RDTList}}));
        if (indexed) {
            addIndex(t, "a");
            addIndex(t, "s");
        }
        const std::vector<Row> rows = randomRows(random, t);
        for (int i = 0; i < 60; ++i) {
            const std::unique_ptr<Condition> condition = randomCondition(random, 4);
            const std::unique_ptr<CZelFilter> filter(filterOf(*condition));
            const std::unique_ptr<CZelBag> bag(t.RTReturnRows(filter.get()));
            const Rows found = contents<CZelRecord>(bag.get());
            const std::string text = taken(filter->RFPrint());
            ASSERT_EQ(OrderModel(rows, indexed).answer(*condition), found) << text;
            if (!isReversedMembership(*condition)) {
                ASSERT_NO_FATAL_FAILURE(expectSameSet(*condition, *filter, rows, found)) << text;
            }
        }
    }
}

TEST(TableQueryRandom, UnindexedTablesAnswerAsTheModel) {
    compareWithModel(false);
}

TEST(TableQueryRandom, IndexedTablesAnswerAsTheModel) {
    compareWithModel(true);
}

TEST(TableQueryRandom, TablesScannedByTwoThreadsAnswerAsTheModel) {
    const SplitAll split;
    compareWithModel(false, 60);
}

}  // namespace
