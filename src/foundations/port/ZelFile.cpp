#include "foundations/port/ZelFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>

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
    return result;
}

mode_t systemMode(int mode) {
    return ((mode & ZEL_FILE_OWNER_READ) != 0 ? S_IRUSR : 0U) | ((mode & ZEL_FILE_OWNER_WRITE) != 0 ? S_IWUSR : 0U);
}

CZelFileSystem s_system;
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
    return fsync(handle);
}

int CZelFileSystem::Close(ZelFileHandle handle) {
    return close(handle);
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
