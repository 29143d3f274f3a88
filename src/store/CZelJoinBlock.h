// Rows of a join that wait for the next step of its walk, in their order. What the step reads from memory can be asked
// for in all of them before the first is worked on.
#pragma once

#include <cstddef>
#include <vector>

#include "foundations/base/CZelRecord.h"
#include "store/CZelJoinRow.h"

class CZelJoinBlock {
public:
    CZelJoinBlock(int places, std::size_t capacity)
        : m_places(static_cast<std::size_t>(places)), m_capacity(capacity), m_records(m_places * capacity) {}

    std::size_t length() const { return m_length; }
    std::size_t capacity() const { return m_capacity; }
    bool isFull() const { return m_length == m_capacity; }

    // Requires: it is not full.
    void add(const CZelJoinRow &row) { row.save(m_records.data() + m_places * m_length++); }
    void clear() { m_length = 0; }

    // The records of a row by their places, null where none is chosen. Those of a cleared block stay until the next
    // row comes in.
    CZelRecord *const *at(std::size_t row) const { return m_records.data() + m_places * row; }

    void askForValues(int place) const {
        for (std::size_t i = 0; i < m_length; ++i) {
            const CZelRecord *record = at(i)[place];
            if (record != nullptr)
                record->RRVbIterator()->RVBLPrefetch();
        }
    }

private:
    std::size_t m_places;
    std::size_t m_capacity;
    std::size_t m_length = 0;
    std::vector<CZelRecord *> m_records;
};
