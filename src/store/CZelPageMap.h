// What the pages of a cache file are used for, found out from their headers alone: the file's pages are added, and then
// settled into chains that count, chains that a later one replaces, free pages and the rest.
//
// Works in one pass over the pages, whatever the links say: no page belongs to two chains, and none is walked twice.
//
// Threads: parts of the file may be added at the same time, a part by one thread; all else by one.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
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
    static constexpr std::size_t USES = REPLACED + 1;
    using Counts = std::array<long, USES>;  // of pages by use

private:
    struct Page {
        std::uint64_t stamp;
        std::uint32_t next;  // page number
        std::uint32_t total;
        std::uint16_t length;
        Use use;
        bool isFirst;
        bool isWalked;
        bool isSeen;

        bool isWholeRecord() const;  // a first page that is a chain by itself
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
        void addSound(const CZelPageView &view, Page &page);

        CZelPageMap &m_map;
        alignas(64) long m_next;     // each part is written by a thread of its own
        std::vector<long> m_firsts;  // of chains of several pages
        std::vector<Note> m_notes;
        long m_unseen = 0;  // chains by themselves that nobody has seen
        Counts m_counts{};  // of the pages added
        std::uint64_t m_highestStamp = 0;
    };

    void begin(long pages);
    void settle(const std::vector<Part> &parts);  // all of the file, in its order

    long length() const { return m_length; }
    Use use(long page) const { return m_pages[static_cast<std::size_t>(page)].use; }
    long next(long page) const;  // the next page of the chain, or -1
    bool isSeen(long start) const { return m_pages[static_cast<std::size_t>(start)].isSeen; }
    int total(long start) const { return static_cast<int>(m_pages[static_cast<std::size_t>(start)].total); }
    std::uint64_t highestStamp() const { return m_highestStamp; }

    void setUse(long start, Use use);  // of all pages of a chain
    const Counts &counts() const { return m_counts; }
    long count(Use use) const { return m_counts[use]; }

    // First pages: of the chains that count, in the order of the file; of those that are replaced, youngest first.
    std::vector<long> starts() const;
    const std::vector<long> &replaced() const { return m_replaced; }

    // Has each chain that counts been seen, and nothing else?
    bool isAllSeen() const { return m_isAllSeen; }

private:
    Page &pageAt(long number) const { return m_pages[static_cast<std::size_t>(number)]; }
    void setUse(Page &page, Use use);
    bool walk(long start);
    void dropReplaced(const std::vector<Note> &notes);

    std::unique_ptr<Page[]> m_pages;  // each is first written by the part that it belongs to
    long m_length = 0;
    Counts m_counts{};  // once it is settled
    std::vector<long> m_replaced;
    bool m_isAllSeen = false;
    std::uint64_t m_highestStamp = 0;
};
