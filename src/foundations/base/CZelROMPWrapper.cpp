#include "foundations/base/CZelROMPWrapper.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace {

using View = CZelPageView;

void put(unsigned char *bytes, int count, std::uint64_t value) {
    for (int i = 0; i < count; ++i, value >>= 8)
        bytes[i] = static_cast<unsigned char>(value);
}

}  // namespace

CZelROMPWrapper::CZelROMPWrapper(const unsigned char *encoding, int totalLength, int offset) : m_condition(SOUND) {
    std::memset(m_page, 0, sizeof m_page);
    const int length = std::clamp(totalLength - offset, 0, SLICE_BYTES);
    m_page[View::MAGIC] = 'Z';
    m_page[View::MAGIC + 1] = 'P';
    m_page[View::VERSION] = View::LAYOUT_VERSION;
    put(m_page + View::NEXT, 4, LAST_PAGE);
    put(m_page + View::TOTAL, 4, static_cast<std::uint64_t>(std::max(totalLength, 0)));
    put(m_page + View::DATA, 4, static_cast<std::uint64_t>(length));
    put(m_page + View::REPLACED, 4, LAST_PAGE);
    if (length > 0)
        std::memcpy(m_page + HEADER_BYTES, encoding + offset, static_cast<std::size_t>(length));
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
    put(m_page + View::NEXT, 4, static_cast<std::uint64_t>(position));
}

void CZelROMPWrapper::RRWEmptyPacket() {
    std::memset(m_page, 0, sizeof m_page);
    m_condition = EMPTY;
}

void CZelROMPWrapper::RRWSetPosition(long position) {
    put(m_page + View::POSITION, 4, static_cast<std::uint64_t>(position));
}

void CZelROMPWrapper::RRWSetStamp(unsigned long long stamp) {
    put(m_page + View::STAMP, 8, stamp);
}

void CZelROMPWrapper::RRWSetReplaced(long position, unsigned long long stamp) {
    put(m_page + View::REPLACED, 4, static_cast<std::uint64_t>(position < 0 ? LAST_PAGE : position));
    put(m_page + View::REPLACED_STAMP, 8, stamp);
}

const unsigned char *CZelROMPWrapper::RRWGetData() {
    if (m_condition != EMPTY)
        put(m_page + View::CHECKSUM, 4, view().checksum());
    return m_page;
}
