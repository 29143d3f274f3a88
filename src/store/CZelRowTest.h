// A comparison of a column with a value, made ready for looking at many rows: the column is resolved, the
// operator and the value's type are decided, and a pattern is taken apart once. A row then costs a walk to its
// binding and one typed comparison.
//
// It refers to the comparison and the value, which outlive it.
#pragma once

#include <string_view>

#include "store/CZelColumnReader.h"

class CZelBag;
class CZelBoolean;
class CZelDoubleList;
class CZelRecord;

class CZelRowTest {
public:
    // row op value; with `swapped` value op row.
    CZelRowTest(const CZelBoolean &boolean, const CZelDbEntity &column, bool swapped, const CZelAtom *value);

    bool accepts(const CZelRecord &row) const;

    // The same told of the column's value, null for none. Requires: the column has no selector.
    bool acceptsValue(const CZelAtom *value) const;
    const CZelColumnReader &column() const { return m_column; }

    // Append the rows that pass, in order: from a list of records, or from a bag of them.
    void select(const CZelDoubleList &rows, CZelBag &passed) const;
    void select(const CZelBag &rows, CZelBag &passed) const;

private:
    enum Kind {
        GENERAL,      // any value, by the comparison's own rule
        PRESENCE,     // the answer is that of any present value
        NUMBER,       // m_orders against a number
        TEXT,         // m_orders against a text
        SAME_TEXT,    // equal to a text, or not: m_negated
        TEXT_PREFIX,  // like 'x%', or not
        TEXT_SUFFIX,  // like '%x'
        TEXT_PART     // like '%x%'
    };

    void prepare(const CZelAtom &value);
    void preparePattern(std::string_view pattern);

    template <class Rows>
    void dispatch(Rows rows, CZelBag &passed) const;
    template <class Use>
    void withTest(Use use) const;
    template <class Rows, class Test>
    void scan(Rows rows, CZelBag &passed, Test test) const;

    const CZelBoolean &m_boolean;
    CZelColumnReader m_column;
    bool m_swapped;
    const CZelAtom *m_value;
    Kind m_kind = GENERAL;
    bool m_onNull = false;      // the answer for a row without a value
    bool m_onPresent = false;   // PRESENCE
    bool m_negated = false;     // of the texts
    unsigned int m_orders = 0;  // bits of the orders that pass: 1 less, 2 equal, 4 greater
    std::string_view m_part;    // of the pattern
};
