// The handles of a record cache and the entry under each.
//
// A handle is a long atom; its number is unique while in use. Numbers are issued in batches, in ascending order;
// handles that were given back follow behind them, the oldest first, so numbers stay dense and a row is found by
// index. The list of handles in use is kept in their order: an ascending one goes to its end, any other looks for
// its neighbour.
//
// Atoms, entries and nodes of the list lie in blocks and stay where they are; a handle and its entry are one cache
// line, so whoever has read the handle need not wait for the entry.
#pragma once

#include <deque>
#include <memory>
#include <new>
#include <vector>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelDoubleList.h"
#include "foundations/base/CZelLargeBlocks.h"
#include "foundations/base/CZelPointer.h"
#include "foundations/port/ZelExport.h"
#include "foundations/port/ZelPrefetch.h"
#include "store/CZelCachedRecord.h"

class QUINTOR_API CZelHandleTable {
public:
    static constexpr long AT_ONCE = 50;
    static constexpr long AT_MOST = 2147483647;
    static constexpr long BLOCK = 256;  // rows

    // A row that lies in a file only.
    struct Found {
        int m_start;  // of its chain
        int m_size;   // of its encoding
    };

    explicit CZelHandleTable(long atMost = AT_MOST);  // handles
    CZelHandleTable(const CZelHandleTable &) = delete;
    CZelHandleTable &operator=(const CZelHandleTable &) = delete;
    ~CZelHandleTable();

    // A handle that is not in use, to be added or given back; null when none is left (E_RCNoHandle is reported).
    // All atoms and entries are the table's.
    CZelAtom *take();
    void giveBack(CZelAtom *handle);

    CZelCachedRecord &add(CZelAtom *handle, CZelCachedRecord &&entry);      // Requires: taken
    CZelCachedRecord &replace(CZelAtom *handle, CZelCachedRecord &&entry);  // Requires: in use
    void remove(const CZelAtom &handle);                                    // gives the handle back
    CZelCachedRecord *find(const CZelAtom &handle) const { return find(handle.RALong()); }
    CZelCachedRecord *find(long number) const { return usedRow(number); }  // null for a number that is not in use

    // Many rows at once, as one by one from take and add: numbers from 0 on, in the order of `rows`. Each piece of
    // them is entered by one thread, several at the same time; a piece begins at a multiple of BLOCK. The entries
    // count their arrival from `arrival` on. All of begin's rows are entered before `endMany`.
    // Requires: no handle has been taken. `count`: at most as many as the table may have.
    void beginMany(long count);
    void addPiece(long first, const Found *rows, long count, __boolean persistent, unsigned long long arrival);
    void endMany();
    long atMost() const { return m_atMost; }
    bool hasRoomFor(long count) const;  // in all; false is reported (E_RCNoHandle)

    // Asks the memory for the record of a row. Requires: the number has been in use
    void askForRecord(long number) const { ZelPrefetch(rowAt(number).RCRGetRecord()); }

    long end() const { return static_cast<long>(m_blocks.size()) * BLOCK; }  // every number in use is below it
    CZelAtom *handleAt(long number) const { return &rowAt(number).m_handle; }
    static long numberOf(const CZelCachedRecord &entry) {  // Requires: entry is one of a table
        return static_cast<const Row &>(entry).m_handle.RALong();
    }

    CZelDoubleList *inOrder() { return &m_order; }  // of CZelPointer to the atoms
    const CZelDoubleList *inOrder() const { return &m_order; }
    int length() const { return m_order.RDLLength(); }

private:
    struct Handle {
        CZelAtom m_handle;
    };
    struct alignas(64) Row : Handle, CZelCachedRecord {
        bool isInUse() const { return RCRGetRecordType() != E_CRTUninitialised; }
    };
    struct Block {
        explicit Block(long first);
        static void *operator new(std::size_t size, std::align_val_t) { return CZelLargeBlocks::RLTake(size); }
        static void operator delete(void *block, std::size_t size, std::align_val_t) {
            CZelLargeBlocks::RLGive(block, size);
        }

        Row m_rows[BLOCK];
        CZelPointer m_nodes[BLOCK];  // of the list
    };

    bool issue();
    void makeBlocks();
    Block &blockOf(long number) const { return *m_blocks[static_cast<std::size_t>(number / BLOCK)]; }
    Row &rowAt(long number) const { return blockOf(number).m_rows[number % BLOCK]; }
    CZelPointer *nodeAt(long number) const { return &blockOf(number).m_nodes[number % BLOCK]; }
    int &usedIn(long number) { return m_used[static_cast<std::size_t>(number / BLOCK)]; }
    Row *usedRow(long number) const;
    CZelListable *nextInOrder(long number) const;
    CZelPointer *lastBefore(long number) const;

    long m_atMost;
    long m_next = 0;          // not yet issued
    std::deque<int> m_ready;  // numbers to be given out
    std::vector<std::unique_ptr<Block>> m_blocks;
    std::vector<int> m_used;               // rows in each block
    std::vector<CZelDoubleList> m_pieces;  // of the rows that are being entered, a list for each block
    CZelDoubleList m_order;                // its nodes are the blocks'
};
