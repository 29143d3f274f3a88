// What the rows of one live table need, laid out flat, so that a row costs no look-up by name, no bag and no
// memory: its columns, and its indexed and key columns with their trees.
//
// It refers to the table's column definitions and to the object store's trees. Whoever changes the table's
// dictionaries throws the plan away; a change of the trees shows in isCurrent.
//
// Threads: it has working places of its own, so one row at a time; the store lock is held as writer. Readers may ask
// for columns.
#pragma once

#include <cstddef>
#include <vector>

#include "foundations/base/CZelAtom.h"
#include "store/CZelObjectStore.h"

class CZelBPlusTree;
class CZelColDef;
class CZelRecord;
class CZelTreeList;

class CZelTablePlan {
public:
    struct Column {
        CZelColDef *m_definition;
        const CZelAtom *m_name;  // finds a binding by address where it can
        bool m_isKey = false;    // unique, or of the primary key
        bool m_isIndexed = false;
        CZelBPlusTree *m_tree = nullptr;  // of an indexed column; null when its type has none
    };

    CZelTablePlan(const CZelTreeList &columns, const CZelTreeList &indexed, const CZelTreeList &uniques,
                  const CZelTreeList &keys, CZelObjectStore &store);
    CZelTablePlan(const CZelTablePlan &) = delete;
    CZelTablePlan &operator=(const CZelTablePlan &) = delete;

    bool isCurrent() const { return m_generation == m_store.ROSGeneration(); }
    const std::vector<Column> &columns() const { return m_columns; }  // in name order
    const Column *column(const CZelAtom &name) const;                 // null: no column of that name

    // May a row with this key come in? 1, E_RCKeyExists, or E_RCKeyMissing. A single key column is left to its
    // tree, which refuses by itself in `enter`.
    int checkKey(const CZelRecord &row);

    // Would `enter` be refused by a unique tree? 1 or E_RCKeyExists. Asked where a refusal after the fact is dear.
    int checkUniques(const CZelRecord &row) const;

    // The trees of the indexed columns. Filled all at once from no two equal keys, they hold what `checkKey` and
    // `enter` would have let in one by one, unless a key needs more than its tree; asked afterwards.
    const std::vector<SZelIndexValue> &indexes() const { return m_indexes; }
    bool isKeyInTrees() const;

    // What the trees hold of a row is its identity. Into all of them, or into none: 1 or the code of the tree that
    // refused.
    int enter(const CZelRecord &row, void *identity);
    void leave(const CZelRecord &row, void *identity);

private:
    using Values = std::vector<SZelIndexValue>;

    const Column *columnOfText(const CZelAtom &name) const;
    void placeColumns();
    std::size_t placeOf(const CZelAtom *name) const;
    Column *columnNamed(const CZelAtom &name) { return const_cast<Column *>(column(name)); }
    void markKeys(const CZelTreeList &role);
    void addIndex(const CZelColDef &column);
    void addKey(const CZelColDef &column);
    bool isLeftToTree(const CZelTreeList &indexed) const;
    void readIndexed(const CZelRecord &row);

    CZelObjectStore &m_store;
    unsigned long m_generation;
    std::vector<Column> m_columns;
    std::vector<const Column *> m_places;  // the columns by the addresses of their names; a place is taken or null
    Values m_indexes;                      // the trees of the indexed columns; m_value is that of the row in progress
    Values m_keys;                         // the same of the key columns
    bool m_isKeyLeftToTree;
};
