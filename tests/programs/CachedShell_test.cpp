// The shell with cached tables: found again at the next start, told, and not taken from another process.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "port/ScratchDirectory.h"
#include "programs/ShellRun.h"
#include "store/CZelPageFile.h"

namespace {

const char TABLE[] = "create database d; create table d.t (k int not null primary key, s text);";

class CachedShell : public testing::Test {
protected:
    ShellRun run(std::vector<std::string> words) {
        words.insert(words.begin(), {"-cache", "app", "-persistent", "-root", m_root.Path("root"), "-format", "json"});
        return runShell(std::move(words));
    }
    static bool says(const std::string &all, const std::string &text) { return all.find(text) != std::string::npos; }

    ScratchDirectory m_root;
};

}  // namespace

TEST_F(CachedShell, FindsItsTablesAgain) {
    ShellRun first = run({"-c", TABLE, "-c", "insert into d.t (k, s) values (1, 'one');"});
    EXPECT_EQ(0, first.exitCode) << first.err;
    EXPECT_FALSE(says(first.err, "recovered"));
    ShellRun second = run({"-sync", "full", "-c", TABLE, "-c", "select * from d.t;", "-c", ".cache"});
    EXPECT_EQ(0, second.exitCode) << second.err;
    EXPECT_TRUE(says(second.err, "oql: recovered d.t: 1 row\n")) << second.err;
    EXPECT_TRUE(says(second.out, R"("rows":[{"k":1,"s":"one"}])")) << second.out;
    EXPECT_TRUE(says(second.out, R"("PagesUsed":1,"PagesFree":49,"PagesOutOfUse":0)")) << second.out;
    ShellRun other = run({"-domain", "OTHER", "-c", TABLE, "-c", "select * from d.t;"});
    EXPECT_TRUE(says(other.out, R"("rows":[])")) << other.out;
}

// Whatever is in memory, a dump has every row, and is read back.
TEST_F(CachedShell, ADumpHasTheRowsOfCachedTables) {
    const std::string dump = m_root.Path("dump.oql");
    for (const char *share : {"0", "0.5", "1"}) {
        ShellRun written = run({"-share", share, "-domain", share, "-c", TABLE, "-c",
                                "insert into d.t (k, s) values (1, 'one'); insert into d.t (k, s) values (2, 'two');",
                                "-c", ".dump " + dump});
        EXPECT_EQ(0, written.exitCode) << written.err;
        ShellRun back = runShell({"-schema", dump, "-format", "oql", "-c", "select * from d.t;"});
        EXPECT_EQ("{k=1, s='one'}\n{k=2, s='two'}\n", back.out) << share;
    }
}

// Rows that a schema file brings are those of the first start.
TEST_F(CachedShell, TablesOfSchemaFilesHaveCachesToo) {
    const std::string schema =
        m_root.Write("schema.oql", std::string(TABLE) + "\ninsert into d.t (k, s) values (1, 'one');\n");
    EXPECT_EQ(0, run({"-schema", schema, "-c", "update d.t set s = 'two';"}).exitCode);
    ShellRun again = run({"-schema", schema, "-c", "select * from d.t;"});
    EXPECT_EQ(0, again.exitCode) << again.err;
    EXPECT_TRUE(says(again.err, "oql: recovered d.t: 1 row\n")) << again.err;
    EXPECT_TRUE(says(again.out, R"("rows":[{"k":1,"s":"two"}])")) << again.out;
}

TEST_F(CachedShell, AFileInUseIsToldWithItsOwner) {
    EXPECT_EQ(0, run({"-c", TABLE, "-c", "insert into d.t (k, s) values (1, 'one');"}).exitCode);
    CZelPageFile file;
    ASSERT_EQ(1, file.open(m_root.Path("root/var/solvantis/app.Cache.d.t.LOCAL").c_str(), true));
    ShellRun refused = run({"-c", TABLE, "-c", "insert into d.t (k, s) values (2, 'two');"});
    EXPECT_EQ(1, refused.exitCode);
    EXPECT_TRUE(says(refused.out, "is in use by process " + std::to_string(getpid()))) << refused.out;
    EXPECT_TRUE(says(refused.out, R"("status":13)")) << refused.out;
    ASSERT_EQ(1, file.close());
    EXPECT_TRUE(says(run({"-c", TABLE, "-c", "select k from d.t;"}).out, R"("rows":[{"k":1}])"));
}

TEST_F(CachedShell, OptionsThatDoNotFitAreWrongUsage) {
    for (const std::vector<std::string> &words : {std::vector<std::string>{"-persistent"},
                                                  {"-share", "0.5"},
                                                  {"-cache", "a", "-root", "/tmp"},
                                                  {"-cache", "a", "-share", "1.5"},
                                                  {"-cache", "a", "-share", "nan"},
                                                  {"-cache", "a", "-bytes", "-1"},
                                                  {"-cache", "a", "-bytes", "10", "-share", "0.1", "-root", "/tmp"},
                                                  {"-sync", "often"}}) {
        const ShellRun refused = runShell(words);
        EXPECT_EQ(2, refused.exitCode) << words[0];
        EXPECT_TRUE(says(refused.err, "Usage: oql")) << refused.err;
    }
}
