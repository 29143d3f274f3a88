// Damaged files: whatever the bytes say, no record is wrong, and the others are all there.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "foundations/base/CZelROMPWrapper.h"
#include "foundations/base/ZelCrc32c.h"
#include "foundations/port/CZelErrorCapture.h"
#include "store/CZelPageFile.h"
#include "store/CZelPageMap.h"
#include "support/MemoryFiles.h"
#include "support/TestRandom.h"

namespace {

using Bytes = MemoryFiles::Bytes;

constexpr const char *PATH = "/records";
constexpr int PAGE = CZelROMPWrapper::PAGE_BYTES;

// Where a page has its total length and its checksum.
constexpr int TOTAL_LENGTH = 8;
constexpr int CHECKSUM = 40;

void put(unsigned char *place, long value) {
    for (int i = 0; i < 4; ++i)
        place[i] = static_cast<unsigned char>(value >> (8 * i));
}

class Collector : public CZelPageFile::Reader {
public:
    bool takeChain(long /*start*/, const unsigned char *encoding, int length) override {
        m_records.insert(std::string(reinterpret_cast<const char *>(encoding), static_cast<std::size_t>(length)));
        return true;
    }
    std::multiset<std::string> m_records;
};

class PageDamage : public testing::Test {
protected:
    // About 64 pages: records of one to four pages, some of them replaced or gone.
    void SetUp() override {
        CZelPageFile file;
        ASSERT_EQ(1, file.open(PATH, true));
        std::vector<long> starts;
        for (int i = 0; i < 28; ++i)
            starts.push_back(write(file, i, 100 + i * 60, CZelPageFile::NO_POSITION));
        for (int i = 0; i < 6; ++i)
            starts[static_cast<std::size_t>(i * 4)] =
                write(file, 100 + i, 900 + i * 200, starts[static_cast<std::size_t>(i * 4)]);
        ASSERT_EQ(1, file.release(starts[1]));
        ASSERT_EQ(1, file.close());
        m_sound = m_files.files()[PATH];
        m_written = found(m_sound);
        ASSERT_EQ(27U, m_written.size());
    }

    static long write(CZelPageFile &file, int number, int length, long replaced) {
        std::string text = std::to_string(number) + ':';
        text.resize(static_cast<std::size_t>(length), static_cast<char>('a' + number % 26));
        long start = 0;
        EXPECT_EQ(1, file.write(reinterpret_cast<const unsigned char *>(text.data()), length, replaced, &start));
        return start;
    }

    // Reads a file in; works with it too, so that what is out of use shows its teeth.
    std::multiset<std::string> found(const Bytes &bytes) {
        m_files.restart({{PATH, bytes}});
        CZelPageFile file;
        Collector collector;
        EXPECT_EQ(1, file.open(PATH, true));
        EXPECT_EQ(1, file.readAll(collector));
        write(file, 999, 1500, CZelPageFile::NO_POSITION);
        EXPECT_EQ(1, file.close());
        Collector again;
        EXPECT_EQ(1, file.open(PATH, true));
        EXPECT_EQ(1, file.readAll(again));
        std::multiset<std::string> records = collector.m_records;
        EXPECT_EQ(records.size() + 1, again.m_records.size());
        return records;
    }

    // No record that was not written, none twice, and at most so many of them missing.
    void expectLost(const Bytes &bytes, std::size_t most, const std::string &how) {
        const std::multiset<std::string> records = found(bytes);
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
    std::multiset<std::string> m_written;
};

}  // namespace

TEST_F(PageDamage, AFlippedBitCostsItsRecordAtMost) {
    TestRandom random;
    Bytes bytes = m_sound;
    for (std::size_t byte = 0; byte < bytes.size(); ++byte) {
        if (byte % PAGE >= CZelROMPWrapper::HEADER_BYTES && byte % 16 != 0)
            continue;  // that any bit breaks a page is the page's own test
        const auto mask = static_cast<unsigned char>(1U << random.below(8));
        bytes[byte] ^= mask;
        ASSERT_NO_FATAL_FAILURE(expectLost(bytes, 1, "byte " + std::to_string(byte)));
        bytes[byte] ^= mask;
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
