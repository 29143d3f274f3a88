#include "foundations/port/ZelInstallPathImpl.h"

#include <cstdlib>

std::string ZelInstallPath(const char *variable, const char *place) {
    const char *own = variable != nullptr ? std::getenv(variable) : nullptr;
    if (own != nullptr && *own != '\0')
        return own;
    const char *home = std::getenv("QMTHOME");
    if (home == nullptr || *home == '\0')
        return {};
    return std::string(home) + '/' + place;
}
