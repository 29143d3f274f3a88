// Reads one page of a cache file where it lies. CZelROMPWrapper, which writes pages, tells the layout.
//
// Refers to the bytes, which outlive it and stay as they are.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

#include "foundations/port/ZelExport.h"

class QUINTOR_API CZelPageView {
public:
    static constexpr int PAGE_BYTES = 512;
    static constexpr int HEADER_BYTES = 44;
    static constexpr long LAST_PAGE = 2147483647;  // the next position of the last page of a chain

    // What a page can be found to be.
    enum Condition {
        EMPTY,    // belongs to no record; a page of zeros too
        SOUND,    // checksum, lengths and links make sense
        DAMAGED,  // anything else: its fields say nothing
    };

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
    static constexpr unsigned char LAYOUT_VERSION = 1;
    static constexpr unsigned char IS_FIRST = 1;

    explicit CZelPageView(const unsigned char *page) : m_page(page) {}

    Condition condition() const;
    bool isSoundAt(long position) const { return this->position() == position && condition() == SOUND; }
    std::uint32_t checksum() const;  // as it should be

    bool isFirst() const { return (m_page[FLAGS] & IS_FIRST) != 0; }
    int dataLength() const { return static_cast<int>(get<std::uint32_t>(DATA)); }    // bytes of the slice
    int totalLength() const { return static_cast<int>(get<std::uint32_t>(TOTAL)); }  // of the whole encoding
    const unsigned char *slice() const { return m_page + HEADER_BYTES; }
    long next() const { return static_cast<long>(get<std::uint32_t>(NEXT)); }
    long position() const { return static_cast<long>(get<std::uint32_t>(POSITION)); }
    unsigned long long stamp() const { return get<std::uint64_t>(STAMP); }
    long replaced() const {  // -1: nothing
        const auto position = static_cast<long>(get<std::uint32_t>(REPLACED));
        return position == LAST_PAGE ? -1 : position;
    }
    unsigned long long replacedStamp() const { return get<std::uint64_t>(REPLACED_STAMP); }

private:
    template <class Number>
    Number get(Place place) const {
        Number number;
        std::memcpy(&number, m_page + place, sizeof number);
        if constexpr (std::endian::native == std::endian::big)
            number = sizeof number == 4 ? __builtin_bswap32(static_cast<std::uint32_t>(number))
                                        : __builtin_bswap64(static_cast<std::uint64_t>(number));
        return number;
    }
    bool fitsTogether() const;

    const unsigned char *m_page;
};
