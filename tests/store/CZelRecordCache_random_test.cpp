// Caches of every kind against a plain model: the rows in a std::map, and which of them are in memory by a walk over
// all of them. Sizes differ from row to row, so the bytes in memory tell when another row left than should have.
#include <algorithm>
#include <map>
#include <tuple>
#include <vector>

#include "foundations/base/CZelBag.h"
#include "port/FailingFiles.h"
#include "store/CZelCacheScan.h"
#include "store/CZelCachedRecord.h"
#include "store/CacheTest.h"
#include "support/SplitAll.h"
#include "support/TestRandom.h"

namespace {

long present = 0;

struct ModelRow {
    std::string m_text;
    unsigned long long m_size = 0;
    bool m_isInCore = true;
    long m_lastAccess = 0;
    long m_refCount = 0;
    unsigned long long m_arrival = 0;
};

struct Kind {
    EZelRecordCacheType m_type;
    __boolean m_persistent;
};

constexpr unsigned long long BYTES = 20000;
constexpr float SHARE = 0.3F;

class Model {
public:
    explicit Model(const Kind &kind) : m_kind(kind) {}

    bool isBounded() const { return m_kind.m_type == E_RCTBySize || m_kind.m_type == E_RCTByProportion; }
    bool isPersistent() const { return m_kind.m_persistent == E_RBTrue; }
    unsigned long long bytes(bool inCoreOnly) const {
        unsigned long long sum = 0;
        for (const auto &[handle, row] : m_rows)
            sum += !inCoreOnly || row.m_isInCore ? row.m_size : 0;
        return sum;
    }

    void store(CZelAtom *handle, const std::string &text) {
        m_rows.erase(handle);
        const unsigned long long size = text.size() + ROW_FRAME;
        makeRoom(size);
        const long counters = isPersistent() ? 0 : -1;
        m_rows[handle] = {text, size, m_kind.m_type != E_RCTAllOnDisk, counters, counters, ++m_arrivals};
    }
    void read(CZelAtom *handle) {
        ModelRow &row = m_rows[handle];
        if (!row.m_isInCore && m_kind.m_type != E_RCTAllOnDisk) {
            makeRoom(row.m_size);
            row.m_isInCore = true;
            row.m_refCount = isPersistent() ? -1 : 0;
        }
        if (!row.m_isInCore || !isBounded())
            return;
        ++row.m_refCount;
        row.m_lastAccess = present;
    }
    void lookAtAll() {
        for (auto &[handle, row] : m_rows)
            if (row.m_isInCore)
                read(handle);
    }
    // Rows under new handles, as a restart finds them.
    void found(CZelAtom *handle, const std::string &text) {
        m_rows[handle] = {text, text.size() + ROW_FRAME, m_kind.m_type == E_RCTAllInCore, -1, -1, ++m_arrivals};
    }

    std::map<CZelAtom *, ModelRow> m_rows;

private:
    void makeRoom(unsigned long long size) {
        while (isBounded() && isAbove(size)) {
            ModelRow *oldest = nullptr;
            for (auto &[handle, row] : m_rows) {
                if (row.m_isInCore && (oldest == nullptr || key(row) < key(*oldest)))
                    oldest = &row;
            }
            if (oldest == nullptr)
                return;
            oldest->m_isInCore = false;
            oldest->m_lastAccess = oldest->m_refCount = -1;
            size = oldest->m_size;
        }
    }
    bool isAbove(unsigned long long size) const {
        const unsigned long long inCore = bytes(true);
        if (m_kind.m_type == E_RCTBySize)
            return inCore + size > BYTES;
        const unsigned long long all = bytes(false);
        return all != 0 && static_cast<float>(static_cast<double>(inCore) / static_cast<double>(all)) > SHARE;
    }
    static std::tuple<long, long, unsigned long long> key(const ModelRow &row) {
        return {row.m_lastAccess, row.m_refCount, row.m_arrival};
    }

    Kind m_kind;
    unsigned long long m_arrivals = 0;
};

class RandomCacheTest : public CacheTest {
protected:
    RandomCacheTest() {
        CZelCachedRecord::RCRSetClock([] { return present; });
    }
    ~RandomCacheTest() override { CZelCachedRecord::RCRSetClock(nullptr); }

    std::unique_ptr<CZelRecordCache> open(const Kind &kind) const {
        if (kind.m_type == E_RCTBySize)
            return bySize(BYTES, kind.m_persistent);
        const float share = kind.m_type == E_RCTAllInCore ? 1.0F : kind.m_type == E_RCTAllOnDisk ? 0 : SHARE;
        return byShare(share, kind.m_persistent);
    }

    // A number that no other row has, and 1 to 9 pages.
    std::string newText() {
        const int bytes = random.oneIn(4) ? static_cast<int>(random.below(4000)) : static_cast<int>(random.below(400));
        return textOfSize(++m_numbers, ROW_FRAME + 8 + bytes);
    }
    static CZelAtom *anyRow(const Model &model, TestRandom &random) {
        return std::next(model.m_rows.begin(), random.below(static_cast<unsigned>(model.m_rows.size())))->first;
    }

    void step(CZelRecordCache &cache, Model &model) {
        present += random.oneIn(20) ? -3 : random.below(3) == 0 ? 1 : 0;
        const unsigned choice = random.below(10);
        if (model.m_rows.empty() || choice < 3)
            return insert(cache, model);
        CZelAtom *handle = anyRow(model, random);
        if (choice < 5)
            return update(cache, model, handle);
        if (choice == 5 && model.m_rows.size() > 60)
            return remove(cache, model, handle);
        retrieve(cache, model, handle);
    }
    void insert(CZelRecordCache &cache, Model &model) {
        const std::string text = newText();
        CZelAtom *handle = nullptr;
        if (cache.RRCCacheRecord(rowOfText(text), &handle, E_RBFalse) == 1)
            model.store(handle, text);
    }
    void update(CZelRecordCache &cache, Model &model, CZelAtom *handle) {
        const std::string text = random.oneIn(4) ? model.m_rows[handle].m_text : newText();
        const std::unique_ptr<CZelRecord> row(rowOfText(text));
        if (cache.RRCUpdateRecord(row.get(), handle, E_RBTrue) == 1)
            model.store(handle, text);
    }
    void remove(CZelRecordCache &cache, Model &model, CZelAtom *handle) {
        if (cache.RRCDeleteRecord(handle) == 1)
            model.m_rows.erase(handle);
    }
    void retrieve(CZelRecordCache &cache, Model &model, CZelAtom *handle) {
        const std::string expected = model.m_rows[handle].m_text;
        if (random.oneIn(4)) {
            EXPECT_TRUE(agrees(peek(cache, handle), expected));
            return;
        }
        bool copy = random.oneIn(2);
        const CZelRecord *row = cache.RRCRetrieveRecord(handle, copy);
        EXPECT_TRUE(agrees(textOf(row), expected));
        if (copy)
            delete row;
        model.read(handle);
    }
    // A scan as the rows lie in the file, which gives what it keeps in the order of the handles.
    void walk(CZelRecordCache &cache, Model &model) {
        const bool asHandles = random.oneIn(2);
        std::vector<std::string> expected, found;
        forEachHandle(cache, [&](CZelAtom *handle) { expected.push_back(model.m_rows[handle].m_text); });
        CZelBag rows;
        const SplitAll split(random.oneIn(2));
        CZelROMPColumns columns;
        const CZelAtom name("v");
        columns.add(name);
        CZelCacheScan scan(cache, random.oneIn(3) ? nullptr : &columns,
                           asHandles ? CZelCacheScan::HANDLES : CZelCacheScan::COPIES);
        scan.run([](const SZelScannedRow &) { return true; });
        scan.appendTo(rows);
        model.lookAtAll();
        for (const CZelPointer *node = rows.RBFirst(); node != nullptr; node = CZelBag::RBNext(node)) {
            const std::unique_ptr<CZelRecord> copy(asHandles ? nullptr : static_cast<CZelRecord *>(node->RPData()));
            found.push_back(asHandles ? peek(cache, static_cast<CZelAtom *>(node->RPData())) : textOf(copy.get()));
        }
        ASSERT_EQ(expected, found);
    }
    bool agrees(const std::string &found, const std::string &expected) const {
        return found == expected || (m_mayFail && found == "<none>");
    }

    // Closes and opens. The rows are the same, under whatever handles.
    void reopen(std::unique_ptr<CZelRecordCache> &cache, Model &model, const Kind &kind) {
        std::vector<std::string> before, after;
        for (const auto &[handle, row] : model.m_rows)
            before.push_back(row.m_text);
        if (!model.isPersistent())
            before.clear();
        cache.reset();
        cache = open(kind);
        model.m_rows.clear();
        forEachHandle(*cache, [&](CZelAtom *handle) {
            after.push_back(peek(*cache, handle));
            model.found(handle, after.back());
        });
        std::sort(before.begin(), before.end());
        std::sort(after.begin(), after.end());
        ASSERT_EQ(before, after);
    }
    static void compare(const CZelRecordCache &cache, const Model &model) {
        ASSERT_EQ(model.m_rows.size(), static_cast<std::size_t>(cache.RRCLength()));
        ASSERT_EQ(model.bytes(false), cache.RRCUse().m_bytes);
        ASSERT_EQ(model.bytes(true), cache.RRCUse().m_inCoreBytes);
    }

    TestRandom random;
    int m_numbers = 0;
    bool m_mayFail = false;
};

std::vector<Kind> allKinds() {
    std::vector<Kind> kinds;
    for (const EZelRecordCacheType type : {E_RCTBySize, E_RCTByProportion, E_RCTAllInCore, E_RCTAllOnDisk}) {
        kinds.push_back({type, E_RBFalse});
        kinds.push_back({type, E_RBTrue});
    }
    return kinds;
}

TEST_F(RandomCacheTest, RowsAndWhatIsInMemoryAreThoseOfTheModel) {
    for (const Kind &kind : allKinds()) {
        SCOPED_TRACE("type " + std::to_string(kind.m_type) + " persistent " + std::to_string(kind.m_persistent));
        std::unique_ptr<CZelRecordCache> cache = open(kind);
        Model model(kind);
        for (int i = 0; i < 3000 && !HasFatalFailure(); ++i) {
            step(*cache, model);
            compare(*cache, model);
            if (random.oneIn(30))
                walk(*cache, model);
            if (random.oneIn(300))
                reopen(cache, model, kind);
        }
        cache->RRCDeleteCacheFile();
    }
    EXPECT_EQ(0U, reports.Count()) << reports.LastText();
}

// Which rows are in memory after a failure is not told; what they hold is.
TEST_F(RandomCacheTest, WithFilesThatFailNoRowIsLostDoubledOrMixed) {
    m_mayFail = true;
    for (const Kind &kind : allKinds()) {
        SCOPED_TRACE("type " + std::to_string(kind.m_type) + " persistent " + std::to_string(kind.m_persistent));
        std::unique_ptr<CZelRecordCache> cache = open(kind);
        Model model(kind);
        for (int i = 0; i < 3000 && !HasFatalFailure(); ++i) {
            {
                const FailingFiles files(random.oneIn(2) ? FailingFiles::WRITE : FailingFiles::READ,
                                         static_cast<int>(random.below(6)) + 1, random.oneIn(2) ? ENOSPC : EIO);
                step(*cache, model);
            }
            ASSERT_EQ(model.bytes(false), cache->RRCUse().m_bytes);
            if (random.oneIn(300))
                reopen(cache, model, kind);
            if (random.oneIn(60))
                walk(*cache, model);
            if (random.oneIn(30))
                forEachHandle(*cache,
                              [&](CZelAtom *handle) { ASSERT_EQ(model.m_rows[handle].m_text, read(*cache, handle)); });
        }
        cache->RRCDeleteCacheFile();
    }
}

}  // namespace
