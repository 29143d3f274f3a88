#include "foundations/port/ZelReportLineImpl.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <ctime>
#include <string_view>

#include "foundations/port/ZelCodes.h"

namespace {

constexpr int LEVEL_WITH_PLACE = 2;
constexpr int LEVEL_WITH_TIME = 3;

void appendTimeAndThread(std::string &line) {
    timespec now{};
    tm local{};
    clock_gettime(CLOCK_REALTIME, &now);
    localtime_r(&now.tv_sec, &local);
    char text[96];
    const std::size_t length = std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &local);
    std::snprintf(text + length, sizeof text - length, ".%03ld %d/%ld ", now.tv_nsec / 1000000, getpid(),
                  syscall(SYS_gettid));
    line += text;
}

void appendCode(std::string &line, int code) {
    line += std::to_string(code);
    if (const char *name = ZelCodeName(code)) {
        line += ' ';
        line += name;
    }
}

std::string_view withoutOuterLineFeeds(std::string_view text) {
    const std::size_t first = text.find_first_not_of("\r\n");
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of("\r\n") - first + 1);
}

bool isControl(unsigned char byte) {
    return byte < ' ' || byte == 0x7f;
}

void appendEscaped(std::string &line, unsigned char byte) {
    if (byte == '\n') {
        line += "\\n";
        return;
    }
    static const char digits[] = "0123456789abcdef";
    line += "\\x";
    line += digits[byte >> 4];
    line += digits[byte & 15];
}

void appendOneLine(std::string &line, std::string_view text) {
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (isControl(byte))
            appendEscaped(line, byte);
        else
            line += character;
    }
}

void appendPlace(std::string &line, const SZelReportParts &report) {
    line += " [";
    appendOneLine(line, report.m_source);
    line += ':';
    line += std::to_string(report.m_line);
    line += ']';
}

// Keeps a closed pipe behind the descriptor from ending the process, for a scope and this thread only.
class NoPipeSignal {
public:
    NoPipeSignal() {
        sigemptyset(&m_pipe);
        sigaddset(&m_pipe, SIGPIPE);
        sigset_t pending;
        sigpending(&pending);
        m_wasPending = sigismember(&pending, SIGPIPE) == 1;
        pthread_sigmask(SIG_BLOCK, &m_pipe, &m_former);
    }
    NoPipeSignal(const NoPipeSignal &) = delete;
    NoPipeSignal &operator=(const NoPipeSignal &) = delete;
    ~NoPipeSignal() {
        const timespec noWait{};
        if (!m_wasPending)  // takes back what our own write may have raised
            sigtimedwait(&m_pipe, nullptr, &noWait);
        pthread_sigmask(SIG_SETMASK, &m_former, nullptr);
    }

private:
    sigset_t m_pipe;
    sigset_t m_former;
    bool m_wasPending;
};

}  // namespace

std::string ZelReportLine(const SZelReportParts &report, int level) {
    std::string line;
    if (level >= LEVEL_WITH_TIME)
        appendTimeAndThread(line);
    appendCode(line, report.m_code);
    const std::string_view text = withoutOuterLineFeeds(report.m_text);
    if (!text.empty())
        line += ": ";
    appendOneLine(line, text);
    if (level >= LEVEL_WITH_PLACE)
        appendPlace(line, report);
    line += '\n';
    return line;
}

void ZelWriteLine(int handle, const char *bytes, std::size_t length) {
    const int formerErrno = errno;
    const NoPipeSignal guard;
    while (length > 0) {
        const ssize_t done = write(handle, bytes, length);
        if (done < 0 && errno == EINTR)
            continue;
        if (done <= 0)
            break;
        bytes += done;
        length -= static_cast<std::size_t>(done);
    }
    errno = formerErrno;
}
