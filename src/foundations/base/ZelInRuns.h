// Work on the elements of a list, shared by two threads where there are enough of them: the caller's goes on from the
// front and another one from the back, a run of elements at a time, until they meet. So a list needs no marks to be
// shared, and a thread that gets no processor leaves the most to the other.
//
// Within a run the elements come in their order. Reports of the other thread are made by the caller's when all is done,
// as if it had done all itself. The list must stay as it is; what the work itself changes must be its run's or its
// part's own.
#pragma once

#include <cstddef>
#include <functional>

#include "foundations/base/CZelBag.h"
#include "foundations/port/ZelExport.h"
#include "foundations/port/ZelInParts.h"

struct SZelListRun {
    CZelListable *m_first;
    std::size_t m_length;
};

// For ZelInRuns: work(part, run) for the runs of both threads.
QUINTOR_API void ZelShareRuns(const CZelDoubleList &list,
                              const std::function<void(std::size_t part, const SZelListRun &run)> &work);

// Calls work(part, run), where `part` is 0 for the runs from the front on and 1 for those from the back on. Fewer than
// `least` elements each are not worth a thread: then the caller's gets the whole list as one run from the front.
template <class Work>
void ZelInRuns(const CZelDoubleList &list, std::size_t least, Work work) {
    const auto length = static_cast<std::size_t>(list.RDLLength());
    if (ZelPartsFor(length, least) == 1)
        work(std::size_t{0}, SZelListRun{list.RDLHead(), length});
    else
        ZelShareRuns(list, std::ref(work));
}

// The same where work(run, bag) adds to a bag: what all runs add goes behind what `out` holds, in the list's order.
template <class Work>
void ZelRunsInto(const CZelDoubleList &list, std::size_t least, CZelBag &out, Work work) {
    CZelBag back;
    ZelInRuns(list, least, [&](std::size_t part, const SZelListRun &run) {
        if (part == 0) {
            work(run, out);
            return;
        }
        CZelBag made;
        work(run, made);
        made.RBIterator()->RDLTakeFrom(*back.RBIterator());
        back.RBIterator()->RDLTakeFrom(*made.RBIterator());
    });
    out.RBIterator()->RDLTakeFrom(*back.RBIterator());
}
