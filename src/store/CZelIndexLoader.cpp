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

// The values of the rows by the numbers of their handles, picked while the file is looked through.
class CZelIndexLoader::Picker : public CZelPageFile::Viewer {
public:
    Picker(const CZelRecordCache &cache, const CZelROMPColumns &columns, std::size_t count)
        : m_cache(cache),
          m_columns(columns),
          m_count(count),
          m_values(cache.RRCNumbers() * count),
          m_isThere(cache.RRCNumbers()) {}

    void beginParts(std::size_t parts) override { m_parts.assign(parts, m_columns); }
    bool wants(std::size_t page) const override {
        return page < m_cache.RRCAtPages().size() && m_cache.RRCAtPages()[page] != CZelRecordCache::NO_ROW;
    }
    void view(std::size_t part, std::size_t page, const unsigned char *encoding, int length) override {
        const auto number = static_cast<std::size_t>(m_cache.RRCAtPages()[page]);
        if (!m_parts[part].pick(encoding, length))
            return;
        for (std::size_t column = 0; column < m_count; ++column)
            m_values[number * m_count + column] = m_parts[part].take(column);
        m_isThere[number] = 1;
    }

    bool has(const CZelAtom &handle) const { return m_isThere[numberOf(handle)] != 0; }
    void put(const CZelAtom &handle, std::size_t column, CZelAtom value) {
        m_values[numberOf(handle) * m_count + column] = std::move(value);
        m_isThere[numberOf(handle)] = 1;
    }
    // In the order of the handles.
    void takeAll(std::size_t column, std::vector<SZelKeyedObject> &pairs) {
        pairs.reserve(static_cast<std::size_t>(m_cache.RRCLength()));
        for (std::size_t number = 0; number < m_isThere.size(); ++number)
            if (m_isThere[number] != 0)
                pairs.push_back(
                    {std::move(m_values[number * m_count + column]), m_cache.RRCHandle(static_cast<int>(number))});
    }

private:
    static std::size_t numberOf(const CZelAtom &handle) { return static_cast<std::size_t>(handle.RALong()); }

    const CZelRecordCache &m_cache;
    const CZelROMPColumns &m_columns;
    std::size_t m_count;
    std::vector<CZelAtom> m_values;
    std::vector<char> m_isThere;
    std::vector<CZelROMPColumns> m_parts;
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
    return fillTrees();
}

int CZelIndexLoader::load(CZelRecordCache &cache, CZelRowKeys &keys) {
    if (!takeFrom(keys, static_cast<std::size_t>(cache.RRCLength())))
        return load(cache);
    return areEmpty() ? fillTrees() : E_RCKeyExists;
}

bool CZelIndexLoader::areEmpty() const {
    return std::all_of(m_indexes.begin(), m_indexes.end(),
                       [](const Index &index) { return index.m_tree->RBPTIsEmpty() == E_RBTrue; });
}

bool CZelIndexLoader::takeFrom(CZelRowKeys &keys, std::size_t rows) {
    const bool isWhole = std::all_of(m_indexes.begin(), m_indexes.end(), [&keys, rows](const Index &index) {
        const std::vector<SZelKeyedObject> *pairs = keys.find(*index.m_column);
        return pairs != nullptr && pairs->size() == rows;
    });
    for (Index &index : m_indexes)
        if (isWhole)
            index.m_pairs = std::move(*keys.find(*index.m_column));
    return isWhole;
}

// All of them, or none.
int CZelIndexLoader::fillTrees() {
    const std::size_t rows = m_indexes.empty() ? 0 : m_indexes[0].m_pairs.size();
    const std::size_t parts = rows < LEAST_ROWS ? 1 : ZelPartsFor(m_indexes.size(), 1);
    std::vector<int> statuses(m_indexes.size(), 1);
    ZelInParts(parts, [&](std::size_t part) {
        for (std::size_t index = part; index < m_indexes.size(); index += parts)
            statuses[index] = m_indexes[index].m_tree->RBPTLoad(m_indexes[index].m_pairs);
    });
    if (std::all_of(statuses.begin(), statuses.end(), [](int status) { return status == 1; }))
        return 1;
    for (const Index &index : m_indexes)
        index.m_tree->RBPTEmpty();
    return E_RCKeyExists;
}

void CZelIndexLoader::collect(CZelRecordCache &cache) {
    Picker picker(cache, m_columns, m_indexes.size());
    if (cache.RRCHasPlaces())
        cache.RRCLookThrough(picker);
    pickRest(cache, picker);
    for (std::size_t index = 0; index < m_indexes.size(); ++index)
        picker.takeAll(index, m_indexes[index].m_pairs);
}

// What is in memory, of several pages or no plain value; what can't be read is reported here.
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
        for (std::size_t index = 0; index < m_indexes.size(); ++index)
            picker.put(*walk.handle(), index, valueIn(walk, index));
}

CZelAtom CZelIndexLoader::valueIn(const CZelCacheWalk &walk, std::size_t number) {
    if (walk.isPicked())
        return m_columns.take(number);
    const CZelAtom *value = walk.record().RRValueOf(m_indexes[number].m_column);
    return value != nullptr ? CZelAtom(*value) : CZelAtom();
}
