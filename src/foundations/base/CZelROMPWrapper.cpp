#include "foundations/base/CZelROMPWrapper.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

namespace {

using View = CZelPageView;

template <class Number>
void put(unsigned char *place, Number number) {
    if constexpr (std::endian::native == std::endian::big)
        number = sizeof number == 4 ? static_cast<Number>(__builtin_bswap32(static_cast<std::uint32_t>(number)))
                                    : static_cast<Number>(__builtin_bswap64(number));
    std::memcpy(place, &number, sizeof number);
}

void putPosition(unsigned char *place, long position) {
    put(place, static_cast<std::uint32_t>(position < 0 ? View::LAST_PAGE : position));
}

// A page with no more than its slice. All but the header is written once: what is not slice is zeros.
void begin(unsigned char *page, const unsigned char *encoding, int totalLength, int offset) {
    const int length = std::clamp(totalLength - offset, 0, View::PAGE_BYTES - View::HEADER_BYTES);
    unsigned char *slice = page + View::HEADER_BYTES;
    std::memset(page, 0, View::HEADER_BYTES);
    if (length > 0)
        std::memcpy(slice, encoding + offset, static_cast<std::size_t>(length));
    std::memset(slice + length, 0, static_cast<std::size_t>(View::PAGE_BYTES - View::HEADER_BYTES - length));
    page[View::MAGIC] = 'Z';
    page[View::MAGIC + 1] = 'P';
    page[View::VERSION] = View::LAYOUT_VERSION;
    putPosition(page + View::NEXT, View::LAST_PAGE);
    put(page + View::TOTAL, static_cast<std::uint32_t>(std::max(totalLength, 0)));
    put(page + View::DATA, static_cast<std::uint32_t>(length));
    putPosition(page + View::REPLACED, View::LAST_PAGE);
}

void putReplaced(unsigned char *page, long position, unsigned long long stamp) {
    putPosition(page + View::REPLACED, position);
    put(page + View::REPLACED_STAMP, std::uint64_t{stamp});
}

}  // namespace

CZelROMPWrapper::CZelROMPWrapper(const unsigned char *encoding, int totalLength, int offset) : m_condition(SOUND) {
    begin(m_page, encoding, totalLength, offset);
}

CZelROMPWrapper::CZelROMPWrapper(const unsigned char *page) {
    std::memcpy(m_page, page, sizeof m_page);
    m_condition = view().condition();
}

CZelListable *CZelROMPWrapper::RLTargetDeepCopy(const CZelListable * /*source*/) const {
    return new CZelROMPWrapper(*this);
}

void CZelROMPWrapper::RRWSetIsFirstPkt(__boolean first) {
    m_page[View::FLAGS] = first == E_RBTrue ? m_page[View::FLAGS] | View::IS_FIRST
                                            : m_page[View::FLAGS] & static_cast<unsigned char>(~View::IS_FIRST);
}

__boolean CZelROMPWrapper::RRWGetIsFirstPkt() const {
    return ZelBool(m_condition == SOUND && view().isFirst());
}

void CZelROMPWrapper::RRWSetNextPkt(long position) {
    putPosition(m_page + View::NEXT, position);
}

void CZelROMPWrapper::RRWEmptyPacket() {
    std::memset(m_page, 0, sizeof m_page);
    m_condition = EMPTY;
}

void CZelROMPWrapper::RRWSetPosition(long position) {
    putPosition(m_page + View::POSITION, position);
}

void CZelROMPWrapper::RRWSetStamp(unsigned long long stamp) {
    put(m_page + View::STAMP, std::uint64_t{stamp});
}

void CZelROMPWrapper::RRWSetReplaced(long position, unsigned long long stamp) {
    putReplaced(m_page, position, stamp);
}

const unsigned char *CZelROMPWrapper::RRWGetData() {
    if (m_condition != EMPTY)
        put(m_page + View::CHECKSUM, view().checksum());
    return m_page;
}

void CZelROMPWrapper::RRWLayOut(unsigned char *page, const unsigned char *encoding, int totalLength, int offset,
                                const Header &header) {
    begin(page, encoding, totalLength, offset);
    page[View::FLAGS] = header.m_isFirst ? View::IS_FIRST : 0;
    putPosition(page + View::NEXT, header.m_next);
    putPosition(page + View::POSITION, header.m_position);
    put(page + View::STAMP, std::uint64_t{header.m_stamp});
    putReplaced(page, header.m_replaced, header.m_replacedStamp);
    put(page + View::CHECKSUM, View(page).checksum());
}
