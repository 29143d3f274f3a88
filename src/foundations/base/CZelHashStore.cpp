#include "foundations/base/CZelHashStore.h"

#include <cstring>

#include "foundations/base/CZelHashStore_table.h"
#include "foundations/base/CZelStack.h"
#include "foundations/base/ZelHash.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/ZelCodes.h"

namespace {

// The key 0 marks an empty slot: an entry under it lies beside the table.
struct NumberSlot {
    unsigned long key;
    CZelHashNode node;
    bool isEmpty() const { return key == 0; }
    std::uint64_t hash() const { return ZelHashWord(key); }
};

struct TextSlot {
    char *key;  // owned
    std::uint64_t hashed;
    CZelHashNode node;
    bool isEmpty() const { return key == nullptr; }
    std::uint64_t hash() const { return hashed; }
    bool isFor(std::uint64_t hash, const char *text) const { return hashed == hash && std::strcmp(key, text) == 0; }
};

}  // namespace

struct CZelHashStore::Table {
    Table(int expected, bool numericKeys)
        : m_isNumeric(numericKeys), m_numbers(numericKeys ? expected : 0), m_texts(numericKeys ? 0 : expected) {}

    bool m_isNumeric;
    bool m_hasZero = false;
    CZelHashNode m_zero;
    ZelSlotTable<NumberSlot> m_numbers;
    ZelSlotTable<TextSlot> m_texts;
};

CZelHashStore::CZelHashStore(int buckets, __boolean numericKeys, __boolean, int)
    : m_table(new Table(buckets, numericKeys == E_RBTrue)) {}

CZelHashStore::~CZelHashStore() {
    freeKeys();
    delete m_table;
}

void CZelHashStore::freeKeys() {
    m_table->m_texts.forEach([](const TextSlot &slot) { std::free(slot.key); });
}

int CZelHashStore::RHSAddObjectAt(const char *key, void *object) {
    if (key == nullptr || m_table->m_isNumeric)
        return E_RCBadArgument;
    std::size_t length = std::strlen(key);
    std::uint64_t hash = ZelHashText(key, length);
    TextSlot *slot = m_table->m_texts.findOrTake(hash, [&](const TextSlot &s) { return s.isFor(hash, key); });
    if (!slot->isEmpty())
        return E_RCDuplicate;
    slot->key = ZelStrDup(key, length);
    slot->hashed = hash;
    slot->node.m_object = object;
    return E_RCOk;
}

int CZelHashStore::RHSAddObjectAt(unsigned long key, void *object) {
    if (!m_table->m_isNumeric)
        return E_RCBadArgument;
    if (key == 0)
        return addAtZero(object);
    NumberSlot *slot =
        m_table->m_numbers.findOrTake(ZelHashWord(key), [key](const NumberSlot &s) { return s.key == key; });
    if (!slot->isEmpty())
        return E_RCDuplicate;
    slot->key = key;
    slot->node.m_object = object;
    return E_RCOk;
}

int CZelHashStore::addAtZero(void *object) {
    if (m_table->m_hasZero)
        return E_RCDuplicate;
    m_table->m_hasZero = true;
    m_table->m_zero.m_object = object;
    return E_RCOk;
}

CZelHashNode *CZelHashStore::RHSRetrieveObject(const char *key) const {
    if (key == nullptr || m_table->m_texts.length() == 0)
        return nullptr;
    std::uint64_t hash = ZelHashText(key, std::strlen(key));
    TextSlot *slot = m_table->m_texts.find(hash, [&](const TextSlot &s) { return s.isFor(hash, key); });
    return slot == nullptr ? nullptr : &slot->node;
}

CZelHashNode *CZelHashStore::RHSRetrieveObject(unsigned long key) const {
    if (key == 0)
        return m_table->m_hasZero ? &m_table->m_zero : nullptr;
    NumberSlot *slot = m_table->m_numbers.find(ZelHashWord(key), [key](const NumberSlot &s) { return s.key == key; });
    return slot == nullptr ? nullptr : &slot->node;
}

int CZelHashStore::RHSDeleteObject(const char *key) {
    if (key == nullptr)
        return E_RCNotInTree;
    std::uint64_t hash = ZelHashText(key, std::strlen(key));
    TextSlot *slot = m_table->m_texts.find(hash, [&](const TextSlot &s) { return s.isFor(hash, key); });
    if (slot == nullptr)
        return E_RCNotInTree;
    std::free(slot->key);
    m_table->m_texts.remove(slot);
    return E_RCOk;
}

int CZelHashStore::RHSLength() const {
    std::size_t length = m_table->m_numbers.length() + m_table->m_texts.length();
    return static_cast<int>(length) + (m_table->m_hasZero ? 1 : 0);
}

CZelStack *CZelHashStore::RHSRetrieveAll() {
    CZelStack *all = new CZelStack(-1);
    auto push = [all](const auto &slot) { all->RSPush(slot.node.m_object); };
    m_table->m_numbers.forEach(push);
    m_table->m_texts.forEach(push);
    if (m_table->m_hasZero)
        all->RSPush(m_table->m_zero.m_object);
    freeKeys();
    m_table->m_numbers.clear();
    m_table->m_texts.clear();
    m_table->m_hasZero = false;
    return all;
}
