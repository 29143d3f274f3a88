#include "store/CZelIndexLoader.h"

#include <algorithm>

#include "foundations/base/CZelRecord.h"
#include "foundations/port/ZelCodes.h"
#include "store/CZelCacheWalk.h"
#include "store/CZelRecordCache.h"
#include "store/CZelRowKeys.h"

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
    for (auto index = m_indexes.begin(); index != m_indexes.end(); ++index) {
        if (index->m_tree->RBPTLoad(index->m_pairs) == 1)
            continue;
        std::for_each(m_indexes.begin(), index, [](const Index &loaded) { loaded.m_tree->RBPTEmpty(); });
        return E_RCKeyExists;
    }
    return 1;
}

void CZelIndexLoader::collect(CZelRecordCache &cache) {
    for (Index &index : m_indexes)
        index.m_pairs.reserve(static_cast<std::size_t>(cache.RRCLength()));
    for (CZelCacheWalk walk(cache, nullptr, &m_columns); walk.hasRow(); walk.advance())
        for (std::size_t number = 0; number < m_indexes.size(); ++number)
            m_indexes[number].m_pairs.push_back({valueIn(walk, number), walk.handle()});
}

CZelAtom CZelIndexLoader::valueIn(const CZelCacheWalk &walk, std::size_t number) {
    if (walk.isPicked())
        return m_columns.take(number);
    const CZelAtom *value = walk.record().RRValueOf(m_indexes[number].m_column);
    return value != nullptr ? CZelAtom(*value) : CZelAtom();
}
