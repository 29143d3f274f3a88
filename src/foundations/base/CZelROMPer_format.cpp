#include "foundations/base/CZelROMPer_format.h"

#include "foundations/base/ZelCrc32c.h"

namespace {

struct ByTables {
    static std::uint32_t Of(const unsigned char *body, std::size_t length) { return ZelCrc32cByTable(body, length); }
};

#if defined(__x86_64__)

// The instruction by itself, so that code for any processor can hold it; it runs only where the processor has it.
inline std::uint64_t step(std::uint64_t check, std::uint64_t word) {
    __asm__("crc32q %1, %0" : "+r"(check) : "rm"(word));
    return check;
}

// For a body that stands behind its head, so that the eight bytes before it can be read too. What exceeds a multiple
// of eight bytes is taken first, as a word with zeros before it, which from a check of zero on change nothing; the
// start value is laid over the first four bytes of the body instead. No step depends on the length but the loop.
struct ByProcessor {
    static std::uint32_t Of(const unsigned char *body, std::size_t length) {
        constexpr std::uint64_t START = 0xFFFFFFFFU;
        constexpr std::size_t WORD = sizeof(std::uint64_t), BITS = 64;
        if (length < sizeof(std::uint32_t))
            return ZelCrc32c(body, length);
        const std::size_t first = (length - 1) % WORD + 1;
        const std::size_t before = BITS - 8 * first;
        const unsigned char *place = body + first;
        std::uint64_t check = step(0, (load(place - WORD) >> before ^ START) << before);
        if (length == first)
            return ~static_cast<std::uint32_t>(check);
        check = step(check, load(place) ^ (first < sizeof(std::uint32_t) ? START >> 8 * first : 0));
        for (place += WORD; place != body + length; place += WORD)
            check = step(check, load(place));
        return ~static_cast<std::uint32_t>(check);
    }

private:
    static std::uint64_t load(const unsigned char *place) {
        std::uint64_t word;
        std::memcpy(&word, place, sizeof(word));
        return word;
    }
};

const bool g_hasInstruction = __builtin_cpu_supports("sse4.2") != 0;

#else
using ByProcessor = ByTables;
constexpr bool g_hasInstruction = false;
#endif

template <class Check>
std::size_t intact(const unsigned char *data, std::size_t length) {
    std::size_t position = 0;
    while (length - position >= ROMP_HEAD_SIZE) {
        const unsigned char *body = data + position + ROMP_HEAD_SIZE;
        std::uint32_t size = 0, check = 0;
        if (!RompLoadHead(data + position, &size, &check) || size > length - position - ROMP_HEAD_SIZE ||
            Check::Of(body, size) != check)
            break;
        position += ROMP_HEAD_SIZE + size;
    }
    return position;
}

template <class Check>
void seal(unsigned char *data, std::size_t length) {
    for (unsigned char *head = data; head != data + length;) {
        const std::uint32_t size = RompLoad<std::uint32_t>(head);
        const unsigned char *body = head + ROMP_HEAD_SIZE;
        RompStoreHead(head, size, Check::Of(body, size));
        head += ROMP_HEAD_SIZE + size;
    }
}

}  // namespace

std::uint32_t RompCheck(const unsigned char *data, std::size_t length) {
    return ZelCrc32c(data, length);
}

std::size_t RompIntact(const unsigned char *data, std::size_t length) {
    return g_hasInstruction ? intact<ByProcessor>(data, length) : intact<ByTables>(data, length);
}

void RompSeal(unsigned char *data, std::size_t length) {
    return g_hasInstruction ? seal<ByProcessor>(data, length) : seal<ByTables>(data, length);
}
