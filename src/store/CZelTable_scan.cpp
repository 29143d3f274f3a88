// Comparisons that no tree answers: walks of the rows.
#include <algorithm>
#include <cstdio>
#include <utility>
#include <vector>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelBPlusTree.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelROMPColumns.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/base/CZelTreeList.h"
#include "foundations/port/CZelError.h"
#include "foundations/port/ZelDebug.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelExpr.h"
#include "store/CZelBoolean.h"
#include "store/CZelCacheCondition.h"
#include "store/CZelCacheScan.h"
#include "store/CZelCacheWalk.h"
#include "store/CZelColDef.h"
#include "store/CZelColumnReader.h"
#include "store/CZelFilter.h"
#include "store/CZelObjectStore.h"
#include "store/CZelRowTest.h"
#include "store/CZelStoreGuard.h"
#include "store/CZelTable.h"
#include "store/CZelValueSet.h"

namespace {

bool isMembership(EZelOper op) {
    return op == E_ROIn || op == E_RONotIn;
}

// With the value on the left only these read the operands the other way round.
bool swapsOperands(EZelOper op) {
    return (op >= E_ROLess && op <= E_RONotIn) || op == E_ROBetween || op == E_RONotBetween;
}

template <class Visitor>
void visitRows(const CZelDoubleList &table, const CZelBag *input, Visitor visit) {
    if (input == nullptr) {
        for (CZelListable *row = table.RDLHead(); row != nullptr; row = table.RDLGetNext(row))
            visit(static_cast<CZelRecord *>(row));
        return;
    }
    for (const CZelPointer *node = input->RBFirst(); node != nullptr; node = CZelBag::RBNext(node))
        visit(static_cast<CZelRecord *>(node->RPData()));
}

// Visits the rows that have a value, with it.
template <class Visitor>
void visitValues(const CZelDoubleList &table, const CZelBag *input, const CZelColumnReader &column, Visitor visit) {
    visitRows(table, input, [&](CZelRecord *row) {
        const CZelAtom *value = column.value(*row);
        if (!CZelAtom::RAIsNull(value))
            visit(*value, row);
        else if (__Zeltronix_Debug_Level >= 4)
            std::printf("Cannot Find Column Name - %s\n", column.hasName() ? column.name()->RAString() : "");
    });
}

int orderByHandle(CZelListable *left, CZelListable *right) {
    const long mine = static_cast<const CZelAtom *>(static_cast<CZelPointer *>(left)->RPData())->RALong();
    const long theirs = static_cast<const CZelAtom *>(static_cast<CZelPointer *>(right)->RPData())->RALong();
    return static_cast<int>(theirs < mine) - static_cast<int>(mine < theirs);
}

void addRow(CZelBag &bag, CZelRecord *row) {
    bag.RBAdd(static_cast<void *>(row));
}

// A comparison of one column of a cached table, over all rows or given ones.
class ComparisonScan {
public:
    ComparisonScan(CZelRecordCache &cache, const SZelCachedComparison &comparison)
        : m_cache(cache),
          m_test(*comparison.m_boolean, *comparison.m_column, comparison.m_isSwapped, comparison.m_value) {
        if (m_test.column().isPlain() && m_test.column().hasName())
            m_columns.add(*m_test.column().name());
    }

    std::size_t count() { return run(CZelCacheScan::COUNT, nullptr); }
    void append(CZelCacheScan::Form form, CZelBag &rows) { run(form, &rows); }
    void select(const CZelBag &handles, CZelBag &passed) {
        CZelCacheScan::select(
            m_cache, handles, columns(), [this](const SZelScannedRow &row) { return passes(row); }, passed);
    }

private:
    CZelROMPColumns *columns() { return m_columns.isEmpty() ? nullptr : &m_columns; }
    std::size_t run(CZelCacheScan::Form form, CZelBag *rows) {
        CZelCacheScan scan(m_cache, columns(), form);
        scan.run([this](const SZelScannedRow &row) { return passes(row); });
        if (rows != nullptr)
            scan.appendTo(*rows);
        return scan.passed();
    }
    bool passes(const SZelScannedRow &row) const {
        if (row.m_columns != nullptr)
            return m_test.acceptsValue(row.m_columns->value(0));
        return m_test.column().isWild() ? m_test.accepts(*row.m_record)
                                        : m_test.acceptsValue(m_test.column().value(*row.m_record));
    }

    CZelRecordCache &m_cache;
    CZelRowTest m_test;
    CZelROMPColumns m_columns;
};

using PlacedRow = std::pair<int, CZelRecord *>;
using KeyedRow = std::pair<const CZelAtom *, CZelRecord *>;

// Rows in the order of their places among `count`, those of one place as they came.
void appendByPlace(const std::vector<PlacedRow> &rows, std::size_t count, CZelBag &result) {
    std::vector<std::size_t> ends(count + 1);
    for (const auto &[place, row] : rows)
        ++ends[static_cast<std::size_t>(place) + 1];
    for (std::size_t i = 1; i < ends.size(); ++i)
        ends[i] += ends[i - 1];
    std::vector<CZelRecord *> sorted(rows.size());
    for (const auto &[place, row] : rows)
        sorted[ends[static_cast<std::size_t>(place)]++] = row;
    for (CZelRecord *row : sorted)
        addRow(result, row);
}

void appendByKey(std::vector<KeyedRow> &rows, CZelBag &result) {
    std::stable_sort(rows.begin(), rows.end(), [](const KeyedRow &left, const KeyedRow &right) {
        return left.first->RALex(right.first, nullptr) < 0;
    });
    for (const auto &[key, row] : rows)
        addRow(result, row);
}

}  // namespace

CZelBag *CZelTable::RTEvalUnIndexed(CZelBoolean *boolean, CZelExpr *column, const CZelAtom *value, __boolean reversed,
                                    CZelBag *input) {
    const EZelOper op = boolean->RBOperand();
    CZelDbEntity *entity = column != nullptr ? column->REEntityVal() : nullptr;
    if (entity == nullptr || op == E_ROExists) {
        const CZelAtom *other = column != nullptr ? column->REHeadAtomVal() : nullptr;
        return reversed == E_RBTrue ? evalConstant(boolean, value, other, input)
                                    : evalConstant(boolean, other, value, input);
    }
    if (m_cache != nullptr)
        return scanCache({boolean, entity, value, reversed == E_RBTrue && swapsOperands(op)}, input, false);
    auto *result = new CZelBag;
    if (m_rows == nullptr)
        return result;
    const CZelColumnReader reader(*entity);
    if (isMembership(op) && value != nullptr && value->RAType() == E_RDTList && !reader.isWild()) {
        if (reversed == E_RBFalse)
            selectMembers(reader, *value, op == E_RONotIn, input, *result);
        return result;
    }
    const CZelRowTest test(*boolean, *entity, reversed == E_RBTrue && swapsOperands(op), value);
    if (input != nullptr)
        test.select(*input, *result);
    else
        test.select(*m_rows, *result);
    return result;
}

// The rows come in the order of their values.
void CZelTable::selectMembers(const CZelColumnReader &column, const CZelAtom &list, bool negated, const CZelBag *input,
                              CZelBag &result) const {
    const CZelValueSet set(list.RAList());
    const CZelBPlusTree *tree = negated || input != nullptr ? nullptr : uniqueTreeOf(column);
    if (tree != nullptr) {
        for (const CZelAtom *value : set.values()) {
            const CZelBTreeNode *entry = tree->RBPTGetNodeForKey(value);
            if (entry != nullptr)
                entry->RBTNAppendTo(result);
        }
    } else if (negated) {
        std::vector<KeyedRow> rows;
        visitValues(*m_rows, input, column, [&](const CZelAtom &value, CZelRecord *row) {
            if (set.placeOf(value) < 0)
                rows.emplace_back(&value, row);
        });
        appendByKey(rows, result);
    } else {
        std::vector<PlacedRow> rows;
        visitValues(*m_rows, input, column, [&](const CZelAtom &value, CZelRecord *row) {
            const int place = set.placeOf(value);
            if (place >= 0)
                rows.emplace_back(place, row);
        });
        appendByPlace(rows, set.values().size(), result);
    }
}

CZelBag *CZelTable::scanCache(const SZelCachedComparison &comparison, const CZelBag *input, bool asCopies) {
    auto *result = new CZelBag;
    if (!isLive())
        return result;
    const CZelStoreGuard guard(*m_lock, CZelStoreGuard::WRITER);
    const EZelOper op = comparison.m_boolean->RBOperand();
    const CZelAtom *value = comparison.m_value;
    const CZelColumnReader reader(*comparison.m_column);
    const bool isInList = isMembership(op) && value != nullptr && value->RAType() == E_RDTList;
    if (isInList && !comparison.m_isSwapped && !reader.isWild()) {
        selectCachedMembers(reader, *value, op == E_RONotIn, input, *result);
        return result;
    }
    ComparisonScan scan(*m_cache, comparison);
    if (input != nullptr)
        scan.select(*input, *result);
    else
        scan.append(asCopies ? CZelCacheScan::COPIES : CZelCacheScan::HANDLES, *result);
    return result;
}

// How many rows match, where one scan tells; otherwise -1.
int CZelTable::countByScan(CZelFilter &filter) {
    const SZelCachedComparison only = scannedComparison(filter);
    CZelCacheCondition condition(*m_cache);
    if (!isLive() || (only.m_boolean == nullptr && !isScanned(filter, condition)))
        return -1;
    const CZelStoreGuard guard(*m_lock, CZelStoreGuard::WRITER);
    return only.m_boolean == nullptr ? condition.count() : static_cast<int>(ComparisonScan(*m_cache, only).count());
}

// A leaf that is one comparison of a column of this table with a value, which no tree answers.
SZelCachedComparison CZelTable::scannedComparison(const CZelFilter &leaf) {
    CZelBoolean *boolean = leaf.RFKernel();
    if (boolean == nullptr || boolean->RBRvalType() != E_RBRExpr)
        return {};
    const EZelOper op = boolean->RBOperand();
    const bool isReversed = boolean->RBEvalType() == E_RBEValueColumn;
    if (op == E_RONone || op == E_ROExists || isMembership(op) ||
        (!isReversed && boolean->RBEvalType() != E_RBEColumnValue))
        return {};
    CZelDbEntity *column = (isReversed ? boolean->RBRight() : boolean->RBLeft())->REEntityVal();
    if (RTMatchSelfTest(column) != E_RBTrue || (op <= E_ROGreaterEqual && isIndexed(*column)))
        return {};
    const CZelExpr *value = isReversed ? boolean->RBLeft() : boolean->RBRight();
    return {boolean, column, value->REHeadAtomVal(), isReversed && swapsOperands(op)};
}

CZelBag *CZelTable::copiesOfAll() const {
    auto *copies = new CZelBag;
    if (m_rows == nullptr)
        return copies;
    const CZelStoreGuard guard(*m_lock, CZelStoreGuard::WRITER);
    const CZelROMPColumns none;
    CZelCacheScan scan(*m_cache, &none, CZelCacheScan::COPIES);
    scan.run([](const SZelScannedRow & /*row*/) { return true; });
    scan.appendTo(*copies);
    return copies;
}

// The rows come in the order of their handles. One without a value is neither in the list nor not in it.
void CZelTable::selectCachedMembers(const CZelColumnReader &column, const CZelAtom &list, bool negated,
                                    const CZelBag *input, CZelBag &result) const {
    const CZelValueSet set(list.RAList());
    const CZelBPlusTree *tree = negated || input != nullptr ? nullptr : uniqueTreeOf(column);
    if (tree != nullptr) {
        for (const CZelAtom *value : set.values())
            if (const CZelBTreeNode *entry = tree->RBPTGetNodeForKey(value))
                entry->RBTNAppendTo(result);
        result.RBIterator()->RDLSortList(orderByHandle);
        return;
    }
    CZelROMPColumns columns;
    if (column.isPlain() && column.hasName())
        columns.add(*column.name());
    const auto isMember = [&](const SZelScannedRow &row) {
        const CZelAtom *value = row.m_columns != nullptr ? row.m_columns->value(0) : column.value(*row.m_record);
        return !CZelAtom::RAIsNull(value) && (set.placeOf(*value) >= 0) != negated;
    };
    CZelROMPColumns *picked = columns.isEmpty() ? nullptr : &columns;
    if (input != nullptr)
        return CZelCacheScan::select(*m_cache, *input, picked, isMember, result);
    CZelCacheScan scan(*m_cache, picked, CZelCacheScan::HANDLES);
    scan.run(isMember);
    scan.appendTo(result);
}

// A tree with one row per value holds the rows of each value in the order in which a walk finds them.
const CZelBPlusTree *CZelTable::uniqueTreeOf(const CZelColumnReader &column) const {
    if (!column.isPlain() || !column.hasName() || m_objectStore == nullptr)
        return nullptr;
    const auto *definition = static_cast<const CZelColDef *>(m_indexedColumns->RTLData(column.name()));
    if (definition == nullptr || !definition->RCDIndexable())
        return nullptr;
    const CZelBPlusTree *tree = m_objectStore->ROSTree(*column.name());
    return tree != nullptr && tree->RBPTIsDegenerate() == E_RBFalse ? tree : nullptr;
}

__boolean CZelTable::RTEvalRecTest(CZelDbEntity *column, __boolean swapped, const CZelAtom *value, CZelBoolean *boolean,
                                   CZelRecord *record) {
    return ZelBool(CZelRowTest(*boolean, *column, swapped == E_RBTrue, value).accepts(*record));
}

__boolean CZelTable::RTEvalRecordTest(CZelDbEntity *left, CZelDbEntity *right, CZelBoolean *boolean,
                                      CZelRecord *record) {
    return compareColumns(CZelColumnReader(*left), CZelColumnReader(*right), *boolean, *record);
}

__boolean CZelTable::compareColumns(const CZelColumnReader &left, const CZelColumnReader &right,
                                    const CZelBoolean &boolean, const CZelRecord &record) {
    const CZelColumnReader::Side mine = left.side(record);
    const CZelColumnReader::Side theirs = right.side(record);
    return boolean.RBEvalComplex(mine.value, mine.list, left.kind(), theirs.value, theirs.list, right.kind());
}

CZelBag *CZelTable::RTEvalSelfJoin(CZelBoolean *boolean, __boolean *evaluated, CZelBag *input) {
    CZelDbEntity *left = boolean->RBLeft()->REEntityVal();
    CZelDbEntity *right = boolean->RBRight()->REEntityVal();
    const bool isOurs = RTMatchSelfTest(left) == E_RBTrue && RTMatchSelfTest(right) == E_RBTrue;
    if (evaluated != nullptr)
        *evaluated = ZelBool(isOurs && m_cache == nullptr);  // a join looks at cached rows once more itself
    auto *result = new CZelBag;
    if (!isOurs || m_rows == nullptr)
        return result;
    const CZelColumnReader mine(*left);
    const CZelColumnReader theirs(*right);
    if (m_cache != nullptr) {
        const CZelStoreGuard guard(*m_lock, CZelStoreGuard::WRITER);
        for (CZelCacheWalk walk(*m_cache, input); walk.hasRow(); walk.advance())
            if (compareColumns(mine, theirs, *boolean, walk.record()) == E_RBTrue)
                result->RBAdd(static_cast<void *>(walk.handle()));
        return result;
    }
    visitRows(*m_rows, input, [&](CZelRecord *row) {
        if (compareColumns(mine, theirs, *boolean, *row) == E_RBTrue)
            addRow(*result, row);
    });
    return result;
}
