#include "foundations/base/CZelArrays.h"

#include <sys/mman.h>

#include <cstdlib>

#include "foundations/base/ZelMalloc.h"
#include "foundations/port/ZelOutOfMemory.h"

namespace {

constexpr std::size_t HUGE_PAGE = CZelArrays::HUGE_PAGE;

std::size_t inHugePages(std::size_t bytes) {
    return (bytes + HUGE_PAGE - 1) / HUGE_PAGE * HUGE_PAGE;
}

void unmap(char *begin, const char *end) {
    if (begin != end)
        munmap(begin, static_cast<std::size_t>(end - begin));
}

}  // namespace

// A huge page begins somewhere in a piece that is one of them longer; what lies before and behind goes back.
void *CZelArrays::RATake(std::size_t bytes) {
    if (bytes < HUGE_PAGE)
        return ZelMalloc(bytes);
    const std::size_t size = inHugePages(bytes), mapped = size + HUGE_PAGE;
    void *memory = mmap(nullptr, mapped, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED)
        ZelOutOfMemory();
    auto *begin = static_cast<char *>(memory);
    char *array = begin + inHugePages(reinterpret_cast<std::size_t>(begin)) - reinterpret_cast<std::size_t>(begin);
    unmap(begin, array);
    unmap(array + size, begin + mapped);
    madvise(array, size, MADV_HUGEPAGE);
    return array;
}

void CZelArrays::RAGive(void *array, std::size_t bytes) noexcept {
    if (bytes < HUGE_PAGE)
        std::free(array);
    else
        munmap(array, inHugePages(bytes));
}
