// The values of a list behind In, in order, without doubles and null: what a row's value is looked up in.
//
// It refers to the list, which outlives it and does not change.
#pragma once

#include <vector>

#include "foundations/base/CZelAtom.h"

class CZelAtomVector;

class CZelValueSet {
public:
    explicit CZelValueSet(const CZelAtomVector *list);

    const std::vector<const CZelAtom *> &values() const { return m_values; }  // in RALex order

    // The place of the value among values(), or -1. Null is in no set.
    int placeOf(const CZelAtom &value) const;

private:
    std::vector<const CZelAtom *> m_values;
};
