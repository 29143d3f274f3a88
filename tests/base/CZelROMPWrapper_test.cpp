#include "foundations/base/CZelROMPWrapper.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "foundations/base/ZelCrc32c.h"
#include "support/TestRandom.h"

namespace {

std::vector<unsigned char> pageOf(const std::string &text, int offset) {
    CZelROMPWrapper page(reinterpret_cast<const unsigned char *>(text.data()), static_cast<int>(text.size()), offset);
    page.RRWSetIsFirstPkt(ZelBool(offset == 0));
    page.RRWSetNextPkt(1024);
    page.RRWSetStamp(0x1122334455667788ULL);
    page.RRWSetReplaced(2048, 77);
    const unsigned char *data = page.RRWGetData();
    return {data, data + CZelROMPWrapper::PAGE_BYTES};
}

}  // namespace

// The vectors of RFC 3720, appendix B.4.
TEST(Crc32c, BothRoadsGiveTheKnownChecksums) {
    const std::vector<unsigned char> zeros(32, 0), ones(32, 0xFF);
    std::vector<unsigned char> rising(32);
    for (std::size_t i = 0; i < rising.size(); ++i)
        rising[i] = static_cast<unsigned char>(i);
    EXPECT_EQ(0x8A9136AAU, ZelCrc32c(zeros.data(), 32));
    EXPECT_EQ(0x62A8AB43U, ZelCrc32c(ones.data(), 32));
    EXPECT_EQ(0x46DD794EU, ZelCrc32c(rising.data(), 32));
    TestRandom random;
    std::vector<unsigned char> bytes(600);
    for (unsigned char &byte : bytes)
        byte = static_cast<unsigned char>(random.below(256));
    for (std::size_t length = 0; length < bytes.size(); ++length)
        ASSERT_EQ(ZelCrc32cByTable(bytes.data(), length), ZelCrc32c(bytes.data(), length)) << length;
}

TEST(Crc32c, APageIsCheckedAsIfItsOwnChecksumWereZeros) {
    TestRandom random;
    std::vector<unsigned char> page(512);
    for (int i = 0; i < 100; ++i) {
        for (unsigned char &byte : page)
            byte = static_cast<unsigned char>(random.below(random.below(256) + 1));
        std::vector<unsigned char> emptied = page;
        std::fill_n(emptied.begin() + CZelPageView::CHECKSUM, 4, '\0');
        const std::uint32_t checksum = ZelCrc32cByTable(emptied.data(), emptied.size());
        ASSERT_EQ(checksum, ZelCrc32cOfPage(page.data()));
        ASSERT_EQ(checksum, ZelCrc32cOfPageInParts(page.data()));
    }
}

TEST(ROMPWrapper, APageReadsBackAsItWasWritten) {
    const std::string text(1000, 'x');
    const CZelROMPWrapper page(pageOf(text, 468).data());
    EXPECT_EQ(CZelROMPWrapper::SOUND, page.RRWCondition());
    EXPECT_EQ(E_RBFalse, page.RRWGetIsFirstPkt());
    EXPECT_EQ(468, page.RRWGetDataLen());
    EXPECT_EQ(1000, page.RRWGetTotalLen());
    EXPECT_EQ(0, std::memcmp(text.data(), page.RRWGetROMPData(), 468));
    EXPECT_EQ(1024, page.RRWGetNextPkt());
    EXPECT_EQ(0x1122334455667788ULL, page.RRWGetStamp());
    EXPECT_EQ(2048, page.RRWGetReplaced());
    EXPECT_EQ(77U, page.RRWGetReplacedStamp());
    CZelROMPWrapper last(reinterpret_cast<const unsigned char *>(text.data()), 1000, 936);
    EXPECT_EQ(64, last.RRWGetDataLen());
    EXPECT_EQ(last.RRWGetNextPktMax(), last.RRWGetNextPkt());
    EXPECT_EQ(-1, last.RRWGetReplaced());
}

TEST(ROMPWrapper, EveryFlippedBitIsNoticed) {
    std::vector<unsigned char> bytes = pageOf("a record", 0);
    std::vector<unsigned char> empty(CZelROMPWrapper::PAGE_BYTES, 0);
    EXPECT_EQ(E_RBTrue, CZelROMPWrapper(empty.data()).RRWIsPacketEmpty());
    for (std::size_t bit = 0; bit < bytes.size() * 8; ++bit) {
        const auto mask = static_cast<unsigned char>(1U << bit % 8);
        bytes[bit / 8] ^= mask;
        empty[bit / 8] ^= mask;
        ASSERT_EQ(CZelROMPWrapper::DAMAGED, CZelROMPWrapper(bytes.data()).RRWCondition()) << bit;
        ASSERT_EQ(CZelROMPWrapper::DAMAGED, CZelROMPWrapper(empty.data()).RRWCondition()) << bit;
        bytes[bit / 8] ^= mask;
        empty[bit / 8] ^= mask;
    }
}

// A sound checksum over lengths and links that make no sense.
TEST(ROMPWrapper, NothingIsTrustedForItsChecksumAlone) {
    const std::string text(10, 'x');
    const auto *bytes = reinterpret_cast<const unsigned char *>(text.data());
    const auto conditionOf = [](CZelROMPWrapper page) { return CZelROMPWrapper(page.RRWGetData()).RRWCondition(); };
    CZelROMPWrapper page(bytes, 10, 0);
    EXPECT_EQ(CZelROMPWrapper::SOUND, conditionOf(page));
    for (const long next : {1L, 511L, 513L, 2147483646L, 4294967295L}) {
        CZelROMPWrapper linked(bytes, 10, 0);
        linked.RRWSetNextPkt(next);
        EXPECT_EQ(CZelROMPWrapper::DAMAGED, conditionOf(linked)) << next;
    }
    EXPECT_EQ(CZelROMPWrapper::DAMAGED, conditionOf(CZelROMPWrapper(bytes, 0, 0)));
    EXPECT_EQ(CZelROMPWrapper::DAMAGED, conditionOf(CZelROMPWrapper(bytes, 10, 10)));
}
