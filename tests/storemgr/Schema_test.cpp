// Schema files and dumps through the manager: what is written reads back as the same store.
#include <unistd.h>

#include <cstdlib>
#include <fstream>

#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelReadOnlyFile.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/base/CZelStack.h"
#include "foundations/base/CZelString.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelDbObject.h"
#include "oql/CZelOQLDumper.h"
#include "oql/CZelSchema.h"
#include "store/CZelStore.h"
#include "tests/support/OqlFixture.h"

namespace {

using Rows = std::vector<std::string>;

// A file that lives as long as the object.
class TextFile {
public:
    explicit TextFile(const std::string &content) {
        char name[] = "/tmp/quintor_schema_XXXXXX";
        close(mkstemp(name));
        m_path = name;
        std::ofstream(m_path, std::ios::binary) << content;
    }
    TextFile(const TextFile &) = delete;
    TextFile &operator=(const TextFile &) = delete;
    ~TextFile() { unlink(m_path.c_str()); }
    const char *path() const { return m_path.c_str(); }

private:
    std::string m_path;
};

class SchemaTest : public OqlFixture {
protected:
    static std::string dump(CZelStore &store) {
        CZelBag records;
        EXPECT_EQ(1, CZelOQLDumper(&store).WriteSchema(records));
        std::string text;
        for (CZelPointer *node = records.RBFirst(); node != nullptr; node = CZelBag::RBNext(node)) {
            auto *record = static_cast<CZelRecord *>(node->RPData());
            text += CZelMallocText(CZelOQLDumper::ExtractOQLString(*record)).get();
            delete record;
        }
        return text;
    }
};

}  // namespace

TEST_F(SchemaTest, StatementsOfTwoFilesLoadByKindWhateverTheirOrder) {
    const TextFile first("insert into d.t (a) values (2); create index i on d.t (a);\n");
    const TextFile second(
        "create table d.t (a int not null unique);\ninsert into d.t (a) values (1);\n"
        "insert into d.t (a) values (2); create database d;\n");
    CZelSchema schema;
    EXPECT_EQ(1, schema.RSReadSchema(first.path(), false));
    EXPECT_EQ(1, schema.RSReadSchema(second.path(), false));
    EXPECT_NE(0, schema.RSGetLastFileTimestamp());
    EXPECT_EQ(1, manager.RSMReadSchema(schema));
    EXPECT_EQ((Rows{"a=2", "a=1"}), rows("select * from d.t;"));
}

TEST_F(SchemaTest, ASyntaxErrorNamesTheFilesAndLoadsNothing) {
    const TextFile good("create database d;\n");
    const TextFile bad("create tabel x;\n");
    CZelSchema schema;
    schema.RSReadSchema(good.path(), false);
    schema.RSReadSchema(bad.path(), false);
    EXPECT_EQ(E_RCSyntax, manager.RSMReadSchema(schema));
    const std::string files =
        std::string("The Schema was read from the following files:\n\t") + good.path() + "\n\t" + bad.path() + "\n";
    EXPECT_TRUE(reports.Holds(E_RCSyntax, files.c_str()));
    EXPECT_EQ(Rows{"databases=[]"}, rows("show databases;"));
}

TEST_F(SchemaTest, FilesThatAreNoTextsAreRefused) {
    CZelSchema schema;
    EXPECT_EQ(E_RCFileOpen, schema.RSReadSchema("/no/such/file", false));
    EXPECT_EQ(E_RCFileOpen, schema.RSReadSchema(nullptr, false));
    const TextFile hidden(std::string("create database d;\n\0create database e;\n", 38));
    EXPECT_EQ(E_RCFileRead, schema.RSReadSchema(hidden.path(), false));
    EXPECT_TRUE(reports.Holds(E_RCBadValue));
    EXPECT_EQ(E_RCNull, schema.RSParseSchema());
}

TEST_F(SchemaTest, BlocksEndBehindASemicolonAtALineEnd) {
    std::string text;
    while (text.size() < 150000)
        text += "insert into d.t (a) values ('x;y');\n";
    const TextFile file(text);
    CZelReadOnlyFile input(file.path());
    ASSERT_EQ(0, input.ROFOpen());
    CZelSchema schema;
    unsigned int bytes = 0;
    std::size_t statements = 0;
    int status = 0;
    while (status == 0) {
        const unsigned int before = bytes;
        status = schema.RSReadSchemaBlock(input, 1, bytes);
        if (bytes > before && schema.RSParseSchema() == 1)
            while (void *statement = schema.RSGetItems(E_DOInsert)->RSPop()) {
                delete static_cast<CZelDbObject *>(statement);
                ++statements;
            }
    }
    EXPECT_EQ(text.size(), bytes);
    EXPECT_EQ(text.size() / 36, statements);
}

TEST_F(SchemaTest, ADumpReadsBackAsTheSameStore) {
    run("create database d; create database empty;"
        "create table d.t (name text not null primary key, n int default 5, u long64, f float, l list type list type "
        "int,"
        " o object type text, unique (u)); create index i on d.t (n, f);");
    run("insert into d.t (name, u, f, l) values (\"it's\", 9223372036854775807, 1.5, [[1,2],[]]);");
    run("insert into d.t (name, u, f, o) values ('two \"quotes\"', -1, 0.1, {a='x',b=\"y'z\"});");
    const std::string text = dump(*manager.RSMGetStore());
    const Rows before = rows("select * from d.t;");
    EXPECT_EQ(2U, before.size());

    CZelStoreMgr copy(static_cast<CZelEngine *>(nullptr), nullptr);
    CZelSchema schema;
    ASSERT_EQ(1, schema.RSParseSchemaString(text.c_str())) << text;
    copy.RSMConsumeSchema(schema);
    EXPECT_EQ(text, dump(*copy.RSMGetStore()));
    CZelBag *again = nullptr;
    copy.RSMProcessOQLGetRecs("select * from d.t;", &again, nullptr, nullptr);
    const CZelBagGuard<CZelRecord> owner(again);
    ASSERT_EQ(2, again->RBLength());
    EXPECT_EQ(before[0], textOf(*static_cast<CZelRecord *>(again->RBFirst()->RPData())));
}

TEST_F(SchemaTest, DumpTextsAreTheSystemsOwn) {
    run("create database d; create table d.t (a int not null primary key, b text default 'x', unique (b));");
    run("insert into d.t (a, b) values (1, 'one');");
    EXPECT_EQ(
        "\r\n///////////////////////////////////////\r\n// Create d database\r\n//\r\ncreate database d;\r\n\r\n"
        "create table d.t\r\n(\r\n\ta\t\tint not null primary key,\r\n\tb\t\ttext default \"x\",\r\n\r\n\tunique(b)"
        "\r\n);\r\n\r\n"
        "insert into d.t\r\n(\r\n\ta,\r\n\tb\r\n)\r\nvalues\r\n(\r\n\t1,\r\n\t\"one\"\r\n);\r\n\r\n",
        dump(*manager.RSMGetStore()));
    CZelString header;
    CZelOQLDumper::GenerateDumpfileHeader(header, "f.oql", "me", "LOCAL", "oql");
    const std::string text = header.RSString();
    EXPECT_NE(std::string::npos, text.find("// File: f.oql\r\n//\r\n// Automatically generated on: "));
    EXPECT_NE(std::string::npos, text.find("\r\n// by 'me' on the domain 'LOCAL' using oql.\r\n//\r\n//***"));
}
