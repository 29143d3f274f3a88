#include "foundations/port/CZelFileDescriptor.h"

#include <sys/resource.h>

#include <algorithm>
#include <cerrno>

namespace {

constexpr rlim_t STEP = 256;

}  // namespace

bool CZelFileDescriptor::RFDIsUnavailable(int errnoValue) {
    return errnoValue == EMFILE || errnoValue == ENFILE;
}

EZelFdStatus CZelFileDescriptor::RFDMakeAvailable() {
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur >= limit.rlim_max)
        return E_FDNoneLeft;
    limit.rlim_cur = std::min(limit.rlim_max, limit.rlim_cur + STEP);
    return setrlimit(RLIMIT_NOFILE, &limit) == 0 ? E_FDOk : E_FDNoneLeft;
}
