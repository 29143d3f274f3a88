// The operating system's files, of which one change kills the process: the n-th from now on, counted from 1. Every
// write, growth, truncation and renaming is a change; the one that kills is not made. Stands in the system's place
// while it lives.
#pragma once

#include <unistd.h>

#include <csignal>

#include "foundations/port/ZelFile.h"

class KillingFiles : public CZelFileSystem {
public:
    explicit KillingFiles(long number) : m_left(number), m_former(ZelSetFileSystem(this)) {}
    KillingFiles(const KillingFiles &) = delete;
    KillingFiles &operator=(const KillingFiles &) = delete;
    ~KillingFiles() override { ZelSetFileSystem(m_former); }

    long PWrite(ZelFileHandle handle, const void *buffer, unsigned int count, long offset) override {
        // A kill may fall between the pages of one write.
        const auto *bytes = static_cast<const char *>(buffer);
        for (unsigned int done = 0; done < count; done += 512) {
            change();
            const unsigned int part = count - done < 512 ? count - done : 512;
            if (CZelFileSystem::PWrite(handle, bytes + done, part, offset + done) != static_cast<long>(part))
                return -1;
        }
        return count;
    }
    int Truncate(ZelFileHandle handle, long size) override {
        change();
        return CZelFileSystem::Truncate(handle, size);
    }
    int Reserve(ZelFileHandle handle, long offset, long count) override {
        change();
        return CZelFileSystem::Reserve(handle, offset, count);
    }
    int Rename(const char *from, const char *to) override {
        change();
        return CZelFileSystem::Rename(from, to);
    }

private:
    void change() {
        if (--m_left == 0)
            kill(getpid(), SIGKILL);
    }

    long m_left;
    CZelFileSystem *m_former;
};
