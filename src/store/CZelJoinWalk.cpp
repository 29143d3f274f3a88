#include "store/CZelJoinWalk.h"

#include <algorithm>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelBPlusTree.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/base/CZelTreeList.h"
#include "foundations/port/CZelError.h"
#include "store/CZelTable.h"

namespace {

constexpr std::size_t FEW = 16;  // so many rows are tested one by one sooner than a tree is made

// Visits the objects of a tree's entry.
template <class Visitor>
void visitObjects(const CZelBTreeNode &entry, Visitor visit) {
    const CZelDoubleList *list = entry.RBTNNodeHasList() == E_RBTrue ? entry.RBTNGetDataList() : nullptr;
    if (list == nullptr) {
        visit(static_cast<CZelRecord *>(entry.RBTNOldest()));
        return;
    }
    for (const CZelListable *node = list->RDLHead(); node != nullptr; node = list->RDLGetNext(node))
        visit(static_cast<CZelRecord *>(static_cast<const CZelPointer *>(node)->RPData()));
}

template <class Visitor>
void visitList(const CZelDoubleList *rows, Visitor visit) {
    for (CZelListable *row = rows != nullptr ? rows->RDLHead() : nullptr; row != nullptr; row = rows->RDLGetNext(row))
        visit(static_cast<CZelRecord *>(row));
}

}  // namespace

void CZelJoinWalk::enter(int index) {
    if (!visit(index) && passes(m_levels[static_cast<std::size_t>(index)].m_decided))
        descend(index + 1);
}

// Without a record so far nothing narrows the rows; with one of each earlier table the plan holds.
bool CZelJoinWalk::visit(int index) {
    if (m_row.chosen() == 0)
        return visitAll(index);
    const Level &level = m_levels[static_cast<std::size_t>(index)];
    return level.m_isPlanned && m_row.chosen() == m_brought + index ? visitPlanned(index) : visitAnswered(index);
}

bool CZelJoinWalk::visitAll(int index) {
    const Level &level = m_levels[static_cast<std::size_t>(index)];
    if (level.m_table->RTIsCacheUsed() == E_RBTrue)
        return visitRows(index, level.m_table->RTReturnRows(nullptr));
    if (level.m_constant.m_term != nullptr) {
        // Rows outside the entry are possible and refused.
        const CZelBTreeNode *entry = level.m_constant.m_tree->RBPTGetNodeForKey(level.m_constant.m_key->m_value);
        if (entry != nullptr)
            visitObjects(*entry, [&](CZelRecord *row) { visitChosen(index, row, level.m_decided); });
    } else {
        visitList(level.m_table->m_rows, [&](CZelRecord *row) { visitChosen(index, row, level.m_decided); });
    }
    return level.m_table->RTTotalRecordCount() > 0;
}

// The rows that the table itself finds.
bool CZelJoinWalk::visitAnswered(int index) {
    const Level &level = m_levels[static_cast<std::size_t>(index)];
    if (m_condition->filter() == nullptr)
        return visitRows(index, level.m_table->RTReturnRows(nullptr));
    std::unique_ptr<CZelBoundFilter> &bound = m_bounds[static_cast<std::size_t>(index)];
    if (bound == nullptr)
        bound = std::make_unique<CZelBoundFilter>(*m_condition, m_row);
    bool complete = false;
    CZelFilter *filter = bound->bind(m_row, &complete);
    return visitRows(index, level.m_table->RTReturnRows(filter, ZelBool(!complete)));
}

// Takes the bag over. Where the table has no answer at all the branch ends.
bool CZelJoinWalk::visitRows(int index, CZelBag *rows) {
    const std::unique_ptr<CZelBag> owner(rows);
    if (rows == nullptr)
        return true;
    const Level &level = m_levels[static_cast<std::size_t>(index)];
    const bool isCached = level.m_table->RTIsCacheUsed() == E_RBTrue;
    for (const CZelPointer *node = rows->RBFirst(); node != nullptr; node = CZelBag::RBNext(node)) {
        auto *row = static_cast<CZelRecord *>(node->RPData());
        if (isCached) {
            const CZelAtom address(static_cast<long>(reinterpret_cast<std::intptr_t>(row)));
            m_copies.RTLAdd(&address, static_cast<void *>(row), true);
        }
        visitChosen(index, row, level.m_decided);
    }
    return rows->RBLength() > 0;
}

bool CZelJoinWalk::visitPlanned(int index) {
    Level &level = m_levels[static_cast<std::size_t>(index)];
    ++level.m_visits;
    if (level.m_lookup.m_term != nullptr)
        return visitEntry(index, entryFor(level, *level.m_lookup.m_tree, level.m_lookup), &level.m_own);
    bool found = false;
    if (level.m_own.empty() && level.m_wanted.m_term == nullptr) {
        visitList(level.m_table->m_rows, [&](CZelRecord *row) { found |= visitPossible(index, row, nullptr); });
        return found;
    }
    const std::vector<CZelRecord *> &candidates = candidatesOf(level);
    if (isWorthATree(level))
        makeTree(level);
    if (level.m_made != nullptr && isTreeKey(level.m_wanted.m_key->value(m_row)))
        return visitEntry(index, entryFor(level, *level.m_made, level.m_wanted), nullptr);
    for (CZelRecord *row : candidates)
        found |= visitPossible(index, row, nullptr);
    return found;
}

const CZelBTreeNode *CZelJoinWalk::entryFor(const Level &level, const CZelBPlusTree &tree, const Lookup &lookup) const {
    return level.m_isLookedUp ? level.m_entries[level.m_current] : tree.RBPTGetNodeForKey(lookup.m_key->value(m_row));
}

bool CZelJoinWalk::visitEntry(int index, const CZelBTreeNode *entry, const Terms *own) {
    bool found = false;
    if (entry != nullptr)
        visitObjects(*entry, [&](CZelRecord *row) { found |= visitPossible(index, row, own); });
    return found;
}

bool CZelJoinWalk::visitPossible(int index, CZelRecord *row, const Terms *own) {
    const Level &level = m_levels[static_cast<std::size_t>(index)];
    m_row.choose(level.m_place, row);
    const bool isPossible = (own == nullptr || passes(*own)) && passes(level.m_narrowing);
    if (isPossible && passes(level.m_refusing))
        descend(index + 1);
    m_row.drop(level.m_place);
    return isPossible;
}

// Of two tables with one identifier the first gives the record.
void CZelJoinWalk::visitChosen(int index, CZelRecord *row, const Terms &terms) {
    const int place = m_levels[static_cast<std::size_t>(index)].m_place;
    const bool isFirst = m_row.record(place) == nullptr;
    if (isFirst)
        m_row.choose(place, row);
    if (passes(terms))
        descend(index + 1);
    if (isFirst)
        m_row.drop(place);
}

bool CZelJoinWalk::passes(const Terms &terms) const {
    return std::all_of(terms.begin(), terms.end(),
                       [this](const CZelJoinCondition::Term *term) { return m_condition->holds(*term, m_row); });
}

const std::vector<CZelRecord *> &CZelJoinWalk::candidatesOf(Level &level) {
    std::call_once(level.m_candidates->m_areCollected, [&] { collectCandidates(level); });
    return level.m_candidates->m_rows;
}

void CZelJoinWalk::collectCandidates(Level &level) {
    if (level.m_constant.m_term == nullptr) {
        visitList(level.m_table->m_rows, [&](CZelRecord *row) { collectCandidate(level, row); });
        return;
    }
    const CZelBTreeNode *entry = level.m_constant.m_tree->RBPTGetNodeForKey(level.m_constant.m_key->m_value);
    if (entry != nullptr)
        visitObjects(*entry, [&](CZelRecord *row) { collectCandidate(level, row); });
}

void CZelJoinWalk::collectCandidate(Level &level, CZelRecord *row) {
    m_row.choose(level.m_place, row);
    if (passes(level.m_own))
        level.m_candidates->m_rows.push_back(row);
    m_row.drop(level.m_place);
}

bool CZelJoinWalk::isWorthATree(const Level &level) {
    return level.m_wanted.m_term != nullptr && level.m_made == nullptr && level.m_visits > 1 &&
           level.m_candidates->m_rows.size() > FEW;
}

void CZelJoinWalk::makeTree(Level &level) {
    Candidates &candidates = *level.m_candidates;
    std::call_once(candidates.m_areSorted, [&] { candidates.m_tree = treeOver(level); });
    level.m_made = candidates.m_tree.get();
    if (level.m_made == nullptr)
        level.m_wanted.m_term = nullptr;
}

std::unique_ptr<CZelBPlusTree> CZelJoinWalk::treeOver(const Level &level) {
    auto tree = std::make_unique<CZelBPlusTree>(true);
    for (CZelRecord *row : level.m_candidates->m_rows) {
        const CZelAtom *value = level.m_wanted.m_column->m_reader.value(*row);
        if (!isTreeKey(value))
            return nullptr;
        tree->RBPTAddObjectToTree(value, row, true);
    }
    return tree;
}

// A tree compares such values as the language does.
bool CZelJoinWalk::isTreeKey(const CZelAtom *value) {
    return CZelAtom::RAIsNull(value) || value->RAIsNumber() || value->RAType() == E_RDTText;
}
