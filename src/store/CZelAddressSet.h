// A set of addresses of a size known beforehand: which rows stand in a bag. One block of memory, no removal.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

class CZelBag;

class CZelAddressSet {
public:
    explicit CZelAddressSet(const CZelBag &bag);

    bool holds(const void *address) const {
        std::size_t place = placeOf(address);
        while (m_places[place] != nullptr && m_places[place] != address)
            place = (place + 1) & m_mask;
        return m_places[place] == address && address != nullptr;
    }

private:
    void add(const void *address);

    // The high bits of a product depend on all bits of the address.
    std::size_t placeOf(const void *address) const {
        constexpr std::uint64_t GOLDEN = 0x9E3779B97F4A7C15U;
        return (reinterpret_cast<std::uintptr_t>(address) * GOLDEN >> 32) & m_mask;
    }

    std::size_t m_mask;
    std::vector<const void *> m_places;  // at most half of them taken
};
