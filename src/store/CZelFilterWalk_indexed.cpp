// Roads of an And whose comparisons are answered by index trees. They give the rows that the set algebra would
// give, in the same order, without a bag of each side: two bounds of one column are one stretch of its tree, and a
// comparison whose tree holds more rows than are left tests those rows one by one (of a plain table: a cached one would
// have to fetch them).
#include <algorithm>
#include <utility>
#include <vector>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelBPlusTree.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/base/CZelTreeList.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelExpr.h"
#include "store/CZelBoolean.h"
#include "store/CZelColDef.h"
#include "store/CZelFilter.h"
#include "store/CZelFilterWalk.h"
#include "store/CZelObjectStore.h"
#include "store/CZelRowTest.h"
#include "store/CZelTable.h"

namespace {

constexpr int FEW = 11;            // below this the algebra sorts by address
constexpr int HASH_IS_BETTER = 8;  // a side that is so many times smaller is hashed instead

EZelOper mirrored(EZelOper op) {
    constexpr EZelOper MIRRORED[] = {E_ROEqual, E_RONotEqual, E_ROGreater, E_ROGreaterEqual, E_ROLess, E_ROLessEqual};
    return MIRRORED[op];
}

bool isLower(EZelOper op) {
    return op == E_ROGreater || op == E_ROGreaterEqual;
}

bool isUpper(EZelOper op) {
    return op == E_ROLess || op == E_ROLessEqual;
}

bool isComparison(CZelBoolean &boolean) {
    return boolean.RBRvalType() == E_RBRExpr && boolean.RBOperand() <= E_ROGreaterEqual &&
           (boolean.RBEvalType() == E_RBEColumnValue || boolean.RBEvalType() == E_RBEValueColumn);
}

}  // namespace

CZelFilterWalk::TreeTest CZelFilterWalk::treeTestOf(const CZelFilter *node) const {
    CZelBoolean *boolean = node != nullptr ? node->RFKernel() : nullptr;
    if (boolean == nullptr || m_table.m_objectStore == nullptr || !isComparison(*boolean))
        return {};
    const bool swapped = boolean->RBEvalType() == E_RBEValueColumn;
    const CZelExpr *column = swapped ? boolean->RBRight() : boolean->RBLeft();
    const CZelExpr *value = swapped ? boolean->RBLeft() : boolean->RBRight();
    CZelDbEntity *entity = column->REEntityVal();
    if (entity == nullptr || entity->RDEColSpec() != nullptr || m_table.RTMatchSelfTest(entity) != E_RBTrue)
        return {};
    const CZelAtom *name = entity->RDEColNameAtom();
    const auto *definition =
        name != nullptr ? static_cast<const CZelColDef *>(m_table.m_indexedColumns->RTLData(name)) : nullptr;
    if (definition == nullptr || !definition->RCDIndexable())
        return {};
    const EZelOper op = swapped ? mirrored(boolean->RBOperand()) : boolean->RBOperand();
    return {m_table.m_objectStore->ROSTree(*name), boolean, entity, value->REHeadAtomVal(), op, swapped};
}

// An And of a lower and an upper bound of one column.
bool CZelFilterWalk::answersAsRange(const CZelFilter *node, Answer &answer) const {
    if (node->RFOperator() != E_RAAnd)
        return false;
    TreeTest low = treeTestOf(node->RFLeft());
    TreeTest high = low.tree != nullptr ? treeTestOf(node->RFRight()) : TreeTest();
    if (isUpper(low.op))
        std::swap(low, high);
    const bool isRange = low.tree != nullptr && low.tree == high.tree && isLower(low.op) && isUpper(high.op) &&
                         !CZelAtom::RAIsNull(low.value) && !CZelAtom::RAIsNull(high.value);
    if (!isRange || (low.tree->RBPTCountQuery(low.value, low.op, FEW) < FEW &&
                     high.tree->RBPTCountQuery(high.value, high.op, FEW) < FEW))
        return false;
    answer = {new CZelBag, false, false};
    low.tree->RBPTAppendBetween(*low.value, low.op == E_ROGreaterEqual, *high.value, high.op == E_ROLessEqual,
                                *answer.bag);
    answer.all = answer.bag->RBLength() == m_total;
    return true;
}

// The right side of an And whose left side is known: drops the left rows that it refuses and brings the rest into
// the order of the longer side. False, with nothing changed, where the algebra itself must do it.
bool CZelFilterWalk::narrows(const CZelFilter *right, Answer &left) const {
    const int length = left.bag != nullptr ? left.bag->RBLength() : 0;
    const TreeTest test = length > 0 && !left.all && m_table.m_cache == nullptr ? treeTestOf(right) : TreeTest();
    if (test.tree == nullptr)
        return false;
    const int count = test.tree->RBPTCountQuery(test.value, test.op, std::max(length, FEW));  // the longer one?
    const bool leftIsLonger = length > count;
    const bool ordered = test.tree->RBPTIsDegenerate() != E_RBTrue && test.op != E_RONotEqual;
    if (count == 0 || std::max(length, count) < FEW || length > count * HASH_IS_BETTER || (!leftIsLonger && !ordered))
        return false;
    if (test.tree->RBPTLength() == m_total && test.tree->RBPTIsWhole(test.value, test.op))
        return true;
    keepPassing(test, left.bag);
    if (!leftIsLonger)
        sortByColumn(test, *left.bag);
    left.all = left.bag->RBLength() == m_total;
    return true;
}

void CZelFilterWalk::keepPassing(const TreeTest &test, CZelBag *&rows) {
    auto *passed = new CZelBag;
    CZelRowTest(*test.boolean, *test.column, test.swapped, test.value).select(*rows, *passed);
    delete rows;
    rows = passed;
}

// In the order of a unique tree.
void CZelFilterWalk::sortByColumn(const TreeTest &test, CZelBag &rows) {
    std::vector<std::pair<const CZelAtom *, void *>> keyed;
    keyed.reserve(static_cast<std::size_t>(rows.RBLength()));
    const CZelAtom *name = test.column->RDEColNameAtom();
    for (CZelPointer *node = rows.RBFirst(); node != nullptr; node = CZelBag::RBNext(node))
        keyed.emplace_back(static_cast<const CZelRecord *>(node->RPData())->RRValueOf(name), node->RPData());
    std::stable_sort(keyed.begin(), keyed.end(),
                     [](const auto &a, const auto &b) { return CZelAtom::RACompare(a.first, b.first) < 0; });
    auto next = keyed.begin();
    for (CZelPointer *node = rows.RBFirst(); node != nullptr; node = CZelBag::RBNext(node), ++next)
        node->RPSetData(next->second);
}
