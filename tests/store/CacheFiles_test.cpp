// The files of caches: what they are called and which of them go.
#include "foundations/base/CZelString.h"
#include "foundations/port/ZelFile.h"
#include "oql/CZelDropObject.h"
#include "store/CZelCacheFiles.h"
#include "store/CZelDbCallback.h"
#include "store/CZelRecordCache.h"
#include "tests/store/TableTest.h"
#include "tests/support/CacheHome.h"

namespace {

std::string nameOf(const char *cache, const char *database, const char *table) {
    CZelString name("");
    CZelTable::RTBuildCacheName(name, CZelAtom(cache), CZelAtom(database), CZelAtom(table));
    return name.RSString();
}

class CacheFilesTest : public testing::Test {
protected:
    void put(const Texts &names) {
        for (const std::string &name : names)
            std::ofstream(m_home.path(name)) << "x";
    }

    CacheHome m_home;
    CZelErrorCapture m_reports;
};

TEST_F(CacheFilesTest, NamesStandAsTheyAreUnlessTheyWouldLeadAstray) {
    EXPECT_EQ("app.Cache.net.Chassis 1.LOCAL", nameOf("app", "net", "Chassis 1"));
    EXPECT_EQ("a..2Eb.Cache...2F..2E..2E.t..0A%2E\xC3\xA9.LOCAL", nameOf("a.b", "/..", "t\n%2E\xC3\xA9"));
}

// Every three names give another file, and a database knows exactly its own.
TEST_F(CacheFilesTest, NoTwoTablesShareAFile) {
    const Texts names = {"a", "a.b", "b", "b.c", "2Ea", "a.", ".a", ".", "..", "a..2Eb", "a/b", "Cache", "a.Cache.b"};
    std::vector<std::pair<std::string, std::string>> all;  // file, database behind the cache's name
    for (const std::string &cache : names)
        for (const std::string &database : names)
            for (const std::string &table : names)
                all.emplace_back(nameOf(cache.c_str(), database.c_str(), table.c_str()), cache + "\n" + database);
    for (const std::string &cache : names)
        for (const std::string &database : names)
            for (const auto &[file, owner] : all)
                ASSERT_EQ(owner == cache + "\n" + database, CZelCacheFiles::isOfDatabase(file, cache, database))
                    << file << " of " << cache << " " << database;
    std::sort(all.begin(), all.end());
    EXPECT_EQ(all.end(), std::adjacent_find(all.begin(), all.end(), [](const auto &left, const auto &right) {
                  return left.first == right.first;
              }));
}

TEST_F(CacheFilesTest, ClearingADatabaseTakesItsFilesOnly) {
    const Texts kept = {"app.Cache.d..2Ex.t.LOCAL", "app.Cache.d.t.LOCAL.aside", "app.Cache.d.t.OTHER",
                        "app.Cache.d.t.u.LOCAL",    "app.Cache.dd.t.LOCAL",      "app2.Cache.d.t.LOCAL"};
    put(kept);
    put({"app.Cache.d.t.LOCAL", "app.Cache.d.t..2Eu.LOCAL"});
    CZelDatabase::RDClearCache("app", "d");
    EXPECT_EQ(kept, m_home.files());
    CZelDatabase::RDClearCache(nullptr, "d");
    CZelDatabase::RDClearCache("app", nullptr);
    EXPECT_TRUE(m_reports.Reports().empty());
    std::filesystem::remove_all(m_home.folder());
    CZelDatabase::RDClearCache("app", "d");
    EXPECT_EQ(E_RCBadValue, m_reports.LastCode());
    EXPECT_EQ(0U, m_reports.LastText().find("Unable to access directory "));
    EXPECT_NE(std::string::npos, m_reports.LastText().find("/var/solvantis/ in order to clear cache files for files "
                                                           "matching app.Cache.d.*.LOCAL"));
}

TEST_F(CacheFilesTest, ClearingATableTakesOneFile) {
    put({"app.Cache.d.t.LOCAL", "app.Cache.d.tt.LOCAL"});
    CZelTable::RTClearCache("app", "d", "t");
    CZelTable::RTClearCache("app", "d", "none");
    EXPECT_EQ(Texts{"app.Cache.d.tt.LOCAL"}, m_home.files());
    EXPECT_TRUE(m_reports.Reports().empty());
    CZelTable::RTClearCache("app", nullptr, "t");
    EXPECT_TRUE(m_reports.Holds(E_RCNull, "Attempt to clear cache APP name:app, db name:NULL, table name:t"));
    const ScopedVariable none("QMTHOME", nullptr);
    CZelTable::RTClearCache("app", "d", "tt");
    EXPECT_TRUE(
        m_reports.Holds(E_RCBadValue, "Failed to clear cache for QMTHome NULL and cache file app.Cache.d.tt.LOCAL"));
}

TEST_F(CacheFilesTest, AFileInUseAndALinkStay) {
    put({"app.Cache.d.t.LOCAL", "other"});
    std::filesystem::create_symlink(m_home.path("other"), m_home.path("app.Cache.d.l.LOCAL"));
    const ZelFileHandle file =
        ZelFileOpen(m_home.path("app.Cache.d.t.LOCAL").c_str(), ZEL_FILE_READ | ZEL_FILE_WRITE, 0);
    long owner = 0;
    ASSERT_EQ(1, ZelFileLock(file, &owner));
    CZelDatabase::RDClearCache("app", "d");
    CZelTable::RTClearCache("app", "d", "t");
    EXPECT_EQ((Texts{"app.Cache.d.l.LOCAL", "app.Cache.d.t.LOCAL", "other"}), m_home.files());
    EXPECT_EQ(3U, m_reports.Reports().size());
    ZelFileClose(file);
    CZelTable::RTClearCache("app", "d", "t");
    EXPECT_EQ((Texts{"app.Cache.d.l.LOCAL", "other"}), m_home.files());
}

// A callback that keeps a table keeps its file: of a dropped table, and of a dropped database.
TEST_F(CacheFilesTest, ATableThatIsKeptKeepsItsFile) {
    struct Keeping : CZelDbCallback {
        __boolean RDCPreDropTable(CZelDatabase *, CZelTable *table) override {
            return ZelBool(table->RTName()->RATextView() != "kept");
        }
    } keeping;
    for (const bool wholeDatabase : {false, true}) {
        CZelStore store(1.0F, "app");
        store.RSSetPersistant(E_RBTrue);
        store.RSAddDb(new CZelDatabase(ZelStrDup("d")));
        for (const char *name : {"gone", "kept"}) {
            CZelTable *table = parsed({column("k", E_RDTInt)}, name);
            store.RSAddTbl(table, E_RBFalse);
        }
        store.RSInitialise();
        store.RSDatabase("d")->RDSetDbCallback(&keeping);
        for (const char *name : {"gone", "kept"}) {
            CZelDropObject drop(target(name), wholeDatabase ? E_RDODatabase : E_RDOTable);
            store.RSDropObject(&drop, nullptr);
            if (wholeDatabase)
                break;
        }
        if (!wholeDatabase)
            store.RSDatabase("d")->RDSetDbCallback(nullptr);
        EXPECT_EQ(Texts{"app.Cache.d.kept.LOCAL"}, m_home.files());
    }
}

TEST_F(CacheFilesTest, ANameThatIsTooLongIsRefused) {
    CZelStore store(0.5F, "app");
    store.RSAddDb(new CZelDatabase(ZelStrDup("d")));
    store.RSAddTbl(parsed({column("k", E_RDTInt)}, std::string(300, 't').c_str()), E_RBFalse);
    EXPECT_TRUE(m_reports.Holds(E_RCOpenFailed));
    EXPECT_EQ(Texts(), m_home.files());
}

}  // namespace
