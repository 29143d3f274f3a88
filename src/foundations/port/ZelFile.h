// Files by handle, with positional reads and writes. All calls go through one interface, so that a test
// can put a twin in memory or one that fails in its place.
//
// Failures give -1 (or a negative count) and set errno; nothing is reported here.
#pragma once

#include "foundations/port/ZelExport.h"

// An open file: a descriptor of the system. -1 is none.
using ZelFileHandle = int;
constexpr ZelFileHandle ZEL_NO_FILE = -1;

// Flags of ZelFileOpen, added up.
constexpr int ZEL_FILE_READ = 1;
constexpr int ZEL_FILE_WRITE = 2;
constexpr int ZEL_FILE_CREATE = 8;     // when it is not there
constexpr int ZEL_FILE_TRUNCATE = 16;  // to nothing
constexpr int ZEL_FILE_NO_LINK = 32;   // a symbolic link in the last place is refused with ELOOP

// Modes of a file that is created: who may use it is its owner alone.
constexpr int ZEL_FILE_OWNER_READ = 1;
constexpr int ZEL_FILE_OWNER_WRITE = 2;

// What the system must do for the functions below. The base class asks the operating system.
class QUINTOR_API CZelFileSystem {
public:
    virtual ~CZelFileSystem();
    virtual ZelFileHandle Open(const char *path, int flags, int mode);
    virtual long Read(ZelFileHandle handle, void *buffer, unsigned int count);
    virtual long PRead(ZelFileHandle handle, void *buffer, unsigned int count, long offset);
    virtual long PWrite(ZelFileHandle handle, const void *buffer, unsigned int count, long offset);
    virtual long Size(ZelFileHandle handle);
    virtual int Sync(ZelFileHandle handle);  // 0 or -1, like all that follow
    virtual int Close(ZelFileHandle handle);
    virtual int Truncate(ZelFileHandle handle, long size);
    virtual int Reserve(ZelFileHandle handle, long offset, long count);
    virtual int Lock(ZelFileHandle handle, long *owner);
    virtual long Owner(ZelFileHandle handle);  // a process id or 0
    virtual bool IsAt(ZelFileHandle handle, const char *path);
    virtual int Rename(const char *from, const char *to);
    virtual int SyncFolder(const char *path);
};

// Puts `files`, which stays the caller's, in the operating system's place, null takes that back. Gives the
// former one. Requires: no file is open and no thread is in a call.
QUINTOR_API CZelFileSystem *ZelSetFileSystem(CZelFileSystem *files);

// A handle, closed on exec; or -1.
QUINTOR_API ZelFileHandle ZelFileOpen(const char *path, int flags, int mode);

// The next bytes of a file or a pipe: as many as asked, fewer only at the end; -1 on failure.
QUINTOR_API long ZelFileRead(ZelFileHandle handle, void *buffer, unsigned int count);

// Bytes done: fewer than asked at the end of the file, when reading, or when a later part failed; -1 when
// nothing could be done.
QUINTOR_API long ZelFilePRead(ZelFileHandle handle, void *buffer, unsigned int count, long offset);
QUINTOR_API long ZelFilePWrite(ZelFileHandle handle, const void *buffer, unsigned int count, long offset);

// 1, or -1; EFBIG for a size that does not fit.
QUINTOR_API int ZelGetOpenFileSize(ZelFileHandle handle, unsigned int &size);

QUINTOR_API int ZelFileSync(ZelFileHandle handle);                 // data and size to the disk; 1 or -1
QUINTOR_API int ZelFileClose(ZelFileHandle handle);                // the handle is gone in any case; 1 or -1
QUINTOR_API int ZelFileTruncate(ZelFileHandle handle, long size);  // 1 or -1
// Makes the file at least offset + count long and sees to it that the disk has room for these bytes, zeros where there
// was nothing. 1 or -1; after a failure the file may have become longer.
QUINTOR_API int ZelFileReserve(ZelFileHandle handle, long offset, long count);
QUINTOR_API int ZelFileRename(const char *from, const char *to);  // replaces nothing: EEXIST; 1 or -1
QUINTOR_API int ZelFileSyncFolder(const char *path);              // its entries to the disk; 1 or -1

// The advisory lock of a whole open file, held until the handle is closed; it keeps out other processes and other
// handles of this one. 1; or -1 with EAGAIN while somebody else holds it, and *owner is that process's id or 0.
// Whoever held it before may have moved or removed the file: ask ZelFileIsAt once the lock is held.
QUINTOR_API int ZelFileLock(ZelFileHandle handle, long *owner);

// The process that holds the lock of the file through another handle, or 0.
QUINTOR_API long ZelFileOwner(ZelFileHandle handle);

// Is this open file the one that the path leads to by now?
QUINTOR_API bool ZelFileIsAt(ZelFileHandle handle, const char *path);

// How much of what a cache writes is forced to the disk. Any kill of the process is survived by each; they differ
// in what a power cut can take.
enum EZelSyncPolicy : int {
    E_SPOff = 0,     // at closing only
    E_SPUpdate = 1,  // also before a row's former version is given up
    E_SPFull = 2     // also after each insert and delete
};
// Of the process; E_SPOff at the start. Holds for files opened from then on.
QUINTOR_API void ZelSetSyncPolicy(EZelSyncPolicy policy);
QUINTOR_API EZelSyncPolicy ZelGetSyncPolicy();

// errno is the system's own last error here; nothing has to be mapped.
inline void ZelMapWinLastErrorToErrno() {}
