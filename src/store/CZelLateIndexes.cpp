#include "store/CZelLateIndexes.h"

#include <utility>

#include "store/CZelIndexLoader.h"
#include "store/CZelStoreGuard.h"

void CZelLateIndexes::add(CZelBPlusTree &tree, const CZelAtom &column) {
    const CZelStoreGuard guard(m_lock, CZelStoreGuard::WRITER);
    m_waiting.push_back({&tree, nullptr, &column});
    tree.RBPTLeaveTo(*this);
}

void CZelLateIndexes::fillAll() {
    const CZelStoreGuard guard(m_lock, CZelStoreGuard::WRITER);
    if (m_waiting.empty())
        return;
    CZelIndexLoader(std::exchange(m_waiting, {})).loadLate(m_cache);
}

void CZelLateIndexes::fill(const CZelBPlusTree &tree) {
    const CZelStoreGuard guard(m_lock, CZelStoreGuard::WRITER);
    if (tree.RBPTIsLeft())  // to whoever had the lock before
        fillAll();
}

void CZelLateIndexes::forget(const CZelBPlusTree &tree) {
    const CZelStoreGuard guard(m_lock, CZelStoreGuard::WRITER);
    std::erase_if(m_waiting, [&tree](const SZelIndexValue &index) { return index.m_tree == &tree; });
}
