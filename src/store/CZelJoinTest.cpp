#include "store/CZelJoinTest.h"

#include <algorithm>

#include "foundations/base/CZelRecord.h"
#include "foundations/base/CZelTreeList.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelExpr.h"
#include "store/CZelBoolean.h"
#include "store/CZelTable.h"

namespace {

// With the value on the left only these read the operands the other way round.
bool swapsOperands(EZelOper op) {
    return (op >= E_ROLess && op <= E_RONotIn) || op == E_ROBetween || op == E_RONotBetween;
}

bool isIndexed(const CZelTable *table, const CZelAtom *column) {
    return table == nullptr || column == nullptr || table->RTIndexedColumns()->RTLGet(column) != nullptr;
}

std::uint32_t bit(int level) {
    return std::uint32_t{1} << level;
}

}  // namespace

const CZelAtom *CZelJoinTest::Side::value(const CZelJoinRow &row) const {
    if (!isColumn())
        return m_value;
    const CZelRecord *record = row.record(m_place);
    return record != nullptr ? m_reader.value(*record) : nullptr;
}

CZelJoinTest::Side CZelJoinTest::sideOf(const CZelExpr *expression, const CZelJoinRow &row) {
    Side side;
    if (expression == nullptr)
        return side;
    side.m_entity = expression->REEntityVal();
    side.m_value = expression->REHeadAtomVal();
    if (side.m_entity == nullptr)
        return side;
    const char *table = side.m_entity->RDEIdent();
    side.m_place = table != nullptr ? row.find(table) : CZelJoinRow::NOWHERE;
    side.m_reader = CZelColumnReader(*side.m_entity);
    return side;
}

CZelJoinTest::CZelJoinTest(CZelBoolean &boolean, const CZelAtom *list, const CZelJoinRow &row) : m_boolean(&boolean) {
    m_answer = boolean.RBOperand() == E_RONone;
    m_swaps = swapsOperands(boolean.RBOperand());
    const bool isQuery = boolean.RBRvalType() == E_RBRQuery;
    if (m_answer || (isQuery && list == nullptr))
        return;
    m_left = sideOf(boolean.RBLeft(), row);
    if (isQuery)
        m_right.m_value = list;
    else
        m_right = sideOf(boolean.RBRight(), row);
    m_shape = shapeOf();
    if (m_shape == VALUES) {
        m_answer = CZelBoolean::RBEvalExpr(m_left.m_value, m_right.m_value, boolean.RBOperand()) == E_RBTrue;
        m_shape = ANSWER;
    }
}

CZelJoinTest::Shape CZelJoinTest::shapeOf() const {
    if (m_left.isColumn())
        return m_right.isColumn() ? COLUMNS : COLUMN_VALUE;
    return m_right.isColumn() ? VALUE_COLUMN : VALUES;
}

bool CZelJoinTest::holds(const CZelJoinRow &row) const {
    switch (m_shape) {
        case COLUMN_VALUE:
            return holdsFor(m_left, m_right.m_value, false, row);
        case VALUE_COLUMN:
            return holdsFor(m_right, m_left.m_value, m_swaps, row);
        case COLUMNS:
            return holdsForColumns(row);
        default:
            return m_answer;
    }
}

CZelColumnReader::Side CZelJoinTest::read(const Side &side, const CZelJoinRow &row) const {
    const CZelRecord *record = row.record(side.m_place);
    return record != nullptr ? side.m_reader.side(*record) : CZelColumnReader::Side{nullptr, nullptr};
}

bool CZelJoinTest::holdsFor(const Side &column, const CZelAtom *value, bool swapped, const CZelJoinRow &row) const {
    const CZelColumnReader::Side side = read(column, row);
    if (side.list != nullptr)
        return m_boolean->RBEvalListToAtom(side.list, ZelBool(swapped), value, column.m_reader.kind()) == E_RBTrue;
    return m_boolean->RBEvalAtomToAtom(side.value, ZelBool(swapped), value) == E_RBTrue;
}

bool CZelJoinTest::holdsForColumns(const CZelJoinRow &row) const {
    const CZelColumnReader::Side mine = read(m_left, row);
    const CZelColumnReader::Side theirs = read(m_right, row);
    return m_boolean->RBEvalComplex(mine.value, mine.list, m_left.m_reader.kind(), theirs.value, theirs.list,
                                    m_right.m_reader.kind()) == E_RBTrue;
}

bool CZelJoinTest::isEquality() const {
    return m_shape != ANSWER && m_boolean->RBOperand() == E_ROEqual && !m_left.m_reader.isWild() &&
           !m_right.m_reader.isWild();
}

bool CZelJoinTest::isFaithful(const CZelJoinRow &row) const {
    if (m_boolean == nullptr)
        return false;  // a node that is no condition
    if (m_shape == ANSWER)
        return true;
    const EZelOper op = m_boolean->RBOperand();
    if (op > E_ROGreaterEqual && (m_shape != COLUMN_VALUE || op == E_ROExists))
        return false;
    for (const Side *side : {&m_left, &m_right}) {
        if (!side->isColumn())
            continue;
        if (side->m_entity->RDEIdent() == nullptr)
            return false;  // any table takes it for its own
        // A tree knows the whole column only.
        const bool reachesIn = side->m_entity->RDEColSpec() != nullptr && side->m_place != CZelJoinRow::NOWHERE;
        if (reachesIn && isIndexed(row.table(side->m_place), side->m_reader.name()))
            return false;
    }
    return true;
}

int CZelJoinTest::level(const CZelJoinRow &row) const {
    int level = 0;
    for (const Side *side : {&m_left, &m_right}) {
        if (side->m_place != CZelJoinRow::NOWHERE)
            level = std::max(level, row.level(side->m_place));
    }
    return level;
}

int CZelJoinTest::first(const CZelJoinRow &row) const {
    int first = NO_LEVEL;
    for (const Side *side : {&m_left, &m_right}) {
        if (side->m_place != CZelJoinRow::NOWHERE)
            first = std::min(first, row.level(side->m_place));
    }
    return first;
}

std::uint32_t CZelJoinTest::openOf(const Side &side, const CZelJoinRow &row, int levels) {
    const std::uint32_t everywhere = bit(levels) - 1;
    if (!side.isColumn())
        return 0;
    if (side.m_place == CZelJoinRow::NOWHERE)
        return everywhere;
    const int own = row.level(side.m_place);
    if (own == CZelJoinRow::BROUGHT)
        return side.m_reader.isWild() ? everywhere : 0;
    return side.m_reader.isWild() ? everywhere & ~bit(own) : bit(own) - 1;
}

std::uint32_t CZelJoinTest::open(const CZelJoinRow &row, int levels) const {
    return openOf(m_left, row, levels) | openOf(m_right, row, levels);
}
