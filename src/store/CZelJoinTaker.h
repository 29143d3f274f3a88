// Takes the rows of a join, in their order.
#pragma once

#include <vector>

#include "store/CZelTuple.h"

class CZelJoinTaker {
public:
    virtual ~CZelJoinTaker() = default;

    // The next rows. They end with the call, their records with the join or later.
    virtual void take(const std::vector<CZelTuple> &rows) = 0;
};
