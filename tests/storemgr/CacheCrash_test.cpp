// Persistent tables of a process that is killed at any change to their files, also while it starts: each row is found
// in the form of before or after the statement under way, none is lost, doubled or mixed.
//
// Scripts are random, the seed is printed. QUINTOR_CRASH_SCRIPTS sets how many there are; each is killed at every
// change that it makes.
#include <sys/mman.h>
#include <sys/wait.h>

#include <map>
#include <string>
#include <vector>

#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/port/CZelErrorCapture.h"
#include "foundations/port/ZelCodes.h"
#include "tests/support/CacheHome.h"
#include "tests/support/KillingFiles.h"
#include "tests/support/OqlFixture.h"
#include "tests/support/TestRandom.h"

namespace {

using Rows = std::map<std::string, std::string>;  // table and id -> the row

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int SCRIPTS = 1;
#else
constexpr int SCRIPTS = 20;
#endif
constexpr int STATEMENTS = 14;
constexpr int IDS = 5;

const char TABLES[] =
    "create database d;"
    "create table d.p (id int, a int, s text);"
    "create table d.u (id int not null primary key, a int, s text);"
    "create table d.c (id int not null, a int not null, s text, primary key (id, a));";
const char *const NAMES[] = {"d.p", "d.u", "d.c"};

int scripts() {
    const char *given = std::getenv("QUINTOR_CRASH_SCRIPTS");
    return given != nullptr ? std::atoi(given) : SCRIPTS;
}

// Of one to nine pages, unlike every other.
std::string someText(TestRandom &random, int step) {
    return std::to_string(step) +
           std::string(random.oneIn(2) ? 20 : random.below(9 * 460), static_cast<char>('a' + step));
}

// An id stands in each table once at most, so that it names the row.
std::vector<std::string> makeScript(TestRandom &random) {
    std::vector<std::string> script;
    bool isThere[3][IDS] = {};
    for (int step = 0; step < STATEMENTS; ++step) {
        const unsigned table = random.below(3), id = random.below(IDS);
        const std::string name = NAMES[table], which = " where id = " + std::to_string(id) + ";";
        if (!isThere[table][id])
            script.push_back("insert into " + name + " (id, a, s) values (" + std::to_string(id) + ", 0, '" +
                             someText(random, step) + "');");
        else if (random.oneIn(4))
            script.push_back("delete from " + name + which);
        else if (random.oneIn(6))
            script.push_back("update " + name + " set s = '" + someText(random, step) + "';");
        else
            script.push_back("update " + name + " set s = '" + someText(random, step) + "'" + which);
        isThere[table][id] = script.back()[0] != 'd';
    }
    return script;
}

Rows rowsOf(CZelStoreMgr &store) {
    Rows rows;
    for (const char *name : NAMES) {
        CZelBag *found = nullptr;
        store.RSMProcessOQLGetRecs((std::string("select * from ") + name + ";").c_str(), &found, nullptr, nullptr);
        const CZelBagGuard<CZelRecord> owner(found);
        for (CZelPointer *node = found->RBFirst(); node != nullptr; node = CZelBag::RBNext(node)) {
            const auto &record = *static_cast<const CZelRecord *>(node->RPData());
            const std::string key = name + std::to_string(record.RRValueOf("id")->RAInt());
            EXPECT_TRUE(rows.emplace(key, record.RRValueOf("s")->RAString()).second) << "doubled: " << key;
        }
    }
    return rows;
}

void run(CZelStoreMgr &store, const std::string &text) {
    store.RSMProcessOQL(text.c_str(), nullptr, nullptr, nullptr);
}

// The rows before the first statement and after each.
std::vector<Rows> statesOf(const std::vector<std::string> &script) {
    CZelStoreMgr store(static_cast<CZelEngine *>(nullptr), nullptr);
    run(store, TABLES);
    std::vector<Rows> states = {rowsOf(store)};
    for (const std::string &statement : script) {
        run(store, statement);
        states.push_back(rowsOf(store));
    }
    return states;
}

// What a killed process leaves for its parent to see: how many statements it had finished.
class Progress {
public:
    Progress()
        : m_done(static_cast<volatile int *>(
              mmap(nullptr, sizeof(int), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0))) {}
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;
    ~Progress() { munmap(const_cast<int *>(m_done), sizeof(int)); }
    void set(int done) { *m_done = done; }
    int get() const { return *m_done; }

private:
    volatile int *m_done;
};

class CacheCrash : public testing::TestWithParam<CacheKind> {
protected:
    // A process of its own that starts the store and goes through the script, to be killed at that change. Was it?
    bool runKilled(const std::vector<std::string> &script, long change) {
        m_progress.set(0);
        const pid_t child = fork();
        if (child == 0) {
            KillingFiles files(change);
            const CZelErrorCapture quiet;
            const auto store = CacheHome::open(GetParam());
            run(*store, TABLES);
            for (std::size_t i = 0; i < script.size(); ++i) {
                run(*store, script[i]);
                m_progress.set(static_cast<int>(i) + 1);
            }
            _exit(0);
        }
        int status = 0;
        waitpid(child, &status, 0);
        return WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
    }

    static void expectWhole(const Rows &before, const Rows &after, const std::string &where) {
        const CZelErrorCapture quiet;
        const auto store = CacheHome::open(GetParam());
        run(*store, TABLES);
        const Rows found = rowsOf(*store);
        for (const auto &[key, row] : found)
            ASSERT_TRUE(isRow(before, key, row) || isRow(after, key, row)) << where << ": mixed or risen " << key;
        for (const auto &[key, row] : before)
            ASSERT_TRUE(found.count(key) == 1 || after.count(key) == 0) << where << ": lost " << key;
        EXPECT_FALSE(quiet.Holds(E_RCKeyExists));
    }
    static bool isRow(const Rows &rows, const std::string &key, const std::string &row) {
        const auto place = rows.find(key);
        return place != rows.end() && place->second == row;
    }

    void crashEverywhere(const std::vector<std::string> &script, TestRandom &random) {
        const std::vector<Rows> states = statesOf(script);
        for (long change = 1;; ++change) {
            m_home.empty();
            if (!runKilled(script, change))
                return;
            const auto done = static_cast<std::size_t>(m_progress.get());
            if (random.oneIn(3))
                runKilled({}, 1 + static_cast<long>(random.below(3)));  // while it starts again
            ++m_points;
            ASSERT_NO_FATAL_FAILURE(expectWhole(states[done], states[std::min(done + 1, states.size() - 1)],
                                                "change " + std::to_string(change)));
        }
    }

    CacheHome m_home;
    Progress m_progress;
    int m_points = 0;
};

TEST_P(CacheCrash, AKillAtAnyChangeLosesNothing) {
    TestRandom random;
    for (int i = 0; i < scripts(); ++i)
        ASSERT_NO_FATAL_FAILURE(crashEverywhere(makeScript(random), random));
    RecordProperty("points", m_points);
    std::printf("%d kills\n", m_points);
}

std::vector<CacheKind> persistentKinds() {
    std::vector<CacheKind> kinds;
    for (const CacheKind &kind : CACHE_KINDS)
        if (kind.isPersistent)
            kinds.push_back(kind);
    return kinds;
}

INSTANTIATE_TEST_SUITE_P(Kinds, CacheCrash, testing::ValuesIn(persistentKinds()), kindName);

}  // namespace
