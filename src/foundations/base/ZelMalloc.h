// Memory from malloc that passes between owners: texts and byte blocks that an operation returns as new.
// Exhausted memory never comes back as null: it is reported once and the process ends in order.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>

#include "foundations/port/ZelExport.h"

QUINTOR_API void *ZelMalloc(std::size_t size);
QUINTOR_API void *ZelRealloc(void *block, std::size_t size);

// A copy from malloc; null stays null.
QUINTOR_API char *ZelStrDup(const char *text);

// A copy of `length` bytes with a NUL behind them.
QUINTOR_API char *ZelStrDup(const char *text, std::size_t length);

struct SZelFree {
    void operator()(void *block) const noexcept { std::free(block); }
};

// Owns a block from malloc for a scope.
using CZelMallocText = std::unique_ptr<char, SZelFree>;
using CZelMallocBlock = std::unique_ptr<unsigned char, SZelFree>;
