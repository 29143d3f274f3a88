#include "foundations/base/CZelBPlusTree.h"

#include <algorithm>
#include <optional>

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

CZelBPlusTree::Filler::~Filler() = default;

CZelBPlusTree::CZelBPlusTree(bool degenerate) : m_degenerate(degenerate) {}

int CZelBPlusTree::RBPTAddObjectToTree(const CZelAtom *key, void *object, bool) {
    std::size_t added = 0;
    const SAddition addition{this, key};
    return RBPTAddToEach(&addition, 1, object, &added);
}

int CZelBPlusTree::RBPTAddToEach(const SAddition *additions, std::size_t count, void *object, std::size_t *added) {
    for (std::size_t i = 0; i < count; ++i)
        additions[i].m_tree->beFilled();
    for (*added = 0; *added < count;) {
        const std::size_t before = *added;
        const int status = addTogether(additions + before, std::min(count - before, TOGETHER), object, added);
        if (status != E_RCOk)
            return status;
    }
    return E_RCOk;
}

// Ends before a tree that comes again: what is known of its places would not be true any more.
int CZelBPlusTree::addTogether(const SAddition *additions, std::size_t count, void *object, std::size_t *added) {
    std::optional<CZelKeyTree::Addition> begun[TOGETHER];
    std::size_t length = 0;
    for (; length < count && !isAmong(additions, length, additions[length].m_tree); ++length) {
        begun[length].emplace(additions[length].m_tree->m_tree, keyOrNull(additions[length].m_key));
        begun[length]->seek();
    }
    for (std::size_t i = 0; i < length; ++i)
        begun[i]->settle(object);
    for (std::size_t i = 0; i < length; ++i) {
        if (!additions[i].m_tree->finish(*begun[i], additions[i].m_key, object))
            return E_RCKeyExists;
        ++*added;
    }
    return E_RCOk;
}

bool CZelBPlusTree::isAmong(const SAddition *additions, std::size_t count, const CZelBPlusTree *tree) {
    return std::any_of(additions, additions + count, [tree](const SAddition &one) { return one.m_tree == tree; });
}

// False when the tree is unique and has another object under the key.
bool CZelBPlusTree::finish(CZelKeyTree::Addition &addition, const CZelAtom *key, void *object) {
    bool isNew = false;
    CZelBTreeNode &entry = addition.finish(object, &isNew).entry();
    if (!isNew) {
        if (!m_degenerate && !CZelAtom::RAIsNull(key))
            return entry.RBTNHolds(object);
        isNew = entry.add(object);
    }
    m_length += isNew ? 1 : 0;
    return true;
}

int CZelBPlusTree::RBPTLoad(CZelArray<SZelKeyedObject> &pairs) {
    const bool isLoaded = m_tree.RKTLoad(pairs, !m_degenerate);
    m_length = isLoaded ? static_cast<int>(pairs.size()) : 0;
    m_filler.store(nullptr, std::memory_order_release);
    return isLoaded ? E_RCOk : E_RCKeyExists;
}

void CZelBPlusTree::RBPTEmpty() {
    if (RBPTIsLeft())
        m_filler.exchange(nullptr)->forget(*this);
    m_tree.RKTEmpty();
    m_length = 0;
}

int CZelBPlusTree::RBPTLiteralDeleteObjectInTree(const CZelAtom *key, void *object) {
    beFilled();
    if (!m_tree.RKTRemove(keyOrNull(key), object))
        return E_RCNotInTree;
    --m_length;
    return E_RCOk;
}

CZelBTreeNode *CZelBPlusTree::RBPTGetNodeForKey(const CZelAtom *key) const {
    return tree().RKTFind(keyOrNull(key));
}

void CZelBPlusTree::RBPTGetNodesForKeys(const CZelAtom *const *keys, std::size_t count, CZelBTreeNode **entries) const {
    constexpr std::size_t PART = 32;
    const CZelAtom *part[PART];
    for (std::size_t from = 0; from < count; from += PART) {
        const std::size_t length = std::min(PART, count - from);
        std::transform(keys + from, keys + from + length, part, [](const CZelAtom *key) { return &keyOrNull(key); });
        tree().RKTFindMany(part, length, entries + from);
    }
}

void *CZelBPlusTree::RBPTFindSingle(const CZelAtom *key) const {
    const CZelBTreeNode *entry = RBPTGetNodeForKey(key);
    return entry == nullptr ? nullptr : entry->RBTNOldest();
}

CZelAtomVector *CZelBPlusTree::RBPTTreeKeysToAtomVector() const {
    CZelAtomVector *keys = new CZelAtomVector(static_cast<unsigned int>(tree().RKTLength()));
    for (CZelKeyTree::Place place = tree().RKTFirst(); !place.isEnd(); place.next())
        keys->RAVAddToEnd(new CZelAtom(place.key()));
    return keys;
}
