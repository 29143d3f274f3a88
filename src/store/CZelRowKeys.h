// What the rows of a cache have in some columns, gathered while its file is read at the start, so that nobody need read
// it again for the indexes of these columns.
//
// The names are the columns' own and outlive it. Columns may be taken by several threads, each by one.
#pragma once

#include <vector>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelKeyTree.h"
#include "foundations/port/ZelExport.h"

class QUINTOR_API CZelRowKeys {
public:
    using Pairs = CZelArray<SZelKeyedObject>;

    void addColumn(const CZelAtom &name) { m_columns.push_back({&name, {}}); }

    std::size_t columns() const { return m_columns.size(); }
    const CZelAtom &name(std::size_t column) const { return *m_columns[column].m_name; }

    // Of all rows in their order, with their handles, in pieces that follow each other. An undefined key is the null
    // key. The first piece best has room for the others.
    void give(std::size_t column, Pairs piece) { m_columns[column].m_pieces.push_back(std::move(piece)); }

    // Of a column, by its name: how many pairs are there, and all of them in one piece, which are gone from here then.
    std::size_t count(const CZelAtom &name) const;
    Pairs take(const CZelAtom &name);

private:
    struct Column {
        const CZelAtom *m_name;
        std::vector<Pairs> m_pieces;
    };
    std::size_t find(const CZelAtom &name) const;  // number; that of the columns when it is not among them

    std::vector<Column> m_columns;
};
