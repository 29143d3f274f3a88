// The file of pages against a model of records; where it puts them; who may have it.
#include "store/CZelPageFile.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "foundations/port/CZelErrorCapture.h"
#include "foundations/port/ZelCodes.h"
#include "foundations/port/ZelInParts.h"
#include "port/ScratchDirectory.h"
#include "store/CZelPageMap.h"
#include "store/PageFiles.h"
#include "support/MemoryFiles.h"
#include "support/TestRandom.h"

using namespace PageFiles;

namespace {

class PageFile : public testing::Test {
protected:
    std::string pageAt(long position) const {
        std::string page(512, '\0');
        std::ifstream(m_path, std::ios::binary).seekg(position).read(page.data(), 512);
        return page;
    }

    const ScratchDirectory m_scratch;
    const std::string m_path = m_scratch.Path("records");
    CZelPageFile m_file;
};

// Knows some of the records that it is shown before it is known which of them count.
class Looker : public Collector {
public:
    void beginParts(std::size_t parts, std::size_t) override { m_seen.resize(parts); }
    bool look(std::size_t part, long start, const unsigned char *encoding, int length) override {
        if (start % 3 == 0 || (!m_seen[part].empty() && m_seen[part].rbegin()->first >= start))
            return false;
        m_seen[part][start] = std::string(reinterpret_cast<const char *>(encoding), static_cast<std::size_t>(length));
        return true;
    }
    bool takeSeen(long start, int length) override {
        EXPECT_TRUE(m_records.empty() || m_records.rbegin()->first < start);
        for (const Records &part : m_seen)
            if (const auto found = part.find(start); found != part.end())
                m_records[start] = found->second;
        EXPECT_EQ(static_cast<std::size_t>(length), m_records[start].size());
        ++m_taken;
        return true;
    }
    bool takeChain(long start, const unsigned char *encoding, int length) override {
        EXPECT_TRUE(m_records.empty() || m_records.rbegin()->first < start);
        return Collector::takeChain(start, encoding, length);
    }
    std::vector<Records> m_seen;  // by part
    int m_taken = 0;
};

// A block of the file that can't be read, whoever asks for it.
class UnreadableFrom : public CZelFileSystem {
public:
    explicit UnreadableFrom(long offset) : m_offset(offset), m_former(ZelSetFileSystem(this)) {}
    UnreadableFrom(const UnreadableFrom &) = delete;
    UnreadableFrom &operator=(const UnreadableFrom &) = delete;
    ~UnreadableFrom() override { ZelSetFileSystem(m_former); }
    long PRead(ZelFileHandle handle, void *buffer, unsigned int count, long offset) override {
        if (offset + static_cast<long>(count) <= m_offset)
            return CZelFileSystem::PRead(handle, buffer, count, offset);
        errno = EIO;
        return -1;
    }

private:
    long m_offset;
    CZelFileSystem *m_former;
};

}  // namespace

TEST_F(PageFile, HoldsRecordsOfAnySizeThroughReopening) {
    Records written;
    reopen(m_file, m_path);
    for (const std::size_t length : {1U, 467U, 468U, 469U, 936U, 937U, 100000U, 3000000U}) {
        const std::string text(length, static_cast<char>('a' + length % 26));
        written[add(m_file, text)] = text;
    }
    EXPECT_EQ(1, m_file.close());
    EXPECT_EQ(written, reopen(m_file, m_path));
    EXPECT_EQ(0, m_file.counts().m_outOfUse);
    for (const auto &[start, text] : written)
        EXPECT_EQ(text, read(m_file, start));
}

TEST_F(PageFile, PositionsAscendAndThoseGivenBackComeLast) {
    reopen(m_file, m_path);
    const std::string three(3 * 468, 'x');
    std::vector<long> starts;
    for (int i = 0; i < 5; ++i)
        starts.push_back(add(m_file, three));
    EXPECT_EQ((std::vector<long>{0, 1536, 3072, 4608, 6144}), starts);
    EXPECT_EQ(1, m_file.release(3072));
    EXPECT_EQ(1, m_file.release(0));
    EXPECT_EQ(7680, add(m_file, std::string(35 * 468, 'y')));  // the rest of what there is
    EXPECT_EQ(50U * 512U, std::filesystem::file_size(m_path));
    EXPECT_EQ(3072, add(m_file, three));
    EXPECT_EQ(0, add(m_file, three + three));  // pages of two batches
    EXPECT_EQ(100U * 512U, std::filesystem::file_size(m_path));
    EXPECT_EQ(three + three, read(m_file, 0));
    EXPECT_EQ(53, m_file.counts().m_used);
    EXPECT_EQ(47, m_file.counts().m_free);
    EXPECT_EQ(1, m_file.close());
    EXPECT_EQ(6U, reopen(m_file, m_path).size());
    EXPECT_EQ(53 * 512, add(m_file, "after"));
}

// Pages of former records are free in their turn, before they have been emptied.
TEST_F(PageFile, ReplacedRecordsGiveTheirPagesBackInOrder) {
    reopen(m_file, m_path);
    add(m_file, std::string(46 * 468, 'x'));
    long start = add(m_file, "0"), second = add(m_file, std::string(468, 'y') + "0");
    std::vector<long> pages;
    for (int i = 1; i < 5; ++i) {
        ASSERT_EQ(1, write(m_file, std::to_string(i), start, &start));
        pages.push_back(start / 512);
    }
    EXPECT_EQ((std::vector<long>{49, 46, 49, 46}), pages);
    ASSERT_EQ(1, write(m_file, std::string(468, 'y') + "1", second, &second));
    EXPECT_EQ(49 * 512, second);  // and one of the next batch
    EXPECT_EQ("4", read(m_file, start));
    EXPECT_EQ(49, m_file.counts().m_used);
    EXPECT_EQ(51, m_file.counts().m_free);
    EXPECT_EQ(1, m_file.close());
    CZelPageMap map;
    long owner = 0;
    EXPECT_EQ(1, CZelPageFile::inspect(m_path.c_str(), map, &owner));
    EXPECT_EQ(3U, map.starts().size());
    EXPECT_EQ(51, map.count(CZelPageMap::FREE));
}

TEST_F(PageFile, ARecordThatIsReplacedByTheSameBytesStaysWhereItIs) {
    for (const std::size_t length : {1U, 468U, 1500U}) {
        for (const EZelSyncPolicy policy : {E_SPOff, E_SPUpdate, E_SPFull}) {
            const SyncPolicy setting(policy);
            MemoryFiles files;
            CZelPageFile file;
            reopen(file, "/records");
            const std::string text(length, 's');
            long start = add(file, text);
            const long former = start;
            const std::size_t changes = files.changes().size();
            ASSERT_EQ(1, write(file, text, start, &start));
            EXPECT_EQ(former, start);
            ASSERT_EQ(changes + (policy == E_SPOff ? 0 : 1), files.changes().size());  // what came before is on disk
            EXPECT_TRUE(policy == E_SPOff || files.changes().back().isSync);
            ASSERT_EQ(1, write(file, text.substr(1) + "t", start, &start));
            EXPECT_NE(former, start);
            EXPECT_EQ(text.substr(1) + "t", read(file, start));
        }
    }
}

TEST_F(PageFile, FollowsAModelThroughReopening) {
    TestRandom random;
    Records model;
    for (int life = 0; life < 40; ++life) {
        ASSERT_EQ(model, reopen(m_file, m_path));
        ASSERT_EQ(0, m_file.counts().m_outOfUse);
        for (int step = 0; step < 50; ++step) {
            auto place = model.begin();
            std::advance(place,
                         model.empty() ? 0L : static_cast<long>(random.below(static_cast<unsigned>(model.size()))));
            if (random.oneIn(3) && !model.empty()) {
                ASSERT_EQ(1, m_file.release(place->first));
                model.erase(place);
                continue;
            }
            const bool isNew = model.empty() || random.oneIn(2);
            const std::string text(1 + random.below(random.oneIn(10) ? 40000 : 2000), static_cast<char>(random.bits()));
            long start = 0;
            ASSERT_EQ(1, write(m_file, text, isNew ? CZelPageFile::NO_POSITION : place->first, &start));
            if (!isNew)
                model.erase(place);
            ASSERT_TRUE(model.emplace(start, text).second);
            const auto &[other, expected] = *std::next(model.begin(), static_cast<long>(model.size() / 2));
            ASSERT_EQ(expected, read(m_file, other));
        }
        ASSERT_EQ(1, m_file.close());
    }
}

// Chains lie scattered over all parts of the file, and the last update was stopped before it emptied what it replaced.
TEST_F(PageFile, AFileThatIsReadInPartsHoldsTheSameRecords) {
    TestRandom random;
    Records model;
    reopen(m_file, m_path);
    std::vector<long> starts;
    for (int i = 0; i < 16000; ++i) {
        const std::string text = std::to_string(i) + std::string(1 + random.below(random.oneIn(5) ? 2000 : 400), 'x');
        const std::size_t place = random.below(static_cast<unsigned>(starts.size()) + 1);
        const bool isNew = place == starts.size() || i % 2 == 0;
        long start = 0;
        ASSERT_EQ(1, write(m_file, text, isNew ? CZelPageFile::NO_POSITION : starts[place], &start));
        if (isNew)
            starts.push_back(start);
        else
            model.erase(std::exchange(starts[place], start));
        model[start] = text;
    }
    const long former = add(m_file, "former");
    ASSERT_EQ(1, m_file.close());
    const std::string page = pageAt(former);
    reopen(m_file, m_path);
    long start = 0;
    ASSERT_EQ(1, write(m_file, "latter", former, &start));
    model[start] = "latter";
    ASSERT_EQ(1, m_file.close());
    std::fstream(m_path, std::ios::in | std::ios::out | std::ios::binary).seekp(former) << page;

    Looker looker;
    ASSERT_EQ(1, m_file.open(m_path.c_str(), true));
    ASSERT_EQ(1, m_file.readAll(looker));
    EXPECT_EQ(model, looker.m_records);
    EXPECT_EQ(ZelPartsFor(std::filesystem::file_size(m_path) / 512, 4096), looker.m_seen.size());
    EXPECT_GT(looker.m_taken, 1000);
    EXPECT_EQ(0, m_file.counts().m_outOfUse);
    ASSERT_EQ(1, m_file.close());
    EXPECT_EQ(model, reopen(m_file, m_path));
}

TEST_F(PageFile, AFileOfWhichOnePartCannotBeReadStaysAsItIs) {
    reopen(m_file, m_path);
    Records model;
    for (int i = 0; i < 200; ++i) {
        const std::string text(40000, static_cast<char>('a' + i % 26));
        model[add(m_file, text)] = text;
    }
    ASSERT_EQ(1, m_file.close());
    const auto size = static_cast<long>(std::filesystem::file_size(m_path));
    for (const long offset : {0L, size / 2 - 1, size / 2 + 1, size - 1}) {
        const CZelErrorCapture reports;
        Looker looker;
        ASSERT_EQ(1, m_file.open(m_path.c_str(), true));
        {
            const UnreadableFrom unreadable(offset);
            EXPECT_EQ(E_RCOpenFailed, m_file.readAll(looker));
        }
        EXPECT_TRUE(reports.Holds(E_RCOpenFailed, (m_path + " Input/output error").c_str()));
        EXPECT_TRUE(looker.m_records.empty());
        ASSERT_EQ(1, m_file.close());
    }
    EXPECT_EQ(model, reopen(m_file, m_path));
}

TEST_F(PageFile, IsOwnedByOneAndThrownAwayOnlyByItsOwner) {
    ASSERT_EQ(1, m_file.open(m_path.c_str(), true));
    const long start = add(m_file, "one");
    struct stat details {};
    EXPECT_EQ(0, stat(m_path.c_str(), &details));
    EXPECT_EQ(0600U, details.st_mode & 0777U);
    for (int i = 0; i < 2; ++i) {
        const CZelErrorCapture reports;
        CZelPageFile second;
        EXPECT_EQ(E_RCOpenFailed, second.open(m_path.c_str(), false));
        EXPECT_EQ(m_path + " is in use by process " + std::to_string(getpid()), reports.LastText());
    }
    EXPECT_EQ("one", read(m_file, start));
    EXPECT_EQ(1, m_file.close());
    CZelPageFile third;
    EXPECT_EQ(1, third.open(m_path.c_str(), false));
    EXPECT_EQ(0U, std::filesystem::file_size(m_path));
}

TEST_F(PageFile, FollowsNoLinkAndSyncsAFileOfTheWorkingFolder) {
    CZelErrorCapture reports;
    std::filesystem::create_symlink(m_scratch.Write("other", ""), m_path);
    EXPECT_EQ(E_RCOpenFailed, m_file.open(m_path.c_str(), true));
    const SyncPolicy setting(E_SPFull);
    const std::filesystem::path former = std::filesystem::current_path();
    std::filesystem::current_path(m_scratch.Path(""));
    EXPECT_EQ(1, m_file.open("plain", true));
    EXPECT_EQ("one", read(m_file, add(m_file, "one")));
    std::filesystem::current_path(former);
}

TEST_F(PageFile, WrongPositionsAreReportedAndChangeNothing) {
    const CZelErrorCapture reports;
    reopen(m_file, m_path);
    const std::string text(2 * 468, 'x');
    const long start = add(m_file, text);
    for (const long position : {-1L, -512L, 1L, 511L, 50L * 512L, 2147483647L})
        EXPECT_EQ(E_RCBadArgument, m_file.release(position)) << position;
    for (const long position : {512L, 1024L})  // inside a chain, and free
        EXPECT_EQ(E_RCBadValue, m_file.release(position)) << position;
    EXPECT_EQ(text, read(m_file, start));
    EXPECT_EQ(2, m_file.counts().m_used);
}

// Pages that are read ahead in a walk, while records in front of it and behind it are replaced and released.
TEST_F(PageFile, AWalkSeesWhatHasBeenWrittenSinceItBegan) {
    TestRandom random;
    reopen(m_file, m_path);
    const auto someText = [&random](int step) {
        return std::string(1 + random.below(random.below(8) == 0 ? 3000 : 460), static_cast<char>('a' + step % 26));
    };
    Records written;
    for (int i = 0; i < 2000; ++i) {
        const std::string text = someText(i);
        written[add(m_file, text)] = text;
    }
    long position = 0;
    for (int step = 0; step < 6000; ++step) {
        auto next = written.lower_bound(position);
        if (next == written.end())
            next = written.begin();
        ASSERT_EQ(next->second, read(m_file, next->first));
        position = next->first + 1;
        if (random.below(3) != 0)
            continue;
        auto changed = written.lower_bound(position + 512 * static_cast<long>(random.below(20)));
        if (changed == written.end())
            continue;
        if (random.below(2) == 0) {
            const std::string text = someText(step);
            long start = 0;
            ASSERT_EQ(1, write(m_file, text, changed->first, &start));
            written.erase(changed);
            written[start] = text;
        } else if (written.size() > 1500) {
            ASSERT_EQ(1, m_file.release(changed->first));
            written.erase(changed);
        } else {
            const std::string text = someText(step);
            written[add(m_file, text)] = text;
        }
    }
    m_file.close();
    EXPECT_EQ(written, reopen(m_file, m_path));
}
