// The rows of a cached table: some of them in memory, the rest in a paged file, within a limit of bytes or of a
// share. A persistent cache has every row in its file at all times and finds it there at the next start.
//
// A row is known by its handle, a long atom that lives as long as the row and belongs to the cache. Handles are new
// at each start. The size of a row is the length of its encoding.
//
// Threads: none of its own lock, and reads change it: the table's lock is held as writer around every call. A record
// that belongs to the cache is valid until the next call.
#pragma once

#include <string>
#include <vector>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/ZelEnums.h"
#include "foundations/port/ZelExport.h"
#include "store/CZelEvictionHeap.h"
#include "store/CZelHandleTable.h"
#include "store/CZelPageFile.h"

class CZelCachedRecord;
class CZelDoubleList;
class CZelROMPer;
class CZelRecord;
class CZelRowKeys;

enum EZelRecordCacheType : int {
    E_RCTNotCreated = 1,
    E_RCTBySize = 2,
    E_RCTByProportion = 3,
    E_RCTAllInCore = 4,
    E_RCTAllOnDisk = 5
};

// A row where it lies: its record, if that is in memory, otherwise its encoding.
struct SZelCachedRow {
    CZelRecord *m_record = nullptr;  // the cache's
    const unsigned char *m_encoding = nullptr;
    int m_length = 0;
};

// What a cache uses, for who watches it.
struct SZelCacheUse {
    EZelRecordCacheType m_type = E_RCTNotCreated;
    __boolean m_persistent = E_RBFalse;
    long m_rows = 0;
    unsigned long long m_bytes = 0;        // of all rows
    unsigned long long m_inCoreBytes = 0;  // of the rows in memory
    SZelPageCounts m_pages;                // zeros without a file
};

class QUINTOR_API CZelRecordCache {
public:
    explicit CZelRecordCache(long rowsAtMost = CZelHandleTable::AT_MOST);
    CZelRecordCache(const CZelRecordCache &) = delete;
    CZelRecordCache &operator=(const CZelRecordCache &) = delete;
    ~CZelRecordCache();  // closes the file, and deletes it if it is marked

    // Opens the file `name` in the location and, if persistent, reads it. A share of 1 keeps all in memory, of 0 (and
    // no bytes) all on disk. 1; E_RCBadArgument when it has been created before or has no name or location;
    // E_RCOpenFailed; E_RCMalformed for a file that can't be read in: the cache then exists and is empty. After any
    // other failure it exists and can't write. All reported. `keys`, if given, gets what the rows found have in its
    // columns.
    int RRCCreateByPropn(const char *name, float proportion, __boolean persistent, CZelRowKeys *keys = nullptr);
    int RRCCreateBySize(const char *name, unsigned long long bytes, __boolean persistent, CZelRowKeys *keys = nullptr);

    // `copy`: the record stays the caller's and the cache makes one of its own. Otherwise the cache takes it over,
    // on failure too. 1; E_RCPageWrite, E_RCNoHandle: nothing is stored, and an updated row keeps what it had. The
    // same for a record with a value that can't be packed (E_RCBadValue) and for an unknown handle (E_RCBadArgument).
    int RRCCacheRecord(CZelRecord *record, CZelAtom **handle, __boolean copy);
    int RRCUpdateRecord(CZelRecord *record, CZelAtom *handle, __boolean copy);  // the handle stays
    // 1, also for a handle that is not known; the handle is the cache's again and may be given out anew.
    // E_RCPageRead, E_RCPageWrite: the row could not be taken out of the file, and stays.
    int RRCDeleteRecord(CZelAtom *handle);

    // A copy, the caller's; null for an unknown handle, and for one that can't be read (reported).
    CZelRecord *RRCRetrieveRecord(CZelAtom *handle);
    // In: does the caller want a record of its own? Out: does it own what it got?
    CZelRecord *RRCRetrieveRecord(CZelAtom *handle, bool &copy);
    CZelAtom *RRCRetrieveROMP(CZelAtom *handle);  // a new data atom; counts as no access

    // For walks of many rows, which would turn out of memory what is used more often: a row that is in memory counts
    // as accessed, one that is not stays in the file. What is found is good until the next call. False for an unknown
    // handle, and for a row that can't be read (reported).
    bool RRCLookAt(CZelAtom *handle, SZelCachedRow &row);
    CZelRecord *RRCCopyRecord(CZelAtom *handle);  // the caller's; null where RRCLookAt fails or the row is damaged
    static CZelRecord *RRCCopyOf(const SZelCachedRow &row);  // null where it is damaged (reported)

    // For who goes through many rows that lie far apart in memory: asks for the record of one some rows before it is
    // worked on, when its handle has had time to come. Requires: a row has, or had, the handle.
    void RRCAskForRecord(const CZelAtom &handle) const { m_handles.askForRecord(handle.RALong()); }
    void RRCAskForValues(const CZelAtom &handle) const;  // when the record has had time too

    // Brings in what a walk that retrieves every row would leave in memory; nothing when a row is in memory already.
    void RRCFillMemory();

    // For walks that read the file from front to back: all rows by the numbers of their handles, those in memory and
    // the others by the pages that they begin at. Not of a cache that keeps all in memory.
    static constexpr int NO_ROW = -1;
    bool RRCHasPlaces() const { return m_type != E_RCTAllInCore; }
    std::vector<int> RRCInMemory() const;
    const std::vector<int> &RRCAtPages() const { return m_atPage; }  // by page; NO_ROW: none begins here
    bool RRCLookAtPage(std::size_t page, SZelCachedRow &row);        // as RRCLookAt. Requires: a row begins here
    void RRCLookThrough(CZelPageFile::Viewer &viewer) const { m_file.lookThrough(viewer); }
    std::size_t RRCParts() const { return m_file.partsToLookThrough(); }          // of such a look
    CZelAtom *RRCHandle(int number) const { return m_handles.handleAt(number); }  // Requires: a row has it
    const CZelRecord *RRCRecordInMemory(int number) const;  // the cache's; counts as no access; null: none is there
    std::size_t RRCNumbers() const { return static_cast<std::size_t>(m_handles.end()); }  // all numbers are below it

    CZelDoubleList *RRCHandleIterator();  // of CZelPointer to handle atoms, in order; null before creation
    int RRCLength() const { return m_handles.length(); }  // rows
    __boolean RRCInitialisedFromDisk() const { return m_initialisedFromDisk; }
    SZelCacheUse RRCUse() const;

    void RRCDeleteCacheFile() { m_deleteFile = E_RBTrue; }  // when the cache is destroyed
    static void RRCDeleteCacheFile(const char *path);       // now; a file that is not there is no failure
    void RRCSetFileLocation(const char *folder);            // with its trailing separator; copied
    const char *RRCGetFileLocation() const { return m_location; }

private:
    class FileReader;
    class Filler;
    struct Place {  // of a chain, as the page file tells it
        long m_start = CZelPageFile::NO_POSITION;
        unsigned long long m_stamp = 0;
    };

    int create(const char *name, __boolean persistent, CZelRowKeys *keys);
    void setProportion(float proportion);
    void setBytes(unsigned long long bytes);
    void setName(const char *name);
    std::string path() const;
    int openFile();
    int readFile(CZelRowKeys *keys);

    bool isBounded() const { return m_type == E_RCTBySize || m_type == E_RCTByProportion; }
    bool writesThrough() const { return m_type == E_RCTAllOnDisk || m_persistent == E_RBTrue; }
    CZelCachedRecord *entryOf(const CZelAtom *handle, int code) const;
    int pack(const CZelRecord *record, CZelROMPer &packet) const;
    int prepare(const CZelRecord &record, CZelROMPer &packet, const CZelCachedRecord *former, Place &place);
    bool holds(const CZelCachedRecord &entry, const CZelRecord &record, CZelROMPer &packet) const;
    CZelCachedRecord newEntry(CZelRecord *record, __boolean copy, const Place &place, int size);
    void askForOldest() const;
    void askForItsValues() const;
    void enter(CZelCachedRecord &entry);
    void leave(CZelCachedRecord &entry);
    void setAtPage(long start, int number);

    static int numberOf(const CZelCachedRecord &entry) { return static_cast<int>(CZelHandleTable::numberOf(entry)); }

    bool lookAtFile(long start, SZelCachedRow &row);
    CZelRecord *readFromDisk(const CZelCachedRecord &entry);
    CZelRecord *fetch(CZelCachedRecord &entry, bool &copy);
    void bringIn(CZelCachedRecord &entry, CZelRecord *record, bool copy);
    void touch(CZelCachedRecord &entry);

    bool needsRoom(unsigned long long size) const { return isFull(m_inCoreBytes, size); }
    bool isFull(unsigned long long inCoreBytes, unsigned long long size) const;
    int makeRoom(unsigned long long size);
    static void reportNothingToEvict();
    int evict(CZelCachedRecord &entry);
    const CZelPointer *firstToStay() const;
    const CZelPointer *firstOfShare() const;
    const CZelPointer *firstOfBytes() const;
    unsigned long long sizeOf(const CZelPointer *node) const;

    EZelRecordCacheType m_type = E_RCTNotCreated;
    __boolean m_persistent = E_RBFalse;
    char *m_name = nullptr;      // of the file; from malloc
    char *m_location = nullptr;  // from malloc
    CZelPageFile m_file;
    float m_proportion = 1.0F;
    unsigned long long m_byteLimit = 0;
    unsigned long long m_totalBytes = 0;
    unsigned long long m_inCoreBytes = 0;
    CZelHandleTable m_handles;          // and the entries
    CZelEvictionHeap m_inCore;          // entries in memory, of a cache that evicts
    std::vector<int> m_atPage;          // for each page the number of the row that begins there and is not in memory
    unsigned long long m_arrivals = 0;  // counted, so that entries know their order
    __boolean m_initialisedFromDisk = E_RBFalse;
    __boolean m_deleteFile = E_RBFalse;
};
