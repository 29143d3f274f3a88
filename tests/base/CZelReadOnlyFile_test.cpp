#include "foundations/base/CZelReadOnlyFile.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <thread>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelDirectory.h"
#include "foundations/base/CZelEnv.h"
#include "foundations/base/ZelMalloc.h"
#include "port/FailingFiles.h"
#include "port/ScratchDirectory.h"

namespace {

class ReadOnlyFileTest : public testing::Test {
protected:
    static std::string readAll(CZelReadOnlyFile &file) {
        std::size_t length = 0;
        const CZelMallocText text(file.ROFReadAll(&length));
        return text != nullptr ? std::string(text.get(), length) : "null";
    }
    static std::string contentOf(const std::string &path) {
        CZelReadOnlyFile file(path.c_str());
        EXPECT_EQ(E_FROk, file.ROFOpen());
        return readAll(file);
    }
    ScratchDirectory m_directory;
};

TEST_F(ReadOnlyFileTest, WholeFilesOfAllSizes) {
    for (const std::size_t size : {0U, 1U, 65535U, 65536U, 65537U, 200000U}) {
        const std::string text = std::string(size / 2, 'a') + std::string(size - size / 2, '\0');
        EXPECT_EQ(text, contentOf(m_directory.Write("file", text))) << size;
    }
}

TEST_F(ReadOnlyFileTest, APipeIsReadToItsEnd) {
    const std::string path = m_directory.Path("pipe");
    ASSERT_EQ(0, mkfifo(path.c_str(), 0600));
    const std::string text(1 << 20, 'p');
    std::thread writer([&] { std::ofstream(path) << text; });
    EXPECT_EQ(text, contentOf(path));
    writer.join();
}

TEST_F(ReadOnlyFileTest, SmallReadsGoOnWhereTheLastEnded) {
    CZelReadOnlyFile file(m_directory.Write("file", "first\nsecond").c_str());
    EXPECT_EQ(E_FROk, file.ROFOpen());
    char text[16] = {};
    EXPECT_EQ(E_FROk, file.ROFRead(text, 5));
    EXPECT_EQ(E_FROk, file.ROFRead(text + 5, 1));
    EXPECT_STREQ("first\n", text);
    EXPECT_EQ("second", readAll(file));
    EXPECT_EQ(E_FREnd, file.ROFRead(text, 1));
    EXPECT_EQ(E_FROk, file.ROFOpen());  // from the beginning again
    EXPECT_EQ(E_FREnd, file.ROFRead(text, 14));
    EXPECT_STREQ("first\nsecond", text);
}

TEST_F(ReadOnlyFileTest, WhatCannotBeReadSaysWhy) {
    CZelReadOnlyFile absent(m_directory.Path("absent").c_str());
    EXPECT_EQ(E_FRNotFound, absent.ROFCheckAccess());
    EXPECT_EQ(E_FRNotFound, absent.ROFOpen());
    EXPECT_EQ(nullptr, absent.ROFReadAll());
    char byte = 0;
    EXPECT_EQ(E_FRNotOpen, absent.ROFRead(&byte, 1));
    EXPECT_EQ(E_FROk, absent.ROFClose());
    struct stat details {};
    EXPECT_EQ(E_FRNotFound, absent.ROFGetFileDetails(details));
    EXPECT_EQ(E_FRNoAccess, CZelReadOnlyFile(m_directory.Path("").c_str()).ROFOpen());
    EXPECT_EQ(E_FRNotFound, CZelReadOnlyFile(nullptr).ROFOpen());
}

TEST_F(ReadOnlyFileTest, FailuresOfTheSystemArePassedOn) {
    CZelReadOnlyFile file(m_directory.Write("file", "content").c_str());
    {
        const FailingFiles files(FailingFiles::OPEN, 1, EMFILE);
        EXPECT_EQ(E_FRFailed, file.ROFOpen());
    }
    {
        const FailingFiles files(FailingFiles::READ, 1);
        EXPECT_EQ(E_FROk, file.ROFOpen());
        EXPECT_EQ(nullptr, file.ROFReadAll());
    }
    {
        const FailingFiles files(FailingFiles::READ, 1);
        char byte = 0;
        EXPECT_EQ(E_FRFailed, file.ROFRead(&byte, 1));
    }
    const FailingFiles files(FailingFiles::CLOSE, 1);
    EXPECT_EQ(E_FRFailed, file.ROFClose());
    EXPECT_EQ(E_FROk, file.ROFClose());
}

TEST_F(ReadOnlyFileTest, TheDomainsOwnFileWins) {
    const std::string plain = m_directory.Write("a.b/schema.oql", "plain");
    const std::string bare = m_directory.Write("a.b/schema", "bare");
    CZelEnv::REDomain("WEST");
    CZelReadOnlyFile file(plain.c_str());
    EXPECT_EQ(E_FROk, file.ROFOpenDomainSpecific());
    EXPECT_EQ("plain", readAll(file));
    const std::string own = m_directory.Write("a.b/schema.WEST.oql", "own");
    EXPECT_EQ(E_FROk, file.ROFOpenDomainSpecific());
    EXPECT_EQ(own, file.ROFFileName());
    EXPECT_EQ("own", readAll(file));
    m_directory.Write("a.b/schema.WEST", "bare own");
    CZelReadOnlyFile bareFile(bare.c_str());
    EXPECT_EQ(E_FROk, bareFile.ROFOpenDomainSpecific());
    EXPECT_EQ("bare own", readAll(bareFile));
    CZelEnv::REDomain("/../x");
    EXPECT_EQ(E_FROk, bareFile.ROFOpenDomainSpecific());
    EXPECT_EQ("bare", readAll(bareFile));
}

TEST_F(ReadOnlyFileTest, ADirectoryListsItsMatchingFiles) {
    for (const char *name : {"s.Cache.db.t.NORTH", "s.Cache.db.a.NORTH", "s.Cache.db.t.SOUTH", "other", "s.Cache.d/f"})
        m_directory.Write(name, "");
    CZelDirectory directory(m_directory.Path("").c_str());
    EXPECT_EQ(E_DROk, directory.RDCheckAccess());
    const std::unique_ptr<CZelAtomVector> some(directory.RDGetFileList("s.Cache.d", "NORTH", nullptr));
    ASSERT_EQ(2U, some->RAVSize());
    EXPECT_STREQ("s.Cache.db.a.NORTH", some->RAVGetValue(0)->RAString());
    EXPECT_STREQ("s.Cache.db.t.NORTH", some->RAVGetValue(1)->RAString());
    EXPECT_EQ(4U, std::unique_ptr<CZelAtomVector>(directory.RDGetFileList(nullptr, nullptr, nullptr))->RAVSize());
    EXPECT_EQ(1U, std::unique_ptr<CZelAtomVector>(directory.RDGetFileList(nullptr, nullptr, "SOUTH"))->RAVSize());
    EXPECT_EQ(E_DROk, directory.RDClose());
    const CZelDirectory absent(m_directory.Path("absent").c_str());
    EXPECT_EQ(E_DRNotFound, absent.RDCheckAccess());
    EXPECT_EQ(0U, std::unique_ptr<CZelAtomVector>(absent.RDGetFileList("", "", ""))->RAVSize());
}

}  // namespace
