// The index trees of one table: for each indexed column, a tree from value to row.
//
// A row is an opaque pointer here, a CZelRecord* on a plain table and a handle atom on a cached one; it always
// stays the table's. Keys are enforced in this class and nowhere else.
//
// Threads: no lock of its own. A change needs the store lock as writer; several readers may query.
#pragma once

#include "foundations/base/CZelPool.h"
#include "foundations/base/ZelEnums.h"
#include "foundations/port/ZelExport.h"

class CZelAtom;
class CZelBPlusTree;
class CZelBTreeNode;
class CZelBag;
class CZelDoubleList;
class CZelPointer;
class CZelRecord;
class CZelTreeList;

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

private:
    int ROSCreateIndex(const CZelAtom *column, __boolean degenerate);
    int ROSRollback(void *object, CZelDoubleList *bindings, CZelPointer *stop);
    int ROSRollback(void *object, CZelBag *bindings, CZelDoubleList *nulls, CZelPointer *stop);
    CZelBPlusTree *ROSIndexFor(CZelAtom *column);

    CZelTreeList *m_indexes;   // column name -> CZelBPlusTree*; trees owned
    CZelTreeList *m_keyNames;  // primary key column -> text atom, owned; null until keys are set
};
