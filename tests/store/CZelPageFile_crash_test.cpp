// What kills and power cuts leave behind, at every change and in two lives of a file.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "store/PageFiles.h"
#include "support/MemoryFiles.h"
#include "support/TestRandom.h"

using namespace PageFiles;

namespace {

using Values = std::multiset<std::string>;
using Disk = std::map<std::string, MemoryFiles::Bytes>;
using Changes = std::vector<MemoryFiles::Change>;

constexpr const char *PATH = "/records";

Values valuesOf(const Records &records) {
    Values values;
    for (const auto &[start, text] : records)
        values.insert(text);
    return values;
}

// What a script is made of. In a tight file few pages are free, so that new records soon take those of former ones.
struct Shape {
    int steps;
    unsigned mostPages;  // of a record
    bool isTight;
};

// A record unlike every other: "row:step:..."
std::string someText(TestRandom &random, const std::string &row, int step, unsigned mostPages) {
    const std::size_t length = 1 + random.below(mostPages * 468);
    std::string text = row + ':' + std::to_string(step) + ':';
    while (text.size() < length)
        text += static_cast<char>(random.below(256));
    return text;
}

std::string rowOf(const std::string &text) {
    return text.substr(0, text.find(':'));
}

std::set<std::string> rowsOf(const Values &values) {
    std::set<std::string> rows;
    for (const std::string &text : values)
        rows.insert(rowOf(text));
    return rows;
}

// Random steps on a file and on the model. What the model held after each step is remembered, with the number of
// changes that had been made to the disk by then.
class Script {
public:
    Script(MemoryFiles &files, TestRandom &random, const Shape &shape)
        : m_files(files), m_random(random), m_shape(shape) {
        CZelPageFile file;
        m_model = reopen(file, PATH);
        remember();
        const std::string life = std::to_string(random.bits());
        if (shape.isTight)
            fill(file, life);
        for (int i = 0; i < shape.steps; ++i) {
            step(file, life + '-' + std::to_string(i), i);
            remember();
        }
        EXPECT_EQ(1, file.close());
    }

    // The states between two numbers of changes, that of the step under way at the end too.
    std::vector<Values> states(std::size_t from, std::size_t to) const {
        std::vector<Values> result;
        for (std::size_t i = 0; i < m_states.size(); ++i) {
            const bool isOver = i + 1 < m_states.size() && m_states[i + 1].first <= from;
            if (!isOver && (i == 0 || m_states[i - 1].first <= to))
                result.push_back(m_states[i].second);
        }
        return result;
    }

private:
    // A record that stays, on all but some of the pages that there are.
    void fill(CZelPageFile &file, const std::string &life) {
        const std::string text = life + ':' + std::string((45 - m_random.below(5)) * 468, 'f');
        m_filling = add(file, text);
        m_model.emplace(m_filling, text);
        remember();
    }
    void step(CZelPageFile &file, const std::string &row, int number) {
        const unsigned kind = m_random.below(10);
        auto place = m_model.begin();
        if (!m_model.empty())
            std::advance(place, static_cast<long>(m_random.below(static_cast<unsigned>(m_model.size()))));
        if (place != m_model.end() && place->first == m_filling)
            return;
        if (kind >= 8 && !m_model.empty()) {
            ASSERT_EQ(1, file.release(place->first));
            m_model.erase(place);
            return;
        }
        const bool isNew = m_model.empty() || (m_shape.isTight ? m_model.size() < 4 : kind < 4);
        const std::string text = !isNew && m_random.oneIn(8) ? place->second
                                                             : someText(m_random, isNew ? row : rowOf(place->second),
                                                                        number, m_shape.mostPages);
        long start = isNew ? CZelPageFile::NO_POSITION : place->first;
        unsigned long long stamp = isNew || m_random.oneIn(4) ? 0 : m_stamps[start];
        ASSERT_EQ(1, write(file, text, start, &start, &stamp));
        if (!isNew)
            m_model.erase(place);
        ASSERT_TRUE(m_model.emplace(start, text).second);
        m_stamps[start] = stamp;
    }
    void remember() { m_states.emplace_back(m_files.changes().size(), valuesOf(m_model)); }

    MemoryFiles &m_files;
    TestRandom &m_random;
    const Shape m_shape;
    long m_filling = CZelPageFile::NO_POSITION;
    Records m_model;
    std::map<long, unsigned long long> m_stamps;  // by start; of a chain that has gone too
    std::vector<std::pair<std::size_t, Values>> m_states;
};

Values recovered(MemoryFiles &files, const Disk &left) {
    files.restart(left);
    CZelPageFile file;
    const Records records = reopen(file, PATH);
    for (const auto &[start, text] : records)
        EXPECT_EQ(text, read(file, start));
    EXPECT_EQ(0, file.counts().m_damaged);
    return valuesOf(records);
}

// The recovery itself is killed at each of its changes.
void expectTheSameAfterKilledRecovery(MemoryFiles &files, Disk left, const Values &found) {
    const Changes changes = files.changes();
    for (const MemoryFiles::Change &change : changes) {
        MemoryFiles::apply(left, change);
        ASSERT_EQ(found, recovered(files, left));
    }
}

// Any of the changes since the last sync may be missing.
Disk cut(const Disk &before, const Changes &changes, std::size_t synced, std::size_t end, TestRandom &random) {
    Disk left = before;
    left[PATH];
    for (std::size_t i = 0; i < end; ++i)
        if (i < synced || changes[i].offset < 0 || random.oneIn(2))
            MemoryFiles::apply(left, changes[i]);
    return left;
}

// Full: nothing that was finished is missing. Update: each row that was synced and not deleted is there, once, in a
// form that it has had since then.
void expectKept(EZelSyncPolicy policy, const Values &found, const std::vector<Values> &sinceSync,
                const std::vector<Values> &atEnd) {
    ASSERT_TRUE(policy != E_SPFull || std::find(atEnd.begin(), atEnd.end(), found) != atEnd.end());
    const std::set<std::string> rows = rowsOf(found);
    ASSERT_EQ(rows.size(), found.size()) << "doubled";
    for (const std::string &row : rowsOf(sinceSync.front())) {
        const bool isKept = std::all_of(sinceSync.begin(), sinceSync.end(),
                                        [&](const Values &state) { return rowsOf(state).count(row) == 1; });
        ASSERT_TRUE(!isKept || rows.count(row) == 1) << "lost";
    }
    for (const std::string &text : found)
        ASSERT_TRUE(std::any_of(sinceSync.begin(), sinceSync.end(), [&](const Values &state) {
            return state.count(text) == 1;
        })) << "a form of long ago";
}

// Random steps, and random power cuts during them; then the same with what was left by each, `lives` times.
void liveAndCut(MemoryFiles &files, const Disk &before, EZelSyncPolicy policy, TestRandom &random, int lives) {
    if (lives == 0)
        return;
    files.restart(before);
    const Script script(files, random, {20, random.oneIn(2) ? 9U : 2U, random.oneIn(2)});
    const Changes changes = files.changes();
    for (int i = 0; i < 15; ++i) {
        const std::size_t end = random.below(static_cast<unsigned>(changes.size() + 1));
        std::size_t synced = end;
        while (synced > 0 && !changes[synced - 1].isSync)
            --synced;
        const Disk left = cut(before, changes, synced, end, random);
        const Values found = recovered(files, left);
        ASSERT_NO_FATAL_FAILURE(expectKept(policy, found, script.states(synced, end), script.states(end, end)))
            << "lives to come: " << lives - 1;
        ASSERT_NO_FATAL_FAILURE(liveAndCut(files, left, policy, random, lives - 1));
    }
}

void killEverywhere(MemoryFiles &files, const Script &script) {
    const Changes changes = files.changes();
    Disk left;
    for (std::size_t i = 0; i <= changes.size(); ++i) {
        const Values found = recovered(files, left);
        const std::vector<Values> allowed = script.states(i, i);
        ASSERT_TRUE(std::find(allowed.begin(), allowed.end(), found) != allowed.end()) << "after change " << i;
        ASSERT_NO_FATAL_FAILURE(expectTheSameAfterKilledRecovery(files, left, found));
        if (i < changes.size())
            MemoryFiles::apply(left, changes[i]);
    }
}

}  // namespace

// A kill leaves what the last finished step left, or what the step under way would have left.
TEST(PageFileCrash, AKillAtAnyChangeLosesNothing) {
    TestRandom random;
    for (const Shape &shape : {Shape{40, 9, false}, Shape{80, 1, true}, Shape{80, 2, true}, Shape{60, 4, true}}) {
        for (int number = 0; number < 40; ++number) {
            MemoryFiles files;
            const Script script(files, random, shape);
            ASSERT_NO_FATAL_FAILURE(killEverywhere(files, script)) << "pages " << shape.mostPages;
        }
    }
}

TEST(PageFileCrash, APowerCutKeepsWhatThePolicyPromises) {
    TestRandom random;
    for (const EZelSyncPolicy policy : {E_SPUpdate, E_SPFull}) {
        const SyncPolicy setting(policy);
        for (int number = 0; number < 15; ++number) {
            MemoryFiles files;
            ASSERT_NO_FATAL_FAILURE(liveAndCut(files, {}, policy, random, 2)) << "policy " << policy;
        }
    }
}

// A process without syncs has replaced a record and was killed; the next one syncs, and releases it.
TEST(PageFileCrash, AFormerRecordOfAnotherProcessDoesNotComeBackForOneThatIsReleased) {
    for (const EZelSyncPolicy policy : {E_SPUpdate, E_SPFull}) {
        MemoryFiles files;
        const Disk replaced = [&files] {
            CZelPageFile file;
            reopen(file, PATH);
            long start = 0;
            write(file, "new", add(file, "old"), &start);
            return files.files();  // the former one has not been emptied
        }();
        const SyncPolicy setting(policy);
        files.restart(replaced);
        CZelPageFile file;
        const Records records = reopen(file, PATH);
        ASSERT_EQ(1U, records.size());
        ASSERT_EQ("new", records.begin()->second);
        ASSERT_EQ(1, file.release(records.begin()->first));
        const Changes changes = files.changes();
        Disk left = replaced;
        std::size_t synced = changes.size();
        while (synced > 0 && !changes[synced - 1].isSync)
            --synced;
        for (std::size_t i = 0; i < changes.size(); ++i)
            if (i < synced || changes[i].offset == records.begin()->first)
                MemoryFiles::apply(left, changes[i]);
        EXPECT_TRUE(recovered(files, left).empty());
    }
}

// Each of the former records is told to be dead by the next one alone. What the start empties may be cut off at any
// place, and only what was synced is certain then.
TEST(PageFileCrash, NoneOfSeveralFormerRecordsComesBackWhenAStartIsCutOff) {
    TestRandom random;
    for (const EZelSyncPolicy policy : {E_SPUpdate, E_SPFull}) {
        MemoryFiles files;
        const Disk replaced = [&files] {
            CZelPageFile file;
            reopen(file, PATH);
            long start = add(file, "1:first");
            for (const char *text : {"1:second", "1:third", "1:fourth"})
                write(file, text, start, &start);
            return files.files();  // none has been emptied
        }();
        const SyncPolicy setting(policy);
        ASSERT_EQ(Values{"1:fourth"}, recovered(files, replaced));
        const Changes changes = files.changes();
        for (std::size_t end = 0; end <= changes.size(); ++end) {
            std::size_t synced = end;
            while (synced > 0 && !changes[synced - 1].isSync)
                --synced;
            for (int i = 0; i < 20; ++i)
                EXPECT_EQ(Values{"1:fourth"}, recovered(files, cut(replaced, changes, synced, end, random)));
        }
    }
}
