#include "foundations/base/ZelEscape.h"

#include <atomic>

namespace {

std::atomic<bool> g_escape{false};

}  // namespace

bool ZelEscapeIsOn() {
    return g_escape.load(std::memory_order_relaxed);
}

void ZelSetEscape(bool on) {
    g_escape.store(on, std::memory_order_relaxed);
}
