// A new directory for one test, removed with all that is in it.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

class ScratchDirectory {
public:
    ScratchDirectory() {
        std::string pattern = (std::filesystem::temp_directory_path() / "quintor-XXXXXX").string();
        m_path = mkdtemp(pattern.data());
    }
    ScratchDirectory(const ScratchDirectory &) = delete;
    ScratchDirectory &operator=(const ScratchDirectory &) = delete;
    ~ScratchDirectory() { std::filesystem::remove_all(m_path); }

    std::string Path(const std::string &name) const { return (m_path / name).string(); }

    // Writes a file, making directories on its way; gives its path.
    std::string Write(const std::string &name, const std::string &text) const {
        std::filesystem::create_directories((m_path / name).parent_path());
        std::ofstream(m_path / name, std::ios::binary) << text;
        return Path(name);
    }

private:
    std::filesystem::path m_path;
};

// Sets an environment variable for a scope; null unsets it.
class ScopedVariable {
public:
    ScopedVariable(const char *name, const char *value) : m_name(name) {
        const char *former = std::getenv(name);
        m_wasSet = former != nullptr;
        m_former = m_wasSet ? former : "";
        set(value);
    }
    ScopedVariable(const ScopedVariable &) = delete;
    ScopedVariable &operator=(const ScopedVariable &) = delete;
    ~ScopedVariable() { set(m_wasSet ? m_former.c_str() : nullptr); }

private:
    void set(const char *value) const { value != nullptr ? setenv(m_name, value, 1) : unsetenv(m_name); }

    const char *m_name;
    bool m_wasSet;
    std::string m_former;
};
