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

    // Of all rows in their order, with their handles. An undefined key is the null key.
    void give(std::size_t column, std::vector<SZelKeyedObject> pairs) { m_columns[column].m_pairs = std::move(pairs); }

    // All pairs of a column, by its name; null when it is not among these.
    std::vector<SZelKeyedObject> *find(const CZelAtom &name);

private:
    struct Column {
        const CZelAtom *m_name;
        std::vector<SZelKeyedObject> m_pairs;
    };
    std::vector<Column> m_columns;
};
