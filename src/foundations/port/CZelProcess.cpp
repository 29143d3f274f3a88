#include "foundations/port/CZelProcess.h"

#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "foundations/port/ZelInstallPathImpl.h"
#include "foundations/port/ZelRegistry.h"

namespace {

constexpr char READY[] = "READY=1";
constexpr long long MICROSECONDS = 1000000;

long long microseconds(const timeval &time) {
    return time.tv_sec * MICROSECONDS + time.tv_usec;
}

// A path, or a name of the abstract space that begins with @. False when it is neither or too long.
bool addressOf(const char *name, sockaddr_un &address, socklen_t &length) {
    const std::size_t size = std::strlen(name);
    if ((name[0] != '/' && name[0] != '@') || size >= sizeof address.sun_path)
        return false;
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, name, size);
    if (name[0] == '@')
        address.sun_path[0] = '\0';
    length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + size);
    return true;
}

bool sendReady(const sockaddr_un &address, socklen_t length) {
    const int handle = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (handle < 0)
        return false;
    const ssize_t sent =
        sendto(handle, READY, sizeof READY - 1, MSG_NOSIGNAL, reinterpret_cast<const sockaddr *>(&address), length);
    close(handle);
    return sent == static_cast<ssize_t>(sizeof READY - 1);
}

}  // namespace

CZelProcess &CZelProcess::Instance() {
    static CZelProcess s_instance;
    return s_instance;
}

int CZelProcess::GetPID() const {
    return getpid();
}

void CZelProcess::Exit(int status) {
    std::exit(status);
}

bool CZelProcess::ChangeToCoreDumpDir() {
    const std::string directory = ZelInstallPath(nullptr, "var/core");
    return !directory.empty() && chdir(directory.c_str()) == 0;
}

bool CZelProcess::NowRunning() {
    const char *name = std::getenv("NOTIFY_SOCKET");
    sockaddr_un address{};
    socklen_t length = 0;
    return name != nullptr && addressOf(name, address, length) && sendReady(address, length);
}

void CZelProcess::GetRegistryArgs(std::vector<std::pair<std::string, std::string>> &pairs) {
    pairs.clear();
    const std::string path = ZelInstallPath("QMT_REGISTRY", "etc/registry.ini");
    if (!path.empty())
        ZelReadRegistry(path.c_str(), program_invocation_short_name, pairs);
}

bool CZelProcess::GetCPUUsage(long long &system, long long &user) {
    rusage usage{};
    const bool known = getrusage(RUSAGE_SELF, &usage) == 0;
    system = microseconds(usage.ru_stime);
    user = microseconds(usage.ru_utime);
    return known;
}
