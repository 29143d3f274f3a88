// Tells people at a terminal that a file is still being read: after two seconds one line on standard error,
// renewed twice a second and wiped at the end. Silent where standard error is no terminal.
//
// Threads: a thread of its own writes; the reader only raises Done.
#pragma once

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

class CZelProgress {
public:
    // `total` is the file's size in bytes, 0 when it isn't known.
    CZelProgress(std::string name, long total);
    CZelProgress(const CZelProgress &) = delete;
    CZelProgress &operator=(const CZelProgress &) = delete;
    ~CZelProgress();

    void Done(long bytes) { m_done.fetch_add(bytes, std::memory_order_relaxed); }

private:
    void run();
    void show(int halfSeconds);

    std::string m_name;
    long m_total;
    std::atomic<long> m_done{0};
    std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_ended = false;  // under m_mutex
    bool m_shown = false;  // the thread's
    std::thread m_thread;
};
