#include "store/CZelIndexLoader.h"

#include <algorithm>
#include <utility>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelDoubleList.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/port/ZelCodes.h"
#include "foundations/port/ZelInParts.h"
#include "store/CZelCacheWalk.h"
#include "store/CZelRecordCache.h"
#include "store/CZelRowKeys.h"

namespace {

constexpr std::size_t LEAST_ROWS = 10000;  // for trees that are worth a thread

}  // namespace

// The values of the rows by the numbers of their handles, picked while the file is looked through, or from the records
// in memory.
class CZelIndexLoader::Picker : public CZelPageFile::Viewer {
public:
    Picker(const CZelRecordCache &cache, const CZelROMPColumns &columns, std::vector<Index> &indexes)
        : m_cache(cache), m_columns(columns), m_indexes(indexes), m_isThere(cache.RRCNumbers()) {
        for (Index &index : m_indexes)
            index.m_pairs.resize(cache.RRCNumbers());
    }

    void beginParts(std::size_t parts) override { m_parts.resize(parts); }
    void beginPart(std::size_t part) override { m_parts[part].m_columns = m_columns; }
    bool wants(std::size_t page) const override {
        return page < m_cache.RRCAtPages().size() && m_cache.RRCAtPages()[page] != CZelRecordCache::NO_ROW;
    }
    void view(std::size_t part, std::size_t page, const unsigned char *encoding, int length) override {
        const auto number = static_cast<std::size_t>(m_cache.RRCAtPages()[page]);
        CZelROMPColumns &columns = m_parts[part].m_columns;
        if (columns.pick(encoding, length))
            put(number, [&columns](std::size_t column) { return columns.take(column); });
    }

    void pickFromMemory(std::size_t begin, std::size_t end) {
        for (std::size_t number = begin; number < end; ++number)
            if (const CZelRecord *record = m_cache.RRCRecordInMemory(static_cast<int>(number)))
                put(number, [&](std::size_t column) { return valueIn(*record, column); });
    }

    bool has(const CZelAtom &handle) const { return m_isThere[static_cast<std::size_t>(handle.RALong())] != 0; }
    template <class ValueOf>
    void put(std::size_t number, ValueOf valueOf) {
        CZelAtom *handle = m_cache.RRCHandle(static_cast<int>(number));
        for (std::size_t column = 0; column < m_indexes.size(); ++column)
            m_indexes[column].m_pairs[number] = {valueOf(column), handle};
        m_isThere[number] = 1;
    }
    CZelAtom valueIn(const CZelRecord &record, std::size_t column) const {
        const CZelAtom *value = record.RRValueOf(m_indexes[column].m_column);
        return value != nullptr ? CZelAtom::RAKey(*value) : CZelAtom();
    }

    // What is no row or can't be read.
    void leaveOutOthers() {
        for (Index &index : m_indexes)
            std::erase_if(index.m_pairs, [](const SZelKeyedObject &pair) { return pair.m_object == nullptr; });
    }

private:
    // Made and written by one thread; in one cache line with another's it would make both wait.
    struct alignas(64) Part {
        CZelROMPColumns m_columns;
    };

    const CZelRecordCache &m_cache;
    const CZelROMPColumns &m_columns;
    std::vector<Index> &m_indexes;
    std::vector<char> m_isThere;
    std::vector<Part> m_parts;
};

CZelIndexLoader::CZelIndexLoader(const std::vector<SZelIndexValue> &indexes) {
    for (const SZelIndexValue &index : indexes) {
        m_indexes.push_back({index.m_tree, index.m_column, {}});
        m_columns.add(*index.m_column);
    }
}

int CZelIndexLoader::load(CZelRecordCache &cache) {
    if (!areEmpty())
        return E_RCKeyExists;
    collect(cache);
    return fillTrees(cache.RRCNumbers());
}

void CZelIndexLoader::loadLate(CZelRecordCache &cache) {
    collect(cache);
    fillTrees(cache.RRCNumbers());
}

int CZelIndexLoader::load(CZelRecordCache &cache, CZelRowKeys &keys) {
    const auto rows = static_cast<std::size_t>(cache.RRCLength());
    if (!isWhole(keys, rows))
        return load(cache);
    return areEmpty() ? fillTrees(rows, &keys) : E_RCKeyExists;
}

bool CZelIndexLoader::areEmpty() const {
    return std::all_of(m_indexes.begin(), m_indexes.end(),
                       [](const Index &index) { return index.m_tree->RBPTIsEmpty() == E_RBTrue; });
}

bool CZelIndexLoader::isWhole(const CZelRowKeys &keys, std::size_t rows) const {
    return std::all_of(m_indexes.begin(), m_indexes.end(),
                       [&keys, rows](const Index &index) { return keys.count(*index.m_column) == rows; });
}

// All of them, or none. Whoever fills a tree also frees what it was filled with.
int CZelIndexLoader::fillTrees(std::size_t rows, CZelRowKeys *keys) {
    const std::size_t parts = rows < LEAST_ROWS ? 1 : ZelPartsFor(m_indexes.size(), 1);
    std::vector<int> statuses(m_indexes.size(), 1);
    ZelInParts(parts, [&](std::size_t part) {
        for (std::size_t number = part; number < m_indexes.size(); number += parts) {
            Index &index = m_indexes[number];
            auto pairs = keys != nullptr ? keys->take(*index.m_column) : std::exchange(index.m_pairs, {});
            statuses[number] = index.m_tree->RBPTLoad(pairs);
        }
    });
    if (std::all_of(statuses.begin(), statuses.end(), [](int status) { return status == 1; }))
        return 1;
    for (const Index &index : m_indexes)
        index.m_tree->RBPTEmpty();
    return E_RCKeyExists;
}

void CZelIndexLoader::collect(CZelRecordCache &cache) {
    Picker picker(cache, m_columns, m_indexes);
    if (cache.RRCHasPlaces())
        cache.RRCLookThrough(picker);
    const std::size_t numbers = cache.RRCNumbers(), parts = ZelPartsFor(numbers, LEAST_ROWS);
    ZelInParts(parts, [&](std::size_t part) {
        picker.pickFromMemory(ZelBeginOfPart(numbers, part, parts), ZelBeginOfPart(numbers, part + 1, parts));
    });
    pickRest(cache, picker);
    picker.leaveOutOthers();
}

// What takes several pages or has no plain value; what can't be read is reported here.
void CZelIndexLoader::pickRest(CZelRecordCache &cache, Picker &picker) {
    CZelBag rest;
    const CZelDoubleList *handles = cache.RRCHandleIterator();
    const CZelListable *node = handles != nullptr ? handles->RDLHead() : nullptr;
    for (; node != nullptr; node = handles->RDLGetNext(node)) {
        auto *handle = static_cast<CZelAtom *>(static_cast<const CZelPointer *>(node)->RPData());
        if (!picker.has(*handle))
            rest.RBAdd(static_cast<void *>(handle));
    }
    for (CZelCacheWalk walk(cache, &rest, &m_columns); walk.hasRow(); walk.advance())
        picker.put(static_cast<std::size_t>(walk.handle()->RALong()), [&](std::size_t column) {
            return walk.isPicked() ? m_columns.take(column) : picker.valueIn(walk.record(), column);
        });
}
