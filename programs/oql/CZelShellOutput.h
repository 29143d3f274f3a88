// Where results go: standard output, or a file in its place. Buffered; what was written is out after Flush.
//
// The first failure is kept and ends all writing: a reader that went away is met by Error() == EPIPE.
#pragma once

#include <string>
#include <string_view>

class CZelShellOutput {
public:
    explicit CZelShellOutput(int standard);  // a descriptor, not owned
    CZelShellOutput(const CZelShellOutput &) = delete;
    CZelShellOutput &operator=(const CZelShellOutput &) = delete;
    ~CZelShellOutput();

    // Makes the file, or empties it, and writes there from now on. False with errno set: nothing has changed.
    bool Open(const std::string &path);
    void UseStandard();

    void Write(std::string_view text);
    bool Flush();
    int Error() const { return m_error; }  // errno, 0 for none

private:
    void send(std::string_view text);
    void closeFile();

    int m_standard;
    int m_target;
    int m_error = 0;
    std::string m_buffer;
};
