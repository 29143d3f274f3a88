#include "foundations/base/CZelHashList.h"

#include "foundations/base/CZelBTreeNode.h"
#include "foundations/base/CZelHashStore_table.h"
#include "foundations/base/ZelHash.h"
#include "foundations/port/ZelCodes.h"

namespace {

// No node lies at 0, so an empty entry marks an empty slot and every number is a key.
struct NodeSlot {
    unsigned long key;
    CZelBTreeNode nodes;
    bool isEmpty() const { return nodes.RBTNOldest() == nullptr; }
    std::uint64_t hash() const { return ZelHashWord(key); }
};

}  // namespace

struct CZelHashList::Table : ZelSlotTable<NodeSlot> {
    using ZelSlotTable<NodeSlot>::ZelSlotTable;

    NodeSlot *at(unsigned long key) const {
        return find(ZelHashWord(key), [key](const NodeSlot &slot) { return slot.key == key; });
    }
};

CZelHashList::CZelHashList(int buckets, __boolean, int) : m_table(new Table(buckets)) {}

CZelHashList::~CZelHashList() {
    m_table->forEach([](NodeSlot &slot) { slot.nodes.release(); });
    delete m_table;
}

int CZelHashList::RHLAdd(unsigned long key, CZelPointer *node) {
    if (node == nullptr)
        return E_RCBadArgument;
    NodeSlot *slot = m_table->findOrTake(ZelHashWord(key), [key](const NodeSlot &s) { return s.key == key; });
    if (slot->isEmpty()) {
        slot->key = key;
        slot->nodes.set(node);
    } else if (!slot->nodes.add(node)) {
        return E_RCBadArgument;
    }
    return m_nodes.RDLAddToListEnd(node);
}

CZelPointer *CZelHashList::RHLGet(unsigned long key) const {
    const NodeSlot *slot = m_table->at(key);
    return slot == nullptr ? nullptr : static_cast<CZelPointer *>(slot->nodes.RBTNOldest());
}

int CZelHashList::RHLDelete(unsigned long key) {
    NodeSlot *slot = m_table->at(key);
    if (slot == nullptr)
        return E_RCNotInTree;
    CZelBag nodes;
    slot->nodes.RBTNAppendTo(nodes);
    slot->nodes.release();
    m_table->remove(slot);
    for (CZelPointer *entry = nodes.RBFirst(); entry != nullptr; entry = CZelBag::RBNext(entry))
        m_nodes.RDLDeleteListable(static_cast<CZelPointer *>(entry->RPData()));
    return E_RCOk;
}

int CZelHashList::RHLDelete(unsigned long key, CZelPointer *node) {
    NodeSlot *slot = m_table->at(key);
    if (slot == nullptr)
        return E_RCNotInTree;
    CZelBTreeNode::Removal removal = slot->nodes.remove(node);
    if (removal == CZelBTreeNode::Removal::ABSENT)
        return E_RCNotInTree;
    if (removal == CZelBTreeNode::Removal::LEFT_NONE)
        m_table->remove(slot);
    m_nodes.RDLDeleteListable(node);
    return E_RCOk;
}
