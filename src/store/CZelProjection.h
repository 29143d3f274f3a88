// A selection list made ready for many rows: which columns a row gives to the result, and under which names.
//
// It refers to the entities, which outlive it.
#pragma once

#include <vector>

#include "foundations/base/CZelAtom.h"
#include "store/CZelColumnReader.h"

class CZelBag;
class CZelDbEntity;
class CZelRecord;

class CZelProjection {
public:
    explicit CZelProjection(const CZelBag &entities);  // of CZelDbEntity

    // A new record of copies. A value that the row does not have adds nothing.
    CZelRecord *project(const CZelBaseRecord &row) const;

    // The name that a column has in the result; undefined when it has none.
    static CZelAtom nameOf(const CZelDbEntity &entity);

private:
    struct Column {
        CZelAtom name;
        CZelColumnReader reader;
    };

    std::vector<Column> m_columns;
};
