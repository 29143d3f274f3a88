// A table with a record cache, looked at from inside: what events see, what stays when the file can't be written, what
// a start makes of the rows of an earlier run.
#include "store/CZelRecordCache.h"

#include <functional>
#include <thread>

#include "tests/port/FailingFiles.h"
#include "tests/store/TableTest.h"
#include "tests/support/CacheHome.h"
#include "tests/support/SplitAll.h"
#include "tests/support/TestRandom.h"

namespace {

class CachedTableTest : public TableTest, public testing::WithParamInterface<CacheKind> {
protected:
    ~CachedTableTest() override { close(); }

    // The table takes the place of the one before, as a new process would make it.
    CZelTable &open(std::initializer_list<CZelTblAttr *> attributes, const CacheKind &kind) {
        close();
        m_table = parsed(attributes);
        m_store.RSAddTbl(m_table, E_RBTrue);
        if (kind.isBySize)
            m_table->RTCacheMe(new CZelAtom("app"), kind.bytes, ZelBool(kind.isPersistent));
        else
            m_table->RTCacheMe(new CZelAtom("app"), kind.share, ZelBool(kind.isPersistent));
        m_table->RDOInitialise(&m_store);
        return *m_table;
    }

    // Lets the table go without dropping it.
    void close() {
        if (m_table == nullptr)
            return;
        const CZelAtom name("d");
        m_store.RSDropDatabase(&name);
        m_store.RSAddDb(new CZelDatabase(ZelStrDup("d")));
        m_store.RSInitialise();
        m_table = nullptr;
    }

    // The rows are the caller's here.
    Texts select(CZelFilter *filter) {
        const CZelBagGuard<CZelRecord> found(m_table->RTReturnRows(filter));
        delete filter;
        Texts all;
        for (const CZelRecord *row : contents<CZelRecord>(found.get()))
            all.push_back(text(*row));
        return all;
    }
    Texts rows() { return select(nullptr); }

    static Texts sorted(Texts texts) {
        std::sort(texts.begin(), texts.end());
        return texts;
    }
    static CZelFilter *isNull(const char *column) { return leaf(col(column), E_ROIsNull, none()); }
    static CZelFilter *above(const char *column, int value) { return leaf(col(column), E_ROGreater, val(value)); }

    CacheHome m_home;
    CZelErrorCapture m_reports;
};

constexpr CacheKind ON_DISK = {"all on disk, kept", true, 0, 0.0F, true};
constexpr CacheKind IN_MEMORY = {"all in memory, kept", false, 0, 1.0F, true};

TEST_P(CachedTableTest, EventsSeeCopiesInTheOrderOfAPlainTable) {
    open(
        {column("k", E_RDTInt, KEY), column("n", E_RDTInt), column("w", E_RDTLong), counters({"n"}), timestamps({"w"})},
        GetParam());
    EventLog log;
    insert({{"k", 1}, {"n", 0}});
    m_table->RTAddActive(&log, 3);
    EXPECT_EQ(1, insert({{"k", 2}, {"n", 0}}));
    EXPECT_EQ(E_RCDuplicate, insertUnique({{"k", 2}}, {"k"}));
    EXPECT_EQ(E_RCKeyExists, insert({{"k", 1}}));
    EXPECT_EQ(1, update({{"k", 5}}, where("k", 2)));
    EXPECT_EQ(1, erase(where("k", 5)));
    EXPECT_EQ((Texts{"preAdd k=2 n=0", "postAdd k=2 n=0", "preDuplicate k=2 n=0", "postDuplicate k=2 n=1", "preAdd k=1",
                     "prePreUpdate k=2 n=0", "preUpdate k=2 n=0", "postUpdate k=5 n=0", "preDelete k=5 n=0",
                     "postDelete k=5 n=0"}),
              log.events);  // the raised counter is seen, not kept
    for (const char *event : {"preDelete", "preUpdate", "prePreUpdate"}) {
        log.refused = event;
        EXPECT_EQ(1, log.refused == "preDelete" ? erase(nullptr) : update({{"k", 9}}, nullptr));
        EXPECT_EQ(Texts{"k=1 n=0"}, rows());
        EXPECT_EQ(Texts{"k=1 n=0"}, select(where("k", 1)));
    }
    m_table->RTAddActive(nullptr, 0);
}

TEST_P(CachedTableTest, CreatedIndexesAndNestedValuesFollowTheRows) {
    open({column("k", E_RDTInt, KEY), column("g", E_RDTInt), column("s", E_RDTText), column("w", E_RDTLong),
          timestamps({"w"})},
         GetParam());
    for (int i = 0; i < 40; ++i)
        insert({{"k", i}, {"g", i % 4}, {"s", std::string(static_cast<std::size_t>(i * 20), 'x').c_str()}, {"w", 1L}});
    addIndex(*m_table, "g");
    EXPECT_EQ(10U, select(where("g", 2)).size());
    EXPECT_EQ(1, update({{"g", 2}, {"s", "short"}}, where("g", 3)));
    EXPECT_EQ(1, erase(where("k", 2)));
    EXPECT_EQ(19U, select(where("g", 2)).size());
    EXPECT_EQ(20U, select(either(where("g", 0), where("g", 1))).size());
    CZelDropIndex drop(ZelStrDup("index_g"));
    m_table->RTDropIndex(&drop);
    EXPECT_EQ(19U, select(both(where("g", 2), negated(where("s", "none")))).size());
    EXPECT_EQ(9U, select(both(where("s", "short"), leaf(col("w"), E_ROGreater, val(1L)))).size() - 1U);
}

// Two tables get the same indexes and changes; one of them is asked by its indexes before the first change.
TEST_P(CachedTableTest, AnIndexAnswersTheSameWheneverItIsAskedFirst) {
    const std::vector<std::function<void()>> changes = {[this] {
                                                            EXPECT_EQ(1, insert({{"k", 100}, {"g", 1}, {"h", 2}}));
                                                        },
                                                        [this] { EXPECT_EQ(1, erase(where("g", 1))); },
                                                        [this] { EXPECT_EQ(1, erase(where("k", 5))); },
                                                        [this] {
                                                            EXPECT_EQ(1, update({{"g", 1}}, where("k", 8)));
                                                        },
                                                        [this] {
                                                            EXPECT_EQ(1, update({{"h", 1}}, where("h", 2)));
                                                        },
                                                        [this] {
                                                            CZelDropIndex drop(ZelStrDup("index_g"));
                                                            m_table->RTDropIndex(&drop);
                                                            addIndex(*m_table, "g");
                                                        }};
    for (const auto &change : changes) {
        Texts found[2];
        for (const bool isAsked : {false, true}) {
            open({column("k", E_RDTInt, KEY), column("g", E_RDTInt), column("h", E_RDTInt), column("s", E_RDTText)},
                 GetParam());
            for (int i = 0; i < 40; ++i)
                insert({{"k", i}, {"g", i % 4}, {"h", i % 3}, {"s", std::string(i % 7 * 100U, 'x').c_str()}});
            erase(where("k", 3));  // its handle goes to the row that comes next
            addIndex(*m_table, "g");
            addIndex(*m_table, "h");
            if (isAsked) {
                EXPECT_EQ(9U + 13U, select(where("g", 3)).size() + select(where("h", 1)).size());
            }
            change();
            for (int value = 0; value < 4; ++value)
                for (const char *name : {"g", "h"})
                    for (const std::string &row : select(where(name, value)))
                        found[isAsked].push_back(row);
            m_table->RTDropTable();
        }
        EXPECT_EQ(found[true], found[false]);
        EXPECT_FALSE(found[true].empty());
    }
}

TEST_F(CachedTableTest, AnIndexIsFilledWhenItIsAskedAndTellsThenWhatItCouldNotRead) {
    open({column("k", E_RDTInt, KEY), column("g", E_RDTInt), column("h", E_RDTInt)}, ON_DISK);
    for (int i = 0; i < 40; ++i)
        insert({{"k", i}, {"g", i % 4}, {"h", i % 2}});
    addIndex(*m_table, "g");
    {
        FailingFiles files(FailingFiles::READ, 1, EIO, FailingFiles::FOR_GOOD);
        addIndex(*m_table, "h");
        EXPECT_EQ(0, files.Calls(FailingFiles::READ));
    }
    EXPECT_EQ(10U, select(where("g", 2)).size());  // fills both
    EXPECT_EQ(20U, select(where("h", 1)).size());
    EXPECT_EQ(0U, m_reports.Count());
    CZelDropIndex drop(ZelStrDup("index_g"));
    m_table->RTDropIndex(&drop);
    addIndex(*m_table, "g");
    {
        const FailingFiles files(FailingFiles::READ, 1, EIO, FailingFiles::FOR_GOOD);
        EXPECT_EQ(0U, select(where("g", 2)).size());
    }
    EXPECT_TRUE(m_reports.Holds(E_RCPageRead));
    EXPECT_EQ(20U, select(where("h", 1)).size());
}

TEST_F(CachedTableTest, ReadersMayAskForANewIndexTogether) {
    open({column("k", E_RDTInt, KEY), column("g", E_RDTInt)}, ON_DISK);
    for (int i = 0; i < 400; ++i)
        insert({{"k", i}, {"g", i % 4}});
    for (int round = 0; round < 10; ++round) {
        addIndex(*m_table, "g");
        std::vector<int> found(4);
        std::vector<std::thread> readers;
        readers.reserve(found.size());
        for (int reader = 0; reader < 4; ++reader)
            readers.emplace_back([&, reader] {
                const std::unique_ptr<CZelFilter> filter(where("g", reader));
                const CZelBagGuard<CZelRecord> rows(m_table->RTReturnRows(filter.get()));
                found[static_cast<std::size_t>(reader)] = rows->RBLength();
            });
        for (std::thread &reader : readers)
            reader.join();
        EXPECT_EQ((std::vector<int>{100, 100, 100, 100}), found);
        CZelDropIndex drop(ZelStrDup("index_g"));
        m_table->RTDropIndex(&drop);
    }
}

// A walk tests rows in the file by what it picks out of their encodings; the model has the decoded records.
TEST_P(CachedTableTest, AConditionFindsInTheFileWhatItFindsInRecords) {
    open({column("k", E_RDTInt, KEY), column("i", E_RDTInt), column("f", E_RDTFloat), column("s", E_RDTText),
          column("l", E_RDTList)},
         GetParam());
    TestRandom random;
    const auto below = [&random](unsigned limit) { return static_cast<int>(random.below(limit)); };
    const auto textFrom = [&below] { return std::string(below(2) == 0 ? 1 : 20, "ab"[below(2)]) + "ba"[below(2)]; };
    const auto value = [&](int kind) {
        switch (kind) {
            case 0:
                return CZelAtom(below(6));
            case 1:
                return CZelAtom(static_cast<float>(below(12)) / 2);
            case 2:
                return CZelAtom(textFrom().c_str());
            case 3:
                return list({below(6), textFrom().c_str()});
            default:
                return CZelAtom();
        }
    };
    const char *const names[] = {"i", "f", "s", "l", "k", "none"};
    for (int k = 0; k < 60; ++k) {
        auto *row = new CZelRecord;
        row->RRAddOrSetValue("k", k);
        for (int kind = 0; kind < 4; ++kind) {
            auto *cell = new CZelAtom(value(kind));
            if (below(4) != 0)
                row->RRAddValue(names[kind], &cell);
            delete cell;
        }
        ASSERT_EQ(1, m_table->RTAddRow(row, E_RBFalse));
    }
    update({{"f", 1}}, where("i", 2));  // which moves rows in the file
    const CZelBagGuard<CZelRecord> records(m_table->RTReturnRows(nullptr));
    const char *const patterns[] = {"%a", "b%", "%ab%", "a_", "%a%b"};
    constexpr EZelOper OPERATORS[] = {E_ROEqual,        E_RONotEqual, E_ROLess,    E_ROLessEqual, E_ROGreater,
                                      E_ROGreaterEqual, E_ROLike,     E_RONotLike, E_ROIsNull,    E_ROIsNotNull};
    for (int step = 0; step < 600; ++step) {
        const EZelOper op = OPERATORS[below(10)];
        const char *const name = names[below(6)];
        const CZelAtom other = op == E_ROLike || op == E_RONotLike ? CZelAtom(patterns[below(5)]) : value(below(5));
        std::unique_ptr<CZelFilter> filter(leaf(col(name), op, val(other)));
        CZelBoolean &boolean = *filter->RFKernel();
        Texts expected;
        for (CZelRecord *row : contents<CZelRecord>(records.get()))
            if (m_table->RTEvalRecTest(boolean.RBLeft()->REEntityVal(), E_RBFalse, boolean.RBRight()->REHeadAtomVal(),
                                       &boolean, row) == E_RBTrue)
                expected.push_back(text(*row));
        const SplitAll split(random.oneIn(2));
        const std::unique_ptr<CZelBag> counted(m_table->RTEvalFilter(filter.get()));
        ASSERT_EQ(counted->RBLength(), m_table->RTCountRows(filter.get()));
        ASSERT_EQ(expected, select(filter.release())) << "step " << step << ", column " << name << ", operator " << op;
        ASSERT_EQ(static_cast<int>(expected.size()), counted->RBLength());
    }
}

// Comparisons that are joined are made in one walk, unless there is one of another kind beside them.
TEST_P(CachedTableTest, AConditionOfSeveralComparisonsFindsWhatTheyFindOneByOne) {
    open({column("k", E_RDTInt, KEY), column("i", E_RDTInt), column("s", E_RDTText), column("l", E_RDTList)},
         GetParam());
    TestRandom random;
    const auto below = [&random](unsigned limit) { return static_cast<int>(random.below(limit)); };
    for (int k = 0; k < 60; ++k)
        insert({{"k", k}, {"i", below(9)}, {"s", std::string(1, "abc"[below(3)]).c_str()}, {"l", list({below(3)})}});
    update({{"s", "a"}}, where("i", 2));
    const std::function<CZelFilter *(int)> condition = [&](int depth) -> CZelFilter * {
        const int choice = below(depth == 0 ? 4 : 8);
        if (choice > 4)
            return node(condition(depth - 1), choice == 5 ? E_RAOr : E_RAAnd, condition(depth - 1));
        if (choice == 4)
            return negated(condition(depth - 1));
        if (choice == 3 && below(4) == 0)
            return below(2) == 0 ? where("k", below(60)) : leaf(col("i"), E_ROIn, val(list({1, below(9)})));
        if (choice == 3)
            return below(2) == 0 ? leaf(col("l"), E_ROEqual, val(list({below(3)})))
                                 : leaf(col("none"), E_ROIsNull, none());
        return choice < 2 ? leaf(col("i"), choice == 0 ? E_ROLess : E_ROGreaterEqual, val(below(10)))
                          : leaf(val(std::string(1, "abc"[below(3)]).c_str()), E_RONotEqual, col("s"));
    };
    const auto whether = [](int one, int other) { return leaf(val(one), E_ROEqual, val(other)); };
    const auto handlesOf = [&](CZelFilter *filter) {
        const std::unique_ptr<CZelFilter> owner(filter);
        const std::unique_ptr<CZelBag> found(m_table->RTEvalFilter(filter));
        return contents<void>(found.get());
    };
    const std::vector<void *> handles = handlesOf(whether(1, 1));
    const Texts texts = rows();
    for (int step = 0; step < 500; ++step) {
        std::unique_ptr<CZelFilter> filter(condition(3));
        const std::vector<void *> found = handlesOf(either(new CZelFilter(*filter), whether(1, 2)));
        Texts expected;
        for (const void *handle : found)
            expected.push_back(
                texts[static_cast<std::size_t>(std::find(handles.begin(), handles.end(), handle) - handles.begin())]);
        const SplitAll split(random.oneIn(2));
        ASSERT_EQ(found, handlesOf(new CZelFilter(*filter))) << taken(filter->RFPrint());
        ASSERT_EQ(static_cast<int>(found.size()), m_table->RTCountRows(filter.get()));
        ASSERT_EQ(expected, select(filter.release()));
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, CachedTableTest, testing::ValuesIn(CACHE_KINDS), kindName);

TEST_F(CachedTableTest, NothingIsWrittenForARowThatIsRefused) {
    open({column("k", E_RDTInt, KEY), column("a", E_RDTInt), column("b", E_RDTInt, UNIQUE)}, ON_DISK);
    insert({{"k", 1}, {"b", 1}});
    FailingFiles files(FailingFiles::WRITE, 1);
    EXPECT_EQ(E_RCKeyExists, insert({{"k", 1}, {"b", 2}}));
    EXPECT_EQ(E_RCKeyExists, insert({{"k", 2}, {"b", 1}}));
    EXPECT_EQ(E_RCBadColumnValue, insert({{"k", "x"}}));
    EXPECT_EQ(E_RCBadColumnValue, update({{"k", "x"}}, nullptr));
    EXPECT_EQ(0, files.Calls(FailingFiles::WRITE));
}

Texts sortedTexts(Texts texts) {
    std::sort(texts.begin(), texts.end());
    return texts;
}

// A table of two rows with a key, a unique column and a created index, and one change of each kind to it.
class FailingChangeTest : public CachedTableTest {
protected:
    FailingChangeTest() : m_large(1500, 'x') {}

    void begin(const CacheKind &kind) {
        open({column("k", E_RDTInt, KEY), column("u", E_RDTInt, UNIQUE), column("g", E_RDTInt), column("s", E_RDTText)},
             kind);
        m_table->RTDropTable();
        addIndex(*m_table, "g");
        insert({{"k", 1}, {"u", 1}, {"g", 1}, {"s", m_large.c_str()}});
        insert({{"k", 2}, {"u", 2}, {"g", 1}});
        m_before = rows();
    }

    int change(int kind) {
        if (kind == 0)
            return insert({{"k", 3}, {"u", 3}, {"g", 1}, {"s", m_large.c_str()}});
        return kind == 1 ? update({{"k", 7}, {"u", 8}, {"g", 2}, {"u", 9}}, where("k", 1)) : erase(where("k", 1));
    }

    void expectAsBefore() {
        EXPECT_EQ(m_before, rows());
        EXPECT_EQ(sortedTexts(m_before), sortedTexts(select(where("g", 1))));
        EXPECT_EQ(Texts{m_before[0]}, select(where("u", 1)));
        EXPECT_EQ(Texts{m_before[0]}, select(where("k", 1)));
        EXPECT_EQ(Texts(), select(either(above("k", 2), either(above("u", 2), above("g", 1)))));
    }

    std::string m_large;
    Texts m_before;
};

// Whichever write of a change fails, the rows and every index are as before, and the change works when the fault is
// gone.
TEST_F(FailingChangeTest, AChangeThatCantBeStoredHasNotHappened) {
    for (const CacheKind &kind : {ON_DISK, IN_MEMORY}) {
        for (int what = 0; what < 3; ++what) {
            int status = E_RCPageWrite;
            for (int number = 1; status != 1; ++number) {
                begin(kind);
                {
                    const FailingFiles files(FailingFiles::WRITE, number, ENOSPC);
                    status = change(what);
                }
                if (status == 1)
                    break;  // it needs fewer writes
                EXPECT_EQ(E_RCPageWrite, status);
                expectAsBefore();
                EXPECT_EQ(1, change(what));
                ASSERT_LT(number, 50);
            }
        }
    }
}

TEST_F(CachedTableTest, TheStatementSaysThatARowIsNotStored) {
    open({column("k", E_RDTInt, KEY), column("n", E_RDTInt)}, ON_DISK);
    insert({{"k", 1}, {"n", 1}});
    CZelUpdate update(target(), nullptr, nullptr);
    update.RUAddAssignment("n", std::make_unique<CZelAtom>(2).get());
    CZelDelete erase(target(), nullptr);
    CZelDbEntity entity("d", "t", nullptr);
    for (int step = 0; step < 4; ++step) {
        const FailingFiles files(FailingFiles::WRITE, 1, ENOSPC);
        const std::unique_ptr<CZelRecord> row(record({{"k", 2}}));
        EZelStoreErrorStatus status = E_RSEOk;
        if (step == 0)
            m_store.RSInsert(row.get(), &entity, &status, E_RBTrue);
        else if (step == 1)
            m_store.RSUpdate(&update, &status);
        else if (step == 2)
            m_store.RSUpdate(row.get(), nullptr, &entity, &status);
        else
            m_store.RSDelete(&erase, &status);
        EXPECT_EQ(E_RSEUpdateFailed, status) << step;
    }
    EXPECT_EQ(Texts{"k=1 n=1"}, rows());
}

TEST_F(CachedTableTest, ARowThatCantBeReadIsPassedOver) {
    open({column("k", E_RDTInt, KEY), column("n", E_RDTInt)}, ON_DISK);
    for (int i = 0; i < 3; ++i)
        insert({{"k", i}, {"n", i}});
    m_reports.Clear();
    {
        const FailingFiles files(FailingFiles::READ, 2);
        EXPECT_EQ((Texts{"k=0 n=0", "k=2 n=2"}), rows());
    }
    EXPECT_TRUE(m_reports.Holds(E_RCBadArgument));
    {
        const FailingFiles files(FailingFiles::READ, 2);
        EXPECT_EQ((Texts{"k=0 n=0", "k=2 n=2"}), select(leaf(col("n"), E_ROGreaterEqual, val(0))));
    }
    {
        const FailingFiles files(FailingFiles::READ, 2);
        EXPECT_EQ((Texts{"k=0 n=0", "k=2 n=2"}),
                  sorted(select(both(leaf(col("n"), E_ROGreaterEqual, val(0)), above("n", -1)))));
    }
    {
        const FailingFiles files(FailingFiles::READ, 2);  // what is not found is in the complement, and read again
        EXPECT_EQ((Texts{"k=1 n=1", "k=2 n=2"}), sorted(select(negated(where("n", 0)))));
    }
    {
        const FailingFiles files(FailingFiles::READ, 2);  // and so it counts
        const std::unique_ptr<CZelFilter> others(negated(where("n", 0)));
        EXPECT_EQ(2, m_table->RTCountRows(others.get()));
    }
    {
        const FailingFiles files(FailingFiles::READ, 1);
        EXPECT_EQ(1, update({{"n", 9}}, where("k", 0)));
    }
    EXPECT_EQ((Texts{"k=0 n=0", "k=1 n=1", "k=2 n=2"}), rows());
}

// --- a start ---

TEST_F(CachedTableTest, RowsComeBackAndTheirIndexesToo) {
    for (const CacheKind &kind : CACHE_KINDS) {
        open({column("k", E_RDTInt, KEY), column("s", E_RDTText)}, kind);
        EXPECT_EQ(E_RBFalse, m_table->RTGetInitialisedFromDisk());
        for (int i = 0; i < 30; ++i)
            insert({{"k", i}, {"s", std::string(static_cast<std::size_t>(i * 60), 'x').c_str()}});
        erase(above("k", 24));
        update({{"s", "changed"}}, where("k", 20));
        Texts before = rows();
        open({column("k", E_RDTInt, KEY), column("s", E_RDTText)}, kind);
        Texts after = rows();
        std::sort(before.begin(), before.end());
        std::sort(after.begin(), after.end());
        EXPECT_EQ(kind.isPersistent ? before : Texts(), after) << kind.name;
        EXPECT_EQ(ZelBool(kind.isPersistent), m_table->RTGetInitialisedFromDisk());
        EXPECT_EQ(kind.isPersistent ? 1U : 0U, select(where("k", 20)).size());
        EXPECT_EQ(kind.isPersistent ? E_RCKeyExists : 1, insert({{"k", 3}}));
        m_table->RTDropTable();
    }
}

// Rows that came, changed and went in random order over several lives, found again by each of the indexes.
TEST_F(CachedTableTest, IndexesAreThoseOfTheRowsInEveryLife) {
    for (const CacheKind &kind : CACHE_KINDS) {
        if (!kind.isPersistent)
            continue;
        TestRandom random;
        const auto name = [&random] { return "name" + std::to_string(random.below(60)); };
        for (int life = 0; life < 6; ++life) {
            open({column("k", E_RDTInt, KEY), column("u", E_RDTText, UNIQUE), column("g", E_RDTInt)}, kind);
            addIndex(*m_table, "g");
            const Texts all = rows();
            for (const Texts &part : {select(leaf(col("k"), E_ROGreaterEqual, val(0))),
                                      select(either(leaf(col("u"), E_ROGreater, val("")), isNull("u"))),
                                      select(leaf(col("g"), E_ROLess, val(9)))})
                EXPECT_EQ(sorted(all), sorted(part)) << kind.name << " in life " << life;
            for (int step = 0; step < 150; ++step) {
                const int k = static_cast<int>(random.below(60)), g = static_cast<int>(random.below(9));
                const int status = random.oneIn(4)   ? erase(where("k", k))
                                   : random.oneIn(2) ? update({{"g", g}, {"u", name().c_str()}}, where("k", k))
                                   : random.oneIn(3) ? insert({{"k", k}, {"g", g}})
                                                     : insert({{"k", k}, {"g", g}, {"u", name().c_str()}});
                static_cast<void>(status);  // of a taken key or a row that is not there
            }
        }
        m_table->RTDropTable();
    }
}

// A file that is read in parts: an index holds the rows of each value in the order of their handles, be it made over
// rows that have moved, lie in memory or take several pages, or at a start.
TEST_F(CachedTableTest, IndexesOfALargeTableHoldTheRowsInTheirOrder) {
    constexpr int ROWS = 9000, GROUPS = 40;
    const auto define = [this](const CacheKind &kind, int roleOfU) {
        open({column("k", E_RDTInt, KEY), column("u", E_RDTText, roleOfU), column("g", E_RDTInt),
              column("s", E_RDTText)},
             kind);
    };
    const auto compare = [this](const CacheKind &kind) {
        std::map<std::string, Texts> groups;
        for (const std::string &row : rows())
            groups[row.substr(row.find(" g="), row.find(" s=") - row.find(" g="))].push_back(row);
        for (int g = 0; g < GROUPS; ++g)
            EXPECT_EQ(groups[" g=" + std::to_string(g)], select(where("g", g))) << kind.name;
    };
    for (const CacheKind &kind : CACHE_KINDS) {
        TestRandom random;
        define(kind, 0);
        const auto text = [&random] { return std::string(random.below(random.oneIn(6) ? 1500 : 400), 'x'); };
        for (int i = 0; i < ROWS; ++i)
            insert({{"k", i},
                    {"u", std::to_string(i % (ROWS - 1)).c_str()},
                    {"g", i * 7 % GROUPS},
                    {"s", text().c_str()}});
        for (int i = 0; i < ROWS / 8; ++i)
            update({{"s", text().c_str()}}, where("k", static_cast<int>(random.below(ROWS))));
        addIndex(*m_table, "g");
        compare(kind);
        if (kind.isPersistent) {
            define(kind, UNIQUE);  // one row too many
            EXPECT_EQ(ROWS - 1, m_table->RTTotalRecordCount());
            EXPECT_EQ(1U, select(where("u", "0")).size());
            addIndex(*m_table, "g");
            compare(kind);
        }
        m_table->RTDropTable();
    }
}

TEST_F(CachedTableTest, AKeyOfADefinitionThatHasChangedKeepsTheFirstRow) {
    open({column("a", E_RDTInt), column("b", E_RDTInt)}, IN_MEMORY);
    for (const auto &[a, b] : {std::pair(1, 1), {1, 2}, {1, 1}, {2, 1}, {2, 1}, {2, 2}})
        insert({{"a", a}, {"b", b}});
    insert({{"b", 7}});
    open({column("a", E_RDTInt), column("b", E_RDTInt), keyOf({"a", "b"})}, IN_MEMORY);
    const Texts composite = {"a=1 b=1", "a=1 b=2", "a=2 b=1", "a=2 b=2", "b=7"};
    EXPECT_EQ(composite, rows());
    EXPECT_TRUE(m_reports.Holds(E_RCKeyExists));
    open({column("a", E_RDTInt), column("b", E_RDTInt)}, IN_MEMORY);  // they are gone from the file
    EXPECT_EQ(composite, rows());
    open({column("a", E_RDTInt, KEY), column("b", E_RDTInt)}, IN_MEMORY);
    EXPECT_EQ((Texts{"a=1 b=1", "a=2 b=1", "b=7"}), rows());
    EXPECT_EQ(E_RCKeyExists, insert({{"a", 2}, {"b", 5}}));
}

TEST_F(CachedTableTest, ATableThatCantHaveItsFileTakesNoRows) {
    std::filesystem::remove_all(m_home.folder());
    open({column("k", E_RDTInt, KEY)}, IN_MEMORY);
    EXPECT_TRUE(m_reports.Holds(E_RCOpenFailed, "Failed to create proportional cache"));
    EXPECT_EQ(E_RBTrue, m_table->RTIsCacheUsed());
    EXPECT_NE(1, insert({{"k", 1}}));
    EXPECT_EQ(E_RCNotFound, update({{"k", 1}}, nullptr));
    EXPECT_EQ(E_RCNotFound, erase(nullptr));
    EXPECT_EQ(Texts(), rows());
    EXPECT_EQ(0, m_table->RTTotalRecordCount());
}

TEST_F(CachedTableTest, ACacheNeedsANameAndComesOnce) {
    close();
    m_table = parsed({column("k", E_RDTInt)});
    m_store.RSAddTbl(m_table, E_RBTrue);
    m_table->RTCacheMe(new CZelAtom(static_cast<const char *>(nullptr)), 1.0F, E_RBTrue);
    EXPECT_TRUE(m_reports.Holds(E_RCBadArgument, "Failed to create proportional cache"));
    m_table->RTCacheMe(new CZelAtom("app"), 1.0F, E_RBTrue);
    EXPECT_EQ(Texts(), m_home.files());
}

}  // namespace
