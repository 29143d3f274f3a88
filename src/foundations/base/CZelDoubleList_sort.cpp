// Merge sort on the forward links. Sorted runs wait in an array: run n holds 2^n elements, as the bits of a
// counter, so that no run is merged before an equal one has come. An earlier run holds earlier elements, and
// of two equal elements the earlier run's goes first: that keeps the sort stable.
#include "foundations/base/CZelDoubleList.h"

namespace {

constexpr int MAX_RUNS = 32;  // the length is an int

}  // namespace

CZelListable *CZelDoubleList::mergeRuns(CZelListable *early, CZelListable *late, ZelListCompare compare) {
    CZelListable *head = nullptr;
    CZelListable **link = &head;
    while (early != nullptr && late != nullptr) {
        CZelListable *&first = compare(early, late) <= 0 ? early : late;
        *link = first;
        link = &first->m_next;
        first = first->m_next;
    }
    *link = early != nullptr ? early : late;
    return head;
}

void CZelDoubleList::RDLSortList(ZelListCompare compare) {
    CZelListable *runs[MAX_RUNS] = {};
    CZelListable *rest = m_head;
    while (rest != nullptr) {
        CZelListable *run = rest;
        rest = rest->m_next;
        run->m_next = nullptr;
        int level = 0;
        for (; runs[level] != nullptr; ++level) {
            run = mergeRuns(runs[level], run, compare);
            runs[level] = nullptr;
        }
        runs[level] = run;
    }
    CZelListable *sorted = nullptr;
    for (CZelListable *run : runs)
        sorted = mergeRuns(run, sorted, compare);
    m_head = sorted;
    linkBackwards();
}
