// The table under the hash containers: one array of slots, a key stands at the place that its hash names or
// behind it, up to the next empty slot. Removing moves later entries up, so there are no graves.
//
// A Slot is plain data, empty when its bytes are zero, with `bool isEmpty() const` and `uint64_t hash() const`.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "foundations/port/ZelOutOfMemory.h"

template <class Slot>
class ZelSlotTable {
public:
    // `expected` entries fit in before the table grows for the first time. Memory comes with the first one.
    explicit ZelSlotTable(int expected) : m_bits(bitsFor(expected)) {}
    ZelSlotTable(const ZelSlotTable &) = delete;
    ZelSlotTable &operator=(const ZelSlotTable &) = delete;
    ~ZelSlotTable() { std::free(m_slots); }

    std::size_t length() const { return m_length; }

    // The slot for which `matches` is true, or null.
    template <class Matches>
    Slot *find(std::uint64_t hash, Matches matches) const {
        if (m_length == 0)
            return nullptr;
        Slot *slot = probe(hash, matches);
        return slot->isEmpty() ? nullptr : slot;
    }

    // The slot for which `matches` is true, or else an empty one for the caller to fill at once.
    template <class Matches>
    Slot *findOrTake(std::uint64_t hash, Matches matches) {
        if (m_slots == nullptr || m_length >= places() / 4 * 3)
            grow();
        Slot *slot = probe(hash, matches);
        m_length += slot->isEmpty() ? 1 : 0;
        return slot;
    }

    void remove(Slot *slot) {
        std::size_t hole = static_cast<std::size_t>(slot - m_slots);
        for (std::size_t next = after(hole); !m_slots[next].isEmpty(); next = after(next)) {
            if (distance(home(m_slots[next].hash()), next) < distance(hole, next))
                continue;  // stands between its home and here: it may not go in front of its home
            m_slots[hole] = m_slots[next];
            hole = next;
        }
        m_slots[hole] = Slot{};
        --m_length;
    }

    template <class Visit>
    void forEach(Visit visit) const {
        if (m_length == 0)
            return;
        for (std::size_t i = 0; i < places(); ++i) {
            if (!m_slots[i].isEmpty())
                visit(m_slots[i]);
        }
    }

    void clear() {
        std::free(m_slots);
        m_slots = nullptr;
        m_length = 0;
    }

private:
    static constexpr int FEWEST_BITS = 3;
    static constexpr int MOST_EXPECTED = 1 << 20;  // beyond, growing costs less than a wrong guess

    static unsigned int bitsFor(int expected) {
        int wanted = expected < 0 ? 0 : expected > MOST_EXPECTED ? MOST_EXPECTED : expected;
        int bits = std::bit_width(static_cast<unsigned int>(wanted + wanted / 4));
        return static_cast<unsigned int>(bits < FEWEST_BITS ? FEWEST_BITS : bits);
    }
    std::size_t places() const { return std::size_t{1} << m_bits; }
    std::size_t home(std::uint64_t hash) const { return static_cast<std::size_t>(hash >> (64 - m_bits)); }
    std::size_t after(std::size_t place) const { return (place + 1) & (places() - 1); }
    std::size_t distance(std::size_t from, std::size_t to) const { return (to - from) & (places() - 1); }

    template <class Matches>
    Slot *probe(std::uint64_t hash, Matches matches) const {
        std::size_t place = home(hash);
        while (!m_slots[place].isEmpty() && !matches(m_slots[place]))
            place = after(place);
        return m_slots + place;
    }

    void grow() {
        Slot *old = m_slots;
        std::size_t oldPlaces = places();
        if (old != nullptr)
            ++m_bits;
        m_slots = static_cast<Slot *>(std::calloc(places(), sizeof(Slot)));
        if (m_slots == nullptr)
            ZelOutOfMemory();
        for (std::size_t i = 0; old != nullptr && i < oldPlaces; ++i) {
            if (!old[i].isEmpty())
                *probe(old[i].hash(), [](const Slot &) { return false; }) = old[i];
        }
        std::free(old);
    }

    Slot *m_slots = nullptr;
    std::size_t m_length = 0;
    unsigned int m_bits;  // of the number of places
};
