#include "store/CZelCacheCondition.h"

#include <algorithm>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelBag.h"
#include "store/CZelCacheWalk.h"
#include "store/CZelFilter.h"

namespace {

bool isLeaf(const CZelFilter &node) {
    return node.RFKernel() != nullptr;
}

bool isNot(const CZelFilter &node) {
    return node.RFOperator() == E_RANot && node.RFLeft() == nullptr && node.RFRight() != nullptr;
}

bool isJoiner(const CZelFilter &node) {
    return (node.RFOperator() == E_RAAnd || node.RFOperator() == E_RAOr) && node.RFLeft() != nullptr &&
           node.RFRight() != nullptr;
}

std::size_t numberOf(const CZelAtom &handle) {
    return static_cast<std::size_t>(handle.RALong());
}

}  // namespace

// From the root on, each node before its branches, the right one first; backwards that is each node behind them.
bool CZelCacheCondition::layOut(const CZelFilter &filter) {
    if (isLeaf(filter))
        return false;
    std::size_t leaves = 0;
    std::vector<const CZelFilter *> waiting = {&filter};
    while (!waiting.empty()) {
        const CZelFilter &node = *waiting.back();
        waiting.pop_back();
        if (m_steps.size() == MOST_STEPS || leaves == MOST_LEAVES)
            return false;
        m_steps.push_back({&node, isLeaf(node) ? leaves++ : NO_LEAF});
        if (isLeaf(node))
            continue;
        if (!isNot(node) && !isJoiner(node))
            return false;
        if (isJoiner(node))
            waiting.push_back(node.RFLeft());
        waiting.push_back(node.RFRight());
    }
    std::reverse(m_steps.begin(), m_steps.end());
    for (Step &step : m_steps)
        step.m_leaf = step.m_leaf != NO_LEAF ? leaves - 1 - step.m_leaf : NO_LEAF;
    return true;
}

bool CZelCacheCondition::addLeaf(const SZelCachedComparison &comparison, const CZelFilter *node) {
    if (comparison.m_boolean == nullptr)
        return false;
    auto test = std::make_unique<CZelRowTest>(*comparison.m_boolean, *comparison.m_column, comparison.m_isSwapped,
                                              comparison.m_value);
    if (!test->column().isPlain() || !test->column().hasName())
        return false;
    const std::size_t column = columnFor(*test->column().name());
    m_leaves.push_back({node, std::move(test), column, {}});
    return true;
}

std::size_t CZelCacheCondition::columnFor(const CZelAtom &name) {
    const auto isSame = [&name](const CZelAtom *other) { return other->RATextView() == name.RATextView(); };
    const auto place = std::find_if(m_names.begin(), m_names.end(), isSame);
    const auto number = static_cast<std::size_t>(place - m_names.begin());
    if (place == m_names.end()) {
        m_names.push_back(&name);
        m_columns.add(name);
    }
    return number;
}

void CZelCacheCondition::walk(bool copies) {
    for (Leaf &leaf : m_leaves)
        leaf.m_rows.reset(m_cache.RRCNumbers());
    if (copies)
        m_copies.resize(m_cache.RRCNumbers());
    for (CZelCacheWalk walk(m_cache, nullptr, &m_columns, CZelCacheWalk::BY_PLACE); walk.hasRow(); walk.advance()) {
        const std::size_t number = walk.number();
        if (matches(walk, number) && copies)
            m_copies[number].reset(walk.copy());
    }
}

// Every comparison is made, as the set algebra may ask for each.
bool CZelCacheCondition::matches(const CZelCacheWalk &walk, std::size_t number) {
    m_stack.clear();
    for (const Step &step : m_steps) {
        if (step.m_leaf != NO_LEAF) {
            m_stack.push_back(passes(m_leaves[step.m_leaf], walk, number));
            continue;
        }
        const bool last = m_stack.back();
        m_stack.pop_back();
        const EZelAlgebraic op = step.m_node->RFOperator();
        if (op == E_RANot)
            m_stack.push_back(!last);
        else
            m_stack.back() = op == E_RAAnd ? m_stack.back() && last : m_stack.back() || last;
    }
    return m_stack.back();
}

bool CZelCacheCondition::passes(Leaf &leaf, const CZelCacheWalk &walk, std::size_t number) {
    const CZelAtom *value =
        walk.isPicked() ? m_columns.value(leaf.m_column) : leaf.m_test->column().value(walk.record());
    const bool isPassed = leaf.m_test->acceptsValue(value);
    if (isPassed)
        leaf.m_rows.add(number);
    return isPassed;
}

CZelBag *CZelCacheCondition::rowsOf(const CZelFilter *leaf, const CZelBag *input) const {
    auto *rows = new CZelBag;
    const auto place =
        std::find_if(m_leaves.begin(), m_leaves.end(), [leaf](const Leaf &other) { return other.m_node == leaf; });
    if (place == m_leaves.end())
        return rows;
    const CZelNumberSet &passed = place->m_rows;
    if (input == nullptr)
        passed.visit(
            [&](std::size_t number) { rows->RBAdd(static_cast<void *>(m_cache.RRCHandle(static_cast<int>(number)))); });
    for (const CZelPointer *node = input != nullptr ? input->RBFirst() : nullptr; node != nullptr;
         node = CZelBag::RBNext(node))
        if (passed.holds(numberOf(*static_cast<const CZelAtom *>(node->RPData()))))
            rows->RBAdd(node->RPData());
    return rows;
}

CZelRecord *CZelCacheCondition::takeCopy(const CZelAtom &handle) {
    return m_copies[numberOf(handle)].release();
}
