#include "store/CZelBoundFilter.h"

#include <utility>

#include "foundations/base/CZelRecord.h"
#include "oql/CZelDbEntity.h"
#include "store/CZelBoolean.h"
#include "store/CZelFilterNodes.h"
#include "store/CZelJoinCondition.h"
#include "store/CZelJoinRow.h"

CZelBoundFilter::CZelBoundFilter(const CZelJoinCondition &condition, const CZelJoinRow &row)
    : m_filter(*condition.filter()) {
    const std::vector<CZelFilter *> originals = ZelLeavesOf(*condition.filter());
    const std::vector<CZelFilter *> copies = ZelLeavesOf(m_filter);
    for (std::size_t i = 0; i < copies.size(); ++i) {
        CZelBoolean &original = *originals[i]->RFKernel();
        settle(*copies[i], original, condition.listOf(&original));
        CZelBoolean &kernel = *copies[i]->RFKernel();
        addColumn(kernel, kernel.RBLeft(), true, row);
        if (kernel.RBRvalType() == E_RBRExpr)
            addColumn(kernel, kernel.RBRight(), false, row);
    }
}

// Makes everything a value that is one for the whole query.
void CZelBoundFilter::settle(CZelFilter &leaf, CZelBoolean &original, const CZelAtom *list) {
    CZelBoolean &kernel = *leaf.RFKernel();
    keepValue(kernel.RBLeft(), original.RBLeft());
    if (original.RBRvalType() == E_RBRQuery)
        settleSubQuery(leaf, list);
    else
        keepValue(kernel.RBRight(), original.RBRight());
}

// A copy of a clause has no result.
void CZelBoundFilter::keepValue(CZelExpr *copy, const CZelExpr *original) {
    if (copy != nullptr && original->REType() == E_RETClause)
        copy->RESetOverride(original->REHeadAtomVal());
}

// A subquery that could not be run lets nothing pass.
void CZelBoundFilter::settleSubQuery(CZelFilter &leaf, const CZelAtom *list) {
    CZelBoolean &kernel = *leaf.RFKernel();
    const CZelExpr *left = kernel.RBLeft();
    const CZelDbEntity *entity = left != nullptr ? left->REEntityVal() : nullptr;
    if (list == nullptr || entity == nullptr) {
        const CZelAtom *value = left != nullptr ? left->REHeadAtomVal() : nullptr;
        const bool answer = list != nullptr && CZelBoolean::RBEvalExpr(value, list, kernel.RBOperand()) == E_RBTrue;
        leaf.RFSetFilter(new CZelBoolean(new CZelExpr(CZelAtom(answer ? 1 : 0)), new CZelExpr(CZelAtom(1)), E_ROEqual));
        return;
    }
    // As a plain comparison it would be answered by the tree, which knows the whole column only.
    if (entity->RDEColSpec() != nullptr && kernel.RBOperand() <= E_ROGreaterEqual)
        return;
    auto &[operand, slot] =
        m_lists.emplace_back(std::piecewise_construct, std::forward_as_tuple(), std::forward_as_tuple(nullptr));
    operand.RESetOverride(list);
    slot = &operand;
    kernel.RBOverideRight(&slot);
}

void CZelBoundFilter::addColumn(CZelBoolean &boolean, CZelExpr *operand, bool isLeft, const CZelJoinRow &row) {
    CZelDbEntity *entity = operand != nullptr ? operand->REEntityVal() : nullptr;
    if (entity == nullptr)
        return;
    const char *table = entity->RDEIdent();
    const int place = table != nullptr ? row.find(table) : CZelJoinRow::NOWHERE;
    CZelColumnReader reader(*entity);
    if (place == CZelJoinRow::NOWHERE || reader.isWild()) {
        m_hasOpenColumn = true;
        return;
    }
    Column &column = m_columns.emplace_back(boolean, isLeft, place, std::move(reader));
    column.m_value.RESetOverride(nullptr);
    column.m_operand = &column.m_value;
}

CZelFilter *CZelBoundFilter::bind(const CZelJoinRow &row, bool *complete) {
    *complete = !m_hasOpenColumn;
    for (Column &column : m_columns) {
        const CZelRecord *record = row.record(column.m_place);
        if (record != nullptr)
            column.m_value.RESetOverride(column.m_reader.value(*record));
        else
            *complete = false;
        if (column.m_isBound != (record != nullptr))
            setBound(column, record != nullptr);
    }
    return &m_filter;
}

void CZelBoundFilter::setBound(Column &column, bool isBound) {
    CZelExpr **slot = isBound ? &column.m_operand : nullptr;
    if (column.m_isLeft)
        column.m_boolean->RBOverideLeft(slot);
    else
        column.m_boolean->RBOverideRight(slot);
    column.m_isBound = isBound;
}
