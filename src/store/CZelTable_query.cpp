// From a condition to rows: what each comparison asks of the table, and the rows as the caller gets them.
#include <cstring>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelBPlusTree.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/base/CZelTreeList.h"
#include "foundations/port/CZelError.h"
#include "foundations/port/ZelPrefetch.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelExpr.h"
#include "oql/CZelQuery.h"
#include "store/CZelBoolean.h"
#include "store/CZelCacheCondition.h"
#include "store/CZelCacheWalk.h"
#include "store/CZelColumnReader.h"
#include "store/CZelFilter.h"
#include "store/CZelFilterWalk.h"
#include "store/CZelObjectStore.h"
#include "store/CZelRecordCache.h"
#include "store/CZelStore.h"
#include "store/CZelStoreGuard.h"
#include "store/CZelTable.h"
#include "store/CZelTable_plan.h"

namespace {

constexpr int DEEPEST_SUBQUERY = 200;  // subqueries within subqueries take stack

// How many subqueries this thread is in.
class SubQueryLevel {
public:
    SubQueryLevel() { ++s_depth; }
    SubQueryLevel(const SubQueryLevel &) = delete;
    SubQueryLevel &operator=(const SubQueryLevel &) = delete;
    ~SubQueryLevel() { --s_depth; }
    static bool isTooDeep() { return s_depth > DEEPEST_SUBQUERY; }

private:
    static thread_local int s_depth;
};
thread_local int SubQueryLevel::s_depth = 0;

EZelOper mirrored(EZelOper op) {
    switch (op) {
        case E_ROLess:
            return E_ROGreater;
        case E_ROLessEqual:
            return E_ROGreaterEqual;
        case E_ROGreater:
            return E_ROLess;
        case E_ROGreaterEqual:
            return E_ROLessEqual;
        default:
            return op;
    }
}

const CZelAtom *headOf(const CZelExpr *expression) {
    return expression != nullptr ? expression->REHeadAtomVal() : nullptr;
}

CZelDbEntity *entityOf(const CZelExpr *expression) {
    return expression != nullptr ? expression->REEntityVal() : nullptr;
}

void setIfGiven(__boolean *flag, __boolean value) {
    if (flag != nullptr)
        *flag = value;
}

CZelAtom *encoded(const CZelRecord &record) {
    unsigned char *block = nullptr;
    int length = 0;
    record.ROMEncode(&block, &length);
    return new CZelAtom(block, length);
}

// What an item of a selection reads. An atom is the column's name.
CZelColumnReader readerOf(const CZelExpr *item) {
    const CZelDbEntity *entity = item->REEntityVal();
    return entity != nullptr ? CZelColumnReader(entity->RDEColNameAtom(), entity->RDEColSpec())
                             : CZelColumnReader(item->REHeadAtomVal(), nullptr);
}

void collect(const CZelExpr *item, const CZelBag &rows, CZelAtomVector &values) {
    if (item == nullptr || (item->REType() != E_RETAtom && item->REType() != E_RETEntity)) {
        ZEL_REPORT(E_RCBadArgument, "CZelTable::RTEvalSubQuery: a selection that names no column");
        return;
    }
    const CZelColumnReader reader = readerOf(item);
    for (const CZelPointer *node = rows.RBFirst(); node != nullptr; node = CZelBag::RBNext(node)) {
        const CZelAtom *value = reader.value(*static_cast<const CZelRecord *>(node->RPData()));
        if (value != nullptr)
            values.RAVAddToEnd(new CZelAtom(*value));
    }
}

}  // namespace

CZelBag *CZelTable::allRows() const {
    auto *rows = new CZelBag;
    if (m_rows == nullptr)
        return rows;
    if (m_cache != nullptr) {
        const CZelStoreGuard guard(*m_lock, CZelStoreGuard::WRITER);
        rows->RBAppend(m_cache->RRCHandleIterator());
        return rows;
    }
    for (CZelListable *row = m_rows->RDLHead(); row != nullptr; row = m_rows->RDLGetNext(row))
        rows->RBAdd(static_cast<void *>(static_cast<CZelRecord *>(row)));
    return rows;
}

CZelBag *CZelTable::inputOrAllRows(const CZelBag *input) const {
    return input != nullptr ? new CZelBag(*input) : allRows();
}

CZelBag *CZelTable::RTReturnRows(CZelFilter *filter) {
    return RTReturnRows(filter, E_RBFalse);
}

CZelBag *CZelTable::RTReturnPossibleRows(CZelFilter *filter) {
    return RTReturnRows(filter, E_RBTrue);
}

CZelBag *CZelTable::RTReturnRows(CZelFilter *filter, __boolean partial) {
    if (m_cache != nullptr && filter == nullptr)
        return copiesOfAll();
    if (m_cache != nullptr)
        if (CZelBag *scanned = copiesByScan(*filter))
            return scanned;
    CZelBag *rows = identities(filter, partial);
    if (m_cache != nullptr && rows != nullptr)
        replaceHandles(*rows, [this](CZelAtom *handle) { return m_cache->RRCRetrieveRecord(handle); });
    return rows;
}

// The rows of a condition of comparisons that no tree answers, copied where one scan finds them; null for any other.
CZelBag *CZelTable::copiesByScan(CZelFilter &filter) {
    const SZelCachedComparison only = scannedComparison(filter);
    if (only.m_boolean != nullptr)
        return scanCache(only, nullptr, true);
    if (filter.RFKernel() != nullptr)
        return nullptr;
    CZelCacheCondition condition(*m_cache);
    if (!isScanned(filter, condition))
        return nullptr;
    const CZelStoreGuard guard(*m_lock, CZelStoreGuard::WRITER);
    condition.scan(true);
    CZelBag *rows = CZelFilterWalk(*this, false, &condition).run(&filter, nullptr, nullptr);
    replaceHandles(*rows, [&](CZelAtom *handle) {
        CZelRecord *copy = condition.takeCopy(*handle);
        return copy != nullptr ? copy : m_cache->RRCCopyRecord(handle);  // one that the scan could not read
    });
    return rows;
}

bool CZelTable::isScanned(const CZelFilter &filter, CZelCacheCondition &condition) {
    return isLive() && condition.prepare(filter, [this](const CZelFilter &leaf) { return scannedComparison(leaf); });
}

CZelBag *CZelTable::identities(CZelFilter *filter, __boolean partial) {
    if (filter == nullptr || !isLive())
        return allRows();
    return partial == E_RBTrue ? RTEvalPartialFilter(filter) : RTEvalFilter(filter);
}

CZelBag *CZelTable::RTReturnROMPRows(CZelFilter *filter, __boolean partial) {
    CZelBag *rows = identities(filter, partial);
    if (rows == nullptr)
        return rows;
    if (m_cache != nullptr) {
        replaceHandles(*rows, [this](CZelAtom *handle) { return m_cache->RRCRetrieveROMP(handle); });
        return rows;
    }
    for (CZelPointer *node = rows->RBFirst(); node != nullptr; node = CZelBag::RBNext(node))
        node->RPSetData(encoded(*static_cast<CZelRecord *>(node->RPData())));
    return rows;
}

// The lock is taken here and, before, in each comparison that looks at rows, never across them: a subquery takes the
// lock of another table. The handles stay good in between because the caller holds the store lock, which a delete
// needs as writer.
template <class Convert>
void CZelTable::replaceHandles(CZelBag &handles, Convert convert) {
    const CZelStoreGuard guard(*m_lock, CZelStoreGuard::WRITER);
    for (CZelPointer *node = handles.RBFirst(), *next = nullptr; node != nullptr; node = next) {
        next = CZelBag::RBNext(node);
        node->RPSetData(convert(static_cast<CZelAtom *>(node->RPData())));
        if (node->RPData() != nullptr)
            continue;
        ZEL_REPORT(E_RCBadArgument, "CZelTable::RTReturnRows: a row that its cache can't give is left out");
        handles.RBFastDelete(node);
    }
}

void CZelTable::RTVisitRows(const std::function<void(const CZelRecord &)> &visit) const {
    if (m_rows == nullptr)
        return;
    if (m_cache != nullptr) {
        const CZelStoreGuard guard(*m_lock, CZelStoreGuard::WRITER);
        for (CZelCacheWalk walk(*m_cache, nullptr); walk.hasRow(); walk.advance())
            visit(walk.record());
        return;
    }
    for (CZelListable *row = m_rows->RDLHead(); row != nullptr; row = m_rows->RDLGetNext(row))
        visit(*static_cast<const CZelRecord *>(row));
}

CZelBag *CZelTable::RTEvalFilter(CZelFilter *filter) {
    return RTEvalFilter(filter, E_RBFalse, nullptr, nullptr);
}

CZelBag *CZelTable::RTEvalPartialFilter(CZelFilter *filter) {
    return RTEvalFilter(filter, E_RBTrue, nullptr, nullptr);
}

int CZelTable::RTCountRows(CZelFilter *filter) {
    const int count = m_cache != nullptr && filter != nullptr ? countByScan(*filter) : -1;
    if (count >= 0)
        return count;
    const std::unique_ptr<CZelBag> rows(RTEvalFilter(filter));
    return rows != nullptr ? rows->RBLength() : 0;
}

CZelBag *CZelTable::RTEvalFilter(CZelFilter *filter, __boolean partial, __boolean *all, CZelBag *input) {
    const bool isComparison = filter != nullptr && filter->RFKernel() != nullptr;
    if (isComparison && partial != E_RBTrue && all == nullptr)
        return RTEvalBoolean(filter->RFKernel(), nullptr, input);
    if (m_cache == nullptr || filter == nullptr || isComparison || input != nullptr)
        return CZelFilterWalk(*this, partial == E_RBTrue).run(filter, input, all);
    CZelCacheCondition condition(*m_cache);
    if (!isScanned(*filter, condition))
        return CZelFilterWalk(*this, partial == E_RBTrue).run(filter, input, all);
    const CZelStoreGuard guard(*m_lock, CZelStoreGuard::WRITER);
    condition.scan(false);
    return CZelFilterWalk(*this, false, &condition).run(filter, nullptr, all);
}

CZelBag *CZelTable::RTEvalBoolean(CZelBoolean *boolean) {
    return RTEvalBoolean(boolean, nullptr, nullptr);
}

CZelBag *CZelTable::RTEvalBoolean(CZelBoolean *boolean, __boolean *evaluated, CZelBag *input) {
    const bool isQuery = boolean->RBRvalType() == E_RBRQuery;
    if (!isQuery && boolean->RBOperand() != E_RONone && boolean->RBEvalType() == E_RBEColumnColumn)
        return RTEvalSelfJoin(boolean, evaluated, input);
    setIfGiven(evaluated, E_RBTrue);
    if (isQuery)
        return RTEvalSubQuery(boolean, E_RBFalse, input);
    if (boolean->RBOperand() == E_RONone)
        return inputOrAllRows(input);
    if (boolean->RBEvalType() == E_RBEValueValue)
        return evalConstant(boolean, headOf(boolean->RBLeft()), headOf(boolean->RBRight()), input);
    const __boolean reversed = ZelBool(boolean->RBEvalType() == E_RBEValueColumn);
    CZelExpr *column = reversed == E_RBTrue ? boolean->RBRight() : boolean->RBLeft();
    const CZelAtom *value = headOf(reversed == E_RBTrue ? boolean->RBLeft() : boolean->RBRight());
    if (RTMatchSelfTest(entityOf(column)) == E_RBTrue)
        return evalColumn(boolean, column, value, reversed, input);
    setIfGiven(evaluated, E_RBFalse);
    return nullptr;
}

CZelBag *CZelTable::evalConstant(CZelBoolean *boolean, const CZelAtom *left, const CZelAtom *right,
                                 const CZelBag *input) {
    return CZelBoolean::RBEvalExpr(left, right, boolean->RBOperand()) == E_RBTrue ? inputOrAllRows(input) : new CZelBag;
}

CZelBag *CZelTable::evalColumn(CZelBoolean *boolean, CZelExpr *column, const CZelAtom *value, __boolean reversed,
                               CZelBag *input) {
    const EZelOper op = boolean->RBOperand();
    const CZelBPlusTree *tree = op <= E_ROGreaterEqual ? plannedTree(entityOf(column)->RDEColNameAtom()) : nullptr;
    if (tree != nullptr)
        return rowsOfTree(*tree, value, reversed == E_RBTrue ? mirrored(op) : op);
    return isIndexed(*entityOf(column)) ? RTEvalIndexed(boolean, column, value, reversed, input)
                                        : RTEvalUnIndexed(boolean, column, value, reversed, input);
}

const CZelBPlusTree *CZelTable::plannedTree(const CZelAtom *column) const {
    const CZelTablePlan *plan = column != nullptr ? planForReading() : nullptr;
    const CZelTablePlan::Column *planned = plan != nullptr ? plan->column(*column) : nullptr;
    return planned != nullptr ? planned->m_tree : nullptr;
}

bool CZelTable::isIndexed(const CZelDbEntity &column) const {
    const CZelAtom *name = column.RDEColNameAtom();
    if (name == nullptr || m_indexedColumns == nullptr)
        return false;
    const CZelTablePlan *plan = planForReading();
    if (plan == nullptr)
        return m_indexedColumns->RTLGet(name) != nullptr;
    const CZelTablePlan::Column *planned = plan->column(*name);
    return planned != nullptr && planned->m_isIndexed;
}

// A name without its table belongs to any table.
__boolean CZelTable::RTMatchSelfTest(CZelDbEntity *entity) {
    if (entity == nullptr || m_identifier == nullptr)
        return E_RBFalse;
    const char *ident = entity->RDEIdent();
    return ZelBool(ident == nullptr || m_identifier->RATextView() == ident);
}

CZelBag *CZelTable::RTEvalIndexed(CZelBoolean *boolean, CZelExpr *column, const CZelAtom *value, __boolean reversed,
                                  CZelBag *input) {
    const EZelOper op = boolean->RBOperand();
    const CZelAtom *name = entityOf(column) != nullptr ? entityOf(column)->RDEColNameAtom() : nullptr;
    if (op > E_ROGreaterEqual || name == nullptr || m_objectStore == nullptr)
        return RTEvalUnIndexed(boolean, column, value, reversed, input);
    return rowsOfIndex(*name, value, reversed == E_RBTrue ? mirrored(op) : op);
}

CZelBag *CZelTable::rowsOfIndex(const CZelAtom &column, const CZelAtom *value, EZelOper op) const {
    const CZelBPlusTree *tree = plannedTree(&column);
    return tree != nullptr ? rowsOfTree(*tree, value, op) : m_objectStore->ROSQuery(column, value, op);
}

CZelBag *CZelTable::rowsOfTree(const CZelBPlusTree &tree, const CZelAtom *value, EZelOper op) const {
    auto *rows = new CZelBag;
    if (tree.RBPTAppendQuery(value, op, *rows) != 1)
        return rows;
    const void *row = rows->RBFirst()->RPData();  // what comes next is its values, or where they are
    if (m_cache == nullptr)
        static_cast<const CZelRecord *>(row)->RRVbIterator()->RVBLPrefetch();
    else
        ZelPrefetch(row);
    return rows;
}

CZelBag *CZelTable::RTEvalSubQuery(CZelBoolean *boolean, __boolean joined, CZelBag *input) {
    CZelAtomVector *values = valuesOfSubQuery(*boolean);
    if (values == nullptr)
        return new CZelBag;
    const CZelAtom list(values);
    return joined == E_RBTrue ? RTEvalJoined(boolean, boolean->RBLeft(), &list, E_RBFalse, input)
                              : RTEvalUnIndexed(boolean, boolean->RBLeft(), &list, E_RBFalse, input);
}

CZelAtomVector *CZelTable::valuesOfSubQuery(const CZelBoolean &boolean) {
    CZelQuery *query = boolean.RBRightQuery();
    const SubQueryLevel level;
    if (query == nullptr || query->RQSelection() == nullptr || m_store == nullptr)
        ZEL_REPORT(E_RCBadArgument, "CZelTable::RTEvalSubQuery: a subquery that selects no column");
    else if (SubQueryLevel::isTooDeep())
        ZEL_REPORT(E_RCUnsupported, "CZelTable::RTEvalSubQuery: subqueries are nested too deep");
    else
        return selectedValues(*query);
    return nullptr;
}

// The values of all rows make one list. The caller holds the store lock.
CZelAtomVector *CZelTable::selectedValues(CZelQuery &query) {
    EZelStoreErrorStatus status = E_RSEOk;
    auto *values = new CZelAtomVector;
    CZelBag *rows = m_store->RSExecSimpleQuery(&query, &status, E_RBFalse, E_RBFalse);
    const CZelBag *selection = query.RQSelection();
    for (const CZelPointer *node = selection->RBFirst(); rows != nullptr && node != nullptr;
         node = CZelBag::RBNext(node))
        collect(static_cast<const CZelExpr *>(node->RPData()), *rows, *values);
    const bool owned = m_store->RSOwnResultsOfSimpleQry(&query);
    const CZelBagGuard<CZelRecord> ownedRows(owned ? rows : nullptr);
    if (!owned)
        delete rows;
    return values;
}
