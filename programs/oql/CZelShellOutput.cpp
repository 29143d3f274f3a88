#include "programs/oql/CZelShellOutput.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace {

constexpr std::size_t BUFFER_SIZE = 64 * 1024;

}  // namespace

CZelShellOutput::CZelShellOutput(int standard) : m_standard(standard), m_target(standard) {}

CZelShellOutput::~CZelShellOutput() {
    Flush();
    closeFile();
}

bool CZelShellOutput::Open(const std::string &path) {
    int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (file < 0)
        return false;
    UseStandard();
    m_target = file;
    return true;
}

void CZelShellOutput::UseStandard() {
    Flush();
    closeFile();
    m_target = m_standard;
}

void CZelShellOutput::closeFile() {
    if (m_target != m_standard && close(m_target) != 0 && m_error == 0)
        m_error = errno;
}

void CZelShellOutput::Write(std::string_view text) {
    m_buffer += text;
    if (m_buffer.size() >= BUFFER_SIZE)
        Flush();
}

bool CZelShellOutput::Flush() {
    send(m_buffer);
    m_buffer.clear();
    return m_error == 0;
}

void CZelShellOutput::send(std::string_view text) {
    while (!text.empty() && m_error == 0) {
        ssize_t sent = write(m_target, text.data(), text.size());
        if (sent >= 0)
            text.remove_prefix(static_cast<std::size_t>(sent));
        else if (errno != EINTR)
            m_error = errno;
    }
}
