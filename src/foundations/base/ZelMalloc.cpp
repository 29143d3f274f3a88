#include "foundations/base/ZelMalloc.h"

#include <cstring>

#include "foundations/port/ZelOutOfMemory.h"

void *ZelMalloc(std::size_t size) {
    void *block = std::malloc(size == 0 ? 1 : size);
    if (block == nullptr)
        ZelOutOfMemory();
    return block;
}

void *ZelRealloc(void *block, std::size_t size) {
    void *moved = std::realloc(block, size == 0 ? 1 : size);
    if (moved == nullptr)
        ZelOutOfMemory();
    return moved;
}

char *ZelStrDup(const char *text) {
    return text == nullptr ? nullptr : ZelStrDup(text, std::strlen(text));
}

char *ZelStrDup(const char *text, std::size_t length) {
    char *copy = static_cast<char *>(ZelMalloc(length + 1));
    if (length != 0)
        std::memcpy(copy, text, length);
    copy[length] = '\0';
    return copy;
}
