// The file of pages against a model of records; where it puts them; who may have it.
#include "store/CZelPageFile.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "foundations/port/CZelErrorCapture.h"
#include "foundations/port/ZelCodes.h"
#include "port/ScratchDirectory.h"
#include "store/PageFiles.h"
#include "support/TestRandom.h"

using namespace PageFiles;

namespace {

class PageFile : public testing::Test {
protected:
    const ScratchDirectory m_scratch;
    const std::string m_path = m_scratch.Path("records");
    CZelPageFile m_file;
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
