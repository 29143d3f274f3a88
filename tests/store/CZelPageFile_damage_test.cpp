// Damaged files: whatever the bytes say, no record is wrong, and the others are all there.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "foundations/base/CZelROMPWrapper.h"
#include "foundations/base/ZelCrc32c.h"
#include "foundations/port/CZelErrorCapture.h"
#include "store/PageFiles.h"
#include "support/MemoryFiles.h"
#include "support/TestRandom.h"

namespace {

using Bytes = MemoryFiles::Bytes;

constexpr const char *PATH = "/records";
constexpr int PAGE = CZelROMPWrapper::PAGE_BYTES;

// Where a page has its total length and its checksum.
constexpr int TOTAL_LENGTH = 8;
constexpr int CHECKSUM = 40;

// Every bit is flipped where that takes seconds; elsewhere one in so many, of all places in a byte.
#ifdef NDEBUG
constexpr std::size_t STEP = 1;
#else
constexpr std::size_t STEP = 13;
#endif

void put(unsigned char *place, long value) {
    for (int i = 0; i < 4; ++i)
        place[i] = static_cast<unsigned char>(value >> (8 * i));
}

// Records by what they hold.
using Values = std::multiset<std::string>;

class PageDamage : public testing::Test {
protected:
    // About 64 pages: records of one to four pages, some of them replaced or gone.
    void SetUp() override {
        CZelPageFile file;
        ASSERT_EQ(1, file.open(PATH, true));
        std::vector<long> starts;
        for (int i = 0; i < 20; ++i)
            starts.push_back(write(file, i, 100 + i * 60, CZelPageFile::NO_POSITION));
        for (int i = 0; i < 4; ++i)
            starts[static_cast<std::size_t>(i * 4)] =
                write(file, 100 + i, 900 + i * 200, starts[static_cast<std::size_t>(i * 4)]);
        ASSERT_EQ(1, file.release(starts[1]));
        ASSERT_EQ(1, file.close());
        m_sound = m_files.files()[PATH];
        m_sound.resize(64 * PAGE);  // the pages behind are empty
        m_written = foundIn(m_sound);
        ASSERT_EQ(19U, m_written.size());
    }

    static long write(CZelPageFile &file, int number, int length, long replaced) {
        std::string text = std::to_string(number) + ':';
        text.resize(static_cast<std::size_t>(length), static_cast<char>('a' + number % 26));
        long start = 0;
        EXPECT_EQ(1, PageFiles::write(file, text, replaced, &start));
        return start;
    }

    static Values readIn(CZelPageFile &file) {
        Values values;
        for (const auto &[start, text] : PageFiles::reopen(file, PATH))
            values.insert(text);
        return values;
    }

    Values foundIn(const Bytes &bytes) {
        m_files.restart({{PATH, bytes}});
        CZelPageFile file;
        return readIn(file);
    }

    // Reads a file in; works with it too, so that what is out of use shows its teeth.
    Values foundAndWorkedWith(const Bytes &bytes) {
        m_files.restart({{PATH, bytes}});
        CZelPageFile file;
        const Values records = readIn(file);
        write(file, 999, 1500, CZelPageFile::NO_POSITION);
        EXPECT_EQ(1, file.close());
        EXPECT_EQ(records.size() + 1, readIn(file).size());
        return records;
    }

    // No record that was not written, none twice, and at most so many of them missing.
    void expectLost(const Bytes &bytes, std::size_t most, const std::string &how) {
        const Values records = foundAndWorkedWith(bytes);
        for (const std::string &record : records) {
            ASSERT_EQ(1U, m_written.count(record)) << how;
            ASSERT_EQ(1U, records.count(record)) << how;
        }
        ASSERT_LE(m_written.size() - records.size(), most) << how;
    }

    unsigned char *page(Bytes &bytes, std::size_t number) { return bytes.data() + number * PAGE; }
    std::size_t pages() const { return m_sound.size() / PAGE; }

    const CZelErrorCapture m_quiet;
    MemoryFiles m_files;
    Bytes m_sound;
    Values m_written;
};

}  // namespace

TEST_F(PageDamage, AnyFlippedBitCostsItsRecordAtMost) {
    Bytes bytes = m_sound;
    for (std::size_t bit = 0; bit < bytes.size() * 8; bit += STEP) {
        const auto mask = static_cast<unsigned char>(1U << bit % 8);
        bytes[bit / 8] ^= mask;
        const Values found = foundIn(bytes);
        ASSERT_TRUE(std::includes(m_written.begin(), m_written.end(), found.begin(), found.end())) << bit;
        ASSERT_LE(m_written.size() - found.size(), 1U) << bit;
        bytes[bit / 8] ^= mask;
    }
}

TEST_F(PageDamage, SwappedZeroedAndDoubledPages) {
    TestRandom random;
    for (int round = 0; round < 1000; ++round) {
        Bytes bytes = m_sound;
        const std::size_t from = random.below(static_cast<unsigned>(pages()));
        const std::size_t to = random.below(static_cast<unsigned>(pages()));
        const unsigned kind = random.below(3);
        if (kind == 0)
            std::swap_ranges(page(bytes, from), page(bytes, from) + PAGE, page(bytes, to));
        else if (kind == 1)
            std::fill_n(page(bytes, to), PAGE, static_cast<unsigned char>(0));
        else
            std::copy_n(page(bytes, from), PAGE, page(bytes, to));
        ASSERT_NO_FATAL_FAILURE(expectLost(
            bytes, 2,
            "kind " + std::to_string(kind) + ", pages " + std::to_string(from) + " and " + std::to_string(to)));
    }
}

// A copy of a page must not outlive the record: not when it is replaced, and not when it is gone.
TEST_F(PageDamage, ACopyOfAPageNeverBringsAFormerRecordBack) {
    for (const bool isBehind : {false, true}) {
        m_files.restart({});
        CZelPageFile file;
        PageFiles::reopen(file, PATH);
        const long gone = PageFiles::add(file, "gone"), former = PageFiles::add(file, "former");
        ASSERT_EQ(1, file.release(gone));
        ASSERT_EQ(1, file.close());
        Bytes &bytes = m_files.files()[PATH];
        std::copy_n(bytes.data() + former, PAGE, bytes.data() + (isBehind ? 10 * PAGE : gone));
        ASSERT_EQ(Values{"former"}, readIn(file));
        EXPECT_EQ(1, file.counts().m_damaged);
        long start = 0;
        ASSERT_EQ(1, PageFiles::write(file, "new", former, &start));
        ASSERT_EQ(1, file.close());
        EXPECT_EQ(Values{"new"}, readIn(file));
        ASSERT_EQ(1, file.release(start));
        ASSERT_EQ(1, file.close());
        EXPECT_EQ(Values{}, readIn(file));
    }
}

// Links and lengths that lie, under checksums that hold.
TEST_F(PageDamage, LyingLinksAndLengths) {
    TestRandom random;
    for (int round = 0; round < 1000; ++round) {
        Bytes bytes = m_sound;
        const std::size_t number = random.below(static_cast<unsigned>(pages()));
        CZelROMPWrapper wrapper(page(bytes, number));
        if (wrapper.RRWCondition() != CZelROMPWrapper::SOUND)
            continue;
        const long target = static_cast<long>(random.below(static_cast<unsigned>(pages() + 2))) * PAGE;
        if (random.oneIn(2)) {
            wrapper.RRWSetNextPkt(random.oneIn(3) ? static_cast<long>(number) * PAGE : target);
        } else {
            const CZelROMPWrapper other(page(bytes, static_cast<std::size_t>(target / PAGE) % pages()));
            wrapper.RRWSetStamp(other.RRWGetStamp());
        }
        std::copy_n(wrapper.RRWGetData(), PAGE, page(bytes, number));
        ASSERT_NO_FATAL_FAILURE(expectLost(bytes, 2, "page " + std::to_string(number)));
    }
}

TEST_F(PageDamage, LengthsThatNoRecordCanHave) {
    for (const long length : {0L, -1L, 2147483647L}) {
        for (std::size_t number = 0; number < pages(); ++number) {
            Bytes bytes = m_sound;
            put(page(bytes, number) + TOTAL_LENGTH, length);
            put(page(bytes, number) + CHECKSUM, 0);
            put(page(bytes, number) + CHECKSUM, ZelCrc32c(page(bytes, number), PAGE));
            ASSERT_NO_FATAL_FAILURE(expectLost(bytes, 1, "page " + std::to_string(number)));
        }
    }
}
