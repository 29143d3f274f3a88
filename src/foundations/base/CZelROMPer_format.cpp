#include "foundations/base/CZelROMPer_format.h"

#include "foundations/base/ZelCrc32c.h"
#include "foundations/base/ZelCrc32c_instruction.h"
#include "foundations/base/ZelShortBytes.h"

namespace {

struct ByTables {
    static std::uint32_t Of(const unsigned char *body, std::size_t length) { return ZelCrc32cByTable(body, length); }
};

#if defined(__x86_64__)

// For a body that stands behind its head, so that the bytes before it can be read too. What is left of it behind the
// whole words, one to eight bytes, is laid into the top of a word: zeros before it change nothing when the check
// begins with zero, so the check up to there is laid over the bytes themselves.
struct ByProcessor {
    static std::uint32_t Of(const unsigned char *body, std::size_t length) {
        constexpr std::ptrdiff_t WORD = sizeof(std::uint64_t), BITS = 64;
        if (length == 0)
            return 0;
        std::uint64_t check = 0xFFFFFFFFU;
        const unsigned char *last = body + length - WORD;
        for (; body < last; body += WORD)
            check = ZelCrc32cStep(check, ZelLoadWord<std::uint64_t>(body));
        const std::ptrdiff_t known =
            8 * (body - last);  // bits of the last word that are checked already, or the head's
        const std::uint64_t word = (ZelLoadWord<std::uint64_t>(last) >> known ^ check) << known;
        return ~static_cast<std::uint32_t>(ZelCrc32cStep(0, word) ^ check >> 1 >> (BITS - 1 - known));
    }
};

#else
using ByProcessor = ByTables;
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
    return g_hasCrc32c ? intact<ByProcessor>(data, length) : intact<ByTables>(data, length);
}

void RompSeal(unsigned char *data, std::size_t length) {
    return g_hasCrc32c ? seal<ByProcessor>(data, length) : seal<ByTables>(data, length);
}
