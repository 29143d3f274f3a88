// Comparisons that no tree answers: walks of the rows.
#include <algorithm>
#include <cstdio>
#include <utility>
#include <vector>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelBPlusTree.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/base/CZelTreeList.h"
#include "foundations/port/CZelError.h"
#include "foundations/port/ZelDebug.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelExpr.h"
#include "store/CZelBoolean.h"
#include "store/CZelColDef.h"
#include "store/CZelColumnReader.h"
#include "store/CZelObjectStore.h"
#include "store/CZelRowTest.h"
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

void addRow(CZelBag &bag, CZelRecord *row) {
    bag.RBAdd(static_cast<void *>(row));
}

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
    if (m_cache != nullptr)
        return refuseCached("CZelTable::RTEvalUnIndexed: a cached table");
    const EZelOper op = boolean->RBOperand();
    CZelDbEntity *entity = column != nullptr ? column->REEntityVal() : nullptr;
    if (entity == nullptr || op == E_ROExists) {
        const CZelAtom *other = column != nullptr ? column->REHeadAtomVal() : nullptr;
        return reversed == E_RBTrue ? evalConstant(boolean, value, other, input)
                                    : evalConstant(boolean, other, value, input);
    }
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
        *evaluated = ZelBool(isOurs && m_cache == nullptr);
    if (m_cache != nullptr)
        return refuseCached("CZelTable::RTEvalSelfJoin: a cached table");
    auto *result = new CZelBag;
    if (!isOurs || m_rows == nullptr)
        return result;
    const CZelColumnReader mine(*left);
    const CZelColumnReader theirs(*right);
    visitRows(*m_rows, input, [&](CZelRecord *row) {
        if (compareColumns(mine, theirs, *boolean, *row) == E_RBTrue)
            addRow(*result, row);
    });
    return result;
}
