// A join's condition, made ready for the walk: cut at its Ands into terms, each of which is tested once per row, at
// the first level at which all of its tables are decided. Subqueries are run here, once.
//
// A term is a chain of comparisons with two exits each, so that no depth of its text takes stack.
//
// Threads: made and used under the store lock; made by one thread, and then it does not change.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

#include "foundations/base/CZelAtom.h"
#include "store/CZelJoinRow.h"
#include "store/CZelJoinTest.h"

class CZelFilter;
class CZelTable;

class CZelJoinCondition {
public:
    struct Term {
        int m_entry;            // its first step
        bool m_isSingle;        // one comparison
        int m_first;            // the level of the first of its columns
        int m_level;            // at which it is decided
        std::uint32_t m_open;   // levels at which a table leaves a part of it unanswered
        std::uint32_t m_whole;  // levels at which it does not narrow the rows

        bool isOpen(int level) const { return (m_open >> level & 1U) != 0; }
        bool isWhole(int level) const { return (m_whole >> level & 1U) != 0; }
    };

    // `driver` runs the subqueries. The filter may be null; it outlives this, and the row, whose places any other row
    // has to have, the construction.
    CZelJoinCondition(CZelFilter *filter, const CZelJoinRow &row, int levels, CZelTable &driver);
    CZelJoinCondition(const CZelJoinCondition &) = delete;
    CZelJoinCondition &operator=(const CZelJoinCondition &) = delete;

    CZelFilter *filter() const { return m_filter; }
    const std::vector<Term> &terms() const { return m_terms; }
    bool holds(const Term &term, const CZelJoinRow &row) const;
    const CZelJoinTest &testOf(const Term &single) const { return m_steps[indexOf(single.m_entry)].m_test; }
    bool isFaithful() const { return m_isFaithful; }  // is every comparison?
    bool hasSubquery() const { return !m_lists.empty(); }

    const CZelAtom *listOf(const CZelBoolean *boolean) const;  // what its subquery gave; null without one

private:
    static constexpr int PASSED = -1;
    static constexpr int FAILED = -2;

    struct Step {
        CZelJoinTest m_test;
        int m_onTrue;
        int m_onFalse;
    };
    struct Part;   // waits to be compiled
    struct Marks;  // what is known of a compiled part
    class Compiler;

    static std::size_t indexOf(int step) { return static_cast<std::size_t>(step); }
    void runSubqueries(CZelTable &driver);
    void cutIntoTerms();
    void reportStrayColumn() const;

    CZelFilter *m_filter;
    const CZelJoinRow &m_row;
    int m_levels;
    std::map<const CZelBoolean *, CZelAtom> m_lists;
    std::vector<Step> m_steps;
    std::vector<Term> m_terms;
    bool m_isFaithful = true;
};
