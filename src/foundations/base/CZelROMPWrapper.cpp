#include "foundations/base/CZelROMPWrapper.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "foundations/base/ZelCrc32c.h"

namespace {

// Where the fields lie.
enum Place : int {
    MAGIC = 0,    // two bytes
    VERSION = 2,  // one byte
    FLAGS = 3,    // one byte
    NEXT = 4,     // four bytes, like the next two
    TOTAL = 8,
    DATA = 12,
    STAMP = 16,           // eight bytes
    REPLACED = 24,        // four bytes
    REPLACED_STAMP = 28,  // eight bytes
    POSITION = 36,        // four bytes
    CHECKSUM = 40         // four bytes
};

constexpr unsigned char LAYOUT_VERSION = 1;
constexpr unsigned char IS_FIRST = 1;

std::uint64_t get(const unsigned char *bytes, int count) {
    std::uint64_t value = 0;
    for (int i = count - 1; i >= 0; --i)
        value = value << 8 | bytes[i];
    return value;
}

void put(unsigned char *bytes, int count, std::uint64_t value) {
    for (int i = 0; i < count; ++i, value >>= 8)
        bytes[i] = static_cast<unsigned char>(value);
}

bool isZero(const unsigned char *page, int count) {
    return page[0] == 0 && std::memcmp(page, page + 1, static_cast<std::size_t>(count) - 1) == 0;
}

// The checksum of a page whose own four bytes are taken as zeros.
std::uint32_t checksumOf(const unsigned char *page) {
    unsigned char copy[CZelROMPWrapper::PAGE_BYTES];
    std::memcpy(copy, page, sizeof copy);
    put(copy + CHECKSUM, 4, 0);
    return ZelCrc32c(copy, sizeof copy);
}

bool isPosition(std::uint64_t position) {
    return position % CZelROMPWrapper::PAGE_BYTES == 0 && position < CZelROMPWrapper::LAST_PAGE;
}

}  // namespace

CZelROMPWrapper::CZelROMPWrapper(const unsigned char *encoding, int totalLength, int offset) : m_condition(SOUND) {
    std::memset(m_page, 0, sizeof m_page);
    const int length = std::clamp(totalLength - offset, 0, SLICE_BYTES);
    m_page[MAGIC] = 'Z';
    m_page[MAGIC + 1] = 'P';
    m_page[VERSION] = LAYOUT_VERSION;
    put(m_page + NEXT, 4, LAST_PAGE);
    put(m_page + TOTAL, 4, static_cast<std::uint64_t>(std::max(totalLength, 0)));
    put(m_page + DATA, 4, static_cast<std::uint64_t>(length));
    put(m_page + REPLACED, 4, LAST_PAGE);
    if (length > 0)
        std::memcpy(m_page + HEADER_BYTES, encoding + offset, static_cast<std::size_t>(length));
}

CZelROMPWrapper::CZelROMPWrapper(const unsigned char *page) {
    std::memcpy(m_page, page, sizeof m_page);
    m_condition = examine();
}

CZelListable *CZelROMPWrapper::RLTargetDeepCopy(const CZelListable * /*source*/) const {
    return new CZelROMPWrapper(*this);
}

CZelROMPWrapper::Condition CZelROMPWrapper::examine() const {
    if (isZero(m_page, PAGE_BYTES))
        return EMPTY;
    const bool isOurs = m_page[MAGIC] == 'Z' && m_page[MAGIC + 1] == 'P' && m_page[VERSION] == LAYOUT_VERSION;
    if (!isOurs || get(m_page + CHECKSUM, 4) != checksumOf(m_page))
        return DAMAGED;
    const std::uint64_t next = get(m_page + NEXT, 4), replaced = get(m_page + REPLACED, 4);
    const std::uint64_t total = get(m_page + TOTAL, 4), length = get(m_page + DATA, 4);
    const bool isSound = total > 0 && total <= LAST_PAGE && length > 0 && length <= SLICE_BYTES && length <= total &&
                         (next == LAST_PAGE || isPosition(next)) && (replaced == LAST_PAGE || isPosition(replaced));
    return isSound ? SOUND : DAMAGED;
}

void CZelROMPWrapper::RRWSetIsFirstPkt(__boolean first) {
    m_page[FLAGS] =
        first == E_RBTrue ? m_page[FLAGS] | IS_FIRST : m_page[FLAGS] & static_cast<unsigned char>(~IS_FIRST);
}

__boolean CZelROMPWrapper::RRWGetIsFirstPkt() const {
    return ZelBool(m_condition == SOUND && (m_page[FLAGS] & IS_FIRST) != 0);
}

int CZelROMPWrapper::RRWGetDataLen() const {
    return static_cast<int>(get(m_page + DATA, 4));
}

int CZelROMPWrapper::RRWGetTotalLen() const {
    return static_cast<int>(get(m_page + TOTAL, 4));
}

const unsigned char *CZelROMPWrapper::RRWGetROMPData() const {
    return m_page + HEADER_BYTES;
}

long CZelROMPWrapper::RRWGetNextPkt() const {
    return static_cast<long>(get(m_page + NEXT, 4));
}

void CZelROMPWrapper::RRWSetNextPkt(long position) {
    put(m_page + NEXT, 4, static_cast<std::uint64_t>(position));
}

void CZelROMPWrapper::RRWEmptyPacket() {
    std::memset(m_page, 0, sizeof m_page);
    m_condition = EMPTY;
}

long CZelROMPWrapper::RRWGetPosition() const {
    return static_cast<long>(get(m_page + POSITION, 4));
}

void CZelROMPWrapper::RRWSetPosition(long position) {
    put(m_page + POSITION, 4, static_cast<std::uint64_t>(position));
}

unsigned long long CZelROMPWrapper::RRWGetStamp() const {
    return get(m_page + STAMP, 8);
}

void CZelROMPWrapper::RRWSetStamp(unsigned long long stamp) {
    put(m_page + STAMP, 8, stamp);
}

long CZelROMPWrapper::RRWGetReplaced() const {
    const auto position = static_cast<long>(get(m_page + REPLACED, 4));
    return position == LAST_PAGE ? -1 : position;
}

unsigned long long CZelROMPWrapper::RRWGetReplacedStamp() const {
    return get(m_page + REPLACED_STAMP, 8);
}

void CZelROMPWrapper::RRWSetReplaced(long position, unsigned long long stamp) {
    put(m_page + REPLACED, 4, static_cast<std::uint64_t>(position < 0 ? LAST_PAGE : position));
    put(m_page + REPLACED_STAMP, 8, stamp);
}

const unsigned char *CZelROMPWrapper::RRWGetData() {
    if (m_condition != EMPTY)
        put(m_page + CHECKSUM, 4, checksumOf(m_page));
    return m_page;
}
