#include "foundations/base/ZelInRuns.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "foundations/base/CZelBag.h"
#include "foundations/port/CZelError.h"
#include "foundations/port/CZelErrorCapture.h"
#include "tests/support/SplitAll.h"
#include "tests/support/TestRandom.h"

namespace {

// A list of numbers from 1 on, and what runs over it give.
class Numbers {
public:
    explicit Numbers(std::size_t count) : m_numbers(count) {
        for (std::size_t i = 0; i < count; ++i) {
            m_numbers[i] = static_cast<int>(i) + 1;
            m_bag.RBAdd(static_cast<void *>(&m_numbers[i]));
        }
    }

    template <class Visit>
    static void visit(const SZelListRun &run, Visit visit) {
        const auto *node = static_cast<const CZelPointer *>(run.m_first);
        for (std::size_t i = 0; i < run.m_length; ++i, node = CZelBag::RBNext(node))
            visit(static_cast<int *>(node->RPData()));
    }

    // Those that a divisor divides, behind a zero.
    std::vector<int> multiples(int divisor) const {
        int zero = 0;
        CZelBag out;
        out.RBAdd(static_cast<void *>(&zero));
        ZelRunsInto(*m_bag.RBIterator(), 1, out, [&](const SZelListRun &run, CZelBag &found) {
            visit(run, [&](int *number) {
                if (*number % divisor == 0)
                    found.RBAdd(static_cast<void *>(number));
            });
        });
        std::vector<int> numbers;
        for (const CZelPointer *node = out.RBFirst(); node != nullptr; node = CZelBag::RBNext(node))
            numbers.push_back(*static_cast<const int *>(node->RPData()));
        EXPECT_EQ(out.RBLength(), static_cast<int>(numbers.size()));
        return numbers;
    }

    const CZelDoubleList &list() const { return *m_bag.RBIterator(); }

private:
    std::vector<int> m_numbers;
    CZelBag m_bag;
};

}  // namespace

TEST(InRuns, WhatRunsOfBothThreadsGiveStandsInTheListsOrder) {
    const SplitAll split;
    TestRandom random;
    for (int round = 0; round < 200; ++round) {
        const std::size_t count = random.below(random.oneIn(4) ? 20000 : 40);
        const int divisor = 1 + static_cast<int>(random.below(5));
        std::vector<int> expected;
        for (int number = 0; number <= static_cast<int>(count); number += divisor)
            expected.push_back(number);
        ASSERT_EQ(expected, Numbers(count).multiples(divisor)) << count;
    }
}

TEST(InRuns, ReportsOfBothThreadsReachTheCallersCaptureInTheListsOrder) {
    const SplitAll split;
    const CZelErrorCapture reports;
    const unsigned long before = CZelError::ReportCount();
    const Numbers numbers(500);
    ZelInRuns(numbers.list(), 1, [](std::size_t, const SZelListRun &run) {
        Numbers::visit(run, [](const int *number) { ZEL_REPORT(*number, std::to_string(*number).c_str()); });
    });
    ASSERT_EQ(500U, reports.Count());
    EXPECT_EQ(500U, CZelError::ReportCount() - before);
    for (int number = 1; number <= 500; ++number) {
        const SZelReport &report = reports.Reports()[static_cast<std::size_t>(number) - 1];
        EXPECT_EQ(number, report.m_code);
        EXPECT_EQ(std::to_string(number), report.m_text);
    }
}

TEST(InRuns, AListThatIsTooShortIsOneRunOfTheCaller) {
    const Numbers numbers(99);
    std::vector<std::size_t> lengths;
    ZelInRuns(numbers.list(), 50, [&](std::size_t part, const SZelListRun &run) {
        EXPECT_EQ(0U, part);
        lengths.push_back(run.m_length);
    });
    EXPECT_EQ(std::vector<std::size_t>{99}, lengths);
}
