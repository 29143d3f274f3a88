// A scan in parts against one by the caller's thread alone: the same rows in the same order, and the same reports,
// whatever is damaged. Rows take one page or several, and updates have moved them.
#include "store/CZelCacheScan.h"

#include <fstream>
#include <vector>

#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelPageView.h"
#include "port/FailingFiles.h"
#include "store/CZelNumberSet.h"
#include "store/CacheTest.h"
#include "support/SplitAll.h"
#include "support/TestRandom.h"

namespace {

using Texts = std::vector<std::string>;
using Page = std::vector<unsigned char>;

constexpr std::size_t PAGE = CZelPageView::PAGE_BYTES;

class CacheScan : public CacheTest {
protected:
    CacheScan() { m_columns.add(m_name); }

    // Rows of one page to five; a part of them are in memory, unless all are on disk.
    std::unique_ptr<CZelRecordCache> filled(float share) {
        std::unique_ptr<CZelRecordCache> cache = byShare(share, E_RBTrue);
        std::vector<CZelAtom *> handles;
        for (int i = 0; i < 300; ++i)
            handles.push_back(add(*cache, i, anySize()));
        for (int i = 0; i < 60; ++i) {
            CZelAtom *handle = handles[random.below(300)];
            const std::unique_ptr<CZelRecord> row(rowOfText(textOfSize(1000 + i, anySize())));
            EXPECT_EQ(1, cache->RRCUpdateRecord(row.get(), handle, E_RBTrue));
        }
        for (int i = 0; i < 30; ++i)
            cache->RRCDeleteRecord(handles[static_cast<std::size_t>(i) * 10 + random.below(10)]);
        return cache;
    }
    int anySize() { return static_cast<int>(random.oneIn(5) ? 500 + random.below(2000) : 40 + random.below(400)); }

    // What a scan gives and reports; about a half of the rows pass.
    struct Outcome {
        Texts rows;
        std::size_t passed = 0;
        std::size_t seen = 0;
        Texts reports;
        bool operator==(const Outcome &) const = default;
    };
    Outcome scan(CZelRecordCache &cache, CZelCacheScan::Form form) {
        CZelErrorCapture capture;
        CZelCacheScan scan(cache, &m_columns, form);
        scan.run([](const SZelScannedRow &row) {
            const CZelAtom *value = row.m_columns != nullptr ? row.m_columns->value(0) : row.m_record->RRValueOf("v");
            return value != nullptr && value->RATextLength() % 2 == 0;
        });
        CZelBag kept;
        scan.appendTo(kept);
        Outcome outcome{{}, scan.passed(), scan.seen(), {}};
        for (const CZelPointer *node = kept.RBFirst(); node != nullptr; node = CZelBag::RBNext(node)) {
            const std::unique_ptr<CZelRecord> copy(
                form == CZelCacheScan::COPIES ? static_cast<CZelRecord *>(node->RPData()) : nullptr);
            outcome.rows.push_back(copy != nullptr
                                       ? textOf(copy.get())
                                       : std::to_string(static_cast<const CZelAtom *>(node->RPData())->RALong()));
        }
        for (const SZelReport &report : capture.Reports())
            outcome.reports.push_back(report.m_text);
        return outcome;
    }
    Outcome scanInParts(CZelRecordCache &cache, CZelCacheScan::Form form) {
        const SplitAll split;
        EXPECT_LT(1U, CZelCacheScan(cache, &m_columns, form).parts());
        return scan(cache, form);
    }
    Outcome compare(CZelRecordCache &cache) {
        Outcome last;
        for (const CZelCacheScan::Form form : {CZelCacheScan::COPIES, CZelCacheScan::HANDLES, CZelCacheScan::COUNT}) {
            const Outcome ofParts = scanInParts(cache, form);
            last = scan(cache, form);
            EXPECT_EQ(last.rows, ofParts.rows) << form;
            EXPECT_EQ(last.reports, ofParts.reports) << form;
            EXPECT_EQ(last, ofParts) << form;
        }
        return last;
    }

    std::vector<Page> pages() const {
        std::vector<Page> found;
        const std::string bytes = file();
        for (std::size_t at = 0; at + PAGE <= bytes.size(); at += PAGE)
            found.emplace_back(bytes.begin() + static_cast<long>(at), bytes.begin() + static_cast<long>(at + PAGE));
        return found;
    }
    void put(std::size_t page, const Page &bytes) const {
        std::fstream out(path(), std::ios::binary | std::ios::in | std::ios::out);
        out.seekp(static_cast<long>(page * PAGE));
        out.write(reinterpret_cast<const char *>(bytes.data()), static_cast<long>(PAGE));
    }
    // So that only what the page holds is wrong.
    static void seal(Page &page) {
        const std::uint32_t sum = CZelPageView(page.data()).checksum();
        for (int i = 0; i < 4; ++i)
            page[static_cast<std::size_t>(CZelPageView::CHECKSUM + i)] = static_cast<unsigned char>(sum >> (8 * i));
    }

    const CZelAtom m_name{"v"};
    CZelROMPColumns m_columns;
    TestRandom random;
};

TEST_F(CacheScan, InPartsGivesTheRowsInTheOrderOfTheirHandles) {
    for (const float share : {0.0F, 0.3F, 0.9F}) {
        const std::unique_ptr<CZelRecordCache> cache = filled(share);
        const Outcome outcome = compare(*cache);
        EXPECT_EQ(static_cast<std::size_t>(cache->RRCLength()), outcome.seen);
        EXPECT_GT(outcome.passed, 50U);
        EXPECT_EQ(Texts(), outcome.reports);
        cache->RRCDeleteCacheFile();
    }
}

// A byte anywhere in a page, with its checksum or without; a page of zeros; a page that lies elsewhere.
TEST_F(CacheScan, InPartsReportsWhatIsDamagedAsOneThreadDoes) {
    std::size_t reported = 0;
    for (int round = 0; round < 40; ++round) {
        const std::unique_ptr<CZelRecordCache> cache = filled(round % 2 == 0 ? 0.0F : 0.3F);
        const std::vector<Page> sound = pages();
        for (int i = 0; i < 6; ++i) {
            const std::size_t page = random.below(static_cast<unsigned>(sound.size()));
            Page bytes = random.oneIn(8) ? Page(PAGE) : random.oneIn(8) ? sound[page / 2] : sound[page];
            bytes[random.oneIn(2) ? random.below(160) : random.below(PAGE)] ^=
                static_cast<unsigned char>(1 + random.below(255));
            if (random.oneIn(2))
                seal(bytes);
            put(page, bytes);
        }
        reported += compare(*cache).reports.size();
        cache->RRCDeleteCacheFile();
    }
    EXPECT_GT(reported, 20U);
}

// What a thread could not read is read again by itself.
TEST_F(CacheScan, AReadThatFailsOnceCostsNoRowOfAPart) {
    const std::unique_ptr<CZelRecordCache> cache = filled(0.0F);
    {
        const FailingFiles files(FailingFiles::READ, 1, EIO, FailingFiles::FOR_GOOD);
        const Outcome nothing = scanInParts(*cache, CZelCacheScan::COPIES);
        EXPECT_EQ(Texts(), nothing.rows);
        EXPECT_EQ(0U, nothing.seen);
        EXPECT_EQ(3U * static_cast<std::size_t>(cache->RRCLength()), nothing.reports.size());
    }
    const Outcome expected = scanInParts(*cache, CZelCacheScan::COPIES);
    EXPECT_EQ(static_cast<std::size_t>(cache->RRCLength()), expected.seen);
    for (int number = 1; number <= 3; ++number) {
        const FailingFiles files(FailingFiles::READ, number, EIO,
                                 number == 3 ? FailingFiles::IN_THE_MIDDLE : FailingFiles::WHOLLY);
        EXPECT_EQ(expected, scanInParts(*cache, CZelCacheScan::COPIES));
    }
}

TEST_F(CacheScan, CopiesAreTakenByNumberOnce) {
    const std::unique_ptr<CZelRecordCache> cache = filled(0.3F);
    const SplitAll split;
    CZelCacheScan scan(*cache, &m_columns, CZelCacheScan::COPIES);
    scan.run([](const SZelScannedRow &row) { return row.m_number % 3 == 0; });
    forEachHandle(*cache, [&](CZelAtom *handle) {
        const auto number = static_cast<std::size_t>(handle->RALong());
        const std::unique_ptr<CZelRecord> copy(scan.takeCopy(number));
        ASSERT_EQ(number % 3 == 0, copy != nullptr);
        ASSERT_EQ(copy != nullptr ? peek(*cache, handle) : "<none>", textOf(copy.get()));
        ASSERT_EQ(nullptr, scan.takeCopy(number));
    });
}

TEST(NumberSet, CountsTheNumbersBeforeEach) {
    TestRandom random;
    CZelNumberSet set, other;
    for (CZelNumberSet *one : {&set, &other})
        one->reset(1000);
    for (int i = 0; i < 300; ++i)
        (random.oneIn(2) ? set : other).add(random.below(1000));
    set.add(other);
    set.count();
    std::size_t place = 0;
    set.visit([&](std::size_t number) { EXPECT_EQ(place++, set.placeOf(number)); });
    for (std::size_t number = 0; number < 1000; ++number)
        EXPECT_LE(static_cast<std::size_t>(other.holds(number)), static_cast<std::size_t>(set.holds(number)));
    EXPECT_GT(place, 150U);
}

}  // namespace
