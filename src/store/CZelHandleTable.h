// The handles of a record cache and the entry under each.
//
// A handle is a long atom; its number is unique while in use. Numbers are issued in batches, in ascending order;
// handles that were given back follow behind them, the oldest first, so numbers stay dense and an entry is found by
// index. The list of handles in use is kept in their order: an ascending one goes to its end, any other looks for
// its neighbour.
#pragma once

#include <memory>
#include <vector>

#include "foundations/base/CZelDoubleList.h"
#include "foundations/base/CZelStack.h"
#include "foundations/port/ZelExport.h"

class CZelAtom;
class CZelCachedRecord;
class CZelPointer;

class QUINTOR_API CZelHandleTable {
public:
    static constexpr long AT_ONCE = 50;
    static constexpr long AT_MOST = 2147483647;

    explicit CZelHandleTable(long atMost = AT_MOST);  // handles
    CZelHandleTable(const CZelHandleTable &) = delete;
    CZelHandleTable &operator=(const CZelHandleTable &) = delete;
    ~CZelHandleTable();  // deletes all atoms and entries

    // A handle that is not in use, to be added or given back; null when none is left (E_RCNoHandle is reported).
    CZelAtom *take();
    void giveBack(CZelAtom *handle);

    void add(CZelAtom *handle, CZelCachedRecord *entry);      // takes both over
    void replace(CZelAtom *handle, CZelCachedRecord *entry);  // deletes the former entry. Requires: in use
    void remove(const CZelAtom &handle);                      // deletes the entry, gives the handle back
    CZelCachedRecord *find(const CZelAtom &handle) const;     // null for a number that is not in use

    // Ask the memory for where the entry is told, and later for the entry. Require: the number has been in use
    void askForSlot(long number) const { __builtin_prefetch(&slotAt(number)); }
    void askForEntry(long number) const { __builtin_prefetch(slotAt(number).m_entry); }

    long end() const { return static_cast<long>(m_blocks.size()) * BLOCK; }  // every number in use is below it
    CZelAtom *handleAt(long number) const;                                   // Requires: in use

    CZelDoubleList *inOrder() { return &m_order; }  // of CZelPointer to the atoms
    const CZelDoubleList *inOrder() const { return &m_order; }
    int length() const { return m_order.RDLLength(); }

private:
    static constexpr long BLOCK = 1024;  // entries

    struct Slot {
        CZelCachedRecord *m_entry;
        CZelPointer *m_node;  // in the list
    };
    struct Block {
        long m_used = 0;
        Slot m_slots[BLOCK] = {};
    };

    bool issue();
    Slot *slotOf(long number) const;
    Slot &slotAt(long number) const {
        return m_blocks[static_cast<std::size_t>(number / BLOCK)]->m_slots[number % BLOCK];
    }
    Slot &makeSlot(long number);
    CZelListable *nextInOrder(long number) const;
    CZelPointer *lastBefore(long number) const;

    long m_atMost;
    long m_next = 0;    // not yet issued
    CZelStack m_ready;  // atoms to be given out, owned
    std::vector<std::unique_ptr<Block>> m_blocks;
    CZelDoubleList m_order;  // its atoms are owned
};
