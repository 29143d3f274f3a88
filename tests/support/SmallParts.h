// Lets files of a few pages be read in parts, for the time of a test, where the machine has the processors for it.
#pragma once

#include "store/CZelPageFile.h"

class SmallParts {
public:
    explicit SmallParts(std::size_t pages) { CZelPageFile::setLeastPart(pages); }  // 0: as always
    SmallParts(const SmallParts &) = delete;
    SmallParts &operator=(const SmallParts &) = delete;
    ~SmallParts() { CZelPageFile::setLeastPart(0); }
};
