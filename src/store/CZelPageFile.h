// A file of 512-byte pages (CZelROMPWrapper) that holds the encodings of records as chains of pages, and loses none
// of them whatever stops the process.
//
// Order of writes. A chain is written from its last page to its first, and the first page makes it count. A chain
// that replaces another names it on its first page; the other one is dead then, and is emptied after that, first page
// first. So at any moment every record has one chain that counts: whole, of one stamp, and not replaced by a whole
// chain.
//
// Dead chains. Where nothing is synced, emptying them is put off: their pages are free in their turn, and whatever
// stops the process, the next start finds them replaced. As a dead chain may be all that tells that another one is
// dead,
//  - dead chains go in the order in which they died, whether they are emptied or written over;
//  - all of them go before a chain that counts is released;
//  - a new chain is written over the oldest dead one when it takes just the pages of that one, which is broken then by
//    the first of them that is written; other dead chains are emptied before one of their pages is taken;
//  - a change begins with few of them, and a closed file has none.
// Where the policy syncs, a power cut could take the death of one chain back and leave that of a later one, so each is
// emptied at once, behind the sync that made its successor last.
//
// The file is owned while it is open: an advisory lock, mode 0600, closed on exec, no links followed. What has not been
// read in is not written over: a file that was opened to be kept and holds anything must be read first, otherwise it is
// treated as one that can't be read. It grows by 50
// pages at a time. Positions are byte offsets below 2^31; free ones are given out in ascending order, those given
// back come after them, oldest first.
//
// Damage. Reading follows no link off the grid, past the end, in a circle or into another chain, and trusts no
// length. A page whose checksum fails and the pages of chains that don't count stay out of use until the file goes.
//
// Failures are reported here, with path or errno as told, and given back as codes. Not thread-safe.
#pragma once

#include <cstddef>
#include <deque>
#include <string>
#include <vector>

#include "foundations/base/ZelEnums.h"
#include "foundations/port/ZelExport.h"
#include "foundations/port/ZelFile.h"

class CZelPageMap;

// Pages of a file by what they are used for.
struct SZelPageCounts {
    long m_used = 0;      // of chains that count
    long m_free = 0;      // empty, those of replaced chains, and those handed out by growth and not yet written
    long m_outOfUse = 0;  // of chains that don't count
    long m_damaged = 0;   // of those out of use: the checksum fails
};

class QUINTOR_API CZelPageFile {
public:
    static constexpr long NO_POSITION = -1;
    static constexpr long PAGES_AT_ONCE = 50;
    static constexpr long PAGES_AT_MOST = 4194303;
    static constexpr long DEAD_AT_MOST = 100;  // pages; a table without deletes has hardly more free ones

    // Who takes the records of a file that is read at start.
    class QUINTOR_API Reader {
    public:
        virtual ~Reader();
        // A chain that counts. The bytes are valid during the call. False: no record, its pages go out of use.
        virtual bool takeChain(long start, const unsigned char *encoding, int length) = 0;

        // Most records are of one page and could be read while it is not yet known which chains count. A large file
        // is looked through in several parts at the same time, each by one thread and in the order of the file.
        // True: the record is known; if it counts, takeSeen is called, in the place of takeChain. Mostly all records
        // are known and count: then takeAllSeen is called and nothing else; false asks for the calls one by one.
        virtual void beginParts(std::size_t parts, std::size_t recordsAtMost);  // in each
        virtual bool look(std::size_t part, long start, const unsigned char *encoding, int length);
        virtual bool takeSeen(long start, int length);
        virtual bool takeAllSeen();
    };

    // Who is shown many records of an open file.
    class QUINTOR_API Viewer {
    public:
        virtual ~Viewer();
        virtual void beginParts(std::size_t parts) = 0;
        // From here on by several threads, each for a part of its own; the caller's has the first.
        virtual void beginPart(std::size_t part);
        virtual bool wants(std::size_t page) const = 0;
        // Each wanted page is shown or left, to one thread in the order of the file. The bytes are valid during the
        // call.
        virtual void view(std::size_t part, std::size_t page, const unsigned char *encoding, int length) = 0;
        virtual void leave(std::size_t part, std::size_t page);
    };

    CZelPageFile() = default;
    CZelPageFile(const CZelPageFile &) = delete;
    CZelPageFile &operator=(const CZelPageFile &) = delete;
    ~CZelPageFile();

    // Opens or makes the file and locks it. `keep` false: what it holds is thrown away, once the lock is held.
    // 1; E_RCOpenFailed, reported with path and strerror, or with the process id of the owner.
    int open(const char *path, bool keep);

    // Reads the whole file in large blocks. Dead chains are emptied. 1; E_RCOpenFailed when its size is unknown or
    // no multiple of 512, or it can't be read: then it stays as found, and the first write moves it aside and starts a
    // new file.
    int readAll(Reader &reader);

    // Writes a chain; `replaced`, if not NO_POSITION, is the start of the one that it takes the place of. 1 and
    // *start; E_RCPageWrite, E_RCNoHandle: nothing of it stays, the replaced chain stands. Nothing is written where the
    // replaced chain holds the same bytes: it stays, and *start is its own.
    // `stamp`, if given: that of the replaced chain, which needs not be read then; 0 when it is not known. Becomes that
    // of the chain at *start, or 0 when it has several pages.
    int write(const unsigned char *encoding, int length, long replaced, long *start,
              unsigned long long *stamp = nullptr);
    // The same for a caller who knows that the replaced chain holds the same bytes.
    int writeNothing();

    // The encoding of the chain, good until the next call. 1; E_RCBadValue (broken chain), E_RCPageRead.
    int look(long start, const unsigned char **encoding, int *length);
    // The same as a copy from malloc.
    int read(long start, unsigned char **encoding, int *length);

    // Reads through the file in parts, each from front to back, and shows the records that begin at the wanted pages.
    // Nothing is reported: what is left lies in several places or can't be read, and is to be looked at by itself.
    void lookThrough(Viewer &viewer) const;
    std::size_t partsToLookThrough() const;

    // Empties a chain, first page first, and gives its pages back. 1; E_RCPageRead, E_RCPageWrite: the chain stands;
    // E_RCBadValue (broken chain).
    int release(long start);

    // Syncs by the policy and closes. 1, or E_RCCacheClose, reported. Nothing on a closed file.
    int close();

    bool isOpen() const { return m_file != ZEL_NO_FILE; }
    const SZelPageCounts &counts() const { return m_counts; }

    // Adds every page of a file to the map and settles it. The file is only read, under no lock. *owner: the id of the
    // process that has it open, or 0. 1; E_RCOpenFailed, E_RCMalformed (its size is no multiple of 512, or too large),
    // reported.
    static int inspect(const char *path, CZelPageMap &map, long *owner);

private:
    struct Window;
    struct Survey;

    // Opening, growing, closing.
    void startAfresh();
    int openOwned(const char *path);
    int openLocked(const char *path);
    int refuse(const char *path, const std::string &reason) const;
    void syncFolder();
    int moveAside();
    int makeWay();
    int startAnew();
    int prepareToWrite();
    int reserve(std::size_t pages);
    void takeReserved();

    // Recovery.
    int mapPages(CZelPageMap &map, Reader *reader);
    void takeChains(CZelPageMap &map, Reader &reader);
    bool takeChain(const CZelPageMap &map, Window &window, long start, Reader &reader);
    bool takeAgain(const CZelPageMap &map, Window &window, long start, Reader &reader);
    bool takePage(const unsigned char *bytes, int total, long position, Reader &reader);
    bool leaveOut() const;
    void takeCounts(const CZelPageMap &map);
    void takeFreePages(const CZelPageMap &map);

    // Chains.
    void layOut(const unsigned char *encoding, int length, long replaced, unsigned long long replacedStamp);
    int lookUpFormer(long start, unsigned long long stamp);
    bool holds(const unsigned char *encoding, int length) const;
    int confirm();
    int writePages(const std::vector<long> &chain, std::size_t from, std::size_t to);
    int writeWhole(bool replaces);
    int writeChain();
    void undo();
    bool putBack(const unsigned char *first);
    int empty(const std::vector<long> &chain);
    int disown(const std::vector<long> &chain);
    void emptyRest(const std::vector<long> &chain);
    void giveBack(const std::vector<long> &chain);
    int emptyPending();

    // Dead chains.
    void bury();
    int clearReserved();
    int emptyOldest();
    int emptyDead(long pagesAtMost);
    void forgetOldest();

    // Reading.
    bool isStart(long position) const;
    int follow(long start);  // fills m_chain and m_bytes with the positions and bytes of a chain that is whole
    int followOn();
    int broken() const;
    void lookAhead(long start);
    bool isAhead(long position, long bytes) const;
    void forgetAhead();
    void renewAhead(const unsigned char *bytes, long count, long position);
    long readPages(unsigned char *place, std::size_t pages, long position);

    int sync();
    int failSync();
    int fail(int code, const char *what) const;

    ZelFileHandle m_file = ZEL_NO_FILE;
    std::string m_path;
    SZelPageCounts m_counts;
    EZelSyncPolicy m_policy = E_SPOff;         // the process's at opening
    bool m_isKept = true;                      // is anything to be found again?
    bool m_isForeign = false;                  // not read in: to be moved aside before the first write
    bool m_formerMayReturn = false;            // a replaced chain has been emptied since the last sync
    bool m_hasFailedSync = false;              // nothing is written any more
    long m_pageCount = 0;                      // of the file, handed out or not
    unsigned long long m_stamp = 0;            // the last one given
    std::deque<long> m_free;                   // positions, in the order in which they are given out
    std::vector<std::vector<long>> m_pending;  // chains that must go before anything is written
    std::deque<std::vector<long>> m_dead;      // replaced chains that still stand, in the order in which they died
    long m_deadPages = 0;                      // of these; they are in m_free too, in the same order
    std::vector<long> m_spare;                 // memory for the next
    std::vector<long> m_former;                // the chain that is being replaced; none: empty
    unsigned long long m_formerStamp = 0;
    std::vector<long> m_chain;           // positions of the chain at hand
    std::vector<unsigned char> m_bytes;  // its pages, one after the other
    std::vector<unsigned char> m_ahead;  // pages from m_aheadStart on, while chains are read in the file's order
    long m_aheadStart = 0;
    long m_aheadBytes = 0;       // 0: none
    int m_readsInOrder = 0;      // of late
    long m_endOfRun = 0;         // position behind the last of them
    long m_whole = NO_POSITION;  // start of the chain that m_chain and m_bytes hold as it stands in the file
    unsigned long long m_wholeStamp = 0;
    std::vector<unsigned char> m_encoding;  // what it encodes, if it is of several pages
};
