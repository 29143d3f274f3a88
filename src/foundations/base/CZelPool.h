// Free lists for the small objects that rows, bags and statements are made of.
//
// Each size has a list per thread, so taking and giving back cost a few instructions and no lock. A block
// may be given back by any thread. A thread that holds more than two batches of free blocks hands a whole
// batch to a depot that all threads share, and so does a thread that ends. Batches come from the depot in
// order of address and out of one region of memory, so that what is made together lies together.
//
// A library built under a sanitizer takes every block from malloc, so that misuse is seen where it happens.
#pragma once

#include <cstddef>
#include <cstdint>

#include "foundations/port/ZelExport.h"

class QUINTOR_API CZelPool {
public:
    static constexpr std::size_t STEP = 16;  // sizes are rounded up to a multiple
    static constexpr std::size_t LARGEST = 128;

    // What a row is read with comes from lists of its own: bindings and the texts of their values, which then lie side
    // by side. The keys of index trees come and go in another order, and so do the objects that lists and statements
    // are made of; from common lists a row's bindings would soon be taken from all over memory.
    enum Kind : unsigned char { OBJECTS = 0, ROWS = 1, KEYS = 2 };

    // A block for `size` bytes, aligned to 16. Never null. Sizes above LARGEST come from malloc.
    static void *RPTake(std::size_t size, Kind kind = OBJECTS) {
        if (size <= LARGEST) {
            List &list = t_lists[classOf(size, kind)];
            if (list.m_head != nullptr) [[likely]] {
                Block *block = list.m_head;
                list.m_head = block->m_next;
                ++list.m_room;
                return block;
            }
        }
        return takeSlowly(size, kind);
    }

    // Gives back a block taken with the same size and kind. Null is accepted.
    static void RPGive(void *memory, std::size_t size, Kind kind = OBJECTS) noexcept {
        if (memory == nullptr)
            return;
        if (size <= LARGEST) {
            List &list = t_lists[classOf(size, kind)];
            if (list.m_room != 0) [[likely]] {
                Block *block = static_cast<Block *>(memory);
                block->m_next = list.m_head;
                list.m_head = block;
                --list.m_room;
                return;
            }
        }
        giveSlowly(memory, size, kind);
    }

    // Is a block for `size` bytes one for `other` bytes too?
    static bool RPServes(std::size_t size, std::size_t other);

private:
    friend class CZelPoolDepot;
    friend class CZelPoolThread;

    struct Block {
        Block *m_next;
    };
    // A list starts without blocks and without room, so a thread's first step of a class is a slow one.
    struct List {
        Block *m_head;         // the latest given back first
        std::uint32_t m_room;  // blocks that still fit in; with those in the list one batch
        Block *m_reserve;      // one full batch, or null
    };
    static constexpr std::size_t CLASSES_OF_KIND = LARGEST / STEP + 1;
    static constexpr std::size_t CLASSES = 3 * CLASSES_OF_KIND;

    static constexpr std::size_t classOf(std::size_t size, Kind kind) {
        return kind * CLASSES_OF_KIND + (size + STEP - 1) / STEP;
    }
    static void *takeSlowly(std::size_t size, Kind kind);
    static void giveSlowly(void *memory, std::size_t size, Kind kind) noexcept;

    static constinit thread_local List t_lists[CLASSES];
};

// Class operator new and delete over the pool's lists of a kind, for the public part of a class.
#define ZEL_POOLED_AS(KIND)                                               \
    static void *operator new(std::size_t size) {                         \
        return CZelPool::RPTake(size, CZelPool::KIND);                    \
    }                                                                     \
    static void *operator new(std::size_t, void *place) noexcept {        \
        return place;                                                     \
    }                                                                     \
    static void operator delete(void *block, std::size_t size) noexcept { \
        CZelPool::RPGive(block, size, CZelPool::KIND);                    \
    }                                                                     \
    static void operator delete(void *, void *) noexcept {}
#define ZEL_POOLED ZEL_POOLED_AS(OBJECTS)
