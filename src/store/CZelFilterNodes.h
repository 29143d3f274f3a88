// The nodes of a condition that hold a comparison, from left to right. A copy of a condition gives the copies of the
// same comparisons in the same order.
#pragma once

#include <vector>

#include "store/CZelFilter.h"

inline std::vector<CZelFilter *> ZelLeavesOf(CZelFilter &filter) {
    std::vector<CZelFilter *> leaves;
    std::vector<CZelFilter *> waiting{&filter};
    while (!waiting.empty()) {
        CZelFilter *node = waiting.back();
        waiting.pop_back();
        if (node->RFKernel() != nullptr) {
            leaves.push_back(node);
            continue;
        }
        for (CZelFilter *branch : {node->RFRight(), node->RFLeft()}) {
            if (branch != nullptr)
                waiting.push_back(branch);
        }
    }
    return leaves;
}
