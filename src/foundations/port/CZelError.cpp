#include "foundations/port/CZelError.h"

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <new>

#include "foundations/port/CZelErrorCapture.h"
#include "foundations/port/CZelErrorDelay.h"
#include "foundations/port/ZelOutOfMemory.h"
#include "foundations/port/ZelReportLineImpl.h"

namespace {

constexpr int LOG_LEVEL = 3;

std::atomic<int> s_level{1};
std::atomic<unsigned long> s_count{0};

// The way out of all threads. Never destroyed: statics of others may report while they die.
struct Channels {
    std::recursive_mutex mutex;
    SZelErrorObserver observer{nullptr, nullptr};
    int logHandle = -1;
    bool observing = false;  // the observer is running, in the thread that holds the mutex
};

Channels &channels() {
    static Channels *const s_channels = new Channels;
    return *s_channels;
}

void print(const SZelReportParts &report, int level, int handle) {
    const std::string line = ZelReportLine(report, level);
    ZelWriteLine(handle, line.data(), line.size());
}

void observe(Channels &out, const SZelReportParts &report) {
    if (out.observer.m_call == nullptr || out.observing)
        return;
    out.observing = true;
    out.observer.m_call(report.m_code, report.m_source, report.m_line, report.m_text, out.observer.m_arg);
    out.observing = false;
}

void send(const SZelReportParts &report) {
    CZelErrorCapture *capture = CZelErrorCapture::Innermost();
    if (capture != nullptr)
        capture->Take(report.m_code, report.m_source, report.m_line, report.m_text);
    Channels &out = channels();
    const std::lock_guard<std::recursive_mutex> guard(out.mutex);
    if (capture == nullptr || !capture->IsSilent())
        print(report, s_level.load(std::memory_order_relaxed), STDERR_FILENO);
    if (out.logHandle >= 0)
        print(report, LOG_LEVEL, out.logHandle);
    observe(out, report);
}

}  // namespace

CZelError::CZelError(int code, const char *source, int line, const char *text) {
    const SZelReportParts report{code, source != nullptr ? source : "", line, text != nullptr ? text : ""};
    try {
        if (CZelErrorDelay::Keeps(report.m_code, report.m_source, report.m_line, report.m_text))
            return;
        s_count.fetch_add(1, std::memory_order_relaxed);
        send(report);
    } catch (const std::bad_alloc &) {
        ZelOutOfMemory();
    }
}

SZelErrorObserver CZelError::SetObserver(ZelErrorObserver call, void *arg) {
    Channels &out = channels();
    const std::lock_guard<std::recursive_mutex> guard(out.mutex);
    const SZelErrorObserver former = out.observer;
    out.observer = {call, arg};
    return former;
}

void CZelError::SetErrorReportingLevel(int level) {
    s_level.store(std::clamp(level, 1, LOG_LEVEL), std::memory_order_relaxed);
}

int CZelError::ErrorReportingLevel() {
    return s_level.load(std::memory_order_relaxed);
}

int CZelError::SetLogHandle(int handle) {
    Channels &out = channels();
    const std::lock_guard<std::recursive_mutex> guard(out.mutex);
    const int former = out.logHandle;
    out.logHandle = handle;
    return former;
}

unsigned long CZelError::ReportCount() {
    return s_count.load(std::memory_order_relaxed);
}

int ZelFail(int code, const char *source, int line, const char *text) {
    const CZelError report(code, source, line, text);
    return code;
}
