#include "store/CZelHandleTable.h"

#include <algorithm>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelPointer.h"
#include "foundations/port/CZelError.h"
#include "store/CZelCachedRecord.h"

namespace {

CZelAtom *handleOf(const CZelListable *node) {
    return static_cast<CZelAtom *>(static_cast<const CZelPointer *>(node)->RPData());
}

}  // namespace

CZelHandleTable::CZelHandleTable(long atMost) : m_atMost(atMost), m_ready(-1) {}

CZelHandleTable::~CZelHandleTable() {
    for (const CZelListable *node = m_order.RDLHead(); node != nullptr; node = m_order.RDLGetNext(node)) {
        CZelAtom *handle = handleOf(node);
        delete find(*handle);
        delete handle;
    }
    while (void *handle = m_ready.RSPop())
        delete static_cast<CZelAtom *>(handle);
}

CZelAtom *CZelHandleTable::take() {
    if (m_ready.RSLength() == 0 && !issue())
        return nullptr;
    return static_cast<CZelAtom *>(m_ready.RSPop());
}

bool CZelHandleTable::issue() {
    if (m_next >= m_atMost) {
        ZEL_REPORT(E_RCNoHandle, "CZelHandleTable: no handle is left");
        return false;
    }
    const long end = m_next + std::min(AT_ONCE, m_atMost - m_next);
    for (; m_next < end; ++m_next)
        m_ready.RSPushBottom(new CZelAtom(m_next));
    return true;
}

void CZelHandleTable::giveBack(CZelAtom *handle) {
    m_ready.RSPushBottom(handle);
}

void CZelHandleTable::add(CZelAtom *handle, CZelCachedRecord *entry) {
    const long number = handle->RALong();
    CZelPointer *node = new CZelPointer(handle);
    m_order.RDLInsertBefore(node, nextInOrder(number));
    makeSlot(number) = {entry, node};
    entry->RCRSetNumber(static_cast<int>(number));
}

void CZelHandleTable::replace(CZelAtom *handle, CZelCachedRecord *entry) {
    Slot *slot = slotOf(handle->RALong());
    delete slot->m_entry;
    slot->m_entry = entry;
    entry->RCRSetNumber(static_cast<int>(handle->RALong()));
}

void CZelHandleTable::remove(const CZelAtom &handle) {
    const long number = handle.RALong();
    Slot *slot = slotOf(number);
    if (slot == nullptr || slot->m_entry == nullptr)
        return;
    CZelAtom *own = handleOf(slot->m_node);
    m_order.RDLDeleteListable(slot->m_node);
    delete slot->m_entry;
    *slot = {};
    --m_blocks[static_cast<std::size_t>(number / BLOCK)]->m_used;
    giveBack(own);
}

CZelCachedRecord *CZelHandleTable::find(const CZelAtom &handle) const {
    const Slot *slot = slotOf(handle.RALong());
    return slot != nullptr ? slot->m_entry : nullptr;
}

CZelAtom *CZelHandleTable::handleAt(long number) const {
    return handleOf(slotAt(number).m_node);
}

CZelHandleTable::Slot *CZelHandleTable::slotOf(long number) const {
    return number >= 0 && number < end() ? &slotAt(number) : nullptr;
}

CZelHandleTable::Slot &CZelHandleTable::makeSlot(long number) {
    const std::size_t block = static_cast<std::size_t>(number) / BLOCK;
    while (m_blocks.size() <= block)
        m_blocks.push_back(std::make_unique<Block>());
    ++m_blocks[block]->m_used;
    return m_blocks[block]->m_slots[number % BLOCK];
}

CZelListable *CZelHandleTable::nextInOrder(long number) const {
    if (m_order.RDLTail() == nullptr || handleOf(m_order.RDLTail())->RALong() < number)
        return nullptr;
    const CZelPointer *before = lastBefore(number);
    return before != nullptr ? m_order.RDLGetNext(before) : m_order.RDLHead();
}

// Blocks without entries are skipped, so a nearly empty table costs no long search.
CZelPointer *CZelHandleTable::lastBefore(long number) const {
    for (long block = number / BLOCK, end = number % BLOCK; block >= 0; --block, end = BLOCK) {
        const Block &place = *m_blocks[static_cast<std::size_t>(block)];
        for (long i = end; place.m_used > 0 && i-- > 0;) {
            if (place.m_slots[i].m_entry != nullptr)
                return place.m_slots[i].m_node;
        }
    }
    return nullptr;
}
