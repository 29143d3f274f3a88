#include "store/CZelTable.h"

#include <vector>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelDoubleList.h"
#include "foundations/base/CZelPointer.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/base/CZelStack.h"
#include "foundations/base/CZelString.h"
#include "foundations/base/CZelTreeList.h"
#include "foundations/base/CZelVarBind.h"
#include "foundations/port/CZelError.h"
#include "foundations/port/CZelRWLock.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelIndex.h"
#include "store/CZelColDef.h"
#include "store/CZelDatabase.h"
#include "store/CZelLateIndexes.h"
#include "store/CZelObjectStore.h"
#include "store/CZelRecordCache.h"
#include "store/CZelRowKeys.h"
#include "store/CZelStore.h"
#include "store/CZelStoreGuard.h"
#include "store/CZelTableProps.h"
#include "store/CZelTable_change.h"
#include "store/CZelTable_plan.h"
#include "store/CZelTblCallback.h"
#include "store/CZelTuple.h"

namespace {

CZelPointer *first(const CZelTreeList *dictionary) {
    return static_cast<CZelPointer *>(dictionary->RTLIterator()->RDLHead());
}

CZelColDef *columnIn(const CZelPointer *node) {
    return static_cast<CZelColDef *>(node->RPData());
}

// Deletes a dictionary with the objects of type T in it.
template <class T>
void deleteOwned(CZelTreeList *dictionary) {
    if (dictionary == nullptr)
        return;
    for (CZelPointer *node = first(dictionary); node != nullptr; node = CZelBag::RBNext(node))
        delete static_cast<T *>(node->RPData());
    delete dictionary;
}

void deleteTuples(CZelBag *tuples) {
    const CZelBagGuard<CZelTuple> owner(tuples);
}

CZelAtom *copyOf(const CZelAtom *atom) {
    return atom != nullptr ? new CZelAtom(*atom) : nullptr;
}

CZelAtomVector *copyOf(const CZelAtomVector *names) {
    return names != nullptr ? new CZelAtomVector(*names) : nullptr;
}

void replaceNames(CZelAtomVector *&names, const CZelAtomVector *replacement) {
    if (replacement == nullptr)
        return;
    delete names;
    names = copyOf(replacement);
}

CZelAtom *identOf(const CZelAtom &database, const CZelAtom &table) {
    CZelString text(&database);
    text.RSStrCat('_');
    text.RSStrCat(&table);
    return text.RSStringAsAtom();
}

void removeNames(CZelTreeList &dictionary, const CZelAtomVector *names) {
    const unsigned int count = names != nullptr ? names->RAVSize() : 0;
    for (unsigned int i = 0; i < count; ++i) {
        const int status = dictionary.RTLDelete(names->RAVGetValue(i));
        if (status != 1 && status != E_RCNotInTree)
            ZEL_REPORT(status, "CZelTable::RDOInitialise");
    }
}

// The names of a dictionary's columns, which stay the columns'.
void appendNames(const CZelTreeList &dictionary, CZelBag &names) {
    for (CZelPointer *node = first(&dictionary); node != nullptr; node = CZelBag::RBNext(node))
        names.RBAdd(static_cast<void *>(columnIn(node)->RCDName()));
}

// Enters under each key of `source` the column of that name.
void copyRole(const CZelTreeList &source, const CZelTreeList &columns, CZelTreeList &role) {
    for (CZelPointer *node = first(&source); node != nullptr; node = CZelBag::RBNext(node)) {
        const CZelAtom *name = columnIn(node)->RCDName();
        role.RTLAdd(name, columns.RTLData(name), true);
    }
}

}  // namespace

CZelTable::CZelTable() : CZelDbObject(E_DOTable) {}

CZelTable::CZelTable(CZelDbEntity *entity, CZelStack *attributes) : CZelTable() {
    makeDictionaries();
    if (attributes != nullptr)
        takeAttributes(*attributes);
    m_entity = entity;
    if (entity == nullptr)
        ZEL_REPORT(E_RCBadArgument, "CZelTable::CZelTable: no table name");
    else if (entity->RDEEvalsInside() != E_RBTrue)
        RTInitialise();
}

CZelTable::CZelTable(const CZelTable *source, const CZelAtom *database, const CZelAtom *name) : CZelTable() {
    makeDictionaries();
    if (source == nullptr) {
        ZEL_REPORT(E_RCBadArgument, "CZelTable::CZelTable: no table to copy");
        return;
    }
    m_name = copyOf(name != nullptr ? name : source->m_name);
    m_databaseName = copyOf(database);
    if (m_name != nullptr && m_databaseName != nullptr)
        m_identifier = identOf(*m_databaseName, *m_name);
    m_counters = copyOf(source->m_counters);
    m_timestamps = copyOf(source->m_timestamps);
    if (source->m_columns == nullptr)
        return;
    for (CZelPointer *node = first(source->m_columns); node != nullptr; node = CZelBag::RBNext(node)) {
        auto *column = new CZelColDef(*columnIn(node));
        m_columns->RTLAdd(column->RCDName(), static_cast<void *>(column), true);
    }
    copyRole(*source->m_indexedColumns, *m_columns, *m_indexedColumns);
    copyRole(*source->m_uniques, *m_columns, *m_uniques);
    copyRole(*source->m_primaryKeys, *m_columns, *m_primaryKeys);
    copyIndexes(*source);
}

CZelTable::~CZelTable() {
    if (m_active != nullptr)
        m_active->RTCDestroyed(this, m_activeArgument);
    delete m_name;
    delete m_databaseName;
    delete m_identifier;
    forgetPlan();
    delete m_objectStore;
    deleteTuples(m_scratch);
    deleteTuples(m_garbage);
    dropRows();
    delete m_uniques;
    delete m_primaryKeys;
    deleteOwned<CZelIndex>(m_indices);
    deleteOwned<CZelVarBind>(m_indexCounts);
    delete m_indexedColumns;
    deleteOwned<CZelColDef>(m_columns);
    delete m_timestamps;
    delete m_counters;
    delete m_rowKeys;
    delete m_lateIndexes;
    delete m_cache;
    delete m_entity;
    delete m_lock;
}

void CZelTable::makeDictionaries() {
    m_lock = new CZelRWLock();
    m_columns = new CZelTreeList(E_RBFalse);
    m_indexedColumns = new CZelTreeList(E_RBFalse);
    m_primaryKeys = new CZelTreeList(E_RBFalse);
    m_uniques = new CZelTreeList(E_RBFalse);
    m_indexCounts = new CZelTreeList(E_RBFalse);
    m_indices = new CZelTreeList(E_RBFalse);
}

// The stack gives the last attribute of the text first: of a column declared twice the last stays. Constraints
// see all columns, and apply in the order of the text.
void CZelTable::takeAttributes(CZelStack &attributes) {
    std::vector<const CZelTableProps *> constraints;
    while (attributes.RSLength() > 0) {
        auto *attribute = static_cast<CZelTblAttr *>(attributes.RSPop());
        if (attribute == nullptr)
            continue;
        if (attribute->RTAType() == E_RTAColumn)
            takeColumn(static_cast<CZelColDef *>(attribute));
        else
            constraints.push_back(static_cast<CZelTableProps *>(attribute));
    }
    for (auto constraint = constraints.rbegin(); constraint != constraints.rend(); ++constraint) {
        takeProperties(**constraint);
        delete *constraint;
    }
}

void CZelTable::takeColumn(CZelColDef *column) {
    const int status = m_columns->RTLAdd(column->RCDName(), static_cast<void *>(column), true);
    if (status != 1) {
        delete column;
        if (status != E_RCDuplicate)
            ZEL_REPORT(status, "CZelTable::CZelTable: a column can't be added");
        return;
    }
    if (column->RCDUnique() == E_RBTrue)
        RTAddColumnToUniques(column);
    if (column->RCDIndex() == E_RBTrue)
        RTAddColumnToPrimKeys(column);
}

void CZelTable::takeProperties(const CZelTableProps &properties) {
    const CZelAtomVector *uniques = properties.RTPUniques();
    for (unsigned int i = 0; uniques != nullptr && i < uniques->RAVSize(); ++i)
        if (CZelColDef *column = columnNamed(uniques->RAVGetValue(i)))
            RTAddColumnToUniques(column);
    const CZelAtomVector *keys = properties.RTPIndices();
    for (unsigned int i = 0; keys != nullptr && i < keys->RAVSize(); ++i)
        if (CZelColDef *column = columnNamed(keys->RAVGetValue(i)))
            RTAddColumnToPrimKeys(column);
    replaceNames(m_counters, properties.RTPCounters());
    replaceNames(m_timestamps, properties.RTPTimestamps());
}

void CZelTable::copyIndexes(const CZelTable &source) {
    for (CZelPointer *node = first(source.m_indexCounts); node != nullptr; node = CZelBag::RBNext(node)) {
        auto *count = new CZelVarBind(*static_cast<CZelVarBind *>(node->RPData()));
        m_indexCounts->RTLAdd(&count->RVBName(), static_cast<void *>(count), true);
    }
    for (CZelPointer *node = first(source.m_indices); node != nullptr; node = CZelBag::RBNext(node)) {
        auto *index = new CZelIndex(*static_cast<CZelIndex *>(node->RPData()));
        m_indices->RTLAdd(index->RIName(), static_cast<void *>(index), true);
    }
}

int CZelTable::RDODestroy() {
    return 1;
}

CZelBag *CZelTable::RDOCompilables() {
    return m_entity != nullptr ? m_entity->RDEClauses() : nullptr;
}

__boolean CZelTable::RTInitialise() {
    if (m_databaseName != nullptr && m_name != nullptr && m_identifier != nullptr)
        return E_RBTrue;
    if (m_entity == nullptr) {
        ZEL_REPORT(E_RCBadArgument, "CZelTable::RTInitialise: no table name");
        return E_RBFalse;
    }
    if (m_entity->RDETblName() == nullptr)
        return E_RBFalse;
    delete m_name;
    m_name = new CZelAtom(*m_entity->RDETblNameAtom());
    if (m_entity->RDEDbName() == nullptr)
        return E_RBFalse;
    m_databaseName = new CZelAtom(*m_entity->RDEDbNameAtom());
    m_identifier = identOf(*m_databaseName, *m_name);
    delete m_entity;
    m_entity = nullptr;
    return E_RBTrue;
}

int CZelTable::RDOInitialise(CZelStore *store) {
    m_store = store;
    CZelDatabase *database = store != nullptr ? store->RSDatabase(m_databaseName) : nullptr;
    if (database == nullptr || m_columns == nullptr)
        return E_RCNotFound;
    m_database = database;
    removeUnindexable();
    makeObjectStore();
    makeRows();
    if (m_cache != nullptr)
        rebuildIndexes();
    m_database->RDTableInitialised(this);
    if (m_active != nullptr)
        m_active->RTCInitialised(this, m_activeArgument);
    return 1;
}

void CZelTable::removeUnindexable() {
    removeNames(*m_indexedColumns, m_counters);
    removeNames(*m_indexedColumns, m_timestamps);
}

void CZelTable::makeObjectStore() {
    CZelBag indexed, uniques, keys;
    appendNames(*m_indexedColumns, indexed);
    appendNames(*m_uniques, uniques);
    appendNames(*m_primaryKeys, keys);
    forgetPlan();
    delete m_objectStore;
    m_objectStore = new CZelObjectStore(&indexed);
    m_objectStore->ROSSetUniques(&uniques);
    m_objectStore->ROSSetKeys(&keys);
}

void CZelTable::makeRows() {
    dropRows();
    m_rows = new CZelDoubleList();
    deleteTuples(m_scratch);
    deleteTuples(m_garbage);
    m_scratch = new CZelBag();
    m_garbage = new CZelBag();
}

void CZelTable::dropRows() {
    if (m_rows == nullptr)
        return;
    CZelListable *row = m_rows->RDLHead();
    while (row != nullptr) {
        CZelListable *next = m_rows->RDLGetNext(row);
        static_cast<CZelRecord *>(row)->DroppedFromDatabase();
        row = next;
    }
    m_rows->RDLSetHead(nullptr);
    delete m_rows;
    m_rows = nullptr;
}

int CZelTable::RTAddColumnToUniques(CZelColDef *column) {
    return addRole(*m_uniques, column);
}

int CZelTable::RTAddColumnToPrimKeys(CZelColDef *column) {
    return addRole(*m_primaryKeys, column);
}

int CZelTable::addRole(CZelTreeList &role, CZelColDef *column) {
    forgetPlan();
    int status = role.RTLAdd(column->RCDName(), static_cast<void *>(column), true);
    if (status == 1 || status == E_RCDuplicate)
        status = m_indexedColumns->RTLAdd(column->RCDName(), static_cast<void *>(column), true);
    return status == E_RCDuplicate ? 1 : status;
}

int CZelTable::RTTotalRecordCount() const {
    if (m_rows == nullptr)
        return 0;
    if (m_cache == nullptr)
        return m_rows->RDLLength();
    const CZelStoreGuard guard(*m_lock, CZelStoreGuard::WRITER);
    return m_cache->RRCLength();
}

void CZelTable::RTAddActive(CZelTblCallback *callback, int argument) {
    m_active = callback;
    m_activeArgument = argument;
}

CZelColDef *CZelTable::columnNamed(const CZelAtom *name) const {
    if (name == nullptr || m_columns == nullptr)
        return nullptr;
    const CZelTablePlan *plan = planForReading();
    if (plan == nullptr)
        return static_cast<CZelColDef *>(m_columns->RTLData(name));
    const CZelTablePlan::Column *column = plan->column(*name);
    return column != nullptr ? column->m_definition : nullptr;
}

bool CZelTable::isSetBySystem(const CZelAtom &column) const {
    return (m_counters != nullptr && m_counters->RAVHoldsText(column)) ||
           (m_timestamps != nullptr && m_timestamps->RAVHoldsText(column));
}

const CZelTablePlan *CZelTable::planForReading() const {
    return m_plan != nullptr && m_plan->isCurrent() ? m_plan : nullptr;
}

CZelTablePlan &CZelTable::plan() {
    if (m_plan != nullptr && !m_plan->isCurrent())
        forgetPlan();
    if (m_plan == nullptr)
        m_plan = new CZelTablePlan(*m_columns, *m_indexedColumns, *m_uniques, *m_primaryKeys, *m_objectStore);
    return *m_plan;
}

void CZelTable::forgetPlan() {
    delete m_plan;
    m_plan = nullptr;
}
