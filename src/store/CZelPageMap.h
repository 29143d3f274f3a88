// What the pages of a cache file are used for, found out from their headers alone: the file's pages are added, and then
// settled into chains that count, chains that a later one replaces, free pages and the rest.
//
// Works in one pass over the pages, whatever the links say: no page belongs to two chains, and none is walked twice.
//
// Threads: parts of the file may be added at the same time, a part by one thread; all else by one.
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

private:
    struct Page {
        std::uint64_t stamp = 0;
        std::uint32_t next = 0;  // page number
        std::uint32_t total = 0;
        std::uint16_t length = 0;
        Use use = DAMAGED;
        bool isFirst = false;
        bool isWalked = false;
        bool isSeen = false;
    };
    struct Note {
        long start;  // of the chain that bears the note
        long replaced;
        std::uint64_t stamp;
    };

public:
    // Pages that follow each other, added in the order of the file.
    class QUINTOR_API Part {
    public:
        Part(CZelPageMap &map, long first) : m_map(map), m_next(first) {}
        void add(const CZelPageView &page);
        long next() const { return m_next; }  // page to be added
        bool isWholeRecord() const;           // Is the page that was added last a chain by itself?
        void noteSeen();                      // of that page: its record needs not be read again

    private:
        friend class CZelPageMap;
        void addSound(const CZelPageView &page);

        CZelPageMap &m_map;
        long m_next;
        std::vector<long> m_firsts;
        std::vector<Note> m_notes;
        std::uint64_t m_highestStamp = 0;
    };

    void begin(long pages) { m_pages.assign(static_cast<std::size_t>(pages), Page()); }
    void settle(const std::vector<Part> &parts);  // all of the file, in its order

    long length() const { return static_cast<long>(m_pages.size()); }
    Use use(long page) const { return m_pages[static_cast<std::size_t>(page)].use; }
    long next(long page) const;  // the next page of the chain, or -1
    bool isSeen(long start) const { return m_pages[static_cast<std::size_t>(start)].isSeen; }
    int total(long start) const { return static_cast<int>(m_pages[static_cast<std::size_t>(start)].total); }
    std::uint64_t highestStamp() const { return m_highestStamp; }

    void setUse(long start, Use use);  // of all pages of a chain
    long count(Use use) const;

    // First pages: of the chains that count, in the order of the file; of those that are replaced, youngest first.
    const std::vector<long> &starts() const { return m_starts; }
    const std::vector<long> &replaced() const { return m_replaced; }

private:
    bool walk(long start);
    void dropReplaced(const std::vector<Note> &notes);

    std::vector<Page> m_pages;
    std::vector<long> m_starts;
    std::vector<long> m_replaced;
    std::uint64_t m_highestStamp = 0;
};
