// A disk that fails at any call: every record stays in its old or its new form, as the statuses say, and the file works
// again when the fault is over.
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <sstream>
#include <string>

#include "foundations/port/CZelErrorCapture.h"
#include "foundations/port/ZelCodes.h"
#include "port/FailingFiles.h"
#include "port/ScratchDirectory.h"
#include "store/PageFiles.h"

using namespace PageFiles;

namespace {

struct Fault {
    FailingFiles::Kind kind;
    int errnoValue;
    FailingFiles::Manner manner;
};

constexpr Fault FAULTS[] = {
    {FailingFiles::READ, EIO, FailingFiles::WHOLLY},       {FailingFiles::READ, EIO, FailingFiles::IN_THE_MIDDLE},
    {FailingFiles::WRITE, ENOSPC, FailingFiles::WHOLLY},   {FailingFiles::WRITE, EIO, FailingFiles::IN_THE_MIDDLE},
    {FailingFiles::WRITE, EIO, FailingFiles::FOR_GOOD},    {FailingFiles::WRITE, EIO, FailingFiles::FROM_THE_MIDDLE},
    {FailingFiles::RESERVE, ENOSPC, FailingFiles::WHOLLY}, {FailingFiles::RESERVE, ENOSPC, FailingFiles::FOR_GOOD},
    {FailingFiles::SYNC, EIO, FailingFiles::WHOLLY},
};

std::string contentOf(const std::string &path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

// Three records, and steps on them under a fault. The model follows the statuses.
class Faulty {
public:
    explicit Faulty(EZelSyncPolicy policy) : m_policy(policy) {
        reopen(m_file, m_path);
        for (const std::size_t length : {300U, 2000U, 1200U})
            m_model[add(m_file, std::string(length, 'a'))] = std::string(length, 'a');
    }

    // False: there were not so many calls.
    bool run(const Fault &fault, int number) {
        const FailingFiles failing(fault.kind, number, fault.errnoValue, fault.manner);
        const std::vector<long> starts = {m_model.begin()->first, std::next(m_model.begin())->first,
                                          m_model.rbegin()->first};
        put(CZelPageFile::NO_POSITION, std::string(82 * 468, 'b'));  // more than there is
        put(starts[1], std::string(1500, 'c'));
        put(starts[0], std::string(800, 'd'));
        take(starts[2]);
        long start = put(CZelPageFile::NO_POSITION, "e");
        const std::size_t sizes[] = {300, 300, 300, 900, 900, 900, 300, 1400, 10};
        for (int i = 0; i < 18 && start != CZelPageFile::NO_POSITION; ++i)  // on pages of former records too
            start = put(start, std::to_string(i) + std::string(sizes[i / 2], 'e'));
        m_hasFailedSync = fault.kind == FailingFiles::SYNC && failing.Calls(fault.kind) >= number;
        m_mayBeTorn = fault.manner == FailingFiles::IN_THE_MIDDLE || fault.manner == FailingFiles::FROM_THE_MIDDLE;
        return failing.Calls(fault.kind) >= number;
    }

    void expectAllThere() {
        for (const auto &[start, text] : m_model)
            EXPECT_EQ(text, read(m_file, start));
    }

    void expectItWorks() {
        expectAllThere();
        long start = 0;
        const int status = write(m_file, "after", m_model.begin()->first, &start);
        ASSERT_EQ(m_hasFailedSync ? E_RCPageWrite : 1, status);
        if (status == 1) {
            m_model.erase(m_model.begin());
            m_model[start] = "after";
        }
        expectAllThere();
        start = m_model.begin()->first;  // there is nothing to write, but what can't be written is refused all the same
        EXPECT_EQ(status, write(m_file, m_model.begin()->second, start, &start));
        EXPECT_EQ(m_model.begin()->first, start);
        expectTheSameAfterAKill();
        EXPECT_EQ(1, m_file.close());
        EXPECT_EQ(m_model, reopen(m_file, m_path));
        EXPECT_LE(m_file.counts().m_damaged, m_mayBeTorn ? 1 : 0);
    }

private:
    void expectTheSameAfterAKill() {
        if (m_hasFailedSync)
            return;
        const std::string left = m_scratch.Path("left");
        std::filesystem::copy_file(m_path, left, std::filesystem::copy_options::overwrite_existing);
        CZelPageFile file;
        EXPECT_EQ(m_model, reopen(file, left));
    }
    // Where the record is now.
    long put(long replaced, const std::string &text) {
        long start = 0;
        unsigned long long stamp = m_stamps[replaced];
        const int status = write(m_file, text, replaced, &start, &stamp);
        EXPECT_NE(E_RCPageRead, status);
        if (!done(status))
            return replaced;
        m_stamps[start] = stamp;
        m_model.erase(replaced);
        m_model[start] = text;
        return start;
    }
    void take(long start) {
        if (done(m_file.release(start)))
            m_model.erase(start);
    }
    static bool done(int status) {
        EXPECT_TRUE(status == 1 || status == E_RCPageWrite || status == E_RCPageRead) << status;
        return status == 1;
    }

    const SyncPolicy m_policy;
    const CZelErrorCapture m_quiet;
    const FailingFiles m_sound{FailingFiles::SYNC, 0};
    const ScratchDirectory m_scratch;
    const std::string m_path = m_scratch.Path("records");
    Records m_model;
    std::map<long, unsigned long long> m_stamps;
    CZelPageFile m_file;
    bool m_hasFailedSync = false;
    bool m_mayBeTorn = false;  // one page of those that are free
};

// A file that can't be read in, opened and looked at.
class Foreign {
public:
    explicit Foreign(EZelSyncPolicy policy) : m_policy(policy) {
        Collector collector;
        EXPECT_EQ(1, m_file.open(m_path.c_str(), true));
        EXPECT_EQ(E_RCOpenFailed, m_file.readAll(collector));
        m_reports.Clear();
    }
    const SyncPolicy m_policy;
    CZelErrorCapture m_reports;
    const ScratchDirectory m_scratch;
    const std::string m_content = std::string(1000, 'x');
    const std::string m_path = m_scratch.Write("records", m_content);
    const std::string m_aside = m_path + ".unreadable.1";
    CZelPageFile m_file;
};

}  // namespace

TEST(PageFileFaults, AFailedCallLeavesTheRecordsAsTheStatusSays) {
    for (const EZelSyncPolicy policy : {E_SPOff, E_SPUpdate, E_SPFull}) {
        for (const Fault &fault : FAULTS) {
            bool isReached = true;
            for (int number = 1; isReached; ++number) {
                const testing::ScopedTrace trace(__FILE__, __LINE__,
                                                 testing::Message()
                                                     << "policy " << policy << ", kind " << fault.kind << ", manner "
                                                     << fault.manner << ", call " << number);
                Faulty file(policy);
                isReached = file.run(fault, number);
                ASSERT_NO_FATAL_FAILURE(file.expectItWorks());
            }
        }
    }
}

TEST(PageFileFaults, WhatCanNotBeOpenedOrReadInStaysAsItIs) {
    const ScratchDirectory scratch;
    const std::string path = scratch.Path("records");
    Records written;
    {
        CZelPageFile file;
        reopen(file, path);
        for (int i = 0; i < 5; ++i)
            written[add(file, std::string(700, 'a'))] = std::string(700, 'a');
    }
    const std::string content = contentOf(path);
    for (const FailingFiles::Kind kind :
         {FailingFiles::OPEN, FailingFiles::LOCK, FailingFiles::SIZE, FailingFiles::READ}) {
        const CZelErrorCapture reports;
        const FailingFiles failing(kind, 1, EIO, FailingFiles::FOR_GOOD);
        CZelPageFile file;
        Collector collector;
        const bool isOpen = file.open(path.c_str(), true) == 1;
        EXPECT_EQ(kind == FailingFiles::SIZE || kind == FailingFiles::READ, isOpen);
        EXPECT_TRUE(!isOpen || file.readAll(collector) == E_RCOpenFailed);
        EXPECT_TRUE(reports.Holds(E_RCOpenFailed, (path + " Input/output error").c_str()));
    }
    EXPECT_EQ(content, contentOf(path));
    CZelPageFile file;
    EXPECT_EQ(written, reopen(file, path));
}

// One of a strange size, one too large for positions, and one that nobody has read in.
TEST(PageFileFaults, WhatWasNotReadInIsMovedAsideAndNotWrittenOver) {
    for (const long size : {1000L, 5L << 30, 1024L}) {
        const ScratchDirectory scratch;
        CZelErrorCapture reports;
        const std::string path = scratch.Write("records", "content");
        std::filesystem::resize_file(path, static_cast<std::uintmax_t>(size));
        CZelPageFile file;
        Collector collector;
        ASSERT_EQ(1, file.open(path.c_str(), true));
        EXPECT_TRUE(size == 1024 || file.readAll(collector) == E_RCOpenFailed);
        EXPECT_FALSE(std::filesystem::exists(path + ".unreadable.1"));
        const long start = add(file, "new");
        EXPECT_EQ("new", read(file, start));
        EXPECT_EQ(size, static_cast<long>(std::filesystem::file_size(path + ".unreadable.1")));
        EXPECT_TRUE(
            reports.Holds(E_RCMalformed, ("The unreadable cache file was moved to " + path + ".unreadable.1").c_str()));
    }
}

TEST(PageFileFaults, MovingAsideIsTriedAgainWhenItFailed) {
    for (const FailingFiles::Kind kind :
         {FailingFiles::RENAME, FailingFiles::OPEN, FailingFiles::LOCK, FailingFiles::SIZE}) {
        Foreign foreign(E_SPFull);
        long start = 0;
        {
            const FailingFiles failing(kind, 1, EIO, FailingFiles::FOR_GOOD);
            EXPECT_EQ(E_RCPageWrite, write(foreign.m_file, "one", CZelPageFile::NO_POSITION, &start)) << kind;
        }
        start = add(foreign.m_file, "two");
        EXPECT_EQ(foreign.m_content, contentOf(foreign.m_aside));
        EXPECT_EQ(1, foreign.m_file.close());
        EXPECT_EQ((Records{{start, "two"}}), reopen(foreign.m_file, foreign.m_path));
    }
}

// What another process has put in its place belongs to that one.
TEST(PageFileFaults, AFileThatTookThePlaceOfAnUnreadableOneIsLeftAlone) {
    Foreign foreign(E_SPOff);
    std::filesystem::rename(foreign.m_path, foreign.m_path + ".elsewhere");
    const std::string other = foreign.m_scratch.Write("records", "another");
    long start = 0;
    EXPECT_EQ(E_RCPageWrite, write(foreign.m_file, "one", CZelPageFile::NO_POSITION, &start));
    EXPECT_EQ("another", contentOf(other));
    std::filesystem::remove(other);
    EXPECT_EQ("two", read(foreign.m_file, add(foreign.m_file, "two")));
}

TEST(PageFileFaults, ACloseThatFailsIsReportedAndTheRecordsAreThere) {
    for (const FailingFiles::Kind kind : {FailingFiles::SYNC, FailingFiles::CLOSE}) {
        const ScratchDirectory scratch;
        const CZelErrorCapture reports;
        CZelPageFile file;
        reopen(file, scratch.Path("records"));
        const long start = add(file, "one");
        {
            const FailingFiles failing(kind, 1);
            EXPECT_EQ(E_RCCacheClose, file.close());
        }
        EXPECT_EQ(1U, reports.Count());
        EXPECT_EQ(1, file.close());
        EXPECT_EQ((Records{{start, "one"}}), reopen(file, scratch.Path("records")));
    }
}

// Whoever had the lock moves the file away just before it is taken.
TEST(PageFileFaults, ALockOnAFileThatHasBeenMovedIsOfNoUse) {
    class Mover : public CZelFileSystem {
    public:
        explicit Mover(std::string path) : m_path(std::move(path)), m_former(ZelSetFileSystem(this)) {}
        ~Mover() override { ZelSetFileSystem(m_former); }
        int Lock(ZelFileHandle handle, long *owner) override {
            if (!std::exchange(m_hasMoved, true))
                std::filesystem::rename(m_path, m_path + ".moved");
            return CZelFileSystem::Lock(handle, owner);
        }

    private:
        const std::string m_path;
        bool m_hasMoved = false;
        CZelFileSystem *m_former;
    };
    const ScratchDirectory scratch;
    const std::string path = scratch.Path("records");
    const Mover mover(path);
    CZelPageFile file;
    EXPECT_EQ(Records{}, reopen(file, path));
    add(file, "one");
    EXPECT_EQ(0U, std::filesystem::file_size(path + ".moved"));
    EXPECT_EQ(50U * 512U, std::filesystem::file_size(path));
}
