// The operating system's files, of which one call fails: the n-th of its kind from now on, counted from 1.
// Stands in the system's place while it lives.
#pragma once

#include <cerrno>

#include "foundations/port/ZelFile.h"

class FailingFiles : public CZelFileSystem {
public:
    enum Kind { OPEN, READ, WRITE, SIZE, SYNC, CLOSE, KINDS };

    FailingFiles(Kind kind, int number, int errnoValue = EIO)
        : m_kind(kind), m_number(number), m_errno(errnoValue), m_former(ZelSetFileSystem(this)) {}
    FailingFiles(const FailingFiles &) = delete;
    FailingFiles &operator=(const FailingFiles &) = delete;
    ~FailingFiles() override { ZelSetFileSystem(m_former); }

    int Calls(Kind kind) const { return m_calls[kind]; }

    ZelFileHandle Open(const char *path, int flags, int mode) override {
        return fails(OPEN) ? ZEL_NO_FILE : CZelFileSystem::Open(path, flags, mode);
    }
    long Read(ZelFileHandle handle, void *buffer, unsigned int count) override {
        return fails(READ) ? -1 : CZelFileSystem::Read(handle, buffer, count);
    }
    long PRead(ZelFileHandle handle, void *buffer, unsigned int count, long offset) override {
        return fails(READ) ? -1 : CZelFileSystem::PRead(handle, buffer, count, offset);
    }
    long PWrite(ZelFileHandle handle, const void *buffer, unsigned int count, long offset) override {
        return fails(WRITE) ? -1 : CZelFileSystem::PWrite(handle, buffer, count, offset);
    }
    long Size(ZelFileHandle handle) override { return fails(SIZE) ? -1 : CZelFileSystem::Size(handle); }
    int Sync(ZelFileHandle handle) override { return fails(SYNC) ? -1 : CZelFileSystem::Sync(handle); }
    int Close(ZelFileHandle handle) override {
        const int result = CZelFileSystem::Close(handle);
        return fails(CLOSE) ? -1 : result;
    }

private:
    bool fails(Kind kind) {
        if (++m_calls[kind] != m_number || kind != m_kind)
            return false;
        errno = m_errno;
        return true;
    }

    Kind m_kind;
    int m_number;
    int m_errno;
    CZelFileSystem *m_former;
    int m_calls[KINDS] = {};
};
