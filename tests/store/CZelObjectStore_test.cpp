#include "store/CZelObjectStore.h"

#include "foundations/base/CZelBPlusTree.h"
#include "oql/CZelAssign.h"
#include "tests/store/TableTest.h"

namespace {

// Columns a, b and u are indexed; rows are records, entered under the values that they hold.
class ObjectStoreTest : public testing::Test {
protected:
    ObjectStoreTest() : m_store(nameBag({"a", "b", "u"}).get()) {}
    ~ObjectStoreTest() override {
        for (CZelRecord *row : m_rows)
            delete row;
    }

    static std::unique_ptr<CZelBag> nameBag(std::initializer_list<const char *> columns) {
        auto bag = std::make_unique<CZelBag>();
        for (const char *column : columns)
            bag->RBAdd(static_cast<void *>(const_cast<CZelAtom *>(CZelName::RNIntern(column, strlen(column)))));
        return bag;
    }

    CZelRecord *row(Values values) {
        m_rows.push_back(record(values));
        return m_rows.back();
    }

    // The indexed columns of a row, with and without a value.
    static void split(const CZelRecord &row, CZelBag &bindings, CZelBag &nulls) {
        for (const char *column : {"a", "b", "u"}) {
            const CZelAtom name = CZelAtom::RAName(column);
            if (CZelVarBind *binding = row.RRValuePairOf(&name))
                bindings.RBAdd(static_cast<void *>(binding));
            else
                nulls.RBAdd(static_cast<void *>(const_cast<CZelAtom *>(CZelName::RNAtomOf(name))));
        }
    }
    int add(CZelRecord *row) {
        CZelBag bindings, nulls;
        split(*row, bindings, nulls);
        return m_store.ROSAdd(row, &bindings, &nulls, false);
    }
    int remove(CZelRecord *row) {
        CZelBag bindings, nulls;
        split(*row, bindings, nulls);
        return m_store.ROSDelete(row, &bindings, &nulls);
    }
    int checkKey(Values values) {
        CZelBag bindings, nulls;
        split(*row(values), bindings, nulls);
        return m_store.ROSCheckPrimaryKey(&bindings);
    }
    int checkUpdate(CZelRecord *row, Values changes) {
        CZelUpdate statement(target(), nullptr, nullptr);
        for (const auto &[name, value] : changes)
            statement.RUAddAssignment(name, &value);
        return m_store.ROSCheckUpdateKey(row, statement.RUChanges()->RBIterator());
    }
    std::vector<CZelRecord *> find(const char *column, const CZelAtom &value) {
        const std::unique_ptr<CZelBag> found(m_store.ROSQuery(column, &value, E_ROEqual));
        return contents<CZelRecord>(found.get());
    }
    CZelBPlusTree *tree(const char *column) { return m_store.ROSTree(CZelAtom(column)); }

    CZelObjectStore m_store;
    std::vector<CZelRecord *> m_rows;
    CZelErrorCapture m_reports;
};

TEST_F(ObjectStoreTest, RowRefusedByAUniqueTreeStandsInNoTree) {
    m_store.ROSSetUniques(nameBag({"u"}).get());
    CZelRecord *first = row({{"a", 1}, {"b", 1}, {"u", "x"}}), *second = row({{"a", 1}, {"b", 2}, {"u", "x"}});
    EXPECT_EQ(1, add(first));
    EXPECT_EQ(E_RCKeyExists, add(second));
    EXPECT_EQ(std::vector<CZelRecord *>{first}, find("a", 1));
    EXPECT_TRUE(find("b", 2).empty());
    EXPECT_EQ(0U, m_reports.Count());
}

TEST_F(ObjectStoreTest, ATreeThatARollbackEmptiesIsMadeAnewAsDegenerate) {
    m_store.ROSSetUniques(nameBag({"a", "u"}).get());
    CZelRecord *first = row({{"u", 1}}), *second = row({{"a", 5}, {"u", 1}});
    CZelBag onlyU;
    onlyU.RBAdd(static_cast<void *>(first->RRValuePairOf(&*CZelName::RNIntern("u", 1))));
    EXPECT_EQ(1, m_store.ROSAdd(first, &onlyU, nullptr, false));
    EXPECT_EQ(E_RCKeyExists, add(second));
    EXPECT_EQ(nullptr, tree("a"));
    EXPECT_EQ(1, add(row({{"a", 5}, {"u", 2}})));
    EXPECT_EQ(E_RBTrue, tree("a")->RBPTIsDegenerate());
}

TEST_F(ObjectStoreTest, DeletingTheLastRowLeavesTheTreeAsItWas) {
    m_store.ROSSetUniques(nameBag({"u"}).get());
    CZelRecord *only = row({{"u", 1}});
    add(only);
    EXPECT_EQ(1, remove(only));
    ASSERT_NE(nullptr, tree("u"));
    EXPECT_EQ(E_RBFalse, tree("u")->RBPTIsDegenerate());
    EXPECT_EQ(1, remove(only));  // it stands nowhere: told once per column
    EXPECT_EQ(3U, m_reports.Count());
    EXPECT_TRUE(m_reports.Holds(E_RCNotInTree));
}

TEST_F(ObjectStoreTest, RowsWithoutAValueShareTheNullKeyOfAUniqueTree) {
    m_store.ROSSetUniques(nameBag({"u"}).get());
    EXPECT_EQ(1, add(row({{"a", 1}})));
    EXPECT_EQ(1, add(row({{"a", 2}, {"u", CZelAtom()}})));
    EXPECT_EQ(2U, find("u", CZelAtom()).size());
}

TEST_F(ObjectStoreTest, ATreeWithKeysKeepsItsKind) {
    add(row({{"a", 1}}));
    m_store.ROSSetUniques(nameBag({"a", "b"}).get());
    EXPECT_TRUE(
        m_reports.Holds(E_RCBadValue, "CZelObjectStore::ROSCreateIndex index: a exists with different degeneracy"));
    EXPECT_EQ(E_RBTrue, tree("a")->RBPTIsDegenerate());
}

TEST_F(ObjectStoreTest, CompositeKeyExistsWhenOneRowHasAllItsValues) {
    m_store.ROSSetKeys(nameBag({"a", "b", "u"}).get());
    EXPECT_EQ(1, checkKey({{"a", 1}, {"b", 1}, {"u", 1}}));
    // Each pair of values stands in a row, never all three.
    for (CZelRecord *each : {row({{"a", 1}, {"b", 1}, {"u", 2}}), row({{"a", 1}, {"b", 2}, {"u", 1}}),
                             row({{"a", 2}, {"b", 1}, {"u", 1}})})
        EXPECT_EQ(1, add(each));
    EXPECT_EQ(1, checkKey({{"a", 1}, {"b", 1}, {"u", 1}}));
    EXPECT_EQ(E_RCKeyExists, checkKey({{"a", 1}, {"b", 2}, {"u", 1}}));
    EXPECT_EQ(E_RCKeyMissing, checkKey({{"a", 1}, {"b", 2}}));
    EXPECT_EQ(1, checkKey({{"a", 1}, {"b", 3}, {"u", 1}}));
}

TEST_F(ObjectStoreTest, SingleKeyIsEnforcedByItsTree) {
    m_store.ROSSetKeys(nameBag({"a"}).get());
    EXPECT_EQ(1, add(row({{"a", 1}})));
    EXPECT_EQ(E_RCKeyExists, checkKey({{"a", 1}}));
    EXPECT_EQ(E_RCKeyExists, add(row({{"a", 1}})));
    EXPECT_EQ(E_RCKeyMissing, checkKey({{"b", 1}}));
}

TEST_F(ObjectStoreTest, AnUpdateMayNotTakeAnotherRowsUnique) {
    m_store.ROSSetUniques(nameBag({"u"}).get());
    CZelRecord *first = row({{"u", 1}}), *second = row({{"u", 2}});
    add(first);
    add(second);
    EXPECT_EQ(1, checkUpdate(first, {{"u", 1}}));
    EXPECT_EQ(1, checkUpdate(first, {{"u", 3}}));
    EXPECT_EQ(0U, m_reports.Count());
    EXPECT_EQ(E_RCBadColumnValue, checkUpdate(first, {{"u", 2}}));
    EXPECT_EQ("Update conflicts with existing unique.", m_reports.LastText());
}

TEST_F(ObjectStoreTest, AnUpdateMayNotTakeAnotherRowsCompositeKey) {
    m_store.ROSSetKeys(nameBag({"a", "b"}).get());
    CZelRecord *moved = row({{"a", 1}, {"b", 2}});
    add(moved);
    add(row({{"a", 3}, {"b", 4}}));
    EXPECT_EQ(1, checkUpdate(moved, {{"a", 3}}));
    EXPECT_EQ(E_RCBadColumnValue, checkUpdate(moved, {{"a", 3}, {"b", 4}}));
    add(row({{"a", 3}, {"b", 2}}));
    m_reports.Clear();
    EXPECT_EQ(E_RCBadColumnValue, checkUpdate(moved, {{"a", 3}}));
    EXPECT_EQ("Update conflicts with existing key.", m_reports.LastText());
}

TEST_F(ObjectStoreTest, MatchingNarrowsToWhatBothHave) {
    CZelBag candidates, objects;
    int places[4];
    for (int i : {0, 1, 2})
        candidates.RBAdd(static_cast<void *>(&places[i]));
    for (int i : {2, 3})
        objects.RBAdd(static_cast<void *>(&places[i]));
    EXPECT_EQ(E_RBTrue, m_store.ROSMatchObject(&candidates, objects.RBIterator()));
    EXPECT_EQ(std::vector<int *>{&places[2]}, contents<int>(&candidates));
    EXPECT_EQ(E_RBFalse, m_store.ROSMatchObject(&candidates, nullptr));
}

}  // namespace
