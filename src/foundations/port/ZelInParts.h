// Work on many things of one kind, done in parts at the same time where the machine has the processors for it.
#pragma once

#include <cstddef>
#include <functional>

#include "foundations/port/ZelExport.h"

// In how many parts so many things are best done, when a part of less than `least` is not worth a thread: 1 to 4, and
// no more than there are processors, or than the limit.
QUINTOR_API std::size_t ZelPartsFor(std::size_t things, std::size_t least);

// For the whole process: no work takes more than so many threads, 1 for none but the caller's. At first, and with 0,
// there is no limit of this kind.
QUINTOR_API void ZelLimitParts(std::size_t most);

// For tests: everything is done in parts, however little it is and however few processors there are.
QUINTOR_API void ZelSplitAll(bool splits);

// Calls work(part) for each part from 0 to parts - 1 and returns when all are done. The caller's thread does the first
// and those for which no thread can be started: all calls of the process together start fewer than it has processors.
// Others report nothing that the caller's CZelErrorCapture would see.
QUINTOR_API void ZelInParts(std::size_t parts, const std::function<void(std::size_t)> &work);

// Where a part of so many things begins; that of part `parts` is their number.
inline std::size_t ZelBeginOfPart(std::size_t things, std::size_t part, std::size_t parts) {
    return things * part / parts;
}
