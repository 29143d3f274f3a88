#include "foundations/port/ZelFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdio>

namespace {

int systemFlags(int flags) {
    int result = O_CLOEXEC;
    if ((flags & ZEL_FILE_WRITE) == 0)
        result |= O_RDONLY;
    else
        result |= (flags & ZEL_FILE_READ) != 0 ? O_RDWR : O_WRONLY;
    if ((flags & ZEL_FILE_CREATE) != 0)
        result |= O_CREAT;
    if ((flags & ZEL_FILE_TRUNCATE) != 0)
        result |= O_TRUNC;
    if ((flags & ZEL_FILE_NO_LINK) != 0)
        result |= O_NOFOLLOW;
    return result;
}

mode_t systemMode(int mode) {
    return ((mode & ZEL_FILE_OWNER_READ) != 0 ? S_IRUSR : 0U) | ((mode & ZEL_FILE_OWNER_WRITE) != 0 ? S_IWUSR : 0U);
}

// The lock of a whole file lies far behind any content, and is as many bytes long as its process's id, and one. So it
// tells whose it is: of a lock that belongs to the open file and not to the process, the system only tells the place.
// One of the older kind would be lost as soon as its process closed any other handle of the file.
constexpr off_t LOCK_PLACE = static_cast<off_t>(1) << 40;

struct flock lockOf(long bytes) {
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = LOCK_PLACE;
    lock.l_len = bytes;
    return lock;
}

CZelFileSystem s_system;
std::atomic<EZelSyncPolicy> s_syncPolicy{E_SPOff};
std::atomic<CZelFileSystem *> s_files{&s_system};

CZelFileSystem &files() {
    return *s_files.load(std::memory_order_acquire);
}

// Repeats a transfer that may do less than asked, until all is done, the end is reached or it fails.
template <class Transfer>
long transferAll(unsigned int count, Transfer transfer) {
    long done = 0;
    while (done < static_cast<long>(count)) {
        const long part = transfer(done, static_cast<unsigned int>(count - done));
        if (part < 0 && errno == EINTR)
            continue;
        if (part < 0 && done == 0)
            return -1;
        if (part <= 0)
            break;
        done += part;
    }
    return done;
}

}  // namespace

CZelFileSystem::~CZelFileSystem() = default;

ZelFileHandle CZelFileSystem::Open(const char *path, int flags, int mode) {
    return open(path, systemFlags(flags), systemMode(mode));
}

long CZelFileSystem::Read(ZelFileHandle handle, void *buffer, unsigned int count) {
    return read(handle, buffer, count);
}

long CZelFileSystem::PRead(ZelFileHandle handle, void *buffer, unsigned int count, long offset) {
    return pread(handle, buffer, count, offset);
}

long CZelFileSystem::PWrite(ZelFileHandle handle, const void *buffer, unsigned int count, long offset) {
    return pwrite(handle, buffer, count, offset);
}

long CZelFileSystem::Size(ZelFileHandle handle) {
    struct stat details {};
    return fstat(handle, &details) == 0 ? details.st_size : -1;
}

int CZelFileSystem::Sync(ZelFileHandle handle) {
    return fdatasync(handle);
}

int CZelFileSystem::Close(ZelFileHandle handle) {
    return close(handle);
}

int CZelFileSystem::Truncate(ZelFileHandle handle, long size) {
    return ftruncate(handle, size);
}

int CZelFileSystem::Reserve(ZelFileHandle handle, long offset, long count) {
    const int failure = posix_fallocate(handle, offset, count);
    if (failure != 0)
        errno = failure;
    return failure == 0 ? 0 : -1;
}

int CZelFileSystem::Lock(ZelFileHandle handle, long *owner) {
    struct flock lock = lockOf(1L + getpid());
    if (fcntl(handle, F_OFD_SETLK, &lock) == 0)
        return 0;
    const int reason = errno;
    *owner = Owner(handle);
    errno = reason == EACCES ? EAGAIN : reason;
    return -1;
}

long CZelFileSystem::Owner(ZelFileHandle handle) {
    struct flock lock = lockOf(1);
    const bool isLocked = fcntl(handle, F_OFD_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
    return isLocked ? std::max<long>(lock.l_len - 1, 0) : 0;
}

bool CZelFileSystem::IsAt(ZelFileHandle handle, const char *path) {
    struct stat open {};
    struct stat found {};
    return fstat(handle, &open) == 0 && lstat(path, &found) == 0 && open.st_dev == found.st_dev &&
           open.st_ino == found.st_ino;
}

int CZelFileSystem::Rename(const char *from, const char *to) {
    return renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE);
}

int CZelFileSystem::SyncFolder(const char *path) {
    const int folder = open(path, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0)
        return -1;
    const int result = fsync(folder);
    close(folder);
    return result;
}

CZelFileSystem *ZelSetFileSystem(CZelFileSystem *replacement) {
    return s_files.exchange(replacement != nullptr ? replacement : &s_system, std::memory_order_acq_rel);
}

ZelFileHandle ZelFileOpen(const char *path, int flags, int mode) {
    if (path == nullptr) {
        errno = EINVAL;
        return ZEL_NO_FILE;
    }
    ZelFileHandle handle = ZEL_NO_FILE;
    do {
        handle = files().Open(path, flags, mode);
    } while (handle < 0 && errno == EINTR);
    return handle;
}

long ZelFileRead(ZelFileHandle handle, void *buffer, unsigned int count) {
    char *const bytes = static_cast<char *>(buffer);
    return transferAll(count, [=](long done, unsigned int rest) { return files().Read(handle, bytes + done, rest); });
}

long ZelFilePRead(ZelFileHandle handle, void *buffer, unsigned int count, long offset) {
    char *const bytes = static_cast<char *>(buffer);
    return transferAll(
        count, [=](long done, unsigned int rest) { return files().PRead(handle, bytes + done, rest, offset + done); });
}

long ZelFilePWrite(ZelFileHandle handle, const void *buffer, unsigned int count, long offset) {
    const char *const bytes = static_cast<const char *>(buffer);
    return transferAll(
        count, [=](long done, unsigned int rest) { return files().PWrite(handle, bytes + done, rest, offset + done); });
}

int ZelGetOpenFileSize(ZelFileHandle handle, unsigned int &size) {
    const long found = files().Size(handle);
    if (found < 0)
        return -1;
    if (found > static_cast<long>(UINT_MAX)) {
        errno = EFBIG;
        return -1;
    }
    size = static_cast<unsigned int>(found);
    return 1;
}

int ZelFileSync(ZelFileHandle handle) {
    return files().Sync(handle) == 0 ? 1 : -1;
}

int ZelFileClose(ZelFileHandle handle) {
    return files().Close(handle) == 0 ? 1 : -1;
}

int ZelFileTruncate(ZelFileHandle handle, long size) {
    return files().Truncate(handle, size) == 0 ? 1 : -1;
}

int ZelFileReserve(ZelFileHandle handle, long offset, long count) {
    int result = 0;
    do {
        result = files().Reserve(handle, offset, count);
    } while (result != 0 && errno == EINTR);
    return result == 0 ? 1 : -1;
}

int ZelFileLock(ZelFileHandle handle, long *owner) {
    *owner = 0;
    return files().Lock(handle, owner) == 0 ? 1 : -1;
}

long ZelFileOwner(ZelFileHandle handle) {
    return files().Owner(handle);
}

bool ZelFileIsAt(ZelFileHandle handle, const char *path) {
    return files().IsAt(handle, path);
}

int ZelFileRename(const char *from, const char *to) {
    return files().Rename(from, to) == 0 ? 1 : -1;
}

int ZelFileSyncFolder(const char *path) {
    return files().SyncFolder(path) == 0 ? 1 : -1;
}

void ZelSetSyncPolicy(EZelSyncPolicy policy) {
    s_syncPolicy.store(policy, std::memory_order_relaxed);
}

EZelSyncPolicy ZelGetSyncPolicy() {
    return s_syncPolicy.load(std::memory_order_relaxed);
}
