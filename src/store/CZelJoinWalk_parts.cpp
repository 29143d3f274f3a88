// Which threads walk a join.
#include <vector>

#include "foundations/base/CZelDoubleList.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/base/CZelTreeList.h"
#include "foundations/base/ZelInRuns.h"
#include "foundations/port/ZelInParts.h"
#include "store/CZelJoinTaker.h"
#include "store/CZelJoinWalk.h"
#include "store/CZelTable.h"

namespace {

constexpr std::size_t LEAST_ROWS = 4096;  // of the first table

using Takers = std::vector<std::unique_ptr<CZelJoinTaker>>;

}  // namespace

CZelJoinWalk::CZelJoinWalk(const CZelJoinWalk *whole)
    : m_copies(whole->m_copies),
      m_row(whole->m_row),
      m_levels(whole->m_levels),
      m_blocks(whole->m_blocks),
      m_brought(whole->m_brought),
      m_isDistinct(whole->m_isDistinct),
      m_condition(whole->m_condition),
      m_bounds(whole->m_bounds.size()),
      m_order(whole->m_order) {}

void CZelJoinWalk::run(CZelJoinTaker &taker) {
    m_taker = &taker;
    start();
}

std::size_t CZelJoinWalk::count() {
    start();
    return m_found;
}

void CZelJoinWalk::start() {
    const CZelDoubleList *rows = sharedRows();
    if (rows == nullptr || !walkShared(*rows))
        walk();
}

// Rows that wait for each other ask no cached table, and hardly ever a table at all.
const CZelDoubleList *CZelJoinWalk::sharedRows() const {
    if (m_levels.size() < 2 || m_brought > 0 || m_blocks.front().capacity() == 1 || m_condition->hasSubquery() ||
        m_levels.front().m_constant.m_term != nullptr)
        return nullptr;
    const CZelDoubleList *rows = m_levels.front().m_table->m_rows;
    const bool isLong = rows != nullptr && ZelPartsFor(static_cast<std::size_t>(rows->RDLLength()), LEAST_ROWS) > 1;
    return isLong ? rows : nullptr;
}

// Not where the taker must see all rows itself.
bool CZelJoinWalk::walkShared(const CZelDoubleList &rows) {
    const std::unique_ptr<CZelJoinTaker> sample = m_taker != nullptr ? m_taker->another() : nullptr;
    if (m_taker != nullptr && sample == nullptr)
        return false;
    CZelJoinWalk other(this);
    Takers takers;  // of the other's runs, the last ones first
    ZelInRuns(rows, LEAST_ROWS, [&](std::size_t part, const SZelListRun &run) {
        if (part == 1 && sample != nullptr)
            other.m_taker = takers.emplace_back(sample->another()).get();
        (part == 0 ? *this : other).walkRun(rows, run);
    });
    m_found += other.m_found;
    for (auto taker = takers.rbegin(); taker != takers.rend(); ++taker)
        m_taker->append(**taker);
    return true;
}

void CZelJoinWalk::walkRun(const CZelDoubleList &rows, const SZelListRun &run) {
    m_row.dropAll();
    CZelListable *row = run.m_first;
    for (std::size_t i = 0; i < run.m_length; ++i, row = rows.RDLGetNext(row))
        visitChosen(0, static_cast<CZelRecord *>(row), m_levels.front().m_decided);
    finish(1);
}
