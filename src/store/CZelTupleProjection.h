// A selection list made ready for many joined rows: which column of which table goes into the result, and under
// which name.
//
// It refers to the entities, which outlive it.
#pragma once

#include <vector>

#include "foundations/base/CZelAtom.h"
#include "store/CZelColumnReader.h"

class CZelBag;
class CZelDbEntity;
class CZelRecord;
class CZelTuple;

class CZelTupleProjection {
public:
    explicit CZelTupleProjection(const CZelBag *entities);  // of CZelDbEntity; null for none

    // May another thread use a copy of it meanwhile? Not where a column's table is told by a clause.
    bool isShareable() const;

    // A value that is absent adds nothing; a table that the tuple lacks is reported (E_RCNotFound) besides.
    CZelRecord *project(const CZelTuple &tuple);                 // new
    unsigned char *encode(const CZelTuple &tuple, int &length);  // the same, packed; from malloc

    // Asks the memory for all that these will read.
    void prefetch(const std::vector<CZelTuple> &tuples);

private:
    struct Column {
        CZelDbEntity *m_entity;
        CZelAtom m_name;
        CZelColumnReader m_reader;
        // Where the last tuple had the table. Those of one query mostly have it at the same place.
        const CZelAtom *m_table = nullptr;
        std::size_t m_index = 0;
    };

    static const CZelRecord *recordOf(const CZelTuple &tuple, Column &column);
    template <class Visitor>
    void visit(const CZelTuple &tuple, Visitor take);

    std::vector<Column> m_columns;
};
