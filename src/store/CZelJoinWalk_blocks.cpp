// How the rows of a join go from level to level.
#include <algorithm>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelBPlusTree.h"
#include "foundations/base/CZelRecord.h"
#include "store/CZelJoinTaker.h"
#include "store/CZelJoinWalk.h"

void CZelJoinWalk::walk() {
    descend(0);
    finish(0);
}

// Nothing more comes to this level.
void CZelJoinWalk::finish(int index) {
    for (; index <= static_cast<int>(m_levels.size()); ++index)
        advance(index);
}

void CZelJoinWalk::descend(int index) {
    if (index == static_cast<int>(m_levels.size())) {
        if (m_row.chosen() == 0)
            return;
        ++m_found;
        if (m_taker == nullptr)
            return;
    }
    CZelJoinBlock &block = m_blocks[static_cast<std::size_t>(index)];
    block.add(m_row);
    if (!block.isFull())
        return;
    advance(index);
    m_row.load(block.at(block.capacity() - 1));  // which was the row in progress
}

void CZelJoinWalk::advance(int index) {
    CZelJoinBlock &block = m_blocks[static_cast<std::size_t>(index)];
    if (index == static_cast<int>(m_levels.size())) {
        take(block);
    } else {
        Level &level = m_levels[static_cast<std::size_t>(index)];
        lookUp(level, block);
        for (level.m_current = 0; level.m_current < block.length(); ++level.m_current) {
            m_row.load(block.at(level.m_current));
            enter(index);
        }
    }
    block.clear();
}

// A row by itself is looked up when it comes to that.
void CZelJoinWalk::lookUp(Level &level, const CZelJoinBlock &block) {
    const CZelBPlusTree *tree = level.m_lookup.m_term != nullptr ? level.m_lookup.m_tree : level.m_made;
    level.m_isLookedUp = tree != nullptr && block.length() > 1;
    if (!level.m_isLookedUp)
        return;
    readKeys(level, block);
    level.m_entries.resize(block.length());
    tree->RBPTGetNodesForKeys(level.m_keys.data(), block.length(), level.m_entries.data());
    if (level.testsRows())
        askForRows(level);
}

void CZelJoinWalk::readKeys(Level &level, const CZelJoinBlock &block) const {
    const Lookup &lookup = level.m_lookup.m_term != nullptr ? level.m_lookup : level.m_wanted;
    const int place = lookup.m_key->m_place;
    block.askForValues(place);
    level.m_keys.clear();
    for (std::size_t i = 0; i < block.length(); ++i) {
        const CZelRecord *record = block.at(i)[place];
        const CZelAtom *key = record != nullptr ? lookup.m_key->m_reader.value(*record) : nullptr;
        level.m_keys.push_back(level.m_lookup.m_term != nullptr || isTreeKey(key) ? key : nullptr);
        if (key != nullptr)
            key->RAPrefetch();
    }
}

void CZelJoinWalk::askForRows(const Level &level) {
    for (const CZelBTreeNode *entry : level.m_entries) {
        if (entry != nullptr)
            static_cast<const CZelRecord *>(entry->RBTNOldest())->RRVbIterator()->RVBLPrefetch();
    }
}

void CZelJoinWalk::take(const CZelJoinBlock &block) {
    if (block.length() == 0)
        return;
    m_tuples.clear();
    for (std::size_t i = 0; i < block.length(); ++i)
        addTuple(block.at(i));
    m_taker->take(m_tuples);
}

void CZelJoinWalk::addTuple(CZelRecord *const *records) {
    m_entries.clear();
    for (const int place : m_order) {
        if (records[place] != nullptr)
            m_entries.push_back({m_row.identifier(place), records[place]});
    }
    m_tuples.emplace_back(m_entries.data(), m_entries.size());
}
