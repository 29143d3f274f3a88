// One comparison of a join's condition, ready for many rows: does the row in progress pass? A column whose table has
// no record has no value.
//
// It refers to the comparison and its operands, which outlive it.
#pragma once

#include <cstdint>

#include "store/CZelColumnReader.h"
#include "store/CZelJoinRow.h"

class CZelBoolean;
class CZelDbEntity;
class CZelExpr;

class CZelJoinTest {
public:
    // One side of the comparison. Without an entity it is m_value.
    struct Side {
        CZelDbEntity *m_entity = nullptr;
        int m_place = CZelJoinRow::NOWHERE;
        CZelColumnReader m_reader{nullptr, nullptr};
        const CZelAtom *m_value = nullptr;

        bool isColumn() const { return m_entity != nullptr; }
        const CZelAtom *value(const CZelJoinRow &row) const;
    };

    // `list` is what a subquery on the right gave; null: it could not be run, and nothing passes.
    CZelJoinTest(CZelBoolean &boolean, const CZelAtom *list, const CZelJoinRow &row);
    CZelJoinTest() = default;  // of a node that is no condition: nothing passes

    bool holds(const CZelJoinRow &row) const;

    const Side &left() const { return m_left; }
    const Side &right() const { return m_right; }
    bool isEquality() const;  // of two sides, neither of them a list to go over
    // Does every way to ask it give one answer: as a whole, with one side known, with both, by an index?
    bool isFaithful(const CZelJoinRow &row) const;
    int level(const CZelJoinRow &row) const;  // of the walk, from which on it is decided
    int first(const CZelJoinRow &row) const;  // the level of the first of its columns; NO_LEVEL without a column
    std::uint32_t open(const CZelJoinRow &row, int levels) const;  // a bit per level at which no table can answer it
    static constexpr int NO_LEVEL = 1000;

private:
    enum Shape { ANSWER, VALUES, COLUMN_VALUE, VALUE_COLUMN, COLUMNS };

    static Side sideOf(const CZelExpr *expression, const CZelJoinRow &row);
    Shape shapeOf() const;
    CZelColumnReader::Side read(const Side &side, const CZelJoinRow &row) const;
    bool holdsFor(const Side &column, const CZelAtom *value, bool swapped, const CZelJoinRow &row) const;
    bool holdsForColumns(const CZelJoinRow &row) const;
    static std::uint32_t openOf(const Side &side, const CZelJoinRow &row, int levels);

    const CZelBoolean *m_boolean = nullptr;
    Side m_left;
    Side m_right;
    Shape m_shape = ANSWER;
    bool m_answer = false;
    bool m_swaps = false;
};
