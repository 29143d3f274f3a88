// A file that appears under its name only when it is whole and on the disk; until then, and when it is given
// up, what was there before stays.
#pragma once

#include <string>
#include <string_view>

class CZelNewFile {
public:
    CZelNewFile() = default;
    CZelNewFile(const CZelNewFile &) = delete;
    CZelNewFile &operator=(const CZelNewFile &) = delete;
    ~CZelNewFile();  // gives up what was not committed

    bool Open(const std::string &path);  // these three: false with errno set
    bool Write(std::string_view text);   // buffered
    bool Commit();

private:
    bool flush();
    bool syncFolder() const;
    void giveUp();

    std::string m_path;
    std::string m_temporary;
    std::string m_buffer;
    int m_file = -1;
};
