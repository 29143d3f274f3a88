// Indexes of a cached table that have been created over rows which are there already. To fill one is to read the whole
// file; so that waits until an index is asked for anything, or the table is about to change, and is then done once for
// all that have been created since.
//
// It refers to the cache, the table's lock and the trees; a tree that goes says so.
//
// Threads: a tree may be asked for by several readers; the table's lock, which each of them can take as writer, lets
// one of them fill it.
#pragma once

#include <vector>

#include "foundations/base/CZelBPlusTree.h"
#include "store/CZelObjectStore.h"

class CZelAtom;
class CZelRWLock;
class CZelRecordCache;

class CZelLateIndexes : public CZelBPlusTree::Filler {
public:
    CZelLateIndexes(CZelRecordCache &cache, CZelRWLock &lock) : m_cache(cache), m_lock(lock) {}

    // Requires: the tree is empty and takes any number of rows under a key. The name of the column outlives it.
    void add(CZelBPlusTree &tree, const CZelAtom &column);

    // Fills all of them; what can't be read is reported. No row of the cache may be at hand. A change does so first:
    // under each key rows stand in the order of their handles, and behind them what has come later.
    void fillAll();

    void fill(const CZelBPlusTree &tree) override;
    void forget(const CZelBPlusTree &tree) override;

private:
    CZelRecordCache &m_cache;
    CZelRWLock &m_lock;
    std::vector<SZelIndexValue> m_waiting;  // under the lock
};
