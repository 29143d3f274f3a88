// Page files as tests see them: records of text by the position where they start.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <string>

#include "store/CZelPageFile.h"

namespace PageFiles {

using Records = std::map<long, std::string>;  // by start

class Collector : public CZelPageFile::Reader {
public:
    bool takeChain(long start, const unsigned char *encoding, int length) override {
        m_records[start] = std::string(reinterpret_cast<const char *>(encoding), static_cast<std::size_t>(length));
        return true;
    }
    Records m_records;
};

inline int write(CZelPageFile &file, const std::string &text, long replaced, long *start,
                 unsigned long long *stamp = nullptr) {
    return file.write(reinterpret_cast<const unsigned char *>(text.data()), static_cast<int>(text.size()), replaced,
                      start, stamp);
}

// A new record that is expected to be taken; its start.
inline long add(CZelPageFile &file, const std::string &text) {
    long start = CZelPageFile::NO_POSITION;
    EXPECT_EQ(1, write(file, text, CZelPageFile::NO_POSITION, &start));
    return start;
}

inline std::string read(CZelPageFile &file, long start) {
    unsigned char *encoding = nullptr;
    int length = 0;
    if (file.read(start, &encoding, &length) != 1)
        return "unreadable";
    const std::string text(reinterpret_cast<char *>(encoding), static_cast<std::size_t>(length));
    std::free(encoding);
    return text;
}

inline Records reopen(CZelPageFile &file, const std::string &path) {
    Collector collector;
    EXPECT_EQ(1, file.open(path.c_str(), true));
    EXPECT_EQ(1, file.readAll(collector));
    return collector.m_records;
}

class SyncPolicy {
public:
    explicit SyncPolicy(EZelSyncPolicy policy) { ZelSetSyncPolicy(policy); }
    SyncPolicy(const SyncPolicy &) = delete;
    SyncPolicy &operator=(const SyncPolicy &) = delete;
    ~SyncPolicy() { ZelSetSyncPolicy(E_SPOff); }
};

}  // namespace PageFiles
