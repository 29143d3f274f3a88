#include "foundations/base/CZelBPlusTree.h"

#include <algorithm>

#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelKeyTree_nodes.h"
#include "foundations/port/ZelCodes.h"

namespace {

// The null key stands first in the tree, as an undefined atom.
const CZelAtom &keyOrNull(const CZelAtom *key) {
    static const CZelAtom null;
    return key == nullptr ? null : *key;
}

}  // namespace

CZelBPlusTree::CZelBPlusTree(bool degenerate) : m_degenerate(degenerate) {}

int CZelBPlusTree::RBPTAddObjectToTree(const CZelAtom *key, void *object, bool) {
    bool isNew = false;
    CZelBTreeNode &entry = m_tree.RKTAdd(keyOrNull(key), object, &isNew).entry();
    if (!isNew) {
        if (!m_degenerate && !CZelAtom::RAIsNull(key))
            return entry.RBTNHolds(object) ? E_RCOk : E_RCKeyExists;
        isNew = entry.add(object);
    }
    m_length += isNew ? 1 : 0;
    return E_RCOk;
}

int CZelBPlusTree::RBPTLoad(std::vector<SZelKeyedObject> &pairs) {
    if (!m_tree.RKTLoad(pairs, !m_degenerate))
        return E_RCKeyExists;
    m_length = static_cast<int>(pairs.size());
    return E_RCOk;
}

void CZelBPlusTree::RBPTEmpty() {
    m_tree.RKTEmpty();
    m_length = 0;
}

int CZelBPlusTree::RBPTLiteralDeleteObjectInTree(const CZelAtom *key, void *object) {
    if (!m_tree.RKTRemove(keyOrNull(key), object))
        return E_RCNotInTree;
    --m_length;
    return E_RCOk;
}

CZelBTreeNode *CZelBPlusTree::RBPTGetNodeForKey(const CZelAtom *key) const {
    return m_tree.RKTFind(keyOrNull(key));
}

void CZelBPlusTree::RBPTGetNodesForKeys(const CZelAtom *const *keys, std::size_t count, CZelBTreeNode **entries) const {
    constexpr std::size_t PART = 32;
    const CZelAtom *part[PART];
    for (std::size_t from = 0; from < count; from += PART) {
        const std::size_t length = std::min(PART, count - from);
        std::transform(keys + from, keys + from + length, part, [](const CZelAtom *key) { return &keyOrNull(key); });
        m_tree.RKTFindMany(part, length, entries + from);
    }
}

void *CZelBPlusTree::RBPTFindSingle(const CZelAtom *key) const {
    const CZelBTreeNode *entry = RBPTGetNodeForKey(key);
    return entry == nullptr ? nullptr : entry->RBTNOldest();
}

CZelAtomVector *CZelBPlusTree::RBPTTreeKeysToAtomVector() const {
    CZelAtomVector *keys = new CZelAtomVector(static_cast<unsigned int>(m_tree.RKTLength()));
    for (CZelKeyTree::Place place = m_tree.RKTFirst(); !place.isEnd(); place.next())
        keys->RAVAddToEnd(new CZelAtom(place.key()));
    return keys;
}
