#include "foundations/port/ZelFile.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <vector>

#include "foundations/port/CZelFileDescriptor.h"
#include "foundations/port/ZelDynLib.h"
#include "port/FailingFiles.h"
#include "port/ScratchDirectory.h"

namespace {

constexpr int UPDATE = ZEL_FILE_READ | ZEL_FILE_WRITE | ZEL_FILE_CREATE;

class FileTest : public testing::Test {
protected:
    ZelFileHandle open(int flags, int mode = 3) const { return ZelFileOpen(m_path.c_str(), flags, mode); }

    ScratchDirectory m_directory;
    std::string m_path = m_directory.Path("file");
};

TEST_F(FileTest, PositionalTransfersAndSizeAgree) {
    EXPECT_EQ(ZEL_NO_FILE, open(ZEL_FILE_READ | ZEL_FILE_WRITE));
    const ZelFileHandle file = open(UPDATE);
    ASSERT_LE(0, file);
    EXPECT_EQ(5, ZelFilePWrite(file, "hello", 5, 10));
    unsigned int size = 0;
    EXPECT_EQ(1, ZelGetOpenFileSize(file, size));
    EXPECT_EQ(15U, size);
    char text[20] = "xxxxxxxxxxxxxxxxxxx";
    EXPECT_EQ(7, ZelFilePRead(file, text, 20, 8));
    EXPECT_EQ(std::string("\0\0hello", 7), std::string(text, 7));
    EXPECT_EQ(0, ZelFilePRead(file, text, 20, 15));
    EXPECT_EQ(1, ZelFileSync(file));
    EXPECT_EQ(1, ZelFileClose(file));
    EXPECT_EQ(-1, ZelFileClose(file));
    EXPECT_EQ(-1, ZelFilePRead(file, text, 1, 0));
}

TEST_F(FileTest, FlagsAndModeReachTheSystem) {
    m_directory.Write("file", "content");
    ZelFileHandle file = open(UPDATE);
    unsigned int size = 0;
    EXPECT_EQ(1, ZelGetOpenFileSize(file, size));
    EXPECT_EQ(7U, size);
    EXPECT_EQ(FD_CLOEXEC, fcntl(file, F_GETFD));
    ZelFileClose(file);
    file = open(UPDATE | ZEL_FILE_TRUNCATE);
    EXPECT_EQ(1, ZelGetOpenFileSize(file, size));
    EXPECT_EQ(0U, size);
    ZelFileClose(file);
    std::filesystem::remove(m_path);
    file = open(UPDATE);
    struct stat details {};
    EXPECT_EQ(0, fstat(file, &details));
    EXPECT_EQ(0600U, details.st_mode & 0777U);
    ZelFileClose(file);
    file = open(ZEL_FILE_READ);
    EXPECT_EQ(-1, ZelFilePWrite(file, "x", 1, 0));
    ZelFileClose(file);
    EXPECT_EQ(ZEL_NO_FILE, ZelFileOpen(nullptr, ZEL_FILE_READ, 3));
}

TEST_F(FileTest, TheNthCallFailsAndLeavesItsReason) {
    const FailingFiles files(FailingFiles::WRITE, 2, ENOSPC);
    const ZelFileHandle file = open(UPDATE);
    EXPECT_EQ(1, ZelFilePWrite(file, "a", 1, 0));
    EXPECT_EQ(-1, ZelFilePWrite(file, "b", 1, 1));
    EXPECT_EQ(ENOSPC, errno);
    EXPECT_EQ(1, ZelFilePWrite(file, "c", 1, 2));
    EXPECT_EQ(1, ZelFileClose(file));
    EXPECT_EQ(3, files.Calls(FailingFiles::WRITE));
}

TEST_F(FileTest, AnInterruptedCallIsRepeated) {
    const FailingFiles files(FailingFiles::READ, 1, EINTR);
    m_directory.Write("file", "content");
    const ZelFileHandle file = open(ZEL_FILE_READ);
    char text[4];
    EXPECT_EQ(4, ZelFileRead(file, text, 4));
    EXPECT_EQ(3, ZelFileRead(file, text, 4));
    EXPECT_EQ("ent", std::string(text, 3));
    ZelFileClose(file);
}

// A system whose transfers move one byte at a time.
class SlowFiles : public CZelFileSystem {
public:
    SlowFiles() : m_former(ZelSetFileSystem(this)) {}
    ~SlowFiles() override { ZelSetFileSystem(m_former); }
    long PRead(ZelFileHandle handle, void *buffer, unsigned int, long offset) override {
        return CZelFileSystem::PRead(handle, buffer, 1, offset);
    }
    long PWrite(ZelFileHandle handle, const void *buffer, unsigned int, long offset) override {
        return CZelFileSystem::PWrite(handle, buffer, 1, offset);
    }

private:
    CZelFileSystem *m_former;
};

TEST_F(FileTest, ShortTransfersAreCompleted) {
    const SlowFiles files;
    const ZelFileHandle file = open(UPDATE);
    EXPECT_EQ(9, ZelFilePWrite(file, "character", 9, 3));
    char text[9];
    EXPECT_EQ(9, ZelFilePRead(file, text, 9, 3));
    EXPECT_EQ("character", std::string(text, 9));
    ZelFileClose(file);
}

TEST_F(FileTest, ALockKeepsOutEveryOtherHandleAndTellsItsOwner) {
    const ZelFileHandle file = open(UPDATE);
    long owner = 0;
    ASSERT_EQ(1, ZelFileLock(file, &owner));
    const ZelFileHandle second = open(UPDATE);
    EXPECT_EQ(-1, ZelFileLock(second, &owner));
    EXPECT_EQ(EAGAIN, errno);
    EXPECT_EQ(getpid(), owner);
    ZelFileClose(second);  // takes nothing from the first handle
    const pid_t child = fork();
    if (child == 0) {
        const ZelFileHandle other = open(UPDATE);
        const bool isKeptOut = ZelFileLock(other, &owner) == -1 && owner == getppid();
        _exit(isKeptOut && ZelFileOwner(other) == getppid() ? 0 : 1);
    }
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(0, status);
    ZelFileClose(file);
    const ZelFileHandle third = open(UPDATE);
    EXPECT_EQ(0, ZelFileOwner(third));
    EXPECT_EQ(1, ZelFileLock(third, &owner));
    ZelFileClose(third);
}

TEST_F(FileTest, AFileGrowsAndIsCutBack) {
    const ZelFileHandle file = open(UPDATE);
    EXPECT_EQ(5, ZelFilePWrite(file, "hello", 5, 0));
    EXPECT_EQ(1, ZelFileReserve(file, 0, 1000));
    char text[1000];
    EXPECT_EQ(1000, ZelFilePRead(file, text, sizeof text, 0));
    EXPECT_EQ(std::string("hello") + std::string(995, '\0'), std::string(text, sizeof text));
    EXPECT_EQ(1, ZelFileTruncate(file, 3));
    EXPECT_EQ(3, ZelFilePRead(file, text, sizeof text, 0));
    EXPECT_EQ(-1, ZelFileTruncate(file, -1));
    EXPECT_EQ(1, ZelFileClose(file));
    EXPECT_EQ(-1, ZelFileReserve(file, 0, 1));
}

TEST_F(FileTest, NothingIsReplacedByARenamingAndNoLinkIsFollowed) {
    const ZelFileHandle file = open(UPDATE);
    const std::string other = m_directory.Path("other");
    EXPECT_TRUE(ZelFileIsAt(file, m_path.c_str()));
    EXPECT_EQ(1, ZelFileRename(m_path.c_str(), other.c_str()));
    EXPECT_FALSE(ZelFileIsAt(file, m_path.c_str()));
    EXPECT_TRUE(ZelFileIsAt(file, other.c_str()));
    m_directory.Write("file", "new");
    EXPECT_FALSE(ZelFileIsAt(file, m_path.c_str()));
    EXPECT_EQ(-1, ZelFileRename(m_path.c_str(), other.c_str()));
    EXPECT_EQ(EEXIST, errno);
    std::filesystem::remove(m_path);
    std::filesystem::create_symlink(other, m_path);
    EXPECT_FALSE(ZelFileIsAt(file, m_path.c_str()));
    EXPECT_EQ(ZEL_NO_FILE, open(UPDATE | ZEL_FILE_NO_LINK));
    EXPECT_EQ(ELOOP, errno);
    EXPECT_EQ(1, ZelFileSyncFolder(m_directory.Path("").c_str()));
    EXPECT_EQ(-1, ZelFileSyncFolder(other.c_str()));
    ZelFileClose(file);
}

TEST(FileDescriptor, OnlyExhaustionIsAnsweredByMoreHandles) {
    EXPECT_TRUE(CZelFileDescriptor::RFDIsUnavailable(EMFILE));
    EXPECT_TRUE(CZelFileDescriptor::RFDIsUnavailable(ENFILE));
    EXPECT_FALSE(CZelFileDescriptor::RFDIsUnavailable(ENOENT));
    rlimit former{};
    getrlimit(RLIMIT_NOFILE, &former);
    const rlimit tight{former.rlim_max - 1, former.rlim_max};
    ASSERT_EQ(0, setrlimit(RLIMIT_NOFILE, &tight));
    EXPECT_EQ(E_FDOk, CZelFileDescriptor::RFDMakeAvailable());
    rlimit now{};
    getrlimit(RLIMIT_NOFILE, &now);
    EXPECT_EQ(former.rlim_max, now.rlim_cur);
    EXPECT_EQ(E_FDNoneLeft, CZelFileDescriptor::RFDMakeAvailable());
    setrlimit(RLIMIT_NOFILE, &former);
}

TEST(DynLib, SymbolsOfALibraryAndTheReasonOfAFailure) {
    void *library = ZelDLOpen("libm.so.6", 0);
    ASSERT_NE(nullptr, library);
    EXPECT_NE(nullptr, ZelDLSym(library, "cos"));
    EXPECT_EQ(nullptr, ZelDLSym(library, "no_such_symbol"));
    EXPECT_STRNE("", ZelDLError());
    EXPECT_STREQ("", ZelDLError());
    EXPECT_EQ(1, ZelDLClose(library));
    EXPECT_EQ(nullptr, ZelDLOpen("", 0));
    EXPECT_EQ(nullptr, ZelDLOpen("/no/such/library.so", 0));
    EXPECT_STRNE("", ZelDLError());
}

}  // namespace
