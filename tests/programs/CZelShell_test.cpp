#include "programs/oql/CZelShell.h"

#include <gtest/gtest.h>

#include <sstream>

#include "tests/port/ScratchDirectory.h"
#include "tests/programs/ShellRun.h"

namespace {

const char STORE[] =
    "create database d; create table d.t (a int not null primary key, b text, l list type int);"
    "insert into d.t (a, b, l) values (1, 'one', [1, 2]); insert into d.t (a, b) values (20, 'Zürich, \"x\"');"
    "insert into d.t (a) values (3);";

std::string readFile(const std::string &path) {
    std::stringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

class ShellTest : public testing::Test {
protected:
    // The statements behind those that make a small store.
    static ShellRun ask(const std::string &statements, std::vector<std::string> options = {}) {
        options.insert(options.end(), {"-c", STORE, "-c", statements});
        return runShell(options);
    }

    ScratchDirectory m_folder;
};

TEST_F(ShellTest, TableLinesUpColumnsAndCountsRows) {
    EXPECT_EQ(
        " a | b           | l\n"
        "---+-------------+------\n"
        " 1 | one         | [1,2]\n"
        "20 | Zürich, \"x\" | NULL\n"
        " 3 | NULL        | NULL\n"
        "3 rows\n",
        ask("select * from d.t;").out);
    EXPECT_EQ("0 rows\n", ask("select * from d.t where a = 7;").out);
    EXPECT_EQ("Count\n-----\n    3\n1 row\n", ask("select count(*) from d.t;").out);
    EXPECT_EQ("table\n-----\nt\n1 row\n", ask("show tables from d;").out);
    std::string schema = ask("show table d.t;").out;
    EXPECT_EQ(0U, schema.find("Column | DataType      | NotNull | PrimaryKey | Indexed | Unique\n")) << schema;
    std::string dump = ask("show;").out;
    EXPECT_NE(std::string::npos, dump.find("create table d.t\\n(\\n\\ta\\t\\tint not null primary key")) << dump;
    EXPECT_EQ("", ask("update d.t set b = 'x' where a = 1;").out);
}

TEST_F(ShellTest, ClausesReadTheRecordAndTheConstantsThatWereSet) {
    const ShellRun run =
        ask(".record {Key=20,Text='new',List=[5,6]}\n.const Limit 2\n.const Limit 1\n"
            "update d.t set b = eval(text,'&Text'), l = eval(list type int,'&List') where a = eval(int,'&Key');"
            "select a, b, l from d.t where a > eval(int,'$Limit') and b = 'new';\n"
            ".record off\nselect a from d.t where a = eval(int,'&Key');",
            {"-format", "oql"});
    EXPECT_EQ("{a=20, b='new', l=[5,6]}\n", run.out);
    EXPECT_EQ("", run.err);
    EXPECT_EQ(CZelShell::DONE, run.exitCode);
}

TEST_F(ShellTest, ARecordOrConstantThatIsNoneIsAFailure) {
    for (const char *command : {".record", ".record [1]", ".record {a=", ".const", ".const X 1", ".const 1x 1",
                                ".const Limit", ".const Limit {", ".const Event 1"}) {
        const ShellRun run = ask(command);
        EXPECT_EQ(CZelShell::FAILED, run.exitCode) << command;
        EXPECT_NE("", run.err) << command;
        EXPECT_EQ("", run.out) << command;
    }
}

TEST_F(ShellTest, EachFormatHasItsForm) {
    EXPECT_EQ("a = 1\nb = one\nl = [1,2]\n\n", ask("select * from d.t where a = 1;", {"-format", "line"}).out);
    EXPECT_EQ("a,b,l\r\n1,one,\"[1,2]\"\r\n20,\"Zürich, \"\"x\"\"\",\r\n3,,\r\n",
              ask("select * from d.t;", {"-format", "csv"}).out);
    EXPECT_EQ("{a=1, b='one', l=[1,2]}\n{a=20, b='Zürich, \"x\"'}\n{a=3}\n",
              ask("select * from d.t;", {"-format", "oql"}).out);
}

TEST_F(ShellTest, JsonIsALinePerStatement) {
    ShellRun run = runShell({"-format", "json"},
                            "create database d; create table d.t (a int not null primary key, l list type int);\n"
                            "insert into d.t (a, l) values (1, [1,2]);\n"
                            "insert into d.t (a) values (1);\n"
                            "select * from d.t; delete from d.t where a = 5; select from;");
    EXPECT_EQ(
        "{\"status\":0,\"rows\":[],\"reports\":[]}\n"
        "{\"status\":0,\"rows\":[],\"reports\":[]}\n"
        "{\"status\":0,\"rows\":[],\"reports\":[]}\n"
        "{\"status\":12,\"rows\":[],\"reports\":[]}\n"
        "{\"status\":0,\"rows\":[{\"a\":1,\"l\":[1,2]}],\"reports\":[]}\n"
        "{\"status\":8,\"rows\":[],\"reports\":[]}\n"
        "{\"status\":0,\"rows\":[],\"reports\":[{\"code\":-220551,\"text\":\"\\nSyntax error at line 1 of: "
        "select from;\"}]}\n",
        run.out);
    EXPECT_EQ(1, run.exitCode);
}

TEST_F(ShellTest, ErrorsPointAtTheWord) {
    std::string path = m_folder.Write("bad.oql", "show databases;\n-- fine\nselect a\n\tfrom from d.t;\n");
    ShellRun run = runShell({"-f", path});
    EXPECT_EQ("oql: " + path + ":4:7: E_RCSyntax (-220551): syntax error\n    \\tfrom from d.t;\n           ^\n",
              run.err);
    EXPECT_EQ(1, run.exitCode);
    EXPECT_EQ(
        "oql: -c:1:10: status 3: the table you attempted to access didn't exist.\n",
        runShell({"-c", "show;    select a from d.t;", "-c", "create database d;", "-c", "         select a from d.t;"})
            .err.substr(
                std::string("oql: -c:1:10: status 2: the database you attempted to access didn't exist.\n").size()));
    // Cut off by the end of the file.
    run = runShell({}, "show\n  databases -- that's all");
    EXPECT_EQ(
        "oql: stdin:2:26: E_RCSyntax (-220551): syntax error\n      databases -- that's all\n                          "
        "   ^\n",
        run.err);
    EXPECT_EQ(1, run.exitCode);
}

TEST_F(ShellTest, ExitCodesTellDoneFailedAndWrongUsage) {
    EXPECT_EQ(0, ask("select * from d.t; delete from d.t where a = 9;").exitCode);
    EXPECT_EQ(1, ask("insert into d.t (a) values (1); show databases;").exitCode);
    EXPECT_EQ(1, ask("insert into d.t (a) values ('x');").exitCode);
    EXPECT_EQ(2, runShell({"-what"}).exitCode);
    EXPECT_EQ("", runShell({"-what"}).out);
    EXPECT_EQ(0, runShell({"-help"}).exitCode);
    EXPECT_EQ(1, runShell({"-f", m_folder.Path("none")}).exitCode);
    EXPECT_EQ(1, runShell({"-f", m_folder.Path("")}).exitCode);
    EXPECT_EQ(1, runShell({"-output", m_folder.Path("no/such"), "-c", "show databases;"}).exitCode);
}

TEST_F(ShellTest, BailStopsAtTheFirstFailure) {
    std::string text = "show databases; bad; show databases;";
    EXPECT_EQ("{databases=[]}\n{databases=[]}\n", runShell({"-format", "oql", "-c", text}).out);
    EXPECT_EQ("{databases=[]}\n", runShell({"-format", "oql", "-bail", "-c", text, "-c", text}).out);
}

TEST_F(ShellTest, OnlyResultsGoToStandardOutput) {
    ShellRun run = ask("set escape on; bad; .help\n select a from d.t where a = 1;", {"-debug", "4", "-format", "oql"});
    EXPECT_EQ("{a=1}\n", run.out);
    EXPECT_NE(std::string::npos, run.err.find("RSMProcessOQL: "));
    EXPECT_NE(std::string::npos, run.err.find(".databases"));
}

TEST_F(ShellTest, EchoShowsStatementsWithTheCommentsBefore) {
    ShellRun run = runShell({"-echo", "-format", "oql", "-c", "-- why\nshow databases; show databases;"});
    EXPECT_EQ("-- why\nshow databases;\nshow databases;\n", run.err);
}

TEST_F(ShellTest, StatementsRunOneByOneAsTheyCome) {
    // Within one text actions run before queries; here the query runs where it stands.
    EXPECT_EQ("{Count=3}\n{Count=0}\n",
              ask("select count(*) from d.t; delete from d.t; select count(*) from d.t;", {"-format", "oql"}).out);
    // The escape switch holds from the next statement on, until it is set off.
    EXPECT_EQ("{b=\"it's\"}\n{b='a\\'}\n",
              runShell({"-format", "oql"},
                       "create database d; create table d.t (b text); set escape on;\n"
                       "insert into d.t (b) values ('it\\'s'); set escape off; insert into d.t (b) values ('a\\');\n"
                       "select b from d.t;")
                  .out);
    EXPECT_EQ("{databases=[]}\n", runShell({"-format", "oql"}, "show databases; shutdown; show databases;").out);
}

TEST_F(ShellTest, SchemaFilesAreOneSchema) {
    std::string rows = m_folder.Write("rows.oql", "insert into d.t (a) values (1);\n");
    std::string tables = m_folder.Write("tables.oql", "create table d.t (a int);\ncreate database d;\n");
    ShellRun run = runShell({"-format", "oql", "-schema", rows, "-schema", tables, "-c", "select * from d.t;"});
    EXPECT_EQ("{a=1}\n", run.out);
    EXPECT_EQ(0, run.exitCode);
    std::string bad = m_folder.Write("bad.oql", "create database e;\ncreate table e.t (a);\n");
    run = runShell({"-schema", tables, "-schema", bad, "-bail", "-c", "show databases;"});
    EXPECT_EQ(0U, run.err.find("oql: " + bad + ":2:")) << run.err;
    EXPECT_EQ("", run.out);
    EXPECT_EQ(1, run.exitCode);
    EXPECT_EQ(1, runShell({"-schema", m_folder.Path("none"), "-c", "show databases;"}).exitCode);
}

TEST_F(ShellTest, OutputGoesToFilesAndBack) {
    std::string path = m_folder.Path("out");
    ShellRun run = ask(".format oql\n.output " + path +
                       "\nselect a from d.t where a = 1;\n.output\nselect a from d.t where a = 3;");
    EXPECT_EQ("{a=3}\n", run.out);
    EXPECT_EQ("{a=1}\n", readFile(path));
}

TEST_F(ShellTest, ReadRunsFilesButNotEachOtherForEver) {
    std::string path = m_folder.Path("loop.oql");
    m_folder.Write("loop.oql", "show databases;\n.read " + path + "\n");
    ShellRun run = runShell({"-format", "oql", "-c", ".read " + path});
    EXPECT_NE(std::string::npos, run.err.find("too deep"));
    EXPECT_EQ(1, run.exitCode);
}

TEST_F(ShellTest, CommandsAnswerInTheFormatToo) {
    ShellRun run =
        ask("create index i on d.t (b);\n.tables\n.indexes d.t\n.databases\n.tables nowhere\n.describe d.t\n",
            {"-format", "oql"});
    EXPECT_EQ(
        "{Table='d.t', Rows=3}\n"
        "{Index='i', Table='d.t', Columns=['b']}\n"
        "{databases=['d']}\n",
        run.out.substr(0, run.out.find("{Schema")));
    EXPECT_EQ(1, run.exitCode);
    EXPECT_EQ(1, runShell({"-c", ".nothing"}).exitCode);
    EXPECT_EQ(1, runShell({"-c", ".quit now"}).exitCode);
}

TEST_F(ShellTest, NulBytesAreRefused) {
    ShellRun run = runShell({"-format", "oql"}, std::string("show \0databases; show databases;", 33));
    EXPECT_EQ("{databases=[]}\n", run.out);
    EXPECT_EQ(1, run.exitCode);
}

TEST_F(ShellTest, AReaderThatGoesAwayEndsItQuietly) {
    std::string statements;
    for (int i = 0; i < 20000; ++i)
        statements += "show databases;\n";
    std::string command = QUINTOR_PROGRAM_DIR "/oql -f " + m_folder.Write("many.oql", statements) + " 2>" +
                          m_folder.Path("err") + " | head -1 >/dev/null";
    EXPECT_EQ(0, std::system(command.c_str()));
    EXPECT_EQ("", readFile(m_folder.Path("err")));
}

}  // namespace
