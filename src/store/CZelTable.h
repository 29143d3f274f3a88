// One table: the statement `create table`, and then the live table that holds the rows.
//
// A plain table keeps its rows as CZelRecord in a list; a row's identity is the record's address and queries
// return the stored rows themselves. A cached table keeps them in a CZelRecordCache; a row's identity is a
// handle atom and queries return copies. Which of the two it is is decided once per operation.
//
// Life: parsed (columns known), named (RTInitialise), in a database, live (RDOInitialise), dropped. Operations
// on rows of a table that is not live give E_RCBadArgument, 0 or an empty bag.
//
// Threads: a plain table lives under the store lock: as writer for changes, as reader for queries. The table
// lock guards a cache, is taken as writer around every touch of it, and always after the store lock.
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <vector>

#include "oql/CZelDbObject.h"

class CZelAtom;
class CZelAtomVector;
class CZelBPlusTree;
class CZelBoolean;
class CZelCacheCondition;
class CZelColDef;
class CZelColumnReader;
class CZelDatabase;
class CZelDbEntity;
class CZelDelete;
class CZelDoubleList;
class CZelDropIndex;
class CZelExpr;
class CZelFilter;
class CZelJoinTaker;
class CZelIndex;
class CZelInsert;
class CZelLateIndexes;
class CZelObjectStore;
class CZelPointer;
class CZelQuery;
class CZelRWLock;
class CZelRecord;
class CZelRecordCache;
class CZelRowKeys;
class CZelStack;
class CZelString;
class CZelTablePlan;
class CZelTableProps;
class CZelTblAttr;
class CZelTblCallback;
class CZelTreeList;
class CZelTuple;
class CZelUpdate;
class CZelVarBind;
struct SZelCacheUse;
struct SZelCachedComparison;
struct SZelIndexValue;

class QUINTOR_API CZelTable : public CZelDbObject {
public:
    CZelTable();
    // From the parser: takes over the entity and every attribute on the stack, not the stack.
    CZelTable(CZelDbEntity *entity, CZelStack *attributes);
    // The definition of another table, without rows, cache and callback. A null name keeps the source's.
    CZelTable(const CZelTable *source, const CZelAtom *database, const CZelAtom *name);
    CZelTable(const CZelTable &) = delete;
    CZelTable &operator=(const CZelTable &) = delete;
    ~CZelTable() override;

    // --- life (CZelTable.cpp) ---

    int RDODestroy() override;
    int RDOInitialise(CZelStore *store) override;  // live; 1, or E_RCNotFound without its database
    CZelBag *RDOCompilables() override;
    char *RDOAsString() override;

    __boolean RTInitialise();                      // settles the names from the entity; false while one is not known
    void RTDropTable();                            // marks a cache file for deletion
    int RTAddColumnToUniques(CZelColDef *column);  // 1, also when it is there already
    int RTAddColumnToPrimKeys(CZelColDef *column);

    const CZelAtom *RTName() const { return m_name; }
    const CZelAtom *RTDatabase() const { return m_databaseName; }
    const CZelAtom *RTIdentifier() const { return m_identifier; }  // database_table
    CZelTreeList *RTColumns() const { return m_columns; }
    CZelTreeList *RTUniques() const { return m_uniques; }
    CZelTreeList *RTPrimaryKeys() const { return m_primaryKeys; }
    CZelTreeList *RTIndexedColumns() const { return m_indexedColumns; }
    CZelTreeList *RTIndices() const { return m_indices; }  // index name -> CZelIndex*
    const CZelAtomVector *RTCounters() const { return m_counters; }
    const CZelAtomVector *RTTimestamps() const { return m_timestamps; }
    int RTTotalRecordCount() const;

    void RTAddActive(CZelTblCallback *callback, int argument);
    CZelTblCallback *RTGetActive() const { return m_active; }
    void RTSetCache(CZelRecordCache *cache);
    __boolean RTIsCacheUsed() const { return ZelBool(m_cache != nullptr); }
    void RTSetInitialisedFromDisk() { m_initialisedFromDisk = E_RBTrue; }
    __boolean RTGetInitialisedFromDisk() const { return m_initialisedFromDisk; }
    void RTSetStoreErrorStatus(EZelStoreErrorStatus status) { m_status = status; }
    EZelStoreErrorStatus RTGetStoreErrorStatus() const { return m_status; }

    // One value "Schema": an object with a member per column, in name order. New; null without columns.
    CZelRecord *RTGetSchema() const;

    // --- record cache (CZelTable_cache.cpp) ---

    // An empty cache without a file. Takes the name over; the file name from malloc, empty when a name is missing, or
    // null when the table has a cache already.
    char *RTCreateCache(CZelAtom *name);
    // Both give the table a cache and read its file. Where that fails (reported), the table is a cached one all the
    // same: it has no rows and can't take any.
    void RTCacheMe(CZelAtom *name, unsigned long long bytes, __boolean persistent);
    void RTCacheMe(CZelAtom *name, float proportion, __boolean persistent);
    SZelCacheUse RTCacheUse() const;  // zeros for a plain table
    static void RTBuildCacheName(CZelString &out, const CZelAtom &cacheName, const CZelAtom &database,
                                 const CZelAtom &table);
    static void RTClearCache(const char *cacheName, const char *database, const char *table);

    // --- rows (CZelTable_rows.cpp, CZelTable_update.cpp) ---

    // E_RCPageWrite and E_RCNoHandle come from a cached table whose cache can't store a row: it has what it had before.
    // Insert. 1; E_RCDuplicate when `unique (...)` ran into a row; E_RCKeyExists; E_RCRefused by the callback;
    // E_RCBadColumnValue; E_RCKeyMissing. The record of the second form is the table's after 1 and stays the
    // caller's after any other result. `flag` is handed to the callback.
    int RTAddRow(CZelInsert *statement, __boolean flag);
    int RTAddRow(CZelRecord *record, __boolean flag);
    // As the first form: the record is given up when it does not become a row. `uniques` may be null.
    int RTTakeRow(CZelRecord *record, const CZelAtomVector *uniques, __boolean flag);
    // Is no row equal in these columns? A row that is gets its counters raised and timestamps set.
    __boolean RTCheckUniques(CZelRecord *record, const CZelAtomVector &columns, __boolean flag);
    int RTDeleteRows(CZelDelete *statement, __boolean flag);  // 1, or E_RCNotFound when nothing matched
    int RTUpdateRows(CZelUpdate *statement, __boolean flag);  // 1, E_RCNotFound, E_RCBadColumnValue
    int RTUpdateRows(CZelRecord *values, CZelFilter *filter, __boolean flag);

    int RTCheckRecord(CZelRecord *record);                             // checks and corrects; 1 or E_RCBadColumnValue
    int RTCheckUpdate(CZelDoubleList *changes);                        // of CZelAssign; 1 or E_RCBadColumnValue
    __boolean RTIsIndexUpdate(CZelDoubleList *changes);                // is a key or unique column assigned?
    int RTCheckUpdateKeys(CZelDoubleList *changes);                    // may several rows take these values?
    void RTOperationError(CZelColDef *column, const CZelAtom *value);  // reports a value that does not fit

    // --- queries (CZelTable_query.cpp, CZelTable_scan.cpp, CZelTable_bags.cpp) ---

    // Rows for the caller: the stored rows of a plain table, copies of a cached one. A null filter gives all.
    // Null when the filter can't be answered by this table.
    CZelBag *RTReturnRows(CZelFilter *filter);
    CZelBag *RTReturnROMPRows(CZelFilter *filter, __boolean partial);  // new data atoms, the caller's
    CZelBag *RTEvalFilter(CZelFilter *filter);                         // row identities
    int RTCountRows(CZelFilter *filter);                               // how many these are
    CZelBag *RTEvalBoolean(CZelBoolean *boolean);
    // `input`, if given, is the set of rows of interest; it is not changed. *evaluated: could it be answered?
    CZelBag *RTEvalBoolean(CZelBoolean *boolean, __boolean *evaluated, CZelBag *input);
    CZelBag *RTEvalIndexed(CZelBoolean *boolean, CZelExpr *column, const CZelAtom *value, __boolean reversed,
                           CZelBag *input);
    CZelBag *RTEvalUnIndexed(CZelBoolean *boolean, CZelExpr *column, const CZelAtom *value, __boolean reversed,
                             CZelBag *input);
    CZelBag *RTEvalSelfJoin(CZelBoolean *boolean, __boolean *evaluated, CZelBag *input);
    CZelBag *RTEvalSubQuery(CZelBoolean *boolean, __boolean joined, CZelBag *input);
    __boolean RTEvalRecTest(CZelDbEntity *column, __boolean swapped, const CZelAtom *value, CZelBoolean *boolean,
                            CZelRecord *record);
    __boolean RTEvalRecordTest(CZelDbEntity *left, CZelDbEntity *right, CZelBoolean *boolean, CZelRecord *record);

    // Each row in turn, without a copy of those in memory; it goes with the return of `visit`, which must not touch the
    // table. Requires: the store lock is held.
    void RTVisitRows(const std::function<void(const CZelRecord &)> &visit) const;

    // Set algebra. And and Or take one of the two bags over as the result and set its pointer to null.
    static CZelBag *RTAndBags(CZelBag *&a, CZelBag *&b);
    static CZelBag *RTOrBags(CZelBag *&a, CZelBag *&b);
    static CZelBag *RTNotBags(CZelBag *all, CZelBag *minus);

    // --- joins (CZelTable_join.cpp, CZelTable_tuples.cpp) ---

    // The walk over `tables` (CZelPointer to CZelTable), driven by the first of them: at the top with null position
    // and tuple. Tuples of the result go into `out` and into the garbage bag, where they live until they are purged.
    // Requires: the store lock is held, and no other join that starts here is under way.
    void RTExecJoinedQuery(CZelFilter *filter, CZelBag *out, CZelDoubleList *tables, CZelPointer *position,
                           CZelTuple *tuple);
    // The rows of such a walk from its top, as they come; the tuples of former results are purged.
    void RTJoinInto(CZelFilter *filter, CZelDoubleList *tables, CZelJoinTaker &taker);
    // How many rows that would give.
    int RTCountJoinedQuery(CZelFilter *filter, CZelDoubleList *tables);
    // Of the tuples in the scratch bag (or in `input`) those that match; the caller's bag, not its tuples.
    CZelBag *RTReturnJoinedRows(CZelFilter *filter);
    CZelBag *RTEvalJoinedFilter(CZelFilter *filter);
    CZelBag *RTEvalJoinedFilter(CZelFilter *filter, __boolean *all, CZelBag *input);
    CZelBag *RTEvalJoinedBoolean(CZelBoolean *boolean, CZelBag *input);
    CZelBag *RTEvalJoined(CZelBoolean *boolean, CZelExpr *expression, const CZelAtom *value, __boolean reversed,
                          CZelBag *input);
    __boolean RTEvalTupleTest(CZelDbEntity *column, const CZelAtom *value, CZelBoolean *boolean, CZelTuple *tuple);
    __boolean RTEvalTupleTest(CZelDbEntity *left, CZelDbEntity *right, CZelBoolean *boolean, CZelTuple *tuple);
    void RTPurgeGarbage();  // both delete the tuples of that bag
    void RTPurgeScratch();
    // Fills the scratch bag with the product of what is there (or of the own rows) and the rows of `other`. 1;
    // E_RCBadArgument, reported, when one is cached and the other is not.
    int RTCartesianProductOf(CZelTable *other);
    // Taken by the store from the walk to the purge of a join that starts here; after the store lock.
    std::mutex &RTJoinMutex() { return m_joinMutex; }

    // --- created indexes (CZelTable_index.cpp) ---

    int RTAddIndex(const CZelIndex *index);     // copies; 1, or E_RCNoText for a bad name or column
    int RTDropIndex(CZelDropIndex *statement);  // 1

protected:
    CZelBag *RTReturnPossibleRows(CZelFilter *filter);
    CZelBag *RTReturnRows(CZelFilter *filter, __boolean partial);
    CZelBag *RTEvalPartialFilter(CZelFilter *filter);
    // *all is set when the result holds every row of the table.
    CZelBag *RTEvalFilter(CZelFilter *filter, __boolean partial, __boolean *all, CZelBag *input);
    __boolean RTMatchSelfTest(CZelDbEntity *entity);  // does the column belong to this table?
    void RTExecJoinedQuery(CZelFilter *filter, CZelBag *out, CZelDoubleList *tables, CZelPointer *position,
                           CZelTuple *tuple, CZelTreeList *garbage);
    // A copy of the filter in which the columns of the tuple's tables stand as values. *complete: no column is open.
    CZelFilter *RTTupleToFilterInternals(CZelFilter *filter, CZelTuple *tuple, __boolean *complete);

    int RTUpdateValue(CZelRecord *record, const CZelAtom *column, const CZelAtom *value);
    int RTUpdateNested(CZelRecord *record, const CZelAtom *column, const CZelAtom *value, CZelDoubleList *colSpec);
    int RTMakeIndexBags(CZelRecord *record, CZelBag *bindings, CZelBag *nulls);
    int RTAddToIndexBags(CZelRecord *record, CZelColDef *column, CZelBag *bindings, CZelBag *nulls);
    int RTMakePrimKeyVbBag(CZelRecord *record, CZelBag *bindings);
    void RTAddDelObjStoreIndex(CZelBag *columns, __boolean add);

private:
    friend class CZelFilterWalk;
    friend class CZelJoinCondition;
    friend class CZelJoinWalk;

    bool isLive() const { return m_objectStore != nullptr; }

    // Steps of queries. New bags are the caller's; `input` as above.
    CZelBag *allRows() const;                                    // identities
    CZelBag *identities(CZelFilter *filter, __boolean partial);  // null like RTReturnRows
    template <class Convert>                                     // handles become what `convert` makes of them
    void replaceHandles(CZelBag &handles, Convert convert);
    CZelBag *inputOrAllRows(const CZelBag *input) const;
    CZelBag *evalConstant(CZelBoolean *boolean, const CZelAtom *left, const CZelAtom *right, const CZelBag *input);
    CZelBag *evalColumn(CZelBoolean *boolean, CZelExpr *column, const CZelAtom *value, __boolean reversed,
                        CZelBag *input);
    CZelAtomVector *valuesOfSubQuery(const CZelBoolean &boolean);  // new; null, reported, when it can't be run
    CZelAtomVector *selectedValues(CZelQuery &query);
    void selectMembers(const CZelColumnReader &column, const CZelAtom &list, bool negated, const CZelBag *input,
                       CZelBag &result) const;
    bool isIndexed(const CZelDbEntity &column) const;
    CZelBag *rowsOfIndex(const CZelAtom &column, const CZelAtom *value, EZelOper op) const;
    CZelBag *rowsOfTree(const CZelBPlusTree &tree, const CZelAtom *value, EZelOper op) const;
    const CZelBPlusTree *plannedTree(const CZelAtom *column) const;  // null: the plan knows none
    SZelCachedComparison scannedComparison(const CZelFilter &leaf);
    bool isScanned(const CZelFilter &filter, CZelCacheCondition &condition);  // does it answer the filter?
    CZelBag *copiesByScan(CZelFilter &filter);
    CZelBag *copiesOfAll() const;
    int countByScan(CZelFilter &filter);
    CZelBag *scanCache(const SZelCachedComparison &comparison, const CZelBag *input, bool asCopies);
    void selectCachedMembers(const CZelColumnReader &column, const CZelAtom &list, bool negated, const CZelBag *input,
                             CZelBag &result) const;
    const CZelBPlusTree *uniqueTreeOf(const CZelColumnReader &column) const;
    static __boolean compareColumns(const CZelColumnReader &left, const CZelColumnReader &right,
                                    const CZelBoolean &boolean, const CZelRecord &record);

    // Steps of joins.
    void finishTuple(CZelFilter *filter, CZelBag &out, CZelTuple *tuple, CZelTreeList &copies);
    static void bindOperand(CZelExpr *operand, const CZelExpr *original, const CZelTuple &tuple, __boolean *complete);
    static void deleteTuplesIn(CZelBag *tuples);
    CZelBag *inputOrScratch(const CZelBag *input) const;
    static void addToTuple(CZelTuple &tuple, const CZelAtom &table, CZelRecord *row);
    void multiplyScratch(const CZelBag &rows, const CZelAtom &table);
    void fillScratch(const CZelBag &rows, const CZelAtom &table);

    // Steps of coming to life and of its end.
    void makeDictionaries();
    void takeAttributes(CZelStack &attributes);
    void takeColumn(CZelColDef *column);
    void takeProperties(const CZelTableProps &properties);
    void copyIndexes(const CZelTable &source);
    void removeUnindexable();
    void makeObjectStore();
    void makeRows();
    void dropRows();
    int addRole(CZelTreeList &role, CZelColDef *column);
    CZelColDef *columnNamed(const CZelAtom *name) const;
    bool isKey(const CZelAtom &column) const;          // unique, or of the primary key?
    bool isSetBySystem(const CZelAtom &column) const;  // a counter or a timestamp?
    void appendSystemColumns(CZelString &out) const;
    CZelVarBind *columnSchema(CZelColDef &column) const;

    // What rows need, laid out flat; built anew when columns or trees have changed.
    CZelTablePlan &plan();
    const CZelTablePlan *planForReading() const;  // null when no change has needed it yet
    void forgetPlan();

    // Steps of row operations on either kind of table. A row stands in the indexes under its identity.
    int refuse(const char *operation, const void *argument) const;  // 1 when the operation can go on
    int checkKeys(CZelRecord *record);
    CZelRecord *firstMatch(CZelFilter &filter);
    CZelFilter *equalityFilter(const CZelRecord &record, const CZelAtomVector &columns) const;
    void countDuplicate(CZelRecord &row) const;
    void stamp(CZelRecord &row, const CZelAtom &now) const;
    int checkUpdateOfRows(CZelBag &rows, CZelDoubleList *changes);
    int checkKeyOfEach(CZelBag &rows, CZelDoubleList *changes) const;
    int checkKeysStayApart(CZelBag &rows, const CZelDoubleList &changes) const;

    struct Change;  // one assignment of an update (CZelTable_change.h)
    std::vector<Change> resolveChanges(const CZelDoubleList *changes);
    bool isUpdateAccepted(CZelRecord *row, __boolean flag, CZelUpdate &statement);
    int applyChange(CZelRecord &row, void *identity, const Change &change);
    int updateIndexed(CZelRecord &row, void *identity, const Change &change);

    // The same on a plain table alone.
    int addPlainRow(CZelRecord *record, __boolean flag);
    void deleteRow(CZelRecord *row, __boolean flag);
    int updateRows(CZelBag &rows, CZelUpdate &statement, CZelDoubleList *changes, __boolean flag);

    // And on a cached one (CZelTable_cached.cpp); where a handle comes in, the table lock is held.
    struct CachedUpdate;
    int addCachedRow(CZelRecord *record, __boolean flag);
    int takeBack(CZelAtom *handle, int refusal);
    int deleteCachedRows(CZelDelete &statement, __boolean flag);
    int deleteCachedRow(const CZelRecord &record, CZelAtom *handle, __boolean flag);
    void reenter(CZelAtom *handle);
    int updateCachedRows(CZelUpdate &statement, CZelDoubleList *changes, __boolean flag);
    int updateCachedRow(std::unique_ptr<CZelRecord> row, CZelAtom *handle, CachedUpdate &update);
    void putBack(CZelRecord &row, CZelAtom *handle, const CachedUpdate &update);
    CZelBag *copiesOf(const CZelBag &handles) const;
    void rebuildIndexes();
    bool loadIndexes();  // false: with the trees empty
    void enterRowByRow();
    void removeBreaking(const CZelRecord &record, CZelAtom *handle);
    CZelRowKeys *keysToFind();
    void cacheIsMade(int status, const char *failure);

    // Steps of created indexes.
    bool areColumns(const CZelAtomVector *names) const;
    void countIndex(const CZelAtom &name, CZelBag &added);
    void uncountIndex(const CZelAtom &name, CZelBag &removed);
    void moveRows(const CZelColDef &column, bool add);
    void moveCachedRows(SZelIndexValue &place, bool add);
    void fillLateIndexes();
    void moveRow(const CZelRecord &row, void *identity, SZelIndexValue &place, bool add);

    CZelRWLock *m_lock = nullptr;  // around every touch of the cache; null only without columns
    CZelAtom *m_name = nullptr;    // null until named, like the next two
    CZelAtom *m_databaseName = nullptr;
    CZelAtom *m_identifier = nullptr;
    CZelDbEntity *m_entity = nullptr;     // null once named
    CZelStore *m_store = nullptr;         // not owned; set when live
    CZelDatabase *m_database = nullptr;   // not owned; set when live
    CZelTblCallback *m_active = nullptr;  // not owned
    int m_activeArgument = 0;
    CZelTreeList *m_columns = nullptr;         // name -> CZelColDef*, owned
    CZelTreeList *m_indexedColumns = nullptr;  // name -> CZelColDef* of m_columns: every column with a tree
    CZelTreeList *m_primaryKeys = nullptr;     // name -> CZelColDef* of m_columns
    CZelTreeList *m_uniques = nullptr;         // name -> CZelColDef* of m_columns
    CZelTreeList *m_indexCounts = nullptr;     // name -> CZelVarBind* (name, created indexes on it), owned
    CZelTreeList *m_indices = nullptr;         // index name -> CZelIndex*, owned copies
    CZelAtomVector *m_counters = nullptr;
    CZelAtomVector *m_timestamps = nullptr;
    CZelObjectStore *m_objectStore = nullptr;  // made when the table becomes live
    CZelTablePlan *m_plan = nullptr;           // null until rows need it
    std::vector<Change> m_formerChanges;       // of an update that is done: memory for the next one
    CZelRecordCache *m_cache = nullptr;        // null on a plain table
    CZelRowKeys *m_rowKeys = nullptr;          // of its rows, from its start until the indexes are filled
    CZelLateIndexes *m_lateIndexes = nullptr;  // of its trees; null until an index is created over rows
    CZelDoubleList *m_rows = nullptr;          // the records themselves, in order of insertion
    CZelBag *m_scratch = nullptr;              // tuples of the join step in progress
    CZelBag *m_garbage = nullptr;              // tuples handed out by joined queries
    std::mutex m_joinMutex;
    __boolean m_initialisedFromDisk = E_RBFalse;
    EZelStoreErrorStatus m_status = E_RSEOk;
};
