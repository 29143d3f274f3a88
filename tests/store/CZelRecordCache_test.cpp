#include "store/CZelRecordCache.h"

#include <algorithm>
#include <fstream>
#include <limits>
#include <vector>

#include "foundations/base/CZelAtomVector.h"
#include "port/FailingFiles.h"
#include "store/CZelCachedRecord.h"
#include "store/CZelRowKeys.h"
#include "store/CacheTest.h"
#include "support/SplitAll.h"
#include "support/TestRandom.h"

namespace {

constexpr const char *UNREADABLE =
    "The cache file maybe be corrupt.\n"
    "Should be corrected by removing cache file or replacing with a valid cache.\n";

long present = 0;

class RecordCacheTest : public CacheTest {
protected:
    RecordCacheTest() {
        CZelCachedRecord::RCRSetClock([] { return present; });
    }
    ~RecordCacheTest() override { CZelCachedRecord::RCRSetClock(nullptr); }

    // Without a copy; whether the caller owns it.
    static bool givesAway(CZelRecordCache &cache, CZelAtom *handle) {
        bool copy = false;
        const CZelRecord *row = cache.RRCRetrieveRecord(handle, copy);
        EXPECT_NE(nullptr, row);
        if (copy)
            delete row;
        return copy;
    }
    static int update(CZelRecordCache &cache, CZelAtom *handle, int number, int bytes) {
        return cache.RRCUpdateRecord(rowOfText(textOfSize(number, bytes)), handle, E_RBFalse);
    }
    static unsigned long long inCore(const CZelRecordCache &cache) { return cache.RRCUse().m_inCoreBytes; }
    static unsigned long long total(const CZelRecordCache &cache) { return cache.RRCUse().m_bytes; }
    static long pages(const CZelRecordCache &cache) { return cache.RRCUse().m_pages.m_used; }
};

// --- limits and kinds ---

TEST_F(RecordCacheTest, TheLimitDecidesTheKind) {
    EXPECT_EQ(E_RCTBySize, bySize(1, E_RBFalse)->RRCUse().m_type);
    EXPECT_EQ(E_RCTAllOnDisk, bySize(0, E_RBFalse)->RRCUse().m_type);
    EXPECT_EQ(E_RCTByProportion, byShare(0.01F, E_RBFalse)->RRCUse().m_type);
    EXPECT_EQ(E_RCTAllInCore, byShare(1, E_RBFalse)->RRCUse().m_type);
    EXPECT_EQ(E_RCTAllOnDisk, byShare(0, E_RBFalse)->RRCUse().m_type);
    EXPECT_EQ(0U, reports.Count());
    for (const float share : {-0.1F, 1.1F, std::numeric_limits<float>::quiet_NaN()}) {
        EXPECT_EQ(E_RCTAllOnDisk, byShare(share, E_RBFalse)->RRCUse().m_type);
        EXPECT_TRUE(reports.Holds(E_RCBadValue, "Invalid cache size - no cache will be used"));
        reports.Clear();
    }
}

TEST_F(RecordCacheTest, ACacheIsCreatedOnceAndNeedsANameForItsFile) {
    auto cache = bySize(100, E_RBFalse);
    EXPECT_EQ(E_RCBadArgument, cache->RRCCreateByPropn(NAME, 1, E_RBFalse));
    EXPECT_EQ(E_RCBadArgument, cache->RRCCreateBySize(NAME, 0, E_RBFalse));
    EXPECT_EQ(E_RCBadArgument, uncreated()->RRCCreateBySize(nullptr, 100, E_RBTrue));
    EXPECT_EQ(4U, reports.Count());  // the last one of the name and of the file
    auto none = uncreated();
    EXPECT_EQ(nullptr, none->RRCHandleIterator());
    CZelAtom *handle = nullptr;
    EXPECT_EQ(E_RCBadArgument, none->RRCCacheRecord(rowOfText("a"), &handle, E_RBFalse));
}

TEST_F(RecordCacheTest, AMissingDirectoryLeavesACacheThatCannotWrite) {
    auto cache = uncreated();
    cache->RRCSetFileLocation(folder.Path("none/").c_str());
    EXPECT_EQ(E_RCOpenFailed, cache->RRCCreateBySize(NAME, 100, E_RBTrue));
    EXPECT_TRUE(reports.Holds(E_RCOpenFailed, (folder.Path("none/") + NAME + " No such file or directory").c_str()));
    CZelAtom *handle = nullptr;
    EXPECT_EQ(E_RCPageWrite, cache->RRCCacheRecord(rowOfText("a"), &handle, E_RBFalse));
    EXPECT_EQ(0, cache->RRCLength());
}

// --- eviction ---

TEST_F(RecordCacheTest, AShareEvictsUntilItIsMetWhateverTheNewRowsSize) {
    auto cache = byShare(0.5F, E_RBFalse);
    add(*cache, 1, 100);  // of nothing at all, none is in memory
    EXPECT_EQ(100U, inCore(*cache));
    add(*cache, 2, 30);
    EXPECT_EQ(30U, inCore(*cache));
    add(*cache, 3, 900);
    EXPECT_EQ(930U, inCore(*cache));  // 30 of 130 had been below the half
    add(*cache, 4, 22);
    EXPECT_EQ(22U, inCore(*cache));  // 930 and then 900 of 1030 were above it
    EXPECT_EQ(1052U, total(*cache));
}

TEST_F(RecordCacheTest, ASizeEvictsUntilTheBytesBeforeTheLastEvictionWereWithinIt) {
    auto cache = bySize(100, E_RBFalse);
    CZelAtom *first = add(*cache, 1, 40);
    add(*cache, 2, 50);
    EXPECT_EQ(0, pages(*cache));
    add(*cache, 3, 50);
    EXPECT_EQ(100U, inCore(*cache));
    EXPECT_EQ(1, pages(*cache));
    EXPECT_EQ(textOfSize(1, 40), peek(*cache, first));
    EXPECT_EQ(0U, reports.Count());
}

TEST_F(RecordCacheTest, ARowAboveTheLimitIsReportedAndKept) {
    auto cache = bySize(10, E_RBFalse);
    CZelAtom *handle = add(*cache, 1, 50);
    EXPECT_EQ(1U, reports.Count());
    EXPECT_TRUE(reports.Holds(E_RCBadArgument));
    EXPECT_EQ(50U, inCore(*cache));
    EXPECT_EQ(textOfSize(1, 50), read(*cache, handle));
}

// Rows are told from each other by their sizes.
TEST_F(RecordCacheTest, TheLeastRecentThenTheLeastReadThenTheFirstRowLeaves) {
    auto cache = bySize(303, E_RBFalse);
    const auto leaves = [&](int bytes) {
        const unsigned long long before = inCore(*cache) + static_cast<unsigned long long>(bytes);
        add(*cache, 9, bytes);
        return before - inCore(*cache);
    };
    CZelAtom *readTwice = add(*cache, 1, 100);
    CZelAtom *readOnce = add(*cache, 2, 101);
    CZelAtom *readLast = add(*cache, 3, 102);
    present = 20;
    for (CZelAtom *row : {readTwice, readOnce, readTwice})
        read(*cache, row);
    present = 10;  // the clock is set back
    read(*cache, readLast);
    EXPECT_EQ(102U, leaves(50));
    EXPECT_EQ(50U, leaves(60));  // never read
    present = 20;
    forEachHandle(*cache, [&](CZelAtom *handle) {
        if (handle->RALong() == 4)
            read(*cache, handle);
    });
    EXPECT_EQ(101U, leaves(70));  // as often and as late as that of 60, but it came first
}

// --- rows and who owns them ---

TEST_F(RecordCacheTest, OnlyARecordThatTheCacheKeepsStaysTheCaches) {
    for (const __boolean persistent : {E_RBFalse, E_RBTrue}) {
        auto cache = bySize(100, persistent);
        CZelAtom *evicted = add(*cache, 1, 90);
        CZelAtom *kept = add(*cache, 2, 90);
        EXPECT_FALSE(givesAway(*cache, kept));
        EXPECT_FALSE(givesAway(*cache, evicted));  // it has come back to memory
        EXPECT_EQ(90U, inCore(*cache));
        EXPECT_EQ(persistent == E_RBTrue ? 2 : 1, pages(*cache));
        EXPECT_EQ(textOfSize(2, 90), read(*cache, kept));
        cache->RRCDeleteCacheFile();
    }
    auto onDisk = bySize(0, E_RBFalse);
    EXPECT_TRUE(givesAway(*onDisk, add(*onDisk, 1, 90)));
    EXPECT_EQ(0U, inCore(*onDisk));
    EXPECT_EQ(1, pages(*onDisk));
}

TEST_F(RecordCacheTest, ARecordThatIsCopiedInStaysWithTheCaller) {
    for (const float share : {0.0F, 0.5F, 1.0F}) {
        auto cache = byShare(share, E_RBFalse);
        const std::unique_ptr<CZelRecord> mine(rowOfText("a"));
        CZelAtom *handle = nullptr;
        ASSERT_EQ(1, cache->RRCCacheRecord(mine.get(), &handle, E_RBTrue));
        mine->RRAddOrSetValue("v", 5);
        EXPECT_EQ("a", read(*cache, handle));
        ASSERT_EQ(1, cache->RRCUpdateRecord(mine.get(), handle, E_RBTrue));
        const std::unique_ptr<CZelRecord> row(cache->RRCRetrieveRecord(handle));
        EXPECT_EQ(5, row->RRValueOf("v")->RAInt());
    }
}

// What is the same need not be written: values that only compare as equal are not the same.
TEST_F(RecordCacheTest, OnlyARowThatStaysTheSameIsNotWritten) {
    const int whole = 1;
    const CZelAtom name("v");
    const CZelAtom values[] = {whole, 1.0F, 1L, 1LL, 0.0F, -0.0F, -0.0F, "a", "b"};
    for (const float share : {1.0F, 0.0F}) {
        CZelAtom *handle = nullptr;
        auto cache = byShare(share, E_RBTrue);
        for (const CZelAtom &value : values) {
            CZelRecord row;
            row.RRAddOrSetValue(&name, &value);
            const std::string before = file();
            ASSERT_EQ(1, handle != nullptr ? cache->RRCUpdateRecord(&row, handle, E_RBTrue)
                                           : cache->RRCCacheRecord(&row, &handle, E_RBTrue));
            EXPECT_EQ(&value == &values[6], before == file());
            EXPECT_EQ(1, pages(*cache));
        }
        cache->RRCDeleteCacheFile();
    }
}

TEST_F(RecordCacheTest, AnEncodingIsGivenWithoutMovingItsRow) {
    auto cache = bySize(100, E_RBFalse);
    CZelAtom *evicted = add(*cache, 1, 90);
    CZelAtom *kept = add(*cache, 2, 90);
    EXPECT_EQ(textOfSize(1, 90), peek(*cache, evicted));
    EXPECT_EQ(textOfSize(2, 90), peek(*cache, kept));
    EXPECT_EQ(1, pages(*cache));
    EXPECT_EQ(90U, inCore(*cache));
}

TEST_F(RecordCacheTest, WhatIsNoHandleIsReportedAndAnUnknownOneIsQuietOnReading) {
    auto cache = bySize(100, E_RBFalse);
    CZelAtom text("a"), unknown(77L);
    for (CZelAtom *bad : {static_cast<CZelAtom *>(nullptr), &text}) {
        reports.Clear();
        EXPECT_EQ(nullptr, cache->RRCRetrieveRecord(bad));
        EXPECT_EQ(E_RCBadArgument, reports.LastCode());
        EXPECT_EQ(nullptr, cache->RRCRetrieveROMP(bad));
        EXPECT_EQ(E_RCNull, reports.LastCode());
        EXPECT_EQ(E_RCBadArgument, cache->RRCDeleteRecord(bad));
        EXPECT_EQ(E_RCBadArgument, update(*cache, bad, 1, 50));
    }
    reports.Clear();
    EXPECT_EQ(nullptr, cache->RRCRetrieveRecord(&unknown));
    EXPECT_EQ(nullptr, cache->RRCRetrieveROMP(&unknown));
    EXPECT_EQ(1, cache->RRCDeleteRecord(&unknown));
    EXPECT_EQ(0U, reports.Count());
    EXPECT_EQ(E_RCBadArgument, update(*cache, &unknown, 1, 50));
}

TEST_F(RecordCacheTest, WithoutAHandleLeftNothingIsStored) {
    auto cache = uncreated(2);
    ASSERT_EQ(1, cache->RRCCreateByPropn(NAME, 0, E_RBTrue));
    CZelAtom *first = add(*cache, 1, 50);
    add(*cache, 2, 50);
    CZelAtom *none = nullptr;
    EXPECT_EQ(E_RCNoHandle, cache->RRCCacheRecord(rowOfText("c"), &none, E_RBFalse));
    EXPECT_EQ(nullptr, none);
    EXPECT_EQ(2, pages(*cache));
    EXPECT_EQ(1, cache->RRCDeleteRecord(first));
    EXPECT_EQ(first, add(*cache, 3, 50));
}

TEST_F(RecordCacheTest, ARowWithAValueThatCannotBePackedIsRefusedWhole) {
    auto cache = byShare(1, E_RBFalse);
    auto *value = new CZelAtom(1);
    for (int depth = 0; depth <= 1000; ++depth) {
        auto *list = new CZelAtomVector(0);
        list->RAVAddToEnd(value);
        value = new CZelAtom(list);
    }
    CZelRecord *row = rowOfText("a");
    ASSERT_EQ(1, row->RRAddValue("deep", &value));
    CZelAtom *handle = add(*cache, 1, 50);
    EXPECT_EQ(E_RCBadValue, cache->RRCUpdateRecord(row, handle, E_RBTrue));
    EXPECT_EQ(E_RCBadValue, cache->RRCCacheRecord(row, &handle, E_RBFalse));
    EXPECT_EQ(50U, total(*cache));
}

// --- the file ---

TEST_F(RecordCacheTest, AllInMemoryHasAFileOnlyIfItIsPersistent) {
    add(*byShare(1, E_RBFalse), 1, 50);
    EXPECT_FALSE(std::filesystem::exists(path()));
    auto cache = byShare(1, E_RBTrue);
    add(*cache, 1, 50);
    EXPECT_EQ(50U, inCore(*cache));
    EXPECT_EQ(1, pages(*cache));
}

TEST_F(RecordCacheTest, APersistentCacheFindsItsRowsAndAnotherForgetsThem) {
    for (const float share : {0.0F, 0.3F, 1.0F}) {
        {
            auto cache = byShare(share, E_RBTrue);
            EXPECT_EQ(E_RBFalse, cache->RRCInitialisedFromDisk());
            for (int i = 0; i < 60; ++i)
                add(*cache, i, 100 + 20 * i);
        }
        {
            auto cache = byShare(share, E_RBTrue);
            EXPECT_EQ(E_RBTrue, cache->RRCInitialisedFromDisk());
            EXPECT_EQ(60, cache->RRCLength());
            EXPECT_EQ(60U * 100 + 20 * 59 * 30, total(*cache));
            EXPECT_EQ(share == 1.0F ? total(*cache) : 0, inCore(*cache));
            forEachHandle(*cache, [&](CZelAtom *handle) {
                const std::string text = read(*cache, handle);
                EXPECT_EQ(textOfSize(std::atoi(text.c_str()), 100 + 20 * std::atoi(text.c_str())), text);
            });
        }
        auto cache = byShare(0.5F, E_RBFalse);
        EXPECT_EQ(0, cache->RRCLength());
        EXPECT_EQ(E_RBFalse, cache->RRCInitialisedFromDisk());
    }
    EXPECT_EQ(0U, reports.Count());
}

TEST_F(RecordCacheTest, PagesOfADeletedRowAreUsedAgainBeforeTheFileGrows) {
    {
        auto cache = bySize(0, E_RBTrue);
        std::vector<CZelAtom *> rows;
        for (int i = 0; i < 50; ++i)
            rows.push_back(add(*cache, i, 450));
        for (std::size_t i = 0; i < 10; ++i)
            EXPECT_EQ(1, cache->RRCDeleteRecord(rows[2 * i]));
    }
    const std::size_t size = file().size();
    auto cache = bySize(0, E_RBTrue);
    EXPECT_EQ(10, cache->RRCUse().m_pages.m_free);
    for (int i = 0; i < 5; ++i)
        add(*cache, i, 900);
    EXPECT_EQ(size, file().size());
    EXPECT_EQ(45, cache->RRCLength());
}

TEST_F(RecordCacheTest, AnEmptyFileIsAnEmptyCache) {
    folder.Write(NAME, "");
    auto cache = bySize(100, E_RBTrue);
    EXPECT_EQ(E_RBFalse, cache->RRCInitialisedFromDisk());
    EXPECT_EQ(0U, reports.Count());
}

TEST_F(RecordCacheTest, AFileOfAnImpossibleSizeStaysAsFoundUntilTheFirstWrite) {
    folder.Write(NAME, std::string(1000, 'x'));
    auto cache = uncreated();
    EXPECT_EQ(E_RCMalformed, cache->RRCCreateBySize(NAME, 100, E_RBTrue));
    EXPECT_TRUE(reports.Holds(E_RCMalformed, UNREADABLE));
    EXPECT_EQ(0, cache->RRCLength());
    EXPECT_EQ(std::string(1000, 'x'), file());
    add(*cache, 1, 50);
    cache.reset();
    EXPECT_EQ(1, bySize(100, E_RBTrue)->RRCLength());
}

// A chain with good checks that is no record, as another program might leave it.
TEST_F(RecordCacheTest, WhatDoesNotDecodeCostsThatRowOnly) {
    {
        CZelPageFile pageFile;
        ASSERT_EQ(1, pageFile.open(path().c_str(), true));
        long start = 0;
        const std::string junk(30, 'x');
        EXPECT_EQ(1, pageFile.write(reinterpret_cast<const unsigned char *>(junk.data()), 30, -1, &start));
    }
    {
        auto cache = bySize(0, E_RBTrue);
        EXPECT_EQ(0, cache->RRCLength());
        add(*cache, 1, 50);
    }
    auto cache = bySize(0, E_RBTrue);
    EXPECT_EQ(1, cache->RRCLength());
    EXPECT_EQ(1, cache->RRCUse().m_pages.m_outOfUse);
}

TEST_F(RecordCacheTest, TheFileGoesWithTheCacheWhenMarkedAndOnlyIfItIsItsOwn) {
    auto owner = bySize(100, E_RBTrue);
    add(*owner, 1, 50);
    {
        auto other = uncreated();
        EXPECT_EQ(E_RCOpenFailed, other->RRCCreateBySize(NAME, 100, E_RBTrue));
        other->RRCDeleteCacheFile();
    }
    EXPECT_TRUE(std::filesystem::exists(path()));
    owner->RRCDeleteCacheFile();
    EXPECT_TRUE(std::filesystem::exists(path()));
    owner.reset();
    EXPECT_FALSE(std::filesystem::exists(path()));
}

TEST_F(RecordCacheTest, DeletingAFileByItsPath) {
    CZelRecordCache::RRCDeleteCacheFile(folder.Write("a", "").c_str());
    EXPECT_FALSE(std::filesystem::exists(folder.Path("a")));
    CZelRecordCache::RRCDeleteCacheFile(folder.Path("a").c_str());
    EXPECT_EQ(0U, reports.Count());
    CZelRecordCache::RRCDeleteCacheFile(nullptr);
    EXPECT_TRUE(reports.Holds(E_RCNull, "Attempt to delete NULL cache file name "));
    const std::string below = folder.Write("b", "") + "/c";
    CZelRecordCache::RRCDeleteCacheFile(below.c_str());
    EXPECT_TRUE(reports.Holds(E_RCBadValue, ("Could not unlink cache file " + below + " : Not a directory\n").c_str()));
}

// --- files that fail ---

// The new row takes two writes: the pages behind the first one, and the first.
TEST_F(RecordCacheTest, AnUpdateThatCannotBeWrittenKeepsTheOldRow) {
    for (const float share : {0.0F, 0.5F, 1.0F}) {
        auto cache = byShare(share, E_RBTrue);
        CZelAtom *handle = add(*cache, 1, 2300);
        add(*cache, 2, 60);
        for (int number = 1; number <= 2; ++number) {
            const unsigned long long before = total(*cache);
            {
                const FailingFiles files(FailingFiles::WRITE, number, ENOSPC);
                EXPECT_EQ(E_RCPageWrite, update(*cache, handle, 3, 1800));
            }
            EXPECT_EQ(before, total(*cache));
            EXPECT_EQ(textOfSize(1, 2300), read(*cache, handle));
        }
        EXPECT_EQ(1, update(*cache, handle, 3, 1800));
        EXPECT_EQ(5, pages(*cache));
        cache.reset();
        cache = byShare(share, E_RBTrue);
        EXPECT_EQ(1860U, total(*cache));
        cache->RRCDeleteCacheFile();
    }
}

TEST_F(RecordCacheTest, AnInsertThatCannotBeWrittenStoresNothing) {
    auto cache = bySize(100, E_RBTrue);
    CZelAtom *handle = nullptr;
    {
        const FailingFiles files(FailingFiles::WRITE, 1, ENOSPC);
        EXPECT_EQ(E_RCPageWrite, cache->RRCCacheRecord(rowOfText("a"), &handle, E_RBFalse));
    }
    EXPECT_EQ(0, cache->RRCLength());
    EXPECT_EQ(0U, total(*cache));
    EXPECT_EQ(1, add(*cache, 1, 50)->RALong());  // 0 is given out last
}

TEST_F(RecordCacheTest, ARowThatFindsNoRoomIsTheCallersAndStaysOnDisk) {
    auto cache = bySize(100, E_RBFalse);
    CZelAtom *evicted = add(*cache, 1, 90);
    CZelAtom *kept = add(*cache, 2, 90);
    {
        const FailingFiles files(FailingFiles::WRITE, 1);
        EXPECT_TRUE(givesAway(*cache, evicted));
    }
    EXPECT_EQ(1, pages(*cache));
    EXPECT_EQ(90U, inCore(*cache));
    EXPECT_EQ(textOfSize(2, 90), read(*cache, kept));
    EXPECT_EQ(textOfSize(1, 90), read(*cache, evicted));
}

TEST_F(RecordCacheTest, ARowThatCannotBeReadIsReportedAndReadLater) {
    auto cache = bySize(0, E_RBTrue);
    CZelAtom *handle = add(*cache, 1, 90);
    add(*cache, 2, 90);  // the last one that was written is at hand
    {
        const FailingFiles files(FailingFiles::READ, 1);
        EXPECT_EQ("<none>", read(*cache, handle));
    }
    EXPECT_EQ(E_RCBadArgument, reports.LastCode());
    EXPECT_EQ(textOfSize(1, 90), read(*cache, handle));
}

TEST_F(RecordCacheTest, ARowThatCannotLeaveTheFileStays) {
    auto cache = bySize(0, E_RBTrue);
    CZelAtom *handle = add(*cache, 1, 90);
    {
        const FailingFiles files(FailingFiles::WRITE, 1);
        EXPECT_EQ(E_RCPageWrite, cache->RRCDeleteRecord(handle));
    }
    EXPECT_EQ(textOfSize(1, 90), read(*cache, handle));
    EXPECT_EQ(1, cache->RRCDeleteRecord(handle));
    EXPECT_EQ(0, cache->RRCLength());
}

// Which rows are in memory after a start is what it would be if each row had been asked for in turn.
TEST_F(RecordCacheTest, FilledMemoryHoldsWhatAWalkOfRetrievalsLeaves) {
    TestRandom random;
    for (const bool isBySize : {true, false}) {
        for (int round = 0; round < 40; ++round) {
            const unsigned long long bytes = 1 + random.below(4000);
            const float share = static_cast<float>(1 + random.below(98)) / 100;
            const auto make = [&] { return isBySize ? bySize(bytes, E_RBTrue) : byShare(share, E_RBTrue); };
            const SplitAll split(random.oneIn(2));
            auto cache = make();
            for (int i = 0, count = static_cast<int>(random.below(40)); i < count; ++i)
                add(*cache, i, ROW_FRAME + 2 + static_cast<int>(random.below(random.oneIn(8) ? 2000 : 400)));
            std::vector<std::string> found[2];
            for (const bool isFilled : {false, true}) {
                cache.reset();
                cache = make();
                if (isFilled)
                    cache->RRCFillMemory();
                else
                    forEachHandle(*cache, [&](CZelAtom *handle) { read(*cache, handle); });
                found[isFilled].push_back(std::to_string(cache->RRCUse().m_inCoreBytes));
                forEachHandle(*cache, [&](CZelAtom *handle) {
                    SZelCachedRow row;
                    if (cache->RRCLookAt(handle, row) && row.m_record != nullptr)
                        found[isFilled].push_back(textOf(row.m_record));
                });
            }
            ASSERT_EQ(found[0], found[1]) << bytes << " bytes or " << share;
            cache->RRCDeleteCacheFile();
        }
    }
}

// Damage of what was whole at the start: the rows of a page and of a chain can't come.
TEST_F(RecordCacheTest, ARowThatCannotComeIntoMemoryIsReportedOnceAndTheOthersCome) {
    constexpr int ROWS = 40, LONG_ROW = 30, DAMAGED = 35, PAGE = 512;
    for (const bool splits : {false, true}) {
        const SplitAll split(splits);
        const auto sizeOf = [](int i) { return i == LONG_ROW ? 1200 : 100 + i; };
        {
            auto cache = byShare(0.5F, E_RBTrue);
            for (int i = 0; i < ROWS; ++i)
                add(*cache, i, sizeOf(i));
        }
        auto cache = byShare(0.5F, E_RBTrue);
        std::fstream damage(path(), std::ios::in | std::ios::out | std::ios::binary);
        damage.seekp((LONG_ROW + 1) * PAGE + 100).put('!').seekp((DAMAGED + 2) * PAGE + 100).put('!').flush();
        cache->RRCFillMemory();
        ASSERT_EQ(2U, reports.Count()) << splits;
        EXPECT_TRUE(reports.Holds(E_RCBadValue, "Incompatibility in cache file please make new cache file"));
        unsigned long long bytes = 0;
        for (int i = 25; i < ROWS; ++i) {
            SZelCachedRow row;
            const bool isDamaged = i == LONG_ROW || i == DAMAGED;
            ASSERT_EQ(!isDamaged, cache->RRCLookAt(cache->RRCHandle(i), row)) << i;
            ASSERT_EQ(isDamaged ? "<none>" : textOfSize(i, sizeOf(i)), textOf(row.m_record));
            bytes += isDamaged ? 0 : static_cast<unsigned long long>(sizeOf(i));
        }
        EXPECT_GE(inCore(*cache), bytes);
        cache->RRCDeleteCacheFile();
        reports.Clear();
    }
}

// Enough rows for several threads: all of them of one page, or one of several pages among them.
TEST_F(RecordCacheTest, ManyRowsAreFoundInTheOrderOfTheFile) {
    constexpr int ROWS = 25000, LONG_ROW = 9000;
    for (const float share : {0.0F, 0.3F, 1.0F}) {
        for (const bool hasLongRow : {false, true}) {
            const auto sizeOf = [&](int i) { return hasLongRow && i == LONG_ROW ? 2000 : 60 + i % 200; };
            {
                auto cache = byShare(share, E_RBTrue);
                for (int i = 0; i < ROWS; ++i)
                    add(*cache, i, sizeOf(i));
            }
            auto cache = byShare(share, E_RBTrue);
            ASSERT_EQ(ROWS, cache->RRCLength());
            int number = 0;
            forEachHandle(*cache, [&](CZelAtom *handle) {
                ASSERT_EQ(number, handle->RAInt());
                ASSERT_EQ(textOfSize(number, sizeOf(number)), peek(*cache, handle));
                ++number;
            });
            const std::vector<int> &places = cache->RRCAtPages();
            const auto none = static_cast<std::size_t>(std::count(places.begin(), places.end(), -1));
            EXPECT_EQ(share == 1.0F ? 0U : std::size_t{ROWS}, places.size() - none);
            EXPECT_EQ(share == 1.0F ? total(*cache) : 0, inCore(*cache));
            EXPECT_EQ(ROWS, add(*cache, ROWS, 60)->RAInt());
            cache->RRCDeleteCacheFile();
        }
    }
}

TEST_F(RecordCacheTest, PartsOfAFileMayHoldNoRow) {
    constexpr int ROWS = 12000;
    for (const bool isAtTheEnd : {false, true}) {
        {
            auto cache = byShare(0, E_RBTrue);
            for (int i = 0; i < ROWS; ++i)
                add(*cache, i, 60);
            for (int i = 0; i < ROWS - 10; ++i)
                EXPECT_EQ(1, cache->RRCDeleteRecord(cache->RRCHandle(isAtTheEnd ? ROWS - 1 - i : i)));
        }
        const CZelAtom name("v");
        CZelRowKeys keys;
        keys.addColumn(name);
        auto cache = uncreated();
        ASSERT_EQ(1, cache->RRCCreateByPropn(NAME, 0, E_RBTrue, &keys));
        ASSERT_EQ(10, cache->RRCLength());
        const CZelRowKeys::Pairs pairs = keys.take(name);
        ASSERT_EQ(10U, pairs.size());
        EXPECT_EQ(cache->RRCHandle(9), pairs.back().m_object);
        EXPECT_EQ(textOfSize(isAtTheEnd ? 9 : ROWS - 1, 60), peek(*cache, cache->RRCHandle(9)));
        cache->RRCDeleteCacheFile();
    }
}

TEST_F(RecordCacheTest, RowsForWhichNoHandleIsLeftAreNotFound) {
    {
        auto cache = byShare(0, E_RBTrue);
        for (int i = 0; i < 5; ++i)
            add(*cache, i, 60);
    }
    auto cache = uncreated(3);
    EXPECT_EQ(E_RCNoHandle, cache->RRCCreateByPropn(NAME, 0, E_RBTrue));
    EXPECT_EQ(3, cache->RRCLength());
    EXPECT_EQ(textOfSize(2, 60), peek(*cache, cache->RRCHandle(2)));
    EXPECT_EQ(2U, reports.Count());
}

// Rows of one page and of several, without a value, with a list or with an object in place of a plain one; and rows
// that were updated, so that they lie elsewhere.
TEST_F(RecordCacheTest, KeysThatAreFoundAtTheStartAreThoseOfTheRecords) {
    const CZelAtom names[] = {"v", "k"};
    TestRandom random;
    for (const float share : {0.0F, 0.3F, 1.0F}) {
        {
            auto cache = byShare(share, E_RBTrue);
            std::vector<CZelAtom *> handles;
            for (int i = 0; i < 300; ++i) {
                CZelRecord *row = rowOfText(textOfSize(i, 40 + static_cast<int>(random.below(1000))));
                CZelAtom *value = random.oneIn(4) ? new CZelAtom(new CZelAtomVector(1)) : new CZelAtom(i);
                row->RRAddValue(random.oneIn(3) ? "other" : "k", &value);
                CZelAtom *handle = nullptr;
                if (handles.size() > 20 && random.oneIn(3)) {
                    ASSERT_EQ(1, cache->RRCUpdateRecord(row, handles[random.below(20)], E_RBFalse));
                } else {
                    ASSERT_EQ(1, cache->RRCCacheRecord(row, &handle, E_RBFalse));
                    handles.push_back(handle);
                }
            }
        }
        CZelRowKeys keys;
        for (const CZelAtom &name : names)
            keys.addColumn(name);
        auto cache = uncreated();
        ASSERT_EQ(1, cache->RRCCreateByPropn(NAME, share, E_RBTrue, &keys));
        for (const CZelAtom &name : names) {
            const CZelRowKeys::Pairs pairs = keys.take(name);
            std::size_t place = 0;
            forEachHandle(*cache, [&](CZelAtom *handle) {
                const SZelKeyedObject &pair = pairs.at(place++);
                const std::unique_ptr<CZelRecord> row(cache->RRCRetrieveRecord(handle));
                const CZelAtom *value = row->RRValueOf(&name);
                EXPECT_EQ(handle, pair.m_object);
                EXPECT_EQ(0, (value != nullptr ? *value : CZelAtom()).RALex(&pair.m_key, nullptr));
            });
            EXPECT_EQ(place, pairs.size());
        }
        cache->RRCDeleteCacheFile();
    }
    EXPECT_EQ(0U, reports.Count());
}

}  // namespace
