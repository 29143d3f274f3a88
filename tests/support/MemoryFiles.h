// Files in memory that remember every change, for tests of what a kill or a power cut leaves behind. Stands in the
// operating system's place while it lives.
//
// A kill at point n keeps the first n changes. A power cut keeps what was synced before it and any of the later ones.
#pragma once

#include <algorithm>
#include <cerrno>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "foundations/port/ZelFile.h"

class MemoryFiles : public CZelFileSystem {
public:
    using Bytes = std::vector<unsigned char>;

    struct Change {
        std::string file;
        long offset;  // -1: the file's size becomes `size`
        long size;
        Bytes bytes;
        bool isSync = false;
    };

    MemoryFiles() : m_former(ZelSetFileSystem(this)) {}
    MemoryFiles(const MemoryFiles &) = delete;
    MemoryFiles &operator=(const MemoryFiles &) = delete;
    ~MemoryFiles() override { ZelSetFileSystem(m_former); }

    std::map<std::string, Bytes> &files() { return m_files; }
    const std::vector<Change> &changes() const { return m_changes; }
    // From here on changes are remembered; `files` is what they start from.
    void restart(std::map<std::string, Bytes> files) {
        m_files = std::move(files);
        m_changes.clear();
        m_open.clear();
    }

    static void apply(std::map<std::string, Bytes> &files, const Change &change) {
        Bytes &file = files[change.file];
        if (change.isSync)
            return;
        if (change.offset < 0) {
            file.resize(static_cast<std::size_t>(change.size));
            return;
        }
        const auto end = static_cast<std::size_t>(change.offset) + change.bytes.size();
        file.resize(std::max(file.size(), end));
        std::copy(change.bytes.begin(), change.bytes.end(), file.begin() + change.offset);
    }

    ZelFileHandle Open(const char *path, int flags, int /*mode*/) override {
        if ((flags & ZEL_FILE_CREATE) == 0 && m_files.count(path) == 0) {
            errno = ENOENT;
            return ZEL_NO_FILE;
        }
        m_files[path];
        const ZelFileHandle handle = static_cast<ZelFileHandle>(1000 + m_names.size());
        m_names.push_back(path);
        m_open[handle] = path;
        return handle;
    }
    long PRead(ZelFileHandle handle, void *buffer, unsigned int count, long offset) override {
        const Bytes &file = m_files[m_open[handle]];
        const long size = static_cast<long>(file.size());
        const long done = std::clamp<long>(size - offset, 0, count);
        std::copy_n(file.begin() + std::min(offset, size), done, static_cast<unsigned char *>(buffer));
        return done;
    }
    long PWrite(ZelFileHandle handle, const void *buffer, unsigned int count, long offset) override {
        const auto *bytes = static_cast<const unsigned char *>(buffer);
        // A page is the least that a disk writes: each is a change of its own.
        for (unsigned int done = 0; done < count; done += 512) {
            const unsigned int part = std::min(512U, count - done);
            change({m_open[handle], offset + done, 0, Bytes(bytes + done, bytes + done + part)});
        }
        return count;
    }
    long Size(ZelFileHandle handle) override { return static_cast<long>(m_files[m_open[handle]].size()); }
    int Sync(ZelFileHandle handle) override {
        change({m_open[handle], 0, 0, {}, true});
        return 0;
    }
    int Close(ZelFileHandle handle) override { return m_open.erase(handle) == 1 ? 0 : -1; }
    int Truncate(ZelFileHandle handle, long size) override {
        change({m_open[handle], -1, size, {}});
        return 0;
    }
    int Reserve(ZelFileHandle handle, long offset, long count) override {
        return Size(handle) >= offset + count ? 0 : Truncate(handle, offset + count);
    }
    int Lock(ZelFileHandle /*handle*/, long * /*owner*/) override { return 0; }
    long Owner(ZelFileHandle /*handle*/) override { return 0; }
    bool IsAt(ZelFileHandle handle, const char *path) override { return m_open[handle] == path; }
    int Rename(const char *from, const char *to) override {
        if (m_files.count(to) != 0) {
            errno = EEXIST;
            return -1;
        }
        m_files[to] = std::move(m_files[from]);
        m_files.erase(from);
        for (auto &[handle, path] : m_open)
            path = path == from ? to : path;
        return 0;
    }
    int SyncFolder(const char * /*path*/) override { return 0; }

private:
    void change(Change change) {
        apply(m_files, change);
        m_changes.push_back(std::move(change));
    }

    CZelFileSystem *m_former;
    std::map<std::string, Bytes> m_files;
    std::vector<Change> m_changes;
    std::vector<std::string> m_names;
    std::map<ZelFileHandle, std::string> m_open;
};
