// A working copy of a join's condition for one table: the columns of the other tables of the row in progress are read
// through places that are filled anew for each row, so that the table sees values, and its index trees apply.
//
// The values stay the records'. Lives for the time of one joined query.
#pragma once

#include <deque>
#include <utility>
#include <vector>

#include "oql/CZelExpr.h"
#include "store/CZelColumnReader.h"
#include "store/CZelFilter.h"

class CZelJoinCondition;
class CZelJoinRow;

class CZelBoundFilter {
public:
    CZelBoundFilter(const CZelJoinCondition &condition, const CZelJoinRow &row);
    CZelBoundFilter(const CZelBoundFilter &) = delete;
    CZelBoundFilter &operator=(const CZelBoundFilter &) = delete;

    // The copy, with the values that the row has now. *complete: no column is open.
    CZelFilter *bind(const CZelJoinRow &row, bool *complete);

private:
    // A column that becomes a value while its table has a record.
    struct Column {
        Column(CZelBoolean &boolean, bool isLeft, int place, CZelColumnReader reader)
            : m_boolean(&boolean), m_isLeft(isLeft), m_place(place), m_reader(std::move(reader)) {}

        CZelBoolean *m_boolean;
        bool m_isLeft;
        int m_place;
        CZelColumnReader m_reader;
        CZelExpr m_value;
        CZelExpr *m_operand = nullptr;  // what the comparison reads: m_value
        bool m_isBound = false;
    };

    void settle(CZelFilter &leaf, CZelBoolean &original, const CZelAtom *list);
    void settleSubQuery(CZelFilter &leaf, const CZelAtom *list);
    static void keepValue(CZelExpr *copy, const CZelExpr *original);
    void addColumn(CZelBoolean &boolean, CZelExpr *operand, bool isLeft, const CZelJoinRow &row);
    static void setBound(Column &column, bool isBound);

    CZelFilter m_filter;
    std::deque<Column> m_columns;
    std::deque<std::pair<CZelExpr, CZelExpr *>> m_lists;  // of subqueries, and what the comparison reads
    bool m_hasOpenColumn = false;                         // one that is never bound
};
