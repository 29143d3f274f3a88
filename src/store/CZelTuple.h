// One row of a joined query: a record per table, by the table's identifier. It owns none of the records.
#pragma once

#include "foundations/port/ZelExport.h"

class QUINTOR_API CZelTuple {
public:
    CZelTuple() = delete;
    virtual ~CZelTuple() = default;
};
