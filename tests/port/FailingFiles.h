// The operating system's files, of which one call fails: the n-th of its kind from now on, counted from 1.
// Stands in the system's place while it lives.
#pragma once

#include <atomic>
#include <cerrno>

#include "foundations/port/ZelFile.h"

class FailingFiles : public CZelFileSystem {
public:
    enum Kind { OPEN, READ, WRITE, SIZE, SYNC, CLOSE, TRUNCATE, RESERVE, LOCK, RENAME, SYNC_FOLDER, KINDS };
    enum Manner {
        WHOLLY,
        IN_THE_MIDDLE,  // a read or write does half of what it was asked for, and the next one fails
        FOR_GOOD,       // from the n-th on
        FROM_THE_MIDDLE,
    };

    FailingFiles(Kind kind, int number, int errnoValue = EIO, Manner manner = WHOLLY)
        : m_kind(kind), m_number(number), m_errno(errnoValue), m_manner(manner), m_former(ZelSetFileSystem(this)) {}
    FailingFiles(const FailingFiles &) = delete;
    FailingFiles &operator=(const FailingFiles &) = delete;
    ~FailingFiles() override { ZelSetFileSystem(m_former); }

    int Calls(Kind kind) const { return m_calls[kind]; }

    ZelFileHandle Open(const char *path, int flags, int mode) override {
        return fails(OPEN) ? ZEL_NO_FILE : CZelFileSystem::Open(path, flags, mode);
    }
    long Read(ZelFileHandle handle, void *buffer, unsigned int count) override {
        return fails(READ) ? -1 : CZelFileSystem::Read(handle, buffer, part(READ, count));
    }
    long PRead(ZelFileHandle handle, void *buffer, unsigned int count, long offset) override {
        return fails(READ) ? -1 : CZelFileSystem::PRead(handle, buffer, part(READ, count), offset);
    }
    long PWrite(ZelFileHandle handle, const void *buffer, unsigned int count, long offset) override {
        return fails(WRITE) ? -1 : CZelFileSystem::PWrite(handle, buffer, part(WRITE, count), offset);
    }
    long Size(ZelFileHandle handle) override { return fails(SIZE) ? -1 : CZelFileSystem::Size(handle); }
    int Sync(ZelFileHandle /*handle*/) override { return fails(SYNC) ? -1 : 0; }  // no power is cut here
    int Close(ZelFileHandle handle) override {
        const int result = CZelFileSystem::Close(handle);
        return fails(CLOSE) ? -1 : result;
    }
    int Truncate(ZelFileHandle handle, long size) override {
        return fails(TRUNCATE) ? -1 : CZelFileSystem::Truncate(handle, size);
    }
    int Reserve(ZelFileHandle handle, long offset, long count) override {
        if (!fails(RESERVE))
            return CZelFileSystem::Reserve(handle, offset, count);
        CZelFileSystem::Truncate(handle, offset + count / 3);  // the file may have grown all the same
        errno = m_errno;
        return -1;
    }
    int Lock(ZelFileHandle handle, long *owner) override {
        return fails(LOCK) ? -1 : CZelFileSystem::Lock(handle, owner);
    }
    int Rename(const char *from, const char *to) override {
        return fails(RENAME) ? -1 : CZelFileSystem::Rename(from, to);
    }
    int SyncFolder(const char *path) override { return fails(SYNC_FOLDER) ? -1 : CZelFileSystem::SyncFolder(path); }

private:
    bool fails(Kind kind) {
        const int call = ++m_calls[kind];
        const int first = m_number + (isHalf() ? 1 : 0);
        const bool isForGood = m_manner == FOR_GOOD || m_manner == FROM_THE_MIDDLE;
        if (kind != m_kind || (isForGood ? call < first : call != first))
            return false;
        errno = m_errno;
        return true;
    }
    unsigned int part(Kind kind, unsigned int count) const {
        return isHalf() && kind == m_kind && m_calls[kind] == m_number ? count / 2 : count;
    }
    bool isHalf() const { return m_manner == IN_THE_MIDDLE || m_manner == FROM_THE_MIDDLE; }

    Kind m_kind;
    int m_number;
    int m_errno;
    Manner m_manner;
    CZelFileSystem *m_former;
    std::atomic<int> m_calls[KINDS] = {};  // by any thread
};
