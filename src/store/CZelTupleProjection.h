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

    // A value that is absent adds nothing; a table that the tuple lacks is reported (E_RCNotFound) besides.
    CZelRecord *project(const CZelTuple &tuple) const;                 // new
    unsigned char *encode(const CZelTuple &tuple, int &length) const;  // the same, packed; from malloc

private:
    struct Column {
        CZelDbEntity *m_entity;
        CZelAtom m_name;
        CZelColumnReader m_reader;
    };

    template <class Visitor>
    void visit(const CZelTuple &tuple, Visitor take) const;

    std::vector<Column> m_columns;
};
