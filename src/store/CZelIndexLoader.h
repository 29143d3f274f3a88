// Fills empty index trees with all rows of a cached table at once: one reading that decodes no row, then each tree from
// its sorted keys. That takes a fraction of the time that entering row by row takes. A large file is read by several
// threads, and trees are filled at the same time.
//
// It refers to the trees and the names of the columns. Requires: the table lock is held as writer.
#pragma once

#include <vector>

#include "foundations/base/CZelBPlusTree.h"
#include "foundations/base/CZelROMPColumns.h"
#include "store/CZelObjectStore.h"

class CZelRecordCache;
class CZelRowKeys;

class CZelIndexLoader {
public:
    explicit CZelIndexLoader(const std::vector<SZelIndexValue> &indexes);

    // 1; E_RCKeyExists: two rows have one key, or a tree was not empty. Then all trees are as they were, and who keeps
    // which row is to be decided row by row.
    int load(CZelRecordCache &cache);

    // The same for trees that have been left to be filled and can't refuse.
    void loadLate(CZelRecordCache &cache);

    // The same from what the rows have been found to have, where that is at hand for all indexes.
    int load(CZelRecordCache &cache, CZelRowKeys &keys);

private:
    struct Index {
        CZelBPlusTree *m_tree;
        const CZelAtom *m_column;
        CZelArray<SZelKeyedObject> m_pairs;
    };

    class Picker;

    bool areEmpty() const;
    bool isWhole(const CZelRowKeys &keys, std::size_t rows) const;
    void collect(CZelRecordCache &cache);
    void pickRest(CZelRecordCache &cache, Picker &picker);
    int fillTrees(std::size_t rows, CZelRowKeys *keys = nullptr);

    std::vector<Index> m_indexes;
    CZelROMPColumns m_columns;
};
