#include "foundations/port/ZelPort.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <climits>
#include <csignal>
#include <cstdlib>
#include <limits>
#include <memory>
#include <string>

#include "foundations/port/ZelCodes.h"
#include "port/ScratchDirectory.h"

namespace {

struct Free {
    void operator()(char *text) const { std::free(text); }
};

std::string taken(char *text) {
    const std::unique_ptr<char, Free> owner(text);
    return text != nullptr ? text : "null";
}

TEST(Port, TimesAreLocalAndFitOrGiveNull) {
    const ScopedVariable zone("TZ", "UTC-2");
    tzset();
    const long time = 1700000000;
    char buffer[64];
    EXPECT_STREQ("Wed Nov 15 00:13:20 2023\n", ZelCTime_r(&time, buffer, 26));
    EXPECT_EQ(nullptr, ZelCTime_r(&time, buffer, 25));
    EXPECT_STREQ("2023-11-15 00:13", ZelStrfTime_r(&time, "%Y-%m-%d %H:%M", buffer, 17));
    EXPECT_EQ(nullptr, ZelStrfTime_r(&time, "%Y-%m-%d %H:%M", buffer, 16));
    EXPECT_STREQ("", ZelStrfTime_r(&time, "", buffer, 1));
    for (const long extreme : {LONG_MAX, LONG_MIN}) {
        EXPECT_EQ(nullptr, ZelCTime_r(&extreme, buffer, sizeof buffer));
        EXPECT_EQ(nullptr, ZelStrfTime_r(&extreme, "%Y", buffer, sizeof buffer));
    }
    EXPECT_EQ(nullptr, ZelCTime_r(nullptr, buffer, sizeof buffer));
    EXPECT_EQ(nullptr, ZelCTime_r(&time, nullptr, 26));
}

TEST(Port, HashOfAPasswordDependsOnTextAndSalt) {
    const std::string hash = taken(ZelCrypt("secret", "ab"));
    EXPECT_EQ(13U, hash.size());
    EXPECT_EQ("ab", hash.substr(0, 2));
    EXPECT_EQ(hash, taken(ZelCrypt("secret", "ab")));
    EXPECT_NE(hash, taken(ZelCrypt("Secret", "ab")));
    EXPECT_NE(hash.substr(2), taken(ZelCrypt("secret", "cd")).substr(2));
    for (const char *salt : {static_cast<const char *>(nullptr), "", "a", "a:", "$1$abcdefgh$"})
        EXPECT_EQ("null", taken(ZelCrypt("secret", salt)));
    EXPECT_EQ("null", taken(ZelCrypt(nullptr, "ab")));
}

TEST(Port, AddressesGoBothWays) {
    EXPECT_EQ("10.1.2.255", taken(ZelGetIPStr(0x0a0102ffUL)));
    EXPECT_EQ("255.255.255.255", taken(ZelGetIPStr(static_cast<unsigned long>(-1))));
    in_addr address{7};
    for (const char *text : {"", "10.1.2", "10.1.2.256", "10.1.2.3 ", "10.1.2.3.4", "0x0a.1.2.3", "a.b.c.d"})
        EXPECT_EQ(-1, ZelInetAtoN(text, &address)) << text;
    EXPECT_EQ(-1, ZelInetAtoN(nullptr, &address));
    EXPECT_EQ(7U, address.s_addr);
    EXPECT_EQ(1, ZelInetAtoN("10.1.2.255", &address));
    EXPECT_EQ(0x0a0102ffU, ntohl(address.s_addr));
}

TEST(Port, MemoryOfAProcessIsInBytes) {
    const unsigned long size = ZelGetProcMemSize(static_cast<unsigned long>(getpid()));
    EXPECT_LT(500000U, size);
    EXPECT_GT(1UL << 40, size);
    EXPECT_EQ(0U, ZelGetProcMemSize(ULONG_MAX));
}

TEST(PortDeathTest, SignalsReachTheProcessItself) {
    EXPECT_EQ(E_RCBadArgument, ZelSigSend(12345));
    EXPECT_EXIT(
        {
            std::signal(SIGTERM, SIG_DFL);
            ZelSigSend(SIGTERM);
            ZelSleep(10000);
        },
        testing::KilledBySignal(SIGTERM), "");
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
TEST(PortDeathTest, ExhaustedMemoryInNewEndsInOrder) {
    EXPECT_EXIT(
        {
            ZelInitPortingLibrary();
            volatile std::size_t tooMuch = std::numeric_limits<std::size_t>::max() / 4;
            ::operator delete(::operator new(tooMuch));
        },
        testing::ExitedWithCode(1), "E_RCNoMemory");
}
#endif

TEST(Port, LibraryIsReadiedOnce) {
    EXPECT_FALSE(ZelCleanupPortingLibrary());
    EXPECT_TRUE(ZelInitPortingLibrary());
    EXPECT_FALSE(ZelInitPortingLibrary());
    EXPECT_TRUE(ZelCleanupPortingLibrary());
}

}  // namespace
