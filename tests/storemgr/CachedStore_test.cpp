// Stores with record caches: whatever is kept in memory, they answer as a store in memory does.
#include <gtest/gtest.h>

#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/base/CZelUChar.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/CZelErrorCapture.h"
#include "foundations/port/ZelCodes.h"
#include "oql/CZelDbEntity.h"
#include "store/CZelRecordCache.h"
#include "store/CZelTable.h"
#include "tests/support/CacheHome.h"
#include "tests/support/OqlFixture.h"
#include "tests/support/TestRandom.h"

namespace {

using Texts = std::vector<std::string>;

// What a text answers with.
struct Answer {
    Texts rows;
    EZelStoreErrorStatus status = E_RSEOk;
    std::vector<int> codes;  // of its reports
};

std::string textOf(const CZelRecord &record) {
    std::string text;
    const CZelVBList *values = record.RRVbIterator();
    for (const CZelVarBind *pair = values->RVBLHead(); pair != nullptr; pair = values->RVBLGetNext(pair))
        text += std::string(CZelMallocText(pair->RVBVbAsString()).get()) + " ";
    return text;
}

Answer ask(CZelStoreMgr &store, const std::string &oql, bool asRecords = true) {
    Answer answer;
    const CZelErrorCapture reports;
    CZelBag *bag = nullptr;
    if (asRecords) {
        store.RSMProcessOQLGetRecs(oql.c_str(), &bag, &answer.status, nullptr);
        const CZelBagGuard<CZelRecord> owner(bag);
        for (CZelPointer *node = bag != nullptr ? bag->RBFirst() : nullptr; node != nullptr;
             node = CZelBag::RBNext(node))
            answer.rows.push_back(textOf(*static_cast<const CZelRecord *>(node->RPData())));
    } else {
        store.RSMProcessOQL(oql.c_str(), &bag, &answer.status, nullptr);
        const CZelBagGuard<CZelAtom> owner(bag);
        for (CZelPointer *node = bag != nullptr ? bag->RBFirst() : nullptr; node != nullptr;
             node = CZelBag::RBNext(node)) {
            const CZelUChar &block = *static_cast<const CZelAtom *>(node->RPData())->RAUChar();
            CZelRecord record;
            record.ROMDecode(block.RUCData(), block.RUCLength());
            answer.rows.push_back(textOf(record));
        }
    }
    for (const SZelReport &report : reports.Reports())
        answer.codes.push_back(report.m_code);
    return answer;
}

Texts sorted(Texts rows) {
    std::sort(rows.begin(), rows.end());
    return rows;
}

const char TABLES[] =
    "create database d;"
    "create table d.t (k int not null primary key, u int, n int, s text, l list type int, unique (u));"
    "create table d.c (a int not null, b int not null, v int, w text, primary key (a, b));";

// Statements over the two tables.
class Writer {
public:
    explicit Writer(TestRandom &random) : m_random(random) {}

    std::string statement() {
        switch (m_random.below(16)) {
            case 0:
                return "update d.t set k = " + number() + " where " + condition(1) + ";";
            case 1:
                return "update d.t set u = " + orNull() + ", n = 7 where k = " + number() + ";";
            case 2:
                return "update d.t set n = " + orNull() + ", s = " + text() + " where " + condition(2) + ";";
            case 3:
                return "update d.c set a = " + number(4) + " where b = " + number(4) + ";";
            case 4:
                return "update d.c set a = " + number(4) + ", b = " + number(4) + ", w = " + text() +
                       " where a = " + number(4) + " and b = " + number(4) + ";";
            case 5:
                return "delete from d.t where " + condition(2) + ";";
            case 6:
                return "delete from d.c where a = " + number(4) + " or v > " + number() + ";";
            case 7:
                return "insert into d.t unique (n, s) (k, n, s) values (" + number() + ", 3, 'x');";
            case 8:
                return m_random.oneIn(2) ? "create index i on d.t (n, s);" : "drop index i;";
            case 9:
            case 10:
            case 11:
                return "insert into d.c (a, b, v, w) values (" + number(4) + ", " + number(4) + ", " + orNull() + ", " +
                       text() + ");";
            default:
                return "insert into d.t (k, u, n, s, l) values (" + number() + ", " + orNull() + ", " + orNull() +
                       ", " + text() + ", [" + number() + ", " + number() + "]);";
        }
    }

    std::string query() {
        switch (m_random.below(6)) {
            case 0:
                return "select * from d.c where a = " + number(4) + " and v <> " + number() + ";";
            case 1:
                return "select count(*) from d.t where " + condition(2) + ";";
            case 2:
                return "select n, s from d.t where k in ((select v from d.c where b < " + number(4) + "));";
            default:
                return "select * from d.t where " + condition(3) + ";";
        }
    }

private:
    std::string number(unsigned below = 30) { return std::to_string(m_random.below(below)); }
    std::string orNull() { return m_random.oneIn(5) ? "null" : number(); }

    // Now and then of some pages.
    std::string text() {
        const unsigned length = m_random.oneIn(8) ? m_random.below(4000) : m_random.below(5);
        return "'" + std::string(length, static_cast<char>('a' + m_random.below(3))) + "'";
    }

    std::string condition(int depth) {
        if (depth == 0 || m_random.oneIn(3))
            return comparison();
        const std::string left = condition(depth - 1);
        switch (m_random.below(3)) {
            case 0:
                return "not (" + left + ")";
            case 1:
                return "(" + left + ") and (" + condition(depth - 1) + ")";
            default:
                return "(" + left + ") or (" + condition(depth - 1) + ")";
        }
    }

    std::string comparison() {
        const std::string some = number();
        const std::string all[] = {"k = " + some,
                                   "k >= " + some,
                                   "u <> " + some,
                                   "u is null",
                                   "n < " + some,
                                   some + " > n",
                                   "n = u",
                                   "k not in [" + some + ", 1, 2]",
                                   "k in [" + some + ", 3, 4, 5]",
                                   "n in [" + some + ", 3, 4, 5]",
                                   "n between 5 and " + some,
                                   "s like 'a%'",
                                   "l(any) > " + some,
                                   "l(0) = " + some,
                                   "1 = 1"};
        return all[m_random.below(std::size(all))];
    }

    TestRandom &m_random;
};

class CachedStoreTest : public testing::TestWithParam<CacheKind> {
protected:
    // A row that is larger than what may be in memory finds none to put out, which is told (E_RCBadArgument).
    static std::vector<int> told(std::vector<int> codes) {
        if (GetParam().isBySize)
            std::erase(codes, E_RCBadArgument);
        return codes;
    }

    void restart() {
        m_cached.reset();
        m_cached = CacheHome::open(GetParam());
        const Answer answer = ask(*m_cached, TABLES);
        EXPECT_EQ(E_RSEOk, answer.status);
        EXPECT_EQ(std::vector<int>(), told(answer.codes));
    }

    static CZelTable &table(CZelStoreMgr &store, const char *name) {
        CZelDbEntity entity("d", name, nullptr);
        return *store.RSMGetTable(&entity);
    }

    CacheHome m_home;
    std::unique_ptr<CZelStoreMgr> m_cached = CacheHome::open(GetParam());
};

TEST_P(CachedStoreTest, RandomStatementsGiveWhatAStoreInMemoryGives) {
    TestRandom random;
    Writer writer(random);
    CZelStoreMgr plain(static_cast<CZelEngine *>(nullptr), nullptr);
    ask(plain, TABLES);
    ask(*m_cached, TABLES);
    for (int i = 0; i < 1200 && !HasFailure(); ++i) {
        const std::string oql = random.oneIn(3) ? writer.query() : writer.statement();
        const bool asRecords = random.oneIn(2);
        const Answer expected = ask(plain, oql, asRecords), found = ask(*m_cached, oql, asRecords);
        EXPECT_EQ(sorted(expected.rows), sorted(found.rows)) << oql;
        EXPECT_EQ(expected.status, found.status) << oql;
        EXPECT_EQ(told(expected.codes), told(found.codes)) << oql;
        if (!GetParam().isPersistent || !random.oneIn(150))
            continue;
        restart();
        ask(plain, "drop index i;");
    }
    for (const char *query : {"select * from d.t;", "select * from d.c;", "select * from d.c where a < 3;"})
        EXPECT_EQ(sorted(ask(plain, query).rows), sorted(ask(*m_cached, query).rows));
}

TEST_P(CachedStoreTest, WalksAnswerInTheOrderOfInsertion) {
    CZelStoreMgr plain(static_cast<CZelEngine *>(nullptr), nullptr);
    for (CZelStoreMgr *store : {&plain, m_cached.get()}) {
        ask(*store, TABLES);
        for (int i = 0; i < 60; ++i) {
            const std::string k = std::to_string(i * 7 % 60), n = std::to_string(i % 5);
            ask(*store, "insert into d.t (k, n, s) values (" + k + ", " + n + ", 'row " + k + "');");
        }
        ask(*store, "update d.t set s = '" + std::string(1500, 's') + "' where n = 3; delete from d.t where n = 4;");
    }
    for (const char *query : {"select * from d.t;", "select s from d.t where n <> 2;",
                              "select k from d.t where k > 30;", "select k from d.t where s like 's%';"})
        EXPECT_EQ(ask(plain, query).rows, ask(*m_cached, query).rows) << query;
    EXPECT_EQ((Texts{"k=7 ", "k=21 ", "k=30 "}), ask(*m_cached, "select k from d.t where k in (30, 7, 21, 99);").rows);
}

// The copies that a join takes out of the caches are all given back, those of no result too.
TEST_P(CachedStoreTest, JoinsAndIntoAnswerAsInMemory) {
    CZelStoreMgr plain(static_cast<CZelEngine *>(nullptr), nullptr);
    for (CZelStoreMgr *store : {&plain, m_cached.get()}) {
        ask(*store, TABLES);
        ask(*store, "create table d.found (k int, v int); create index n on d.t (n);");
        for (int i = 0; i < 30; ++i) {
            const std::string k = std::to_string(i), n = std::to_string(i % 5);
            ask(*store, "insert into d.t (k, n, s) values (" + k + ", " + n + ", 'row " + k + "');");
            ask(*store, "insert into d.c (a, b, v, w) values (" + n + ", " + k + ", " + k + ", 'w');");
        }
        ask(*store, "select d.t.k, d.c.v into d.found from d.t, d.c where d.t.n = d.c.a and d.c.v > 20;");
    }
    for (const char *query :
         {"select d.t.k, d.c.v from d.t, d.c where d.t.n = d.c.a and d.t.k < 7;",
          "select d.t.k, d.c.v from d.c, d.t where d.t.n = d.c.a and not d.c.v = 3;",
          "select * from d.t, d.c where d.t.k = d.c.b;", "select count(*) from d.t, d.c;",
          "select d.t.k, d.c.b from d.t, d.c where d.t.k = d.c.b and d.t.k in ((select v from d.c where v < 9));",
          "select d.c.b from d.t, d.c where d.t.k = d.c.b and d.t.s = 'none' or d.t.k is null;",
          "select k from d.t where k in ((select b from d.c where v > 15));", "select * from d.found;"}) {
        for (const bool asRecords : {false, true}) {
            const Answer expected = ask(plain, query, asRecords), found = ask(*m_cached, query, asRecords);
            EXPECT_EQ(sorted(expected.rows), sorted(found.rows)) << query;
            EXPECT_EQ(expected.status, found.status) << query;
        }
    }
    EXPECT_LT(10U, ask(plain, "select * from d.found;").rows.size());
}

TEST_P(CachedStoreTest, WhatIsInMemoryStaysWithinTheLimit) {
    ask(*m_cached, TABLES);
    for (int i = 0; i < 50; ++i)
        ask(*m_cached, "insert into d.t (k, s) values (" + std::to_string(i) + ", '" + std::string(100, 'x') + "');");
    const SZelCacheUse use = table(*m_cached, "t").RTCacheUse();
    EXPECT_EQ(50, use.m_rows);
    const unsigned long long row = use.m_bytes / 50;
    const auto share = static_cast<unsigned long long>(static_cast<float>(use.m_bytes) * GetParam().share);
    const unsigned long long limit = GetParam().isBySize ? GetParam().bytes : share;
    EXPECT_LE(use.m_inCoreBytes, limit == 0 ? 0 : limit + row);
    EXPECT_EQ(limit == 0, use.m_inCoreBytes == 0);
    EXPECT_EQ((GetParam().isPersistent || use.m_inCoreBytes < use.m_bytes), (use.m_pages.m_used > 0));
}

TEST_P(CachedStoreTest, AFileIsGoneWithItsTable) {
    ask(*m_cached, TABLES);
    ask(*m_cached, "insert into d.t (k, s) values (1, 'x'); insert into d.c (a, b) values (1, 1);");
    const bool hasFile = GetParam().isPersistent || GetParam().isBySize || GetParam().share < 1.0F;
    EXPECT_EQ(hasFile ? (Texts{"app.Cache.d.c.LOCAL", "app.Cache.d.t.LOCAL"}) : Texts(), m_home.files());
    EXPECT_EQ(std::vector<int>(), ask(*m_cached, "drop table d.t;").codes);
    EXPECT_EQ(hasFile ? Texts{"app.Cache.d.c.LOCAL"} : Texts(), m_home.files());
    ask(*m_cached, "create table d.t (k int);");
    EXPECT_EQ(Texts(), ask(*m_cached, "select * from d.t;").rows);
    EXPECT_EQ(std::vector<int>(), ask(*m_cached, "drop database d;").codes);
    EXPECT_EQ(Texts(), m_home.files());
}

INSTANTIATE_TEST_SUITE_P(Kinds, CachedStoreTest, testing::ValuesIn(CACHE_KINDS), kindName);

}  // namespace
