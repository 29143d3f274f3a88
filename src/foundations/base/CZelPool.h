// Free lists for the small objects that rows, bags and statements are made of.
//
// Each size has a list per thread, so taking and giving back cost a few instructions and no lock. A block
// may be given back by any thread. A thread that holds many more free blocks than it uses hands whole
// batches, linked in order of address, to a list that all threads share, and so does a thread that ends.
// Fresh blocks come from chunks in order of address, so that what is made together lies together.
//
// Under a sanitizer every block comes from malloc, so that misuse is seen where it happens.
#pragma once

#include <cstddef>

#include "foundations/port/ZelExport.h"

class QUINTOR_API CZelPool {
public:
    // A block for `size` bytes, aligned to 16. Never null. Sizes above 128 come from malloc.
    static void *RPTake(std::size_t size);

    // Gives back a block taken with the same size. Null is accepted.
    static void RPGive(void *block, std::size_t size) noexcept;
};

// Class operator new and delete over the pool, for the public part of a class.
#define ZEL_POOLED                                                        \
    static void *operator new(std::size_t size) {                         \
        return CZelPool::RPTake(size);                                    \
    }                                                                     \
    static void *operator new(std::size_t, void *place) noexcept {        \
        return place;                                                     \
    }                                                                     \
    static void operator delete(void *block, std::size_t size) noexcept { \
        CZelPool::RPGive(block, size);                                    \
    }                                                                     \
    static void operator delete(void *, void *) noexcept {}
