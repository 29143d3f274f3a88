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

#include "foundations/port/ZelExport.h"

class CZelBag;
class CZelDoubleList;
class CZelListable;

struct SZelListRun {
    CZelListable *m_first;
    std::size_t m_length;
};

// Part 0 has the runs from the front on, part 1 those from the back on. A part of less than `least` elements is not
// worth a thread: then part 0 gets the whole list as one run.
QUINTOR_API void ZelInRuns(const CZelDoubleList &list, std::size_t least,
                           const std::function<void(std::size_t part, const SZelListRun &run)> &work);

// The same where each run gives something to a bag: what all give goes behind what `out` holds, in the list's order.
QUINTOR_API void ZelRunsInto(const CZelDoubleList &list, std::size_t least, CZelBag &out,
                             const std::function<void(const SZelListRun &run, CZelBag &out)> &work);
