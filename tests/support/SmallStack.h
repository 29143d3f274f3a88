// Work on a small stack: what walks by loops gets along with it, however deep its input is.
#pragma once

#include <gtest/gtest.h>
#include <pthread.h>

#include <functional>

// Runs `work` in a thread with a stack of 1 MiB.
inline void onSmallStack(std::function<void()> work) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    ASSERT_EQ(0, pthread_attr_setstacksize(&attributes, 1U << 20));
    pthread_t thread = {};
    const auto run = [](void *arg) -> void * {
        (*static_cast<std::function<void()> *>(arg))();
        return nullptr;
    };
    ASSERT_EQ(0, pthread_create(&thread, &attributes, run, &work));
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}
