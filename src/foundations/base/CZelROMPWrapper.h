// One page of a cache file: 512 bytes that hold a header and a slice of the encoding of one record. The pages of a
// record form a chain by position.
//
// Layout, little-endian: magic "ZP" and layout version, flags, position of the next page, length of the whole
// encoding, length of the slice, stamp of the chain, position and stamp of the chain that this one replaces (first
// page only), position of the page itself, CRC32C of the page with the checksum's own bytes as zeros; then the slice,
// then zeros. A page of zeros is an empty page. A page that lies elsewhere than it says is a copy that damage has
// made: with a checksum that holds, but perhaps of a record that has long been replaced.
//
// CRC32C: Castagnoli's polynomial as RFC 3720, appendix B.4, tells it.
#pragma once

#include "foundations/base/CZelListable.h"
#include "foundations/base/CZelPageView.h"
#include "foundations/base/ZelEnums.h"
#include "foundations/port/ZelExport.h"

class QUINTOR_API CZelROMPWrapper : public CZelListable {
public:
    static constexpr int PAGE_BYTES = CZelPageView::PAGE_BYTES;
    static constexpr int HEADER_BYTES = CZelPageView::HEADER_BYTES;
    static constexpr int SLICE_BYTES = PAGE_BYTES - HEADER_BYTES;
    static constexpr long LAST_PAGE = CZelPageView::LAST_PAGE;

    using Condition = CZelPageView::Condition;
    static constexpr Condition EMPTY = CZelPageView::EMPTY;
    static constexpr Condition SOUND = CZelPageView::SOUND;
    static constexpr Condition DAMAGED = CZelPageView::DAMAGED;

    // Wraps as much of the encoding from `offset` on as fits; the bytes are copied.
    CZelROMPWrapper(const unsigned char *encoding, int totalLength, int offset);
    explicit CZelROMPWrapper(const unsigned char *page);  // copies a page that was read
    CZelListable *RLTargetDeepCopy(const CZelListable *source) const override;

    Condition RRWCondition() const { return m_condition; }

    void RRWSetIsFirstPkt(__boolean first);
    __boolean RRWGetIsFirstPkt() const;
    int RRWGetDataLen() const { return view().dataLength(); }               // bytes of the encoding in this page
    int RRWGetTotalLen() const { return view().totalLength(); }             // bytes of the whole encoding
    const unsigned char *RRWGetROMPData() const { return view().slice(); }  // the slice
    long RRWGetNextPkt() const { return view().next(); }                    // position of the next page
    long RRWGetNextPktMax() const { return LAST_PAGE; }
    void RRWSetNextPkt(long position);
    void RRWEmptyPacket();
    __boolean RRWIsPacketEmpty() const { return ZelBool(m_condition == EMPTY); }

    long RRWGetPosition() const { return view().position(); }  // of this page
    void RRWSetPosition(long position);
    bool RRWIsSoundAt(long position) const { return m_condition == SOUND && RRWGetPosition() == position; }

    unsigned long long RRWGetStamp() const { return view().stamp(); }  // all pages of a chain share it
    void RRWSetStamp(unsigned long long stamp);
    long RRWGetReplaced() const {
        return view().replaced();
    }  // first position of the chain that this one replaces, or -1
    unsigned long long RRWGetReplacedStamp() const { return view().replacedStamp(); }
    void RRWSetReplaced(long position, unsigned long long stamp);

    // The whole page, its checksum brought up to date.
    const unsigned char *RRWGetData();

    // What a page of a chain says beside its slice.
    struct Header {
        bool m_isFirst = false;
        long m_next = LAST_PAGE;
        long m_position = 0;
        unsigned long long m_stamp = 0;
        long m_replaced = -1;  // none
        unsigned long long m_replacedStamp = 0;
    };
    // Lays out a whole page at `page`, with its checksum, as the constructor, the setters and RRWGetData would.
    static void RRWLayOut(unsigned char *page, const unsigned char *encoding, int totalLength, int offset,
                          const Header &header);

private:
    CZelPageView view() const { return CZelPageView(m_page); }

    unsigned char m_page[PAGE_BYTES];
    Condition m_condition;
};
