// One assignment of an update, resolved once for all rows. It refers to the statement and to the column's tree.
#pragma once

#include "store/CZelTable.h"

struct CZelTable::Change {
    const CZelAtom *m_column;
    const CZelAtom *m_value;
    CZelDoubleList *m_keys;  // null: the column itself
    bool m_isIndexed;
    CZelBPlusTree *m_tree;  // of an indexed column; null when its type has none
};
