// The rows of a cached table, part of them in memory and the rest in a paged file.
//
// Only the interface that tables hold on to: until the cache is built, making one reports and fails, so every
// table is a plain table.
#pragma once

#include "foundations/base/ZelEnums.h"
#include "foundations/port/ZelExport.h"

class QUINTOR_API CZelRecordCache {
public:
    CZelRecordCache() = delete;
    ~CZelRecordCache() = default;
};
