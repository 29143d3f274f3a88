// The index trees of one table: for each indexed column, a tree from value to row.
//
// A row is an opaque pointer here, a CZelRecord* on a plain table and a handle atom on a cached one; it always
// stays the table's. Keys are enforced in this class and nowhere else.
//
// Threads: no lock of its own. A change needs the store lock as writer; several readers may query.
#pragma once

#include <cstddef>
#include <vector>

#include "foundations/base/ZelEnums.h"
#include "foundations/port/ZelExport.h"

class CZelAtom;
class CZelBPlusTree;
class CZelBTreeNode;
class CZelBag;
class CZelDoubleList;
class CZelRecord;
class CZelTreeList;

// What a row has in one column, and the column's tree (null: it has none).
struct SZelIndexValue {
    CZelBPlusTree *m_tree;
    const CZelAtom *m_value;   // null: the row has no value, which stands under the null key
    const CZelAtom *m_column;  // its name
};

class QUINTOR_API CZelObjectStore {
public:
    // One empty degenerate tree per name (text atoms, which stay the caller's).
    explicit CZelObjectStore(CZelBag *names);
    CZelObjectStore(const CZelObjectStore &) = delete;
    CZelObjectStore &operator=(const CZelObjectStore &) = delete;
    virtual ~CZelObjectStore();  // deletes the trees, never a row

    int ROSSetUniques(CZelBag *names);  // their trees become unique; 1
    int ROSSetKeys(CZelBag *names);     // the primary key; a single name's tree becomes unique; 1

    // Enters the object under each binding (CZelVarBind*, the record's) and under the null key of each name in
    // `nulls`. 1, or the code of the tree that refused: then the object stands in no tree.
    int ROSAdd(void *object, CZelBag *bindings, CZelBag *nulls, bool flag);
    int ROSDelete(void *object, CZelBag *bindings, CZelBag *nulls);  // 1; a failure is reported

    // The objects whose value stands in relation `op` to `value`. Never null; the bag is the caller's. A
    // column without a tree gives an empty bag.
    CZelBag *ROSQuery(const char *column, const CZelAtom *value, EZelOper op);
    CZelBag *ROSQuery(const CZelAtom &column, const CZelAtom *value, EZelOper op);

    // Would a new row with these primary key values be free? 1, E_RCKeyExists, or E_RCKeyMissing when a key
    // column has no binding. Changes nothing.
    int ROSCheckPrimaryKey(CZelBag *bindings);

    // Would these changes break a key of this row? 1, or E_RCBadColumnValue, reported.
    int ROSCheckUpdateKey(CZelRecord *record, CZelDoubleList *changes);
    // Has some row, in every key column, the value that the record would have after the changes?
    __boolean ROSCheckUniqueKey(CZelRecord *record, CZelDoubleList *changes);

    CZelBTreeNode *ROSCheckIndex(CZelAtom *column, CZelAtom *value);  // null without tree or node
    // Narrows candidates to those among `objects`; is one left?
    __boolean ROSMatchObject(CZelBag *candidates, CZelDoubleList *objects);

    CZelBPlusTree *ROSTree(const CZelAtom &column) const;  // the column's tree, or null; the store's

    // --- the same steps over columns whose trees the caller has at hand ---

    CZelBPlusTree *ROSTreeFor(const CZelAtom &column);  // made, degenerate, when there is none
    bool ROSIsKey(const CZelAtom &column) const;        // a column of the primary key?
    int ROSKeyCount() const;                            // columns of the primary key

    // Changes whenever a tree is made, replaced or removed: trees at hand are then to be asked for again.
    unsigned long ROSGeneration() const { return m_generation; }

    int ROSAdd(void *object, const SZelIndexValue *values, std::size_t count);
    int ROSDelete(void *object, const SZelIndexValue *values, std::size_t count);
    int ROSCheckPrimaryKey(const SZelIndexValue *keys, std::size_t count);

private:
    int ROSCreateIndex(const CZelAtom *column, __boolean degenerate);
    void ROSRollback(void *object, const SZelIndexValue *values, std::size_t count);
    int addTree(const CZelAtom &column, CZelBPlusTree *tree);
    void removeTree(const CZelAtom *column);
    bool findKeyColumn(const CZelAtom &key, const CZelRecord &record, const CZelDoubleList &changes);
    bool isOneUnderAllFound() const;

    CZelTreeList *m_indexes;             // column name -> CZelBPlusTree*; trees owned
    CZelTreeList *m_keyNames = nullptr;  // primary key column -> text atom, owned; null until keys are set
    unsigned long m_generation = 0;
    std::vector<const CZelBTreeNode *> m_found;  // entries that the key check in progress has come to
};
