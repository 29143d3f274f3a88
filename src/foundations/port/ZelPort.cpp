#include "foundations/port/ZelPort.h"

#include <arpa/inet.h>
#include <crypt.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <memory>
#include <new>

#include "foundations/port/ZelCodes.h"
#include "foundations/port/ZelOutOfMemory.h"

namespace {

std::atomic<bool> s_ready{false};
std::new_handler s_formerHandler = nullptr;

char *copyOf(const char *text) {
    char *copy = strdup(text);
    if (copy == nullptr)
        ZelOutOfMemory();
    return copy;
}

bool localTime(const long *seconds, tm &local) {
    if (seconds == nullptr)
        return false;
    const time_t time = *seconds;
    return localtime_r(&time, &local) != nullptr;
}

bool isSaltCharacter(char character) {
    return (character >= '.' && character <= '9') || (character >= 'A' && character <= 'Z') ||
           (character >= 'a' && character <= 'z');
}

bool isSalt(const char *salt) {
    return salt != nullptr && isSaltCharacter(salt[0]) && isSaltCharacter(salt[1]);
}

}  // namespace

bool ZelInitPortingLibrary() {
    if (s_ready.exchange(true))
        return false;
    tzset();
    s_formerHandler = std::set_new_handler(ZelOutOfMemory);
    return true;
}

bool ZelCleanupPortingLibrary() {
    if (!s_ready.exchange(false))
        return false;
    std::set_new_handler(s_formerHandler);
    return true;
}

void ZelSleep(unsigned int milliseconds) {
    timespec rest{static_cast<time_t>(milliseconds / 1000), static_cast<long>(milliseconds % 1000) * 1000000L};
    while (clock_nanosleep(CLOCK_MONOTONIC, 0, &rest, &rest) == EINTR) {
    }
}

int ZelSigSend(int signal) {
    return kill(getpid(), signal) == 0 ? E_RCOk : E_RCBadArgument;
}

char *ZelCTime_r(const long *seconds, char *buffer, int size) {
    tm local{};
    char text[64];  // asctime_r gives null rather than a year of more than four digits
    if (buffer == nullptr || !localTime(seconds, local) || asctime_r(&local, text) == nullptr)
        return nullptr;
    const std::size_t length = std::strlen(text);
    if (size < 0 || static_cast<std::size_t>(size) <= length)
        return nullptr;
    std::memcpy(buffer, text, length + 1);
    return buffer;
}

char *ZelStrfTime_r(const long *seconds, const char *format, char *buffer, int size) {
    tm local{};
    if (buffer == nullptr || format == nullptr || size <= 0 || !localTime(seconds, local))
        return nullptr;
    buffer[0] = '\0';
    const std::size_t length = std::strftime(buffer, static_cast<std::size_t>(size), format, &local);
    return length > 0 || *format == '\0' ? buffer : nullptr;
}

char *ZelCrypt(const char *text, const char *salt) {
    if (text == nullptr || !isSalt(salt))
        return nullptr;
    const auto work = std::make_unique<crypt_data>();
    const char *hash = crypt_r(text, salt, work.get());
    char *result = hash != nullptr && hash[0] != '*' ? copyOf(hash) : nullptr;
    explicit_bzero(work.get(), sizeof *work);
    return result;
}

char *ZelGetIPStr(unsigned long address) {
    const in_addr network{htonl(static_cast<uint32_t>(address))};
    char text[INET_ADDRSTRLEN];
    return copyOf(inet_ntop(AF_INET, &network, text, sizeof text));
}

int ZelInetAtoN(const char *text, in_addr *address) {
    in_addr found{};
    if (text == nullptr || address == nullptr || inet_pton(AF_INET, text, &found) != 1)
        return -1;
    *address = found;
    return E_RCOk;
}

unsigned long ZelGetProcMemSize(unsigned long pid) {
    char path[64];
    std::snprintf(path, sizeof path, "/proc/%lu/statm", pid);
    const std::unique_ptr<std::FILE, int (*)(std::FILE *)> file(std::fopen(path, "re"), std::fclose);
    unsigned long resident = 0;
    if (file == nullptr || std::fscanf(file.get(), "%*u %lu", &resident) != 1)
        return 0;
    return resident * static_cast<unsigned long>(sysconf(_SC_PAGESIZE));
}
