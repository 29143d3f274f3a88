#include "store/CZelAddressSet.h"

#include <bit>

#include "foundations/base/CZelBag.h"

CZelAddressSet::CZelAddressSet(const CZelBag &bag)
    : m_mask(std::bit_ceil(2 * static_cast<std::size_t>(bag.RBLength()) + 2) - 1), m_places(m_mask + 1) {
    for (const CZelPointer *node = bag.RBFirst(); node != nullptr; node = CZelBag::RBNext(node))
        add(node->RPData());
}

void CZelAddressSet::add(const void *address) {
    std::size_t place = placeOf(address);
    while (m_places[place] != nullptr && m_places[place] != address)
        place = (place + 1) & m_mask;
    m_places[place] = address;
}
