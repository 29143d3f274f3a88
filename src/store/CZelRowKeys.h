// What the rows of a cache have in some columns, gathered while its file is read at the start, so that nobody need read
// it again for the indexes of these columns.
//
// The names are the columns' own and outlive it.
#pragma once

#include <vector>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelKeyTree.h"
#include "foundations/port/ZelExport.h"

class QUINTOR_API CZelRowKeys {
public:
    void addColumn(const CZelAtom &name) { m_columns.push_back({&name, {}}); }

    std::size_t columns() const { return m_columns.size(); }
    const CZelAtom &name(std::size_t column) const { return *m_columns[column].m_name; }

    // In each column, for one row after the other. An undefined key is the null key.
    void reserve(std::size_t rows);
    void add(std::size_t column, CZelAtom key, CZelAtom *handle) {
        m_columns[column].m_pairs.push_back({std::move(key), handle});
    }

    // All pairs of a column, by its name; null when it is not among these.
    std::vector<SZelKeyedObject> *find(const CZelAtom &name);

private:
    struct Column {
        const CZelAtom *m_name;
        std::vector<SZelKeyedObject> m_pairs;
    };
    std::vector<Column> m_columns;
};
