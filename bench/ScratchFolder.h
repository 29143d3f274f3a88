// A new folder for a side's files; it goes, with all that is in it, when this does.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

class ScratchFolder {
public:
    ScratchFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "quintor-bench-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr) {
            std::perror(pattern.c_str());
            std::exit(1);
        }
        m_path = pattern;
    }
    ScratchFolder(const ScratchFolder &) = delete;
    ScratchFolder &operator=(const ScratchFolder &) = delete;
    ~ScratchFolder() {
        std::error_code ignored;  // what can't be removed stays behind
        std::filesystem::remove_all(m_path, ignored);
    }

    const std::filesystem::path &path() const { return m_path; }

    // An empty folder in it, whatever there was under that name.
    std::filesystem::path emptied(const char *name) const {
        std::filesystem::remove_all(m_path / name);
        std::filesystem::create_directory(m_path / name);
        return m_path / name;
    }

private:
    std::filesystem::path m_path;
};
