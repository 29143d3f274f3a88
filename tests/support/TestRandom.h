// Random steps that can be played again: the seed is printed with every failure and taken from the environment
// variable QUINTOR_TEST_SEED if that is set.
#pragma once

#include <cstdlib>
#include <random>
#include <string>

#include <gtest/gtest.h>

class TestRandom {
public:
    TestRandom() : m_seed(chooseSeed()), m_engine(m_seed), m_trace(__FILE__, __LINE__, describe()) {}

    // 0 to limit - 1
    unsigned below(unsigned limit) { return static_cast<unsigned>(m_engine() % limit); }
    bool oneIn(unsigned count) { return below(count) == 0; }
    unsigned long bits() { return m_engine(); }

private:
    static unsigned long chooseSeed() {
        const char *given = std::getenv("QUINTOR_TEST_SEED");
        return given != nullptr ? std::strtoul(given, nullptr, 10) : std::random_device()();
    }
    std::string describe() const { return "QUINTOR_TEST_SEED=" + std::to_string(m_seed); }

    unsigned long m_seed;
    std::mt19937_64 m_engine;
    testing::ScopedTrace m_trace;
};
