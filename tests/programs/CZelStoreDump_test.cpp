#include "programs/oql/CZelStoreDump.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <sstream>

#include "foundations/base/ZelEscape.h"
#include "oql/CZelSchema.h"
#include "programs/oql/CZelNewFile.h"
#include "programs/oql/CZelResult.h"
#include "programs/oql/CZelStatementStore.h"
#include "programs/oql/ZelValueText.h"
#include "tests/port/ScratchDirectory.h"

namespace {

std::string readFile(const std::string &path) {
    std::stringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

class StoreDumpTest : public testing::Test {
protected:
    void SetUp() override { ZelSetEscape(false); }
    void TearDown() override { ZelSetEscape(false); }

    static void run(CZelStatementStore &store, const std::string &text) {
        CZelResult result;
        store.Run(text.c_str(), result);
        EXPECT_FALSE(result.HasFailed()) << text;
    }

    std::string dump(CZelStatementStore &store) {
        std::string text;
        CZelStoreDump writer(store, [&text](std::string_view more) { text += more; });
        writer.WriteAll("x");
        m_problems = writer.Problems();
        return text.substr(text.find("set escape off;"));
    }

    // The store is the same again when it was read from its dump, as statements and as a schema.
    void expectReadsBack(CZelStatementStore &store) {
        std::string text = dump(store);
        EXPECT_TRUE(m_problems.empty());
        CZelStatementStore again;
        CZelSchema schema;
        ASSERT_EQ(1, schema.RSParseSchemaString(text.c_str())) << text;
        again.RSMConsumeSchema(schema);
        EXPECT_EQ(text, dump(again));
        for (const char *query : {"select * from d.t;", "show table d.t;"})
            EXPECT_EQ(rows(store, query), rows(again, query)) << query;
    }

    static std::string rows(CZelStatementStore &store, const char *query) {
        CZelResult result;
        store.Run(query, result);
        std::string text;
        for (const std::unique_ptr<CZelRecord> &row : result.Rows())
            text += ZelRowLiteral(*row) + "\n";
        return text;
    }

    CZelStatementStore m_store;
    std::vector<SZelReport> m_problems;
};

TEST_F(StoreDumpTest, DefinitionsKeepAllTheirConstraints) {
    run(m_store, "create database d;");
    run(m_store,
        "create table d.t (k int, j int, u text not null unique, w int not null primary key default 3, x float,"
        " o object type list type object type text default {a=['x']}, c int default 1, s time, h long64 default -5,"
        " z whatever, unique (x), primary key (k, j), counter (c), timestamp (s));");
    run(m_store, "create index i on d.t (c, h); create index n on d.t (o);");
    expectReadsBack(m_store);
}

TEST_F(StoreDumpTest, RowsComeBackInOrderWithEveryKindOfValue) {
    run(m_store,
        "create database d; create table d.t (a int, b long64, c float, s text, l list type list type int, o object "
        "type text);");
    run(m_store, "insert into d.t (a, b, c, s, l, o) values (2, 9223372036854775807, 0.1, 'x', [[1],[]], {m='n'});");
    run(m_store, "insert into d.t (a, b, c) values (1, -9223372036854775808, -1.0e-30);");
    run(m_store, "insert into d.t (l, o) values ([], {});");
    expectReadsBack(m_store);
}

TEST_F(StoreDumpTest, TextsNeedNoCareFromTheirWriter) {
    run(m_store, "create database d; create table d.t (s text);");
    ZelSetEscape(true);
    run(m_store, R"(insert into d.t (s) values ('both \' and "');)");
    run(m_store, R"(insert into d.t (s) values ('back\\slash \' "');)");
    ZelSetEscape(false);
    run(m_store, R"(insert into d.t (s) values ('ends in \');)");
    run(m_store,
        "insert into d.t (s) values (\"it's\");"
        "insert into d.t (s) values ('two\nlines // no comment'); insert into d.t (s) values ('');");
    for (bool escape : {false, true}) {
        ZelSetEscape(escape);
        expectReadsBack(m_store);
        EXPECT_FALSE(ZelEscapeIsOn());  // as the dump leaves it
    }
}

TEST_F(StoreDumpTest, ReportsWhatOqlCantSay) {
    run(m_store, "create database d; create table d.t (a int default 5, s text);");
    run(m_store, "insert into d.t (a, s) values (1, 'x'); update d.t set a = NULL where a = 1;");
    ZelSetEscape(true);
    run(m_store, "insert into d.t (a, s) values (2, 'both \\' and \"');");
    ZelSetEscape(false);
    dump(m_store);
    ASSERT_EQ(1U, m_problems.size());
    EXPECT_EQ("row 1 of d.t has no value in column a, and an insert would give it the default.", m_problems[0].m_text);
}

TEST(NewFileTest, AppearsOnlyWhenCommitted) {
    ScratchDirectory folder;
    std::string path = folder.Write("file", "old");
    {
        CZelNewFile file;
        ASSERT_TRUE(file.Open(path));
        ASSERT_TRUE(file.Write("new"));
    }
    EXPECT_EQ("old", readFile(path));
    CZelNewFile file;
    ASSERT_TRUE(file.Open(path));
    ASSERT_TRUE(file.Write("new"));
    ASSERT_TRUE(file.Commit());
    EXPECT_EQ("new", readFile(path));
    EXPECT_EQ(1, std::distance(std::filesystem::directory_iterator(std::filesystem::path(path).parent_path()),
                               std::filesystem::directory_iterator()));
}

TEST(NewFileTest, FailsWhereItCantBe) {
    ScratchDirectory folder;
    CZelNewFile file;
    EXPECT_FALSE(file.Open(folder.Path("no/such/file")));
    EXPECT_EQ(ENOENT, errno);
}

}  // namespace
