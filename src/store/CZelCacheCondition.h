// A condition over a cached table that joins comparisons of a column with a value, none of them answered by a tree. One
// scan tests all of them on each row and copies the rows that match; what each comparison found is then there for the
// set algebra, which decides the order of the rows.
//
// Refers to the condition and the cache, which outlive it. Requires: the table lock is held as writer from the scan on.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "foundations/base/CZelROMPColumns.h"
#include "store/CZelCacheScan.h"
#include "store/CZelNumberSet.h"
#include "store/CZelRowTest.h"

class CZelAtom;
class CZelBag;
class CZelBoolean;
class CZelDbEntity;
class CZelFilter;
class CZelRecord;
class CZelRecordCache;

// row op value; swapped: value op row.
struct SZelCachedComparison {
    CZelBoolean *m_boolean = nullptr;  // null: no such comparison
    CZelDbEntity *m_column = nullptr;
    const CZelAtom *m_value = nullptr;
    bool m_isSwapped = false;
};

class CZelCacheCondition {
public:
    static constexpr std::size_t MOST_LEAVES = 64;
    static constexpr std::size_t MOST_STEPS = 256;  // nodes of the condition

    explicit CZelCacheCondition(CZelRecordCache &cache) : m_cache(cache) {}
    CZelCacheCondition(const CZelCacheCondition &) = delete;
    CZelCacheCondition &operator=(const CZelCacheCondition &) = delete;

    // `comparisonOf` gives the SZelCachedComparison of a leaf. False: the condition is of another kind, or too large.
    template <class ComparisonOf>
    bool prepare(const CZelFilter &filter, ComparisonOf comparisonOf) {
        return layOut(filter) && takeLeaves(comparisonOf);
    }

    void scan(bool copies);
    // How many rows match, without finding which; -1 when some can't be read, of which the set algebra decides.
    int count();

    // The handles of the rows that pass the comparison: of `input` in its order, of all rows in that of the handles.
    // The caller's.
    CZelBag *rowsOf(const CZelFilter *leaf, const CZelBag *input) const;

    // Of a row that matches the whole condition; the caller's. Null for one that the scan could not read.
    CZelRecord *takeCopy(const CZelAtom &handle);

private:
    // In the order in which a stack evaluates them.
    struct Step {
        const CZelFilter *m_node;
        std::size_t m_leaf;  // NO_LEAF: joins what the steps before have left
    };
    struct Leaf {
        const CZelFilter *m_node;
        std::unique_ptr<CZelRowTest> m_test;
        std::size_t m_column;
        std::vector<CZelNumberSet> m_rows;  // found in each part of the scan, and then in the first what all found
    };
    static constexpr std::size_t NO_LEAF = MOST_LEAVES;

    bool layOut(const CZelFilter &filter);
    bool addLeaf(const SZelCachedComparison &comparison, const CZelFilter *node);
    std::size_t columnFor(const CZelAtom &name);
    bool matches(const SZelScannedRow &row);
    static bool passes(Leaf &leaf, const SZelScannedRow &row);

    template <class ComparisonOf>
    bool takeLeaves(ComparisonOf comparisonOf) {
        for (const Step &step : m_steps)
            if (step.m_leaf != NO_LEAF && !addLeaf(comparisonOf(*step.m_node), step.m_node))
                return false;
        return true;
    }

    CZelRecordCache &m_cache;
    std::vector<Step> m_steps;
    std::vector<Leaf> m_leaves;
    std::vector<const CZelAtom *> m_names;  // of the columns
    CZelROMPColumns m_columns;
    std::unique_ptr<CZelCacheScan> m_scan;  // with the copies
};
