// What each level of a join's walk has to ask, found out before the first row.
#include <algorithm>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelBPlusTree.h"
#include "foundations/base/CZelDoubleList.h"
#include "foundations/base/CZelPointer.h"
#include "foundations/base/CZelTreeList.h"
#include "foundations/port/CZelError.h"
#include "store/CZelColDef.h"
#include "store/CZelJoinWalk.h"
#include "store/CZelObjectStore.h"
#include "store/CZelTable.h"

CZelJoinWalk::CZelJoinWalk(CZelTable &driver, CZelFilter *filter, CZelDoubleList &tables, CZelPointer *position,
                           const CZelTuple *tuple, CZelTreeList &copies, std::size_t together)
    : m_copies(copies) {
    if (tuple != nullptr)
        bring(*tuple);
    addLevels(tables, position);
    orderPlaces();
    const int levels = static_cast<int>(m_levels.size());
    m_condition = std::make_shared<const CZelJoinCondition>(filter, m_row, levels, driver);
    m_bounds.resize(m_levels.size());
    for (int i = 0; i < levels; ++i)
        planLevel(i);
    makeBlocks(together);
}

CZelJoinWalk::~CZelJoinWalk() = default;

void CZelJoinWalk::bring(const CZelTuple &tuple) {
    for (std::size_t i = 0; i < tuple.RTLength(); ++i) {
        const SZelTupleEntry &entry = tuple.RTEntries()[i];
        m_row.choose(m_row.place(*entry.m_table, nullptr, CZelJoinRow::BROUGHT), entry.m_record);
    }
    m_brought = m_row.chosen();
}

void CZelJoinWalk::addLevels(CZelDoubleList &tables, CZelPointer *position) {
    const CZelListable *node = position != nullptr ? tables.RDLGetNext(position) : tables.RDLHead();
    for (; node != nullptr; node = tables.RDLGetNext(node))
        addLevel(*static_cast<CZelTable *>(static_cast<const CZelPointer *>(node)->RPData()));
}

void CZelJoinWalk::addLevel(CZelTable &table) {
    const bool isNew = m_row.find(table.RTIdentifier()->RATextView()) == CZelJoinRow::NOWHERE;
    if (!isNew && m_isDistinct) {
        m_isDistinct = false;
        ZEL_REPORT(E_RCDuplicate,
                   "CZelTable::RTExecJoinedQuery: a table stands twice in the list; its first row counts");
    }
    Level &level = m_levels.emplace_back();
    level.m_table = &table;
    level.m_place = m_row.place(*table.RTIdentifier(), &table, static_cast<int>(m_levels.size()) - 1);
}

void CZelJoinWalk::orderPlaces() {
    for (int place = 0; place < m_row.length(); ++place)
        m_order.push_back(place);
    std::sort(m_order.begin(), m_order.end(),
              [this](int a, int b) { return CZelAtom::RACompare(m_row.identifier(a), m_row.identifier(b)) < 0; });
}

void CZelJoinWalk::planLevel(int index) {
    Level &level = m_levels[static_cast<std::size_t>(index)];
    level.m_isPlanned = m_isDistinct && m_condition->isFaithful() && level.m_table->RTIsCacheUsed() != E_RBTrue;
    for (const CZelJoinCondition::Term &term : m_condition->terms())
        planTerm(index, term);
    if (m_isDistinct && m_condition->isFaithful())
        chooseLookups(level);
}

void CZelJoinWalk::planTerm(int index, const CZelJoinCondition::Term &term) {
    Level &level = m_levels[static_cast<std::size_t>(index)];
    const bool isDecided = term.m_level == index;
    if (isDecided)
        level.m_decided.push_back(&term);
    if (term.isOpen(index) && !term.isWhole(index))
        level.m_isPlanned = false;  // it narrows the rows by a part of itself
    else if (isDecided && term.isOpen(index))
        level.m_refusing.push_back(&term);
    else if (isDecided)
        (term.m_first >= index ? level.m_own : level.m_narrowing).push_back(&term);
}

void CZelJoinWalk::chooseLookups(Level &level) {
    for (const CZelJoinCondition::Term *term : level.m_own) {
        const Lookup lookup = lookupOf(level, *term);
        if (lookup.m_tree != nullptr && level.m_constant.m_term == nullptr && !lookup.m_key->isColumn())
            level.m_constant = lookup;
    }
    for (const CZelJoinCondition::Term *term : level.m_narrowing) {
        const Lookup lookup = lookupOf(level, *term);
        if (lookup.m_term == nullptr)
            continue;
        const bool isUnique = lookup.m_tree != nullptr && lookup.m_tree->RBPTIsDegenerate() != E_RBTrue;
        if (lookup.m_tree == nullptr)
            level.m_wanted = lookup;
        else if (level.m_lookup.m_term == nullptr || isUnique)
            level.m_lookup = lookup;
    }
    if (level.m_lookup.m_term != nullptr)
        std::erase(level.m_narrowing, level.m_lookup.m_term);
}

CZelJoinWalk::Lookup CZelJoinWalk::lookupOf(const Level &level, const CZelJoinCondition::Term &term) const {
    if (!term.m_isSingle || !m_condition->testOf(term).isEquality())
        return {};
    const CZelJoinTest &test = m_condition->testOf(term);
    const bool isLeft = test.left().m_place == level.m_place;
    const CZelJoinTest::Side &column = isLeft ? test.left() : test.right();
    const CZelJoinTest::Side &key = isLeft ? test.right() : test.left();
    if (column.m_place != level.m_place || !column.m_reader.isPlain() || !column.m_reader.hasName() ||
        key.m_place == level.m_place)
        return {};
    return {&term, &column, &key, treeOf(level, column)};
}

const CZelBPlusTree *CZelJoinWalk::treeOf(const Level &level, const CZelJoinTest::Side &column) {
    const CZelTable &table = *level.m_table;
    if (table.m_objectStore == nullptr || table.RTIsCacheUsed() == E_RBTrue)
        return nullptr;
    const auto *definition = static_cast<const CZelColDef *>(table.m_indexedColumns->RTLData(column.m_reader.name()));
    const bool isIndexed = definition != nullptr && definition->RCDIndexable();
    return isIndexed ? table.m_objectStore->ROSTree(*column.m_reader.name()) : nullptr;
}

// The rows of the first level are those of the table; each further level has to be planned, or its table is asked in
// the course of the walk.
void CZelJoinWalk::makeBlocks(std::size_t together) {
    const std::size_t asked = m_brought == 0 ? 1 : 0;
    const bool isPlanned = std::all_of(m_levels.begin() + static_cast<std::ptrdiff_t>(std::min(asked, m_levels.size())),
                                       m_levels.end(), [](const Level &level) { return level.m_isPlanned; });
    const bool isCached = std::any_of(m_levels.begin(), m_levels.end(),
                                      [](const Level &level) { return level.m_table->RTIsCacheUsed() == E_RBTrue; });
    const std::size_t capacity = isPlanned && !isCached && m_isDistinct ? together : 1;
    m_blocks.assign(m_levels.size() + 1, CZelJoinBlock(m_row.length(), capacity));
}
