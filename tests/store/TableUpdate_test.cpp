#include <ctime>
#include <functional>
#include <optional>
#include <set>

#include "oql/CZelAssign.h"
#include "tests/store/TableTest.h"
#include "tests/support/TestRandom.h"

namespace {

class TableUpdateTest : public TableTest {
protected:
    CZelErrorCapture m_reports;
};

TEST_F(TableUpdateTest, AnUpdateOfAKeyMovesTheRowInItsTreeAndNotInTheList) {
    make({column("k", E_RDTInt, KEY), column("a", E_RDTInt)});
    for (int k : {1, 2, 3})
        insert({{"k", k}, {"a", 0}});
    EXPECT_EQ(1, update({{"k", 9}}, where("k", 2)));
    EXPECT_EQ((Texts{"k=1 a=0", "k=9 a=0", "k=3 a=0"}), rows());
    EXPECT_TRUE(select(where("k", 2)).empty());
    EXPECT_EQ(Texts{"k=9 a=0"}, select(where("k", 9)));
    EXPECT_EQ(E_RCNotFound, update({{"a", 1}}, where("k", 2)));
    EXPECT_EQ(0U, m_reports.Count());
}

TEST_F(TableUpdateTest, NullTakesTheValueAway) {
    make({column("a", E_RDTInt), column("b", E_RDTInt), column("c", E_RDTInt, NOT_NULL)});
    insert({{"a", 1}, {"b", 1}, {"c", 1}});
    EXPECT_EQ(1, update({{"a", CZelAtom()}}, nullptr));
    EXPECT_EQ(1, update({{"a", CZelAtom()}}, nullptr));
    EXPECT_EQ(Texts{"b=1 c=1"}, rows());
    EXPECT_EQ(0U, m_reports.Count());
    EXPECT_EQ(E_RCBadColumnValue, update({{"b", "x"}, {"c", CZelAtom()}}, where("a", 77)));
    EXPECT_TRUE(
        m_reports.Holds(E_RCBadColumnValue,
                        "The operation is attempting to set column b which is of type int with the value x, which "
                        "is of type text for the table d.t"));
    EXPECT_EQ(3U, m_reports.Count());  // both bad values, and the update
}

TEST_F(TableUpdateTest, ConflictsWithKeysAreToldAndChangeNothing) {
    make({column("u", E_RDTInt, UNIQUE), column("a", E_RDTInt), column("b", E_RDTInt), keyOf({"a", "b"})});
    for (int i : {1, 2, 3})
        insert({{"u", i}, {"a", i}, {"b", 0}});
    const Texts before = rows();
    const auto refused = [&](Values changes, CZelFilter *filter, const char *first, const char *second) {
        m_reports.Clear();
        EXPECT_EQ(E_RCBadColumnValue, update(changes, filter));
        ASSERT_EQ(2U, m_reports.Count());
        EXPECT_EQ(first, m_reports.Reports()[0].m_text);
        EXPECT_EQ(second, m_reports.Reports()[1].m_text);
        EXPECT_EQ(before, rows());
    };
    refused({{"u", 7}}, nullptr, "Multiple conflicting unique inserts.", "Update causes a keying mismatch, ignored.");
    refused({{"b", 7}, {"a", 7}}, nullptr, "Update failed due to multiple updates on the same key.",
            "Update causes a keying mismatch, ignored.");
    refused({{"u", 3}}, where("u", 1), "Update conflicts with existing unique.", "Update conflicts with table keying.");
    refused({{"a", 3}}, where("u", 1), "Update conflicts with existing key.", "Update conflicts with table keying.");
    // One part of the key for rows that agree in the other.
    refused({{"a", 7}}, nullptr, "Update failed due to multiple updates on the same key.",
            "Update causes a keying mismatch, ignored.");
    EXPECT_EQ(1, update({{"b", 7}}, nullptr));
}

TEST_F(TableUpdateTest, ARowWithoutAUniqueValueDoesNotTakeAnothers) {
    make({column("k", E_RDTInt, KEY), column("u", E_RDTInt), uniques({"u"})});
    insert({{"k", 1}, {"u", 5}});
    insert({{"k", 2}});
    EXPECT_EQ(E_RCKeyExists, update({{"u", 5}}, where("k", 2)));
    EXPECT_EQ((Texts{"k=1 u=5", "k=2"}), rows());
    EXPECT_EQ(Texts{"k=2"}, select(where("u", CZelAtom())));
    EXPECT_EQ(1, update({{"u", 6}}, where("k", 2)));
    EXPECT_EQ(Texts{"k=2 u=6"}, select(where("u", 6)));
}

TEST_F(TableUpdateTest, OnlyTimestampsThatAreThereAreSet) {
    make({column("a", E_RDTInt), column("w", E_RDTLong), timestamps({"w"})});
    const long before = static_cast<long>(std::time(nullptr));
    insert({{"a", 1}, {"w", 0L}});
    insert({{"a", 2}});
    EXPECT_EQ(1, update({{"a", 3}}, nullptr));
    EXPECT_EQ("a=3", rows()[1]);
    const std::unique_ptr<CZelBag> all(m_table->RTReturnRows(nullptr));
    EXPECT_GE(contents<CZelRecord>(all.get())[0]->RRValueOf("w")->RALong(), before);
}

TEST_F(TableUpdateTest, AValueBelowAColumnIsSetUnchecked) {
    make({new CZelColDef(ZelStrDup("l"), E_RDTList, new CZelColDef(nullptr, E_RDTInt, nullptr, -1), -1)});
    insert({{"l", list({1, 2})}});
    auto *changes = new CZelBag;
    changes->RBAdd(static_cast<void *>(new CZelAssign(entity("l", {1}), val("x"))));
    CZelUpdate statement(target(), changes, nullptr);
    EXPECT_EQ(1, m_table->RTUpdateRows(&statement, E_RBFalse));
    EXPECT_EQ(Texts{"l=[1,'x']"}, rows());
}

TEST_F(TableUpdateTest, ARecordUpdatesTheColumnsItHas) {
    make({column("k", E_RDTInt, KEY), column("a", E_RDTInt), column("b", E_RDTText)});
    insert({{"k", 1}, {"a", 1}, {"b", "x"}});
    insert({{"k", 2}, {"a", 1}});
    const std::unique_ptr<CZelRecord> values(record({{"b", "y"}, {"a", "7"}}));
    const std::unique_ptr<CZelFilter> filter(where("k", 2));
    EXPECT_EQ(1, m_table->RTUpdateRows(values.get(), filter.get(), E_RBFalse));
    EXPECT_EQ((Texts{"k=1 a=1 b=x", "k=2 a=7 b=y"}), rows());
    const std::unique_ptr<CZelTable> nameless(new CZelTable);
    EXPECT_EQ(E_RCBadArgument, nameless->RTUpdateRows(values.get(), filter.get(), E_RBFalse));
    EXPECT_EQ("Table or database name not defined", m_reports.LastText());
}

// The same table as plain rows: (a, b) is the key, u unique where there is one, x only indexed.
class TableModel {
public:
    struct Row {
        int a, b;
        std::optional<int> u;
        int x;
        bool operator==(const Row &) const = default;
    };
    struct Changes {
        std::optional<int> a, b, u, x;
        bool takesU = false;  // u becomes null
        bool touchesU() const { return u.has_value() || takesU; }
    };
    using Condition = std::function<bool(const Row &)>;

    std::vector<Row> rows;

    int insert(const Row &row) {
        const bool isTaken = any([&](const Row &r) { return isKey(r, row.a, row.b) || (row.u && r.u == row.u); });
        if (!isTaken)
            rows.push_back(row);
        return isTaken ? E_RCKeyExists : 1;
    }
    int erase(const Condition &matches) { return std::erase_if(rows, matches) > 0 ? 1 : E_RCNotFound; }

    int update(const Changes &changes, const Condition &matches) {
        std::vector<Row *> hit;
        for (Row &row : rows)
            if (matches(row))
                hit.push_back(&row);
        if (hit.empty())
            return E_RCNotFound;
        if ((hit.size() > 1 && wouldMeet(changes, hit)) ||
            std::any_of(hit.begin(), hit.end(), [&](const Row *row) { return isRefused(changes, *row); }))
            return E_RCBadColumnValue;
        int status = 1;
        for (Row *row : hit)
            status = apply(changes, *row) == 1 ? status : E_RCKeyExists;
        return status;
    }

private:
    static bool isKey(const Row &row, int a, int b) { return row.a == a && row.b == b; }
    bool any(const Condition &matches) const { return std::any_of(rows.begin(), rows.end(), matches); }

    static bool wouldMeet(const Changes &changes, const std::vector<Row *> &hit) {
        std::set<int> rest;
        for (const Row *row : hit)
            rest.insert(changes.a ? row->b : row->a);
        return changes.touchesU() || (changes.a && changes.b) || ((changes.a || changes.b) && rest.size() < hit.size());
    }
    bool isRefused(const Changes &changes, const Row &row) const {
        if (changes.touchesU() && row.u && row.u != changes.u && any([&](const Row &r) { return r.u == changes.u; }))
            return true;
        const int a = changes.a.value_or(row.a), b = changes.b.value_or(row.b);
        return !isKey(row, a, b) && any([&](const Row &r) { return isKey(r, a, b); });
    }
    int apply(const Changes &changes, Row &row) {
        row.a = changes.a.value_or(row.a);
        row.b = changes.b.value_or(row.b);
        row.x = changes.x.value_or(row.x);
        if (!changes.touchesU())
            return 1;
        if (changes.u && row.u != changes.u && any([&](const Row &r) { return r.u == changes.u; }))
            return E_RCKeyExists;
        row.u = changes.u;
        return 1;
    }
};

class TableModelTest : public TableUpdateTest {
protected:
    using Row = TableModel::Row;

    static std::string text(const Row &row) {
        return "a=" + std::to_string(row.a) + " b=" + std::to_string(row.b) +
               (row.u ? " u=" + std::to_string(*row.u) : "") + " x=" + std::to_string(row.x);
    }
    // Columns come and go in a row: its text is in the order of their names.
    Texts ordered(CZelFilter *filter) {
        CZelBag *found = m_table->RTReturnRows(filter);
        Texts all;
        for (const CZelRecord *row : contents<CZelRecord>(found))
            all.push_back(text({row->RRValueOf("a")->RAInt(), row->RRValueOf("b")->RAInt(),
                                row->RRValueOf("u") ? std::optional(row->RRValueOf("u")->RAInt()) : std::nullopt,
                                row->RRValueOf("x")->RAInt()}));
        delete found;
        delete filter;
        return all;
    }
    Texts expected(const TableModel::Condition &matches) const {
        Texts all;
        for (const Row &row : m_model.rows)
            if (matches(row))
                all.push_back(text(row));
        std::sort(all.begin(), all.end());
        return all;
    }
    // What the tree of a column has under a value, in no order.
    void expectTree(const char *column, const CZelAtom &value, const TableModel::Condition &matches) {
        Texts found = ordered(where(column, value));
        std::sort(found.begin(), found.end());
        ASSERT_EQ(expected(matches), found) << column;
    }
    void expectSame() {
        Texts all;
        for (const Row &row : m_model.rows)
            all.push_back(text(row));
        ASSERT_EQ(all, ordered(nullptr));
        for (int v = 0; v < RANGE; ++v) {
            expectTree("a", v, [v](const Row &r) { return r.a == v; });
            expectTree("b", v, [v](const Row &r) { return r.b == v; });
            expectTree("u", v, [v](const Row &r) { return r.u == v; });
            expectTree("x", v, [v](const Row &r) { return r.x == v; });
        }
        expectTree("u", CZelAtom(), [](const Row &r) { return !r.u; });
    }
    int value() { return static_cast<int>(m_random.below(RANGE)); }

    int insertBoth(const Row &row) {
        CZelRecord *made = record({{"a", row.a}, {"b", row.b}, {"x", row.x}});
        if (row.u)
            made->RRAddOrSetValue("u", *row.u);
        const int status = insert(made);
        EXPECT_EQ(m_model.insert(row), status);
        return status;
    }
    void updateBoth(const TableModel::Changes &changes, CZelFilter *filter, const TableModel::Condition &matches) {
        CZelUpdate statement(target(), nullptr, filter);
        const auto assign = [&statement](const char *column, const std::optional<int> &value) {
            const CZelAtom atom = value ? CZelAtom(*value) : CZelAtom();
            if (value)
                statement.RUAddAssignment(column, &atom);
        };
        assign("a", changes.a);
        assign("b", changes.b);
        assign("x", changes.x);
        assign("u", changes.u);
        const CZelAtom null;
        if (changes.takesU)
            statement.RUAddAssignment("u", &null);
        EXPECT_EQ(m_model.update(changes, matches), m_table->RTUpdateRows(&statement, E_RBFalse));
    }
    void step() {
        const int v = value();
        const bool byA = m_random.oneIn(2);
        const TableModel::Condition matches = [v, byA](const Row &r) { return (byA ? r.a : r.x) == v; };
        const auto filter = [v, byA] { return where(byA ? "a" : "x", v); };
        switch (m_random.below(6)) {
            case 0:
                EXPECT_EQ(m_model.erase(matches), erase(filter()));
                return;
            case 1:
            case 2: {
                TableModel::Changes changes;
                std::optional<int> *const columns[] = {&changes.a, &changes.b, &changes.x, &changes.u};
                *columns[m_random.below(4)] = value();
                if (m_random.oneIn(3))
                    *columns[m_random.below(4)] = value();
                changes.takesU = !changes.u && m_random.oneIn(8);
                updateBoth(changes, filter(), matches);
                return;
            }
            default:
                insertBoth({v, value(), m_random.oneIn(3) ? std::nullopt : std::optional(value()), value()});
        }
    }

    static constexpr int RANGE = 7;
    TestRandom m_random;
    TableModel m_model;
};

TEST_F(TableModelTest, TreesAndRowsStayOneThroughRandomSteps) {
    make({column("a", E_RDTInt, KEY), column("b", E_RDTInt, KEY), column("u", E_RDTInt), column("x", E_RDTInt),
          uniques({"u"})});
    addIndex(*m_table, "x");
    for (int i = 0; i < 600 && !HasFailure(); ++i) {
        step();
        expectSame();
    }
}

}  // namespace
