#include "foundations/port/CZelProcess.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "foundations/port/CQMTLocalise.h"
#include "foundations/port/CZelErrorCapture.h"
#include "foundations/port/ZelCodes.h"
#include "foundations/port/ZelRegistry.h"
#include "port/ScratchDirectory.h"

namespace {

using Pairs = std::vector<std::pair<std::string, std::string>>;

TEST(Process, RegistryGivesOwnOptionsBeforeSharedOnes) {
    const ScratchDirectory directory;
    const std::string path = directory.Write("registry.ini",
                                             "# shared\r\n"
                                             " -errorlevel =\t2 \r\n"
                                             "; another comment\n"
                                             "-debug = 1\n"
                                             "[ other ]\n-debug = 4\n"
                                             "[me]\n"
                                             "-debug = 3\n-title = \" a = b \"\n-verbose\n-odd = \"");
    Pairs pairs;
    EXPECT_EQ(1, ZelReadRegistry(path.c_str(), "me", pairs));
    EXPECT_EQ((Pairs{{"-debug", "3"}, {"-title", " a = b "}, {"-verbose", ""}, {"-odd", "\""}, {"-errorlevel", "2"}}),
              pairs);
    EXPECT_EQ(E_RCOpenFailed, ZelReadRegistry(directory.Path("absent").c_str(), "me", pairs));
}

TEST(Process, UnusableRegistryLinesAreReportedAndPassedOver) {
    const ScratchDirectory directory;
    const std::string path = directory.Write("registry.ini", "= 1\n-a = 1\n[me\n-b = 2\n[\n[me]\n-c = 3\n");
    const CZelErrorCapture capture;
    Pairs pairs;
    EXPECT_EQ(E_RCBadValue, ZelReadRegistry(path.c_str(), "me", pairs));
    EXPECT_EQ((Pairs{{"-c", "3"}, {"-a", "1"}}), pairs);
    EXPECT_EQ(3U, capture.Count());
    EXPECT_TRUE(capture.Holds(E_RCBadValue, (path + " line 3: a section's name ends with ]").c_str()));
}

TEST(Process, RegistryFileIsFoundByVariableThenByInstallRoot) {
    const ScratchDirectory directory;
    directory.Write("etc/registry.ini", "-from = root\n");
    const std::string own =
        directory.Write("own.ini", std::string("[") + program_invocation_short_name + "]\n-from = own\n");
    const ScopedVariable home("QMTHOME", directory.Path("").c_str());
    Pairs pairs{{"-old", "1"}};
    {
        const ScopedVariable registry("QMT_REGISTRY", nullptr);
        CZelProcess::Instance().GetRegistryArgs(pairs);
        EXPECT_EQ((Pairs{{"-from", "root"}}), pairs);
    }
    const ScopedVariable registry("QMT_REGISTRY", own.c_str());
    CZelProcess::Instance().GetRegistryArgs(pairs);
    EXPECT_EQ((Pairs{{"-from", "own"}}), pairs);
}

// A service manager's socket.
class Listener {
public:
    explicit Listener(const std::string &name) : m_handle(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::memcpy(address.sun_path, name.data(), name.size());
        if (name[0] == '@')
            address.sun_path[0] = '\0';
        const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + name.size());
        EXPECT_EQ(0, bind(m_handle, reinterpret_cast<sockaddr *>(&address), length));
    }
    ~Listener() { close(m_handle); }
    std::string receive() const {
        char text[64];
        const ssize_t length = recv(m_handle, text, sizeof text, MSG_DONTWAIT);
        return length < 0 ? "nothing" : std::string(text, static_cast<std::size_t>(length));
    }

private:
    int m_handle;
};

TEST(Process, ServiceManagerIsToldOnItsSocket) {
    const ScratchDirectory directory;
    for (const std::string &name : {directory.Path("notify"), "@quintor-test-" + std::to_string(getpid())}) {
        const Listener listener(name);
        const ScopedVariable socket("NOTIFY_SOCKET", name.c_str());
        EXPECT_TRUE(CZelProcess::Instance().NowRunning());
        EXPECT_EQ("READY=1", listener.receive());
    }
    const std::string tooLong = "/" + std::string(200, 'x');
    for (const char *name : {static_cast<const char *>(nullptr), "", "vsock:1", "/no/such/socket", tooLong.c_str()}) {
        const ScopedVariable socket("NOTIFY_SOCKET", name);
        EXPECT_FALSE(CZelProcess::Instance().NowRunning());
    }
}

TEST(Process, CoreFilesGoUnderTheInstallRootOnlyIfItHasAPlace) {
    const ScratchDirectory directory;
    const std::filesystem::path before = std::filesystem::current_path();
    const ScopedVariable home("QMTHOME", directory.Path("").c_str());
    EXPECT_FALSE(CZelProcess::Instance().ChangeToCoreDumpDir());
    EXPECT_EQ(before, std::filesystem::current_path());
    std::filesystem::create_directories(directory.Path("var/core"));
    EXPECT_TRUE(CZelProcess::Instance().ChangeToCoreDumpDir());
    EXPECT_TRUE(std::filesystem::equivalent(directory.Path("var/core"), std::filesystem::current_path()));
    std::filesystem::current_path(before);
}

TEST(Process, CpuTimeGrowsWithWork) {
    long long system = -1;
    long long before = -1;
    long long after = -1;
    EXPECT_TRUE(CZelProcess::Instance().GetCPUUsage(system, before));
    EXPECT_LE(0, system);
    do {
        EXPECT_TRUE(CZelProcess::Instance().GetCPUUsage(system, after));
    } while (after == before && system < 10000000);
    EXPECT_LT(before, after);
}

class LocaliseTest : public testing::Test {
protected:
    std::string get(int set, int message, unsigned int size = 64) const {
        char buffer[64];
        std::memset(buffer, '#', sizeof buffer);
        return m_catalogue.Get(set, message, "default", buffer, size);
    }
    ScratchDirectory m_directory;
    CQMTLocalise m_catalogue;
};

TEST_F(LocaliseTest, CatalogueTextOrTheDefault) {
    const std::string path =
        m_directory.Write("messages.txt", "# c\n1 1 A  text\\n\\\\ \\x\n\n1 2 d\xc3\xa9j\xc3\xa0\n");
    EXPECT_EQ(1, m_catalogue.Load(path.c_str()));
    EXPECT_EQ("A  text\n\\ \\x", get(1, 1));
    EXPECT_EQ("default", get(2, 1));
    EXPECT_EQ("d\xc3\xa9j", get(1, 2, 6));  // the last letter needs two bytes
    EXPECT_EQ("d", get(1, 2, 3));
    EXPECT_EQ("", get(1, 2, 1));
    char untouched = 'u';
    m_catalogue.Get(1, 1, nullptr, &untouched, 0);
    EXPECT_EQ('u', untouched);
    EXPECT_STREQ("", m_catalogue.Get(9, 9, nullptr, &untouched, 1));
}

TEST_F(LocaliseTest, UnusableLinesAreReported) {
    const CZelErrorCapture capture;
    const std::string path = m_directory.Write("messages.txt", "1 x y\n1\n99999999999 1 y\n1 1\n3 4 good\n");
    EXPECT_EQ(E_RCBadValue, m_catalogue.Load(path.c_str()));
    EXPECT_EQ(4U, capture.Count());
    EXPECT_EQ("good", get(3, 4));
    EXPECT_EQ(E_RCOpenFailed, m_catalogue.Load(m_directory.Path("absent").c_str()));
}

}  // namespace
