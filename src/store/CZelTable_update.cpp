#include <algorithm>
#include <ctime>
#include <memory>
#include <vector>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelBPlusTree.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelDoubleList.h"
#include "foundations/base/CZelName.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/base/CZelTreeList.h"
#include "foundations/base/CZelVBList.h"
#include "foundations/base/CZelVarBind.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelAssign.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelExpr.h"
#include "oql/CZelUpdate.h"
#include "store/CZelCacheWalk.h"
#include "store/CZelColDef.h"
#include "store/CZelFilter.h"
#include "store/CZelObjectStore.h"
#include "store/CZelTable.h"
#include "store/CZelTable_change.h"
#include "store/CZelTable_plan.h"
#include "store/CZelTblCallback.h"

namespace {

CZelRecord *rowIn(const CZelPointer *node) {
    return static_cast<CZelRecord *>(node->RPData());
}

const CZelAssign &assignIn(const CZelListable *node) {
    return *static_cast<CZelAssign *>(static_cast<const CZelPointer *>(node)->RPData());
}

const CZelAtom *columnOf(const CZelAssign &change) {
    return change.RATarget() != nullptr ? change.RATarget()->RDEColNameAtom() : nullptr;
}

const CZelAtom *valueOf(const CZelAssign &change) {
    return change.RAValue() != nullptr ? change.RAValue()->REHeadAtomVal() : nullptr;
}

// The keys below the column, or null when the column itself is assigned.
CZelDoubleList *keysOf(const CZelAssign &change) {
    CZelDoubleList *keys = change.RATarget() != nullptr ? change.RATarget()->RDEColSpec() : nullptr;
    return keys != nullptr && keys->RDLLength() > 0 ? keys : nullptr;
}

bool isAssigned(const CZelAtom &column, const CZelDoubleList &changes) {
    for (CZelListable *node = changes.RDLHead(); node != nullptr; node = changes.RDLGetNext(node)) {
        const CZelAtom *target = columnOf(assignIn(node));
        if (target != nullptr && CZelName::RNSame(*target, column))
            return true;
    }
    return false;
}

// Rows by the values of some columns.
class KeyOrder {
public:
    explicit KeyOrder(const std::vector<const CZelAtom *> &columns) : m_columns(columns) {}
    int compare(const CZelRecord *left, const CZelRecord *right) const {
        for (const CZelAtom *column : m_columns) {
            const int order = CZelAtom::RACompare(left->RRValueOf(column), right->RRValueOf(column));
            if (order != 0)
                return order;
        }
        return 0;
    }
    bool hasAll(const CZelRecord &row) const {
        return std::none_of(m_columns.begin(), m_columns.end(),
                            [&row](const CZelAtom *column) { return CZelAtom::RAIsNull(row.RRValueOf(column)); });
    }

private:
    const std::vector<const CZelAtom *> &m_columns;
};

// Have two of the rows the same value in each of the columns? Rows without a value in one of them don't count.
bool areTwoEqual(CZelBag &rows, const std::vector<const CZelAtom *> &columns) {
    const KeyOrder order(columns);
    std::vector<const CZelRecord *> sorted;
    for (CZelPointer *node = rows.RBFirst(); node != nullptr; node = CZelBag::RBNext(node))
        if (order.hasAll(*rowIn(node)))
            sorted.push_back(rowIn(node));
    std::sort(sorted.begin(), sorted.end(),
              [&order](const CZelRecord *left, const CZelRecord *right) { return order.compare(left, right) < 0; });
    return std::adjacent_find(sorted.begin(), sorted.end(), [&order](const CZelRecord *left, const CZelRecord *right) {
               return order.compare(left, right) == 0;
           }) != sorted.end();
}

// The values of a record as assignments.
CZelBag *assignmentsOf(const CZelRecord &values, const CZelAtom &database, const CZelAtom &table) {
    auto *changes = new CZelBag();
    const CZelVBList *list = values.RRVbIterator();
    for (const CZelVarBind *value = list->RVBLHead(); value != nullptr; value = list->RVBLGetNext(value)) {
        auto *target = new CZelDbEntity(database.RAString(), table.RAString(), value->RVBName().RAString());
        changes->RBAdd(static_cast<void *>(new CZelAssign(target, new CZelExpr(value->RVBValue()))));
    }
    return changes;
}

}  // namespace

int CZelTable::RTUpdateRows(CZelRecord *values, CZelFilter *filter, __boolean flag) {
    if (m_databaseName == nullptr || m_name == nullptr)
        return ZEL_FAIL(E_RCBadArgument, "Table or database name not defined");
    if (values == nullptr)
        return ZEL_FAIL(E_RCBadArgument, "CZelTable::RTUpdateRows: no values");
    const char *noColumn = nullptr;
    CZelUpdate statement(new CZelDbEntity(m_databaseName->RAString(), m_name->RAString(), noColumn),
                         assignmentsOf(*values, *m_databaseName, *m_name),
                         filter != nullptr ? new CZelFilter(*filter) : nullptr);
    return RTUpdateRows(&statement, flag);
}

int CZelTable::RTUpdateRows(CZelUpdate *statement, __boolean flag) {
    int status = refuse("CZelTable::RTUpdateRows", statement);
    if (status != 1)
        return status;
    CZelDoubleList *changes = statement->RUChanges() != nullptr ? statement->RUChanges()->RBIterator() : nullptr;
    status = RTCheckUpdate(changes);
    if (status != 1)
        return ZEL_FAIL(status, "CZelTable::RTUpdateRows: a value does not fit its column");
    if (m_cache != nullptr)
        return updateCachedRows(*statement, changes, flag);
    const std::unique_ptr<CZelBag> rows(RTReturnRows(statement->RUFilter()));
    if (rows == nullptr)
        return E_RCNotFound;
    status = checkUpdateOfRows(*rows, changes);
    return status == 1 ? updateRows(*rows, *statement, changes, flag) : status;
}

int CZelTable::RTCheckUpdate(CZelDoubleList *changes) {
    int status = 1;
    if (changes == nullptr)
        return status;
    for (CZelListable *node = changes->RDLHead(); node != nullptr; node = changes->RDLGetNext(node)) {
        const CZelAssign &change = assignIn(node);
        CZelColDef *column = columnNamed(columnOf(change));
        if (column == nullptr || change.RAValue() == nullptr || keysOf(change) != nullptr)
            continue;
        if (column->RCDUpdateTypeMatches(change.RAValue()) == E_RBTrue)
            continue;
        RTOperationError(column, valueOf(change));
        status = E_RCBadColumnValue;
    }
    return status;
}

// All rows, which are identities, are checked before the first one changes.
int CZelTable::checkUpdateOfRows(CZelBag &rows, CZelDoubleList *changes) {
    if (rows.RBLength() == 0)
        return E_RCNotFound;
    if (RTIsIndexUpdate(changes) != E_RBTrue)
        return 1;
    if (rows.RBLength() >= 2) {
        int status = RTCheckUpdateKeys(changes);
        if (status == 1)
            status = checkKeysStayApart(rows, *changes);
        if (status != 1)
            return ZEL_FAIL(status, "Update causes a keying mismatch, ignored.");
    }
    const int status = checkKeyOfEach(rows, changes);
    return status == 1 ? 1 : ZEL_FAIL(status, "Update conflicts with table keying.");
}

int CZelTable::checkKeyOfEach(CZelBag &rows, CZelDoubleList *changes) const {
    int status = 1;
    if (m_cache != nullptr) {
        for (CZelCacheWalk walk(*m_cache, &rows); walk.hasRow() && status == 1; walk.advance())
            status = m_objectStore->ROSCheckUpdateKey(&walk.record(), changes);
        return status;
    }
    for (CZelPointer *node = rows.RBFirst(); node != nullptr && status == 1; node = CZelBag::RBNext(node))
        status = m_objectStore->ROSCheckUpdateKey(rowIn(node), changes);
    return status;
}

__boolean CZelTable::RTIsIndexUpdate(CZelDoubleList *changes) {
    if (changes == nullptr || m_columns == nullptr)
        return E_RBFalse;
    for (CZelListable *node = changes->RDLHead(); node != nullptr; node = changes->RDLGetNext(node)) {
        const CZelAtom *column = columnOf(assignIn(node));
        if (column != nullptr && isKey(*column))
            return E_RBTrue;
    }
    return E_RBFalse;
}

bool CZelTable::isKey(const CZelAtom &column) const {
    const CZelTablePlan *plan = planForReading();
    if (plan == nullptr)
        return m_primaryKeys->RTLGet(&column) != nullptr || m_uniques->RTLGet(&column) != nullptr;
    const CZelTablePlan::Column *planned = plan->column(column);
    return planned != nullptr && planned->m_isKey;
}

int CZelTable::RTCheckUpdateKeys(CZelDoubleList *changes) {
    if (changes == nullptr || m_columns == nullptr)
        return 1;
    for (CZelListable *node = changes->RDLHead(); node != nullptr; node = changes->RDLGetNext(node)) {
        const CZelAtom *column = columnOf(assignIn(node));
        if (column != nullptr && m_uniques->RTLGet(column) != nullptr)
            return ZEL_FAIL(E_RCBadColumnValue, "Multiple conflicting unique inserts.");
    }
    const CZelDoubleList *keys = m_primaryKeys->RTLIterator();
    for (CZelListable *node = keys->RDLHead(); node != nullptr; node = keys->RDLGetNext(node)) {
        const auto *column = static_cast<const CZelColDef *>(static_cast<CZelPointer *>(node)->RPData());
        if (!isAssigned(*column->RCDName(), *changes))
            return 1;
    }
    if (keys->RDLLength() == 0)
        return 1;
    return ZEL_FAIL(E_RCBadColumnValue, "Update failed due to multiple updates on the same key.");
}

// An update of a part of a composite key gives all rows the same values there, so they must differ in the rest
// of the key. A key that the trees don't hold (a counter is a part of it) is not kept.
int CZelTable::checkKeysStayApart(CZelBag &rows, const CZelDoubleList &changes) const {
    std::vector<const CZelAtom *> rest;
    const CZelDoubleList *keys = m_primaryKeys->RTLIterator();
    for (CZelListable *node = keys->RDLHead(); node != nullptr; node = keys->RDLGetNext(node)) {
        const auto *column = static_cast<const CZelColDef *>(static_cast<CZelPointer *>(node)->RPData());
        if (!column->RCDIndexable() || isSetBySystem(*column->RCDName()))
            return 1;
        if (!isAssigned(*column->RCDName(), changes))
            rest.push_back(column->RCDName());
    }
    const bool isPart = !rest.empty() && static_cast<int>(rest.size()) < keys->RDLLength();
    if (!isPart)
        return 1;
    const CZelBagGuard<CZelRecord> copies(m_cache != nullptr ? copiesOf(rows) : nullptr);
    if (!areTwoEqual(m_cache != nullptr ? *copies.get() : rows, rest))
        return 1;
    return ZEL_FAIL(E_RCBadColumnValue, "Update failed due to multiple updates on the same key.");
}

CZelBag *CZelTable::copiesOf(const CZelBag &handles) const {
    auto *copies = new CZelBag;
    for (CZelCacheWalk walk(*m_cache, &handles); walk.hasRow(); walk.advance())
        copies->RBAdd(static_cast<void *>(new CZelRecord(walk.record())));
    return copies;
}

int CZelTable::updateRows(CZelBag &rows, CZelUpdate &statement, CZelDoubleList *changes, __boolean flag) {
    std::vector<Change> resolved = resolveChanges(changes);
    const CZelAtom now(m_timestamps != nullptr ? static_cast<long>(std::time(nullptr)) : 0L);
    int status = 1;
    for (CZelPointer *node = rows.RBFirst(); node != nullptr; node = CZelBag::RBNext(node)) {
        CZelRecord *row = rowIn(node);
        if (!isUpdateAccepted(row, flag, statement))
            continue;
        row->BeginWrite();
        for (const Change &change : resolved) {
            const int outcome = applyChange(*row, row, change);
            status = outcome != 1 ? outcome : status;
        }
        stamp(*row, now);
        row->EndWrite();
        if (m_active != nullptr)
            m_active->RTCPostUpdate(this, row, m_activeArgument, flag);
    }
    m_formerChanges = std::move(resolved);
    return status;
}

std::vector<CZelTable::Change> CZelTable::resolveChanges(const CZelDoubleList *changes) {
    std::vector<Change> resolved = std::move(m_formerChanges);
    resolved.clear();
    for (CZelListable *node = changes != nullptr ? changes->RDLHead() : nullptr; node != nullptr;
         node = changes->RDLGetNext(node)) {
        const CZelAssign &change = assignIn(node);
        const CZelAtom *name = columnOf(change);
        if (name == nullptr)
            continue;
        const CZelTablePlan::Column *column = plan().column(*name);
        const bool isIndexed = column != nullptr && column->m_isIndexed;
        resolved.push_back({name, valueOf(change), keysOf(change), isIndexed, isIndexed ? column->m_tree : nullptr});
    }
    return resolved;
}

bool CZelTable::isUpdateAccepted(CZelRecord *row, __boolean flag, CZelUpdate &statement) {
    return m_active == nullptr ||
           (m_active->RTCPrePreUpdate(this, row, m_activeArgument, flag, &statement) == E_RBTrue &&
            m_active->RTCPreUpdate(this, row, m_activeArgument, flag) == E_RBTrue);
}

int CZelTable::applyChange(CZelRecord &row, void *identity, const Change &change) {
    if (change.m_tree != nullptr)
        return updateIndexed(row, identity, change);
    if (change.m_isIndexed || change.m_keys == nullptr)
        return RTUpdateValue(&row, change.m_column, change.m_value);
    return RTUpdateNested(&row, change.m_column, change.m_value, change.m_keys);
}

// The row leaves the tree under its old value and enters it under the new one. Where the tree refuses that, the
// row keeps what it had, so that rows and trees stay one.
int CZelTable::updateIndexed(CZelRecord &row, void *identity, const Change &change) {
    SZelIndexValue place{change.m_tree, row.RRValueOf(change.m_column), change.m_column};
    const bool mayRefuse = change.m_tree->RBPTIsDegenerate() != E_RBTrue;
    const CZelAtom former = mayRefuse && place.m_value != nullptr ? *place.m_value : CZelAtom();
    m_objectStore->ROSDelete(identity, &place, 1);
    const int status = RTUpdateValue(&row, change.m_column, change.m_value);
    place.m_value = row.RRValueOf(change.m_column);
    const int entered = m_objectStore->ROSAdd(identity, &place, 1);
    if (entered == 1)
        return status;
    ZEL_REPORT(entered, "CZelTable::RTUpdateRows: an index refused the new value");
    RTUpdateValue(&row, change.m_column, &former);
    place.m_value = row.RRValueOf(change.m_column);
    m_objectStore->ROSAdd(identity, &place, 1);
    return entered;
}

int CZelTable::RTUpdateValue(CZelRecord *record, const CZelAtom *column, const CZelAtom *value) {
    int status = E_RCBadArgument;
    if (record != nullptr && column != nullptr && !CZelAtom::RAIsNull(value))
        status = record->RRAddOrSetValue(column, value);
    else if (record != nullptr && column != nullptr)  // a value that is not there is gone already
        status = record->RRValuePairOf(column) != nullptr ? record->RRDeleteValueOf(*column) : 1;
    if (status != 1)
        ZEL_REPORT(status, "CZelTable::RTUpdateValue");
    return status;
}

int CZelTable::RTUpdateNested(CZelRecord *record, const CZelAtom *column, const CZelAtom *value,
                              CZelDoubleList *colSpec) {
    if (column == nullptr)
        return 1;
    if (record == nullptr || colSpec == nullptr || colSpec->RDLLength() == 0)
        return RTUpdateValue(record, column, value);
    const CZelAtom nothing;
    const int status = record->RRAddOrSetValueExprList(*column, colSpec, value != nullptr ? value : &nothing);
    if (status != 1)
        ZEL_REPORT(status, "CZelTable::RTUpdateNested");
    return status;
}
