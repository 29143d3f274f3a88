// An install root with a folder for cache files, for the time of a test, and stores whose tables lie in it.
#pragma once

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "foundations/base/CZelEnv.h"
#include "storemgr/CZelStoreMgr.h"
#include "tests/port/ScratchDirectory.h"

// What a store keeps in memory, and for how long.
struct CacheKind {
    const char *name;
    bool isBySize;
    unsigned long long bytes;
    float share;
    bool isPersistent;
};

inline const CacheKind CACHE_KINDS[] = {
    {"a few bytes", true, 700, 0.0F, false},
    {"all on disk", true, 0, 0.0F, false},
    {"a half", false, 0, 0.5F, false},
    {"all in memory", false, 0, 1.0F, false},
    {"a few bytes, kept", true, 700, 0.0F, true},
    {"all on disk, kept", false, 0, 0.0F, true},
    {"a half, kept", false, 0, 0.5F, true},
    {"all in memory, kept", false, 0, 1.0F, true},
};

// The kind as a part of a test's name.
inline std::string kindName(const testing::TestParamInfo<CacheKind> &kind) {
    std::string name = kind.param.name;
    std::replace_if(
        name.begin(), name.end(), [](char c) { return c == ' ' || c == ','; }, '_');
    return name;
}

class CacheHome {
public:
    CacheHome() : m_variable("QMTHOME", m_root.Path("").c_str()) {
        std::filesystem::create_directories(folder());
        CZelEnv::REDomain("LOCAL");
    }

    std::string folder() const { return m_root.Path("var/solvantis/"); }
    std::string path(const std::string &name) const { return folder() + name; }

    void empty() const {
        for (const std::string &name : files())
            std::filesystem::remove(path(name));
    }

    // The names of the files that lie there, sorted.
    std::vector<std::string> files() const {
        std::vector<std::string> names;
        for (const auto &entry : std::filesystem::directory_iterator(folder()))
            names.push_back(entry.path().filename());
        std::sort(names.begin(), names.end());
        return names;
    }

    static std::unique_ptr<CZelStoreMgr> open(const CacheKind &kind, const char *name = "app") {
        return std::make_unique<CZelStoreMgr>(static_cast<CZelEngine *>(nullptr), ZelBool(kind.isBySize), kind.bytes,
                                              ZelBool(!kind.isBySize), kind.share, nullptr, name,
                                              ZelBool(kind.isPersistent));
    }

private:
    ScratchDirectory m_root;
    ScopedVariable m_variable;
};
