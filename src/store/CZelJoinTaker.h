// Takes the rows of a join, in their order.
#pragma once

#include <memory>
#include <vector>

#include "store/CZelTuple.h"

class CZelJoinTaker {
public:
    virtual ~CZelJoinTaker() = default;

    // The next rows. They end with the call, their records with the join or later.
    virtual void take(const std::vector<CZelTuple> &rows) = 0;

    // An empty one of the same kind, which another thread may use meanwhile, for rows that come later; and what that
    // one has taken by the end, behind what this one has. Null, and then never: this one must see all rows itself.
    virtual std::unique_ptr<CZelJoinTaker> another() const { return nullptr; }
    virtual void append(CZelJoinTaker & /*other*/) {}
};
