#include "foundations/base/ZelInRuns.h"

#include <algorithm>
#include <atomic>
#include <vector>

#include "foundations/port/CZelErrorDelay.h"

namespace {

constexpr std::size_t PARTS = 2;
constexpr std::size_t LONGEST_RUN = 1024;

// Deals out a list. Each end is one thread's.
class Runs {
public:
    explicit Runs(const CZelDoubleList &list)
        : m_list(list),
          m_left(static_cast<std::size_t>(list.RDLLength())),
          m_run(std::clamp<std::size_t>(m_left / (4 * PARTS), 1, LONGEST_RUN)),
          m_front(list.RDLHead()),
          m_back(list.RDLTail()) {}

    // The next run; empty when there is none.
    SZelListRun fromFront() {
        const SZelListRun run{m_front, claim()};
        for (std::size_t i = 0; i < run.m_length; ++i)
            m_front = m_list.RDLGetNext(m_front);
        return run;
    }
    SZelListRun fromBack() {
        SZelListRun run{m_back, claim()};
        for (std::size_t i = 0; i < run.m_length; ++i) {
            run.m_first = m_back;
            m_back = m_list.RDLGetPrev(m_back);
        }
        return run;
    }

private:
    std::size_t claim() {
        std::size_t left = m_left.load(std::memory_order_relaxed);
        while (!m_left.compare_exchange_weak(left, left - std::min(left, m_run), std::memory_order_relaxed)) {
        }
        return std::min(left, m_run);
    }

    const CZelDoubleList &m_list;
    std::atomic<std::size_t> m_left;
    std::size_t m_run;
    CZelListable *m_front;
    CZelListable *m_back;
};

using Work = std::function<void(std::size_t part, const SZelListRun &run)>;
using Reports = std::vector<std::vector<SZelReport>>;

void workFromFront(Runs &runs, const Work &work) {
    for (SZelListRun run = runs.fromFront(); run.m_length > 0; run = runs.fromFront())
        work(0, run);
}

void workFromBack(Runs &runs, const Work &work, Reports &reports) {
    CZelErrorDelay delay;
    for (SZelListRun run = runs.fromBack(); run.m_length > 0; run = runs.fromBack()) {
        work(1, run);
        std::vector<SZelReport> made = delay.TakeReports();
        if (!made.empty())
            reports.push_back(std::move(made));
    }
}

}  // namespace

void ZelShareRuns(const CZelDoubleList &list, const Work &work) {
    Runs runs(list);
    Reports reports;
    ZelInParts(PARTS, [&](std::size_t part) {
        if (part == 0)
            workFromFront(runs, work);
        else
            workFromBack(runs, work, reports);
    });
    std::for_each(reports.rbegin(), reports.rend(), CZelErrorDelay::Make);
}
