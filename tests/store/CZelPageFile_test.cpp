// The file of pages against a model of records, through reopening, kills at every write and power cuts.
#include "store/CZelPageFile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "foundations/base/ZelMalloc.h"
#include "foundations/port/CZelErrorCapture.h"
#include "foundations/port/ZelCodes.h"
#include "port/FailingFiles.h"
#include "port/ScratchDirectory.h"
#include "support/MemoryFiles.h"
#include "support/TestRandom.h"

namespace {

using Records = std::map<long, std::string>;  // by start
using Values = std::multiset<std::string>;
using Rows = std::multiset<std::string>;

constexpr const char *PATH = "/records";

class Collector : public CZelPageFile::Reader {
public:
    bool takeChain(long start, const unsigned char *encoding, int length) override {
        m_records[start] = std::string(reinterpret_cast<const char *>(encoding), static_cast<std::size_t>(length));
        return true;
    }
    Records m_records;
};

const unsigned char *bytesOf(const std::string &text) {
    return reinterpret_cast<const unsigned char *>(text.data());
}

int write(CZelPageFile &file, const std::string &text, long replaced, long *start) {
    return file.write(bytesOf(text), static_cast<int>(text.size()), replaced, start);
}

std::string read(CZelPageFile &file, long start) {
    unsigned char *encoding = nullptr;
    int length = 0;
    if (file.read(start, &encoding, &length) != 1)
        return "unreadable";
    const std::string text(reinterpret_cast<char *>(encoding), static_cast<std::size_t>(length));
    std::free(encoding);
    return text;
}

Records reopen(CZelPageFile &file, const char *path) {
    Collector collector;
    EXPECT_EQ(1, file.open(path, true));
    EXPECT_EQ(1, file.readAll(collector));
    return collector.m_records;
}

Values valuesOf(const Records &records) {
    Values values;
    for (const auto &[start, text] : records)
        values.insert(text);
    return values;
}

// A record of one to nine pages, unlike every other: "row:step:..."
std::string someText(TestRandom &random, const std::string &row, int step) {
    const std::size_t length = 1 + random.below(9 * 468);
    std::string text = row + ':' + std::to_string(step) + ':';
    while (text.size() < length)
        text += static_cast<char>(random.below(256));
    return text;
}

std::string rowOf(const std::string &text) {
    return text.substr(0, text.find(':'));
}

Rows rowsOf(const Values &values) {
    Rows rows;
    for (const std::string &text : values)
        rows.insert(rowOf(text));
    return rows;
}

// Random steps on a file and on the model. What the model held before and after each step is remembered, with the
// number of changes that had been made to the disk by then.
class Script {
public:
    Script(MemoryFiles &files, TestRandom &random) : m_files(files), m_random(random) {}

    void run(int steps) {
        CZelPageFile file;
        m_model = reopen(file, PATH);
        remember();
        for (int i = 0; i < steps; ++i) {
            step(file, i);
            remember();
        }
        EXPECT_EQ(1, file.close());
    }

    // The states that may be found after only so many changes.
    std::vector<Values> statesAt(std::size_t changes) const {
        std::vector<Values> states;
        for (std::size_t i = 0; i < m_states.size(); ++i) {
            const bool isOver = i + 1 < m_states.size() && m_states[i + 1].first <= changes;
            if (m_states[i].first <= changes && !isOver)
                states.push_back(m_states[i].second);
            else if (m_states[i].first > changes && (i == 0 || m_states[i - 1].first <= changes))
                states.push_back(m_states[i].second);
        }
        return states;
    }

    // The rows that were there after `synced` changes and were not deleted up to `end`.
    Rows rowsKept(std::size_t synced, std::size_t end) const {
        Rows kept;
        bool isFirst = true;
        for (std::size_t i = 0; i < m_states.size(); ++i) {
            const bool isOver = i + 1 < m_states.size() && m_states[i + 1].first <= synced;
            if (isOver || m_states[i].first > end)
                continue;
            const Rows rows = rowsOf(m_states[i].second);
            if (isFirst)
                kept = rows;
            else
                std::erase_if(kept, [&](const std::string &row) { return rows.count(row) == 0; });
            isFirst = false;
        }
        const auto next = std::find_if(m_states.begin(), m_states.end(), [&](const auto &s) { return s.first > end; });
        if (next != m_states.end())  // the step under way may delete
            std::erase_if(kept, [&](const std::string &row) { return rowsOf(next->second).count(row) == 0; });
        return kept;
    }

private:
    void step(CZelPageFile &file, int number) {
        const unsigned int kind = static_cast<unsigned int>(m_random.below(10));
        auto place = m_model.begin();
        if (!m_model.empty())
            std::advance(place, static_cast<long>(m_random.below(m_model.size())));
        if (kind < 4 || m_model.empty()) {
            long start = 0;
            const std::string text = someText(m_random, std::to_string(number), number);
            ASSERT_EQ(1, write(file, text, CZelPageFile::NO_POSITION, &start));
            ASSERT_TRUE(m_model.emplace(start, text).second);
        } else if (kind < 8) {
            long start = 0;
            const std::string text = someText(m_random, rowOf(place->second), number);
            ASSERT_EQ(place->second, read(file, place->first));
            ASSERT_EQ(1, write(file, text, place->first, &start));
            m_model.erase(place);
            ASSERT_TRUE(m_model.emplace(start, text).second);
        } else {
            ASSERT_EQ(1, file.release(place->first));
            m_model.erase(place);
        }
    }
    void remember() { m_states.emplace_back(m_files.changes().size(), valuesOf(m_model)); }

    MemoryFiles &m_files;
    TestRandom &m_random;
    Records m_model;
    std::vector<std::pair<std::size_t, Values>> m_states;
};

Values recovered(MemoryFiles &files, std::map<std::string, MemoryFiles::Bytes> left) {
    files.restart(std::move(left));
    CZelPageFile file;
    const Records records = reopen(file, PATH);
    for (const auto &[start, text] : records)
        EXPECT_EQ(text, read(file, start));
    const SZelPageCounts counts = file.counts();
    EXPECT_EQ(0, counts.m_damaged);
    return valuesOf(records);
}

class SyncPolicy {
public:
    explicit SyncPolicy(EZelSyncPolicy policy) { ZelSetSyncPolicy(policy); }
    SyncPolicy(const SyncPolicy &) = delete;
    SyncPolicy &operator=(const SyncPolicy &) = delete;
    ~SyncPolicy() { ZelSetSyncPolicy(E_SPOff); }
};

}  // namespace

TEST(PageFile, HoldsRecordsOfAnySizeThroughReopening) {
    ScratchDirectory scratch;
    const std::string path = scratch.Path("records");
    Records written;
    {
        CZelPageFile file;
        ASSERT_EQ(1, file.open(path.c_str(), true));
        for (const std::size_t length : {1U, 467U, 468U, 469U, 936U, 937U, 100000U}) {
            long start = 0;
            const std::string text(length, static_cast<char>('a' + length % 26));
            ASSERT_EQ(1, write(file, text, CZelPageFile::NO_POSITION, &start));
            written[start] = text;
        }
    }
    CZelPageFile file;
    EXPECT_EQ(written, reopen(file, path.c_str()));
    EXPECT_EQ(0, file.counts().m_outOfUse);
    EXPECT_EQ(written.rbegin()->second, read(file, written.rbegin()->first));
}

TEST(PageFile, IsOwnedByOneAndThrownAwayOnlyByItsOwner) {
    ScratchDirectory scratch;
    const std::string path = scratch.Path("records");
    CZelPageFile file;
    ASSERT_EQ(1, file.open(path.c_str(), true));
    long start = 0;
    ASSERT_EQ(1, write(file, "one", CZelPageFile::NO_POSITION, &start));
    CZelErrorCapture reports;
    CZelPageFile second;
    EXPECT_EQ(E_RCOpenFailed, second.open(path.c_str(), false));
    ASSERT_EQ(1U, reports.Count());
    EXPECT_NE(std::string::npos, reports.LastText().find("is in use by process"));
    EXPECT_EQ("one", read(file, start));
}

// A kill leaves what the last finished step left, or what the step under way would have left.
TEST(PageFile, AKillAtAnyWriteLosesNothing) {
    TestRandom random;
    for (int script = 0; script < 20; ++script) {
        MemoryFiles files;
        Script steps(files, random);
        steps.run(40);
        const std::vector<MemoryFiles::Change> changes = files.changes();
        std::map<std::string, MemoryFiles::Bytes> left;
        for (std::size_t i = 0; i <= changes.size(); ++i) {
            const Values found = recovered(files, left);
            const std::vector<Values> allowed = steps.statesAt(i);
            ASSERT_TRUE(std::find(allowed.begin(), allowed.end(), found) != allowed.end())
                << "script " << script << ", after change " << i;
            if (i < changes.size())
                MemoryFiles::apply(left, changes[i]);
        }
    }
}

// With update each row is whole in its old or new form; with full nothing finished is lost.
TEST(PageFile, APowerCutKeepsWhatThePolicyPromises) {
    TestRandom random;
    for (const EZelSyncPolicy policy : {E_SPUpdate, E_SPFull}) {
        const SyncPolicy setting(policy);
        for (int script = 0; script < 10; ++script) {
            MemoryFiles files;
            Script steps(files, random);
            steps.run(40);
            const std::vector<MemoryFiles::Change> changes = files.changes();
            for (int cut = 0; cut < 100; ++cut) {
                const std::size_t end = random.below(changes.size() + 1);
                std::size_t synced = end;
                while (synced > 0 && !changes[synced - 1].isSync)
                    --synced;
                std::map<std::string, MemoryFiles::Bytes> left;
                left[PATH];
                for (std::size_t i = 0; i < end; ++i)
                    if (i < synced || changes[i].offset < 0 || random.below(2) == 0)
                        MemoryFiles::apply(left, changes[i]);
                const Values found = recovered(files, left);
                if (policy == E_SPFull) {
                    const std::vector<Values> allowed = steps.statesAt(end);
                    EXPECT_TRUE(std::find(allowed.begin(), allowed.end(), found) != allowed.end()) << cut;
                }
                const Rows rows = rowsOf(found);
                for (const std::string &row : rows)
                    EXPECT_EQ(1U, rows.count(row)) << "doubled";
                for (const std::string &row : steps.rowsKept(synced, end))
                    EXPECT_EQ(1U, rows.count(row)) << "lost, " << cut;
            }
        }
    }
}

TEST(PageFile, AFailedWriteLeavesTheFormerRecordAndTheFileUsable) {
    const CZelErrorCapture reports;
    for (int number = 1; number <= 12; ++number) {
        ScratchDirectory scratch;
        const std::string path = scratch.Path("records");
        Values expected;
        {
            CZelPageFile file;
            ASSERT_EQ(1, file.open(path.c_str(), true));
            long start = 0, moved = 0;
            ASSERT_EQ(1, write(file, std::string(2000, 'a'), CZelPageFile::NO_POSITION, &start));
            int status = 1;
            {
                FailingFiles failing(FailingFiles::WRITE, number, ENOSPC);
                status = write(file, std::string(1500, 'b'), start, &moved);
            }
            const std::string kept = status == 1 ? std::string(1500, 'b') : std::string(2000, 'a');
            EXPECT_EQ(kept, read(file, status == 1 ? moved : start)) << number;
            ASSERT_EQ(1, write(file, "after", CZelPageFile::NO_POSITION, &start)) << number;
            expected = {kept, "after"};
        }
        CZelPageFile file;
        EXPECT_EQ(expected, valuesOf(reopen(file, path.c_str()))) << number;
    }
}

TEST(PageFile, AnUnreadableFileStaysUntilTheFirstWriteAndThenGoesAside) {
    MemoryFiles files;
    CZelErrorCapture reports;
    files.files()[PATH] = MemoryFiles::Bytes(1000, 7);
    CZelPageFile file;
    Collector collector;
    ASSERT_EQ(1, file.open(PATH, true));
    EXPECT_EQ(E_RCOpenFailed, file.readAll(collector));
    EXPECT_EQ(1000U, files.files()[PATH].size());
    long start = 0;
    EXPECT_EQ(1, write(file, "new", CZelPageFile::NO_POSITION, &start));
    EXPECT_EQ(MemoryFiles::Bytes(1000, 7), files.files()["/records.unreadable.1"]);
    EXPECT_EQ("new", read(file, start));
    ASSERT_EQ(1U, reports.Count());
    EXPECT_EQ(E_RCMalformed, reports.LastCode());
}
