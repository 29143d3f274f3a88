// Can values be decoded? The steps of the reader in CZelROMPer_read.cpp, with nothing built.
#include "foundations/base/CZelROMPer.h"
#include "foundations/base/CZelROMPer_format.h"
#include "foundations/base/ZelEnums.h"
#include "foundations/base/ZelShortBytes.h"

namespace {

// Each step gives the place behind what it passed, or null when that is not what it should be.
class Checker {
public:
    using Place = const unsigned char *;

    explicit Checker(Place end) : m_end(end) {}
    Place value(Place place, int depth) const;

private:
    std::size_t left(Place place) const { return static_cast<std::size_t>(m_end - place); }
    Place skip(Place place, std::size_t length) const { return length <= left(place) ? place + length : nullptr; }
    Place bytes(Place place, bool mayHoldNul) const;
    Place valueOrNone(Place place, int depth) const;
    Place list(Place place, bool areNamed, int depth) const;

    Place m_end;
};

Checker::Place Checker::value(Place place, int depth) const {
    if (place == m_end)
        return nullptr;
    switch (*place++) {
        case E_RDTInt:
        case E_RDTFloat:
            return skip(place, sizeof(std::uint32_t));
        case E_RDTLong:
        case E_RDTLong64:
            return skip(place, sizeof(std::uint64_t));
        case E_RDTText:
            return bytes(place, false);
        case E_RDTData:
            return bytes(place, true);
        case E_RDTList:
            return list(place, false, depth);
        case E_RDTObject:
            return list(place, true, depth);
        case E_RDTUndefined:
            return place;
        default:
            return nullptr;
    }
}

Checker::Place Checker::bytes(Place place, bool mayHoldNul) const {
    if (left(place) < sizeof(std::uint32_t))
        return nullptr;
    const std::size_t length = RompLoad<std::uint32_t>(place);
    place += sizeof(std::uint32_t);
    if (length > left(place) || (!mayHoldNul && ZelHoldsNul(reinterpret_cast<const char *>(place), length)))
        return nullptr;
    return place + length;
}

Checker::Place Checker::valueOrNone(Place place, int depth) const {
    return place != m_end && *place == ROMP_NO_VALUE ? place + 1 : value(place, depth);
}

// Of elements, or of members with names.
Checker::Place Checker::list(Place place, bool areNamed, int depth) const {
    if (depth == CZelROMPer::MAX_DEPTH || left(place) < sizeof(std::uint32_t))
        return nullptr;
    std::uint32_t count = RompLoad<std::uint32_t>(place);
    place += sizeof(count);
    if (count > left(place))
        return nullptr;
    for (; count != 0 && place != nullptr; --count) {
        if (areNamed)
            place = bytes(place, false);
        if (place != nullptr)
            place = valueOrNone(place, depth + 1);
    }
    return place;
}

}  // namespace

bool RompIsValue(const unsigned char *place, const unsigned char *end) {
    return Checker(end).value(place, 0) == end;
}
