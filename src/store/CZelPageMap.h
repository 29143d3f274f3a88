// What the pages of a cache file are used for, found out from their headers alone: pages are added in the order of
// the file, and then settled into chains that count, chains that a later one replaces, free pages and the rest.
//
// Works in one pass over the pages, whatever the links say: no page belongs to two chains, and none is walked twice.
#pragma once

#include <cstdint>
#include <vector>

#include "foundations/port/ZelExport.h"

class CZelPageView;

class QUINTOR_API CZelPageMap {
public:
    enum Use : unsigned char {
        FREE,
        DAMAGED,
        OUT_OF_USE,   // of a chain that is not whole
        CHAIN_START,  // of a chain that counts, like the next
        CHAIN_PAGE,
        REPLACED,  // of a whole chain that a later one replaces
    };

    void reserve(long pages);
    void add(const CZelPageView &page);
    void settle();

    long length() const { return static_cast<long>(m_pages.size()); }
    Use use(long page) const { return m_pages[static_cast<std::size_t>(page)].use; }
    long next(long page) const;  // the next page of the chain, or -1
    int total(long start) const { return static_cast<int>(m_pages[static_cast<std::size_t>(start)].total); }
    std::uint64_t highestStamp() const { return m_highestStamp; }

    void setUse(long start, Use use);  // of all pages of a chain
    long count(Use use) const;

    // First pages: of the chains that count, in the order of the file; of those that are replaced, youngest first.
    const std::vector<long> &starts() const { return m_starts; }
    const std::vector<long> &replaced() const { return m_replaced; }

private:
    struct Page {
        std::uint64_t stamp = 0;
        std::uint32_t next = 0;  // page number
        std::uint32_t total = 0;
        std::uint16_t length = 0;
        Use use = DAMAGED;
        bool isFirst = false;
        bool isWalked = false;
    };
    struct Note {
        long start;  // of the chain that bears the note
        long replaced;
        std::uint64_t stamp;
    };

    bool walk(long start);
    void dropReplaced();

    std::vector<Page> m_pages;
    std::vector<long> m_firsts;
    std::vector<Note> m_notes;
    std::vector<long> m_starts;
    std::vector<long> m_replaced;
    std::uint64_t m_highestStamp = 0;
};
