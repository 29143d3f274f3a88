#include "store/CZelCacheCondition.h"

#include <algorithm>
#include <cstdint>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelRecord.h"
#include "store/CZelFilter.h"
#include "store/CZelRecordCache.h"

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

void CZelCacheCondition::scan(bool copies) {
    m_scan =
        std::make_unique<CZelCacheScan>(m_cache, &m_columns, copies ? CZelCacheScan::COPIES : CZelCacheScan::COUNT);
    for (Leaf &leaf : m_leaves) {
        leaf.m_rows.resize(m_scan->parts());
        for (CZelNumberSet &rows : leaf.m_rows)
            rows.reset(m_cache.RRCNumbers());
    }
    m_scan->run([this](const SZelScannedRow &row) { return matches(row); });
    for (Leaf &leaf : m_leaves)
        for (std::size_t part = 1; part < leaf.m_rows.size(); ++part)
            leaf.m_rows[0].add(leaf.m_rows[part]);
}

int CZelCacheCondition::count() {
    CZelCacheScan scan(m_cache, &m_columns, CZelCacheScan::COUNT);
    scan.run([this](const SZelScannedRow &row) { return matches(row); });
    const bool isWhole = scan.seen() == static_cast<std::size_t>(m_cache.RRCLength());
    return isWhole ? static_cast<int>(scan.passed()) : -1;
}

// Every comparison is made, as the set algebra may ask for each. No more than all of them wait to be joined.
bool CZelCacheCondition::matches(const SZelScannedRow &row) {
    std::uint64_t stack = 0;  // the last one is the lowest bit
    static_assert(MOST_LEAVES <= 64);
    for (const Step &step : m_steps) {
        const std::uint64_t rest = stack >> 1;
        if (step.m_leaf != NO_LEAF)
            stack = stack << 1 | static_cast<std::uint64_t>(passes(m_leaves[step.m_leaf], row));
        else if (step.m_node->RFOperator() == E_RANot)
            stack ^= 1;
        else
            stack = step.m_node->RFOperator() == E_RAAnd ? rest & (stack | ~std::uint64_t{1}) : rest | (stack & 1);
    }
    return (stack & 1) != 0;
}

bool CZelCacheCondition::passes(Leaf &leaf, const SZelScannedRow &row) {
    const CZelAtom *value =
        row.m_columns != nullptr ? row.m_columns->value(leaf.m_column) : leaf.m_test->column().value(*row.m_record);
    const bool isPassed = leaf.m_test->acceptsValue(value);
    if (isPassed && !leaf.m_rows.empty())
        leaf.m_rows[row.m_part].add(row.m_number);
    return isPassed;
}

CZelBag *CZelCacheCondition::rowsOf(const CZelFilter *leaf, const CZelBag *input) const {
    auto *rows = new CZelBag;
    const auto place =
        std::find_if(m_leaves.begin(), m_leaves.end(), [leaf](const Leaf &other) { return other.m_node == leaf; });
    if (place == m_leaves.end())
        return rows;
    const CZelNumberSet &passed = place->m_rows[0];
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
    return m_scan->takeCopy(numberOf(handle));
}
