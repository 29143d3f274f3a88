#include "store/CZelValueSet.h"

#include <algorithm>

#include "foundations/base/CZelAtomVector.h"

namespace {

bool isBefore(const CZelAtom *left, const CZelAtom *right) {
    return left->RALex(right, nullptr) < 0;
}

bool isSame(const CZelAtom *left, const CZelAtom *right) {
    return left->RALex(right, nullptr) == 0;
}

}  // namespace

CZelValueSet::CZelValueSet(const CZelAtomVector *list) {
    const unsigned int size = list != nullptr ? list->RAVSize() : 0;
    m_values.reserve(size);
    for (unsigned int i = 0; i < size; ++i) {
        if (!CZelAtom::RAIsNull(list->RAVGetValue(i)))
            m_values.push_back(list->RAVGetValue(i));
    }
    std::sort(m_values.begin(), m_values.end(), isBefore);
    m_values.erase(std::unique(m_values.begin(), m_values.end(), isSame), m_values.end());
}

int CZelValueSet::placeOf(const CZelAtom &value) const {
    const auto place = std::lower_bound(m_values.begin(), m_values.end(), &value, isBefore);
    const bool isThere = place != m_values.end() && isSame(*place, &value);
    return isThere ? static_cast<int>(place - m_values.begin()) : -1;
}
