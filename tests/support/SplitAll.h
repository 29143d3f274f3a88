// While it lives, whatever can be done in parts is done in parts, however little it is.
#pragma once

#include "foundations/port/ZelInParts.h"

class SplitAll {
public:
    explicit SplitAll(bool splits = true) { ZelSplitAll(splits); }
    SplitAll(const SplitAll &) = delete;
    SplitAll &operator=(const SplitAll &) = delete;
    ~SplitAll() { ZelSplitAll(false); }
};
