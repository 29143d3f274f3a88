#include "programs/oql/CZelProgress.h"

#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <utility>

namespace {

constexpr std::chrono::milliseconds PACE(500);
constexpr int QUIET_STEPS = 4;  // of half a second

}  // namespace

CZelProgress::CZelProgress(std::string name, long total) : m_name(std::move(name)), m_total(total) {
    if (isatty(STDERR_FILENO) == 1)
        m_thread = std::thread([this] { run(); });
}

CZelProgress::~CZelProgress() {
    if (!m_thread.joinable())
        return;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_ended = true;
    }
    m_wake.notify_one();
    m_thread.join();
}

void CZelProgress::run() {
    std::unique_lock<std::mutex> lock(m_mutex);
    for (int step = 1; !m_wake.wait_for(lock, PACE, [this] { return m_ended; }); ++step) {
        if (step >= QUIET_STEPS)
            show(step);
    }
    if (m_shown)
        std::fputs("\r\033[K", stderr);
}

void CZelProgress::show(int halfSeconds) {
    long done = m_done.load(std::memory_order_relaxed);
    if (m_total > 0)
        std::fprintf(stderr, "\r\033[Kreading %s: %ld%%, %d s", m_name.c_str(), done * 100 / m_total, halfSeconds / 2);
    else
        std::fprintf(stderr, "\r\033[Kreading %s: %d s", m_name.c_str(), halfSeconds / 2);
    std::fflush(stderr);
    m_shown = true;
}
