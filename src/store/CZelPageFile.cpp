// Opening, growing and closing.
#include "store/CZelPageFile.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>

#include "foundations/base/CZelROMPWrapper.h"
#include "foundations/base/CZelString.h"
#include "foundations/port/CZelError.h"
#include "foundations/port/CZelFileDescriptor.h"

namespace {

constexpr int PAGE = CZelROMPWrapper::PAGE_BYTES;
constexpr int OPEN_FLAGS = ZEL_FILE_READ | ZEL_FILE_WRITE | ZEL_FILE_CREATE | ZEL_FILE_NO_LINK;
constexpr int OWNER_ONLY = ZEL_FILE_OWNER_READ | ZEL_FILE_OWNER_WRITE;
constexpr int MOST_ASIDE = 1000;  // unreadable files of one table
constexpr int MOST_TRIES = 20;    // to open a file that others move or remove

// Opens a file, once more after making room for handles where there were none left.
ZelFileHandle openFile(const char *path, int flags) {
    ZelFileHandle file = ZelFileOpen(path, flags, OWNER_ONLY);
    if (file == ZEL_NO_FILE && CZelFileDescriptor::RFDIsUnavailable(errno) &&
        CZelFileDescriptor::RFDMakeAvailable() == E_FDOk)
        file = ZelFileOpen(path, flags, OWNER_ONLY);
    return file;
}

}  // namespace

CZelPageFile::Reader::~Reader() = default;

CZelPageFile::~CZelPageFile() {
    close();
}

int CZelPageFile::open(const char *path, bool keep) {
    if (path == nullptr || isOpen())
        return ZEL_FAIL(E_RCBadArgument, "CZelPageFile::open: no path, or open already");
    const int status = openOwned(path);
    if (status != 1)
        return status;
    startAfresh();
    m_path = path;
    m_policy = keep ? ZelGetSyncPolicy() : E_SPOff;
    m_isKept = keep;
    if (!keep && ZelFileTruncate(m_file, 0) != 1) {
        refuse(path, std::strerror(errno));
        ZelFileClose(m_file);
        m_file = ZEL_NO_FILE;
        return E_RCOpenFailed;
    }
    unsigned int size = 0;
    m_isForeign = ZelGetOpenFileSize(m_file, size) != 1 || size != 0;
    syncFolder();
    return 1;
}

// Forgets what a file that was open before has left.
void CZelPageFile::startAfresh() {
    m_counts = SZelPageCounts();
    m_hasFailedSync = m_formerMayReturn = false;
    m_pageCount = 0;
    m_stamp = 0;
    m_free.clear();
    m_pending.clear();
    m_dead.clear();
    m_deadPages = 0;
    m_whole = NO_POSITION;
    m_readsInOrder = 0;
    m_endOfRun = 0;
    forgetAhead();
}

// Whoever held the lock before may have moved or removed the file. Then the one that is there now is wanted.
int CZelPageFile::openOwned(const char *path) {
    for (int i = 0; i < MOST_TRIES; ++i) {
        const int status = openLocked(path);
        if (status != 1 || ZelFileIsAt(m_file, path))
            return status;
        ZelFileClose(m_file);
        m_file = ZEL_NO_FILE;
    }
    return refuse(path, "is moved or removed by other processes all the time");
}

// Nothing is changed in a file before the lock is held.
int CZelPageFile::openLocked(const char *path) {
    m_file = openFile(path, OPEN_FLAGS);
    if (m_file == ZEL_NO_FILE)
        return refuse(path, std::strerror(errno));
    long owner = 0;
    if (ZelFileLock(m_file, &owner) == 1)
        return 1;
    const std::string reason = errno != EAGAIN ? std::strerror(errno)
                               : owner == 0    ? "is in use by another process"
                                               : "is in use by process " + std::to_string(owner);
    ZelFileClose(m_file);
    m_file = ZEL_NO_FILE;
    return refuse(path, reason);
}

int CZelPageFile::refuse(const char *path, const std::string &reason) const {
    CZelString text(path);
    text.RSStrCat(' ');
    text.RSStrCat(reason.c_str());
    return ZEL_FAIL(E_RCOpenFailed, text.RSString());
}

// The file may be a new one, and is of no use after a power cut when its folder doesn't know it.
void CZelPageFile::syncFolder() {
    const std::string folder = m_path.substr(0, m_path.rfind('/') + 1);
    if (m_policy != E_SPOff && ZelFileSyncFolder(folder.empty() ? "." : folder.c_str()) != 1)
        (void)failSync();
}

int CZelPageFile::fail(int code, const char *what) const {
    const int reason = errno;
    CZelString text(m_path.c_str());
    text.RSStrCat(": ");
    text.RSStrCat(what);
    if (reason != 0) {
        text.RSStrCat(": ");
        text.RSStrCat(std::strerror(reason));
    }
    return ZEL_FAIL(code, text.RSString());
}

int CZelPageFile::close() {
    if (!isOpen())
        return 1;
    if (emptyPending() == 1)
        (void)emptyDead(0);
    const bool synced = !m_isKept || m_isForeign || ZelFileSync(m_file) == 1;
    errno = synced ? 0 : errno;
    const bool closed = ZelFileClose(m_file) == 1;
    m_file = ZEL_NO_FILE;
    return synced && closed ? 1 : fail(E_RCCacheClose, "the cache file could not be closed in order");
}

// A file that can't be read in goes out of the way, whole. The handle and its lock stay until a new one is there; where
// that fails, the next write tries again.
int CZelPageFile::moveAside() {
    if (ZelFileIsAt(m_file, m_path.c_str()) && makeWay() != 1)
        return fail(E_RCPageWrite, "the unreadable cache file can't be moved aside");
    const ZelFileHandle unreadable = m_file;
    if (startAnew() != 1) {
        m_file = unreadable;
        return E_RCPageWrite;
    }
    ZelFileClose(unreadable);
    m_isForeign = false;
    m_whole = NO_POSITION;
    forgetAhead();
    syncFolder();
    return m_hasFailedSync ? E_RCPageWrite : 1;
}

// The new name is no cache file's: a cache file's name has no further part behind the domain.
int CZelPageFile::makeWay() {
    for (int number = 1; number <= MOST_ASIDE; ++number) {
        const std::string aside = m_path + ".unreadable." + std::to_string(number);
        if (ZelFileRename(m_path.c_str(), aside.c_str()) == 1) {
            ZEL_REPORT(E_RCMalformed, ("The unreadable cache file was moved to " + aside).c_str());
            return 1;
        }
        if (errno != EEXIST)
            return E_RCPageWrite;
    }
    return E_RCPageWrite;
}

// Somebody else may have put a file there in the meantime.
int CZelPageFile::startAnew() {
    if (openOwned(m_path.c_str()) != 1)
        return E_RCPageWrite;
    unsigned int size = 0;
    if (ZelGetOpenFileSize(m_file, size) == 1 && size == 0)
        return 1;
    errno = 0;
    const int status = fail(E_RCPageWrite, "another file has taken the place of the unreadable one");
    ZelFileClose(m_file);
    return status;
}

// What every change asks first.
int CZelPageFile::prepareToWrite() {
    errno = 0;
    if (!isOpen())
        return fail(E_RCPageWrite, "the cache file is not open");
    if (m_hasFailedSync)
        return fail(E_RCPageWrite, "nothing is written after a failed sync");
    if (m_isForeign && moveAside() != 1)
        return E_RCPageWrite;
    return emptyPending() == 1 ? emptyDead(m_policy == E_SPOff ? DEAD_AT_MOST : 0) : E_RCPageWrite;
}

// The positions that are next, in m_chain. The file grows when there are too few.
int CZelPageFile::reserve(std::size_t pages) {
    const long missing = static_cast<long>(pages) - static_cast<long>(m_free.size());
    errno = 0;
    if (missing > PAGES_AT_MOST - m_pageCount || m_stamp == ULLONG_MAX)
        return fail(E_RCNoHandle, "no file position or no stamp is left");
    while (m_free.size() < pages) {
        const long count = std::min(PAGES_AT_ONCE, PAGES_AT_MOST - m_pageCount);
        if (ZelFileReserve(m_file, m_pageCount * PAGE, count * PAGE) != 1) {
            const int status = fail(E_RCPageWrite, "no room for more pages");
            (void)ZelFileTruncate(m_file, m_pageCount * PAGE);
            return status;
        }
        for (long page = m_pageCount; page < m_pageCount + count; ++page)
            m_free.push_back(page * PAGE);
        m_pageCount += count;
        m_counts.m_free += count;
    }
    m_whole = NO_POSITION;
    m_chain.clear();
    for (std::size_t i = 0; i < pages; ++i)
        m_chain.push_back(m_free[i]);
    return 1;
}

void CZelPageFile::takeReserved() {
    const std::size_t pages = m_chain.size();
    for (std::size_t i = 0; i < pages; ++i)
        m_free.pop_front();
    m_counts.m_free -= static_cast<long>(pages);
}

int CZelPageFile::sync() {
    if (ZelFileSync(m_file) != 1)
        return failSync();
    m_formerMayReturn = false;
    return 1;
}

int CZelPageFile::failSync() {
    m_hasFailedSync = true;
    return fail(E_RCPageWrite, "the cache file could not be synced; nothing more is written to it");
}
