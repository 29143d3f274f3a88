// Memory for blocks of some hundred to some ten thousand bytes: the nodes of trees, the rows of handle tables.
//
// Who goes to blocks that lie anywhere waits for the page tables too, and on a virtual machine for those of two
// systems. Here blocks are cut off chunks that are huge pages, where the system has them, so that few page table
// entries tell where all of them are. Blocks that were given back serve the next of their size; memory is never given
// back to the system.
//
// A library built under a sanitizer takes every block from malloc, so that misuse is seen where it happens.
//
// Threads: any, also as late as in the destructors of statics.
#pragma once

#include <cstddef>

#include "foundations/port/ZelExport.h"

class QUINTOR_API CZelLargeBlocks {
public:
    static constexpr std::size_t STEP = 16;        // sizes are rounded up to a multiple, and blocks aligned to it
    static constexpr std::size_t LINE = 64;        // of the caches; a multiple of it is aligned to it
    static constexpr std::size_t LARGEST = 32768;  // larger ones come from malloc

    static void *RLTake(std::size_t size);                       // never null
    static void RLGive(void *block, std::size_t size) noexcept;  // of the size that it was taken with; null is nothing
};
