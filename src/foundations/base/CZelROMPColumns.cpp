#include "foundations/base/CZelROMPColumns.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "foundations/base/CZelROMPer_format.h"

namespace {

constexpr std::size_t LENGTH_SIZE = sizeof(std::uint32_t);

bool takeText(const unsigned char *place, std::size_t length, CZelAtom &value) {
    if (length < LENGTH_SIZE || RompLoad<std::uint32_t>(place) != length - LENGTH_SIZE ||
        std::memchr(place + LENGTH_SIZE, 0, length - LENGTH_SIZE) != nullptr)
        return false;
    value = CZelAtom::RAKey(reinterpret_cast<const char *>(place + LENGTH_SIZE), length - LENGTH_SIZE);
    return true;
}

// Most values are told from their type and length.
bool isValue(const unsigned char *place, std::size_t length) {
    switch (*place) {
        case E_RDTInt:
        case E_RDTFloat:
            return length == 1 + sizeof(std::uint32_t);
        case E_RDTLong:
        case E_RDTLong64:
            return length == 1 + sizeof(std::uint64_t);
        case E_RDTText:
            return length >= 1 + LENGTH_SIZE && RompLoad<std::uint32_t>(place + 1) == length - 1 - LENGTH_SIZE &&
                   !ZelHoldsNul(reinterpret_cast<const char *>(place + 1 + LENGTH_SIZE), length - 1 - LENGTH_SIZE);
        default:
            return RompIsValue(place, place + length);
    }
}

}  // namespace

void CZelROMPColumns::add(const CZelAtom &name) {
    m_columns.push_back({name.RATextView(), CZelAtom(), false});
    m_known.clear();
}

void CZelROMPColumns::forget() {
    for (Column &column : m_columns) {
        column.m_isFound = false;
        column.m_value.RASet();
    }
    m_missing = m_columns.size();
}

bool CZelROMPColumns::pick(const unsigned char *packet, int length) {
    forget();
    const unsigned char *const end = packet + length;
    while (packet != end && m_missing > 0) {
        std::uint32_t size = 0, check = 0;
        const auto left = static_cast<std::size_t>(end - packet);
        if (left < ROMP_HEAD_SIZE || !RompLoadHead(packet, &size, &check) || size > left - ROMP_HEAD_SIZE)
            return false;
        packet += ROMP_HEAD_SIZE;
        if (size != 0 && !takeBody(packet, size))
            return false;
        packet += size;
    }
    return true;
}

bool CZelROMPColumns::takeBody(const unsigned char *body, std::size_t length) {
    if (length < LENGTH_SIZE)
        return false;
    const std::size_t nameLength = RompLoad<std::uint32_t>(body);
    const auto *name = reinterpret_cast<const char *>(body + LENGTH_SIZE);
    if (nameLength >= length - LENGTH_SIZE)
        return false;
    for (Column &column : m_columns) {
        if (column.m_name.size() != nameLength || column.m_isFound ||
            std::memcmp(name, column.m_name.data(), nameLength) != 0)
            continue;
        column.m_isFound = true;
        --m_missing;
        const std::size_t before = LENGTH_SIZE + nameLength;
        return takeValue(body + before, length - before, column.m_value);
    }
    return true;
}

// A type and what belongs to it. The value is undefined before.
bool CZelROMPColumns::takeValue(const unsigned char *place, std::size_t length, CZelAtom &value) {
    const unsigned char type = *place++;
    --length;
    switch (type) {
        case E_RDTInt:
            value = CZelAtom(static_cast<int>(length == 4 ? RompLoad<std::uint32_t>(place) : 0));
            return length == 4;
        case E_RDTFloat:
            value = CZelAtom(std::bit_cast<float>(length == 4 ? RompLoad<std::uint32_t>(place) : 0U));
            return length == 4;
        case E_RDTLong:
            value = CZelAtom(static_cast<long>(length == 8 ? RompLoad<std::uint64_t>(place) : 0));
            return length == 8;
        case E_RDTLong64:
            value = CZelAtom(static_cast<long long>(length == 8 ? RompLoad<std::uint64_t>(place) : 0));
            return length == 8;
        case E_RDTText:
            return takeText(place, length, value);
        default:
            return (type == ROMP_NO_VALUE || type == E_RDTUndefined) && length == 0;
    }
}

CZelROMPColumns::Finding CZelROMPColumns::pickChecked(const unsigned char *packet, int length) {
    forget();
    m_known.resize(MOST_KNOWN);
    const unsigned char *const end = packet + length;
    if (RompIntact(packet, static_cast<std::size_t>(length)) != static_cast<std::size_t>(length))
        return DAMAGED;
    Finding finding = PICKED;
    for (std::size_t entry = 0; packet != end && finding != DAMAGED; ++entry) {
        const std::size_t size = RompLoad<std::uint32_t>(packet);
        packet += ROMP_HEAD_SIZE;
        if (size != 0)
            finding = std::min(finding, takeChecked(packet, size, entry));
        packet += size;
    }
    return finding;
}

CZelROMPColumns::Finding CZelROMPColumns::takeChecked(const unsigned char *body, std::size_t length,
                                                      std::size_t entry) {
    const std::size_t nameLength = length < LENGTH_SIZE ? length : RompLoad<std::uint32_t>(body);
    if (length < LENGTH_SIZE || nameLength >= length - LENGTH_SIZE)
        return DAMAGED;
    const std::string_view name(reinterpret_cast<const char *>(body + LENGTH_SIZE), nameLength);
    Known &known = m_known[entry % MOST_KNOWN];
    if (!isKnown(known, name) && !learn(known, name))
        return DAMAGED;
    const unsigned char *place = body + LENGTH_SIZE + nameLength;
    const unsigned char *const end = body + length;
    if ((*place != ROMP_NO_VALUE || end - place != 1) && !isValue(place, static_cast<std::size_t>(end - place)))
        return DAMAGED;
    if (known.m_column >= m_columns.size() || m_columns[known.m_column].m_isFound)
        return PICKED;
    Column &column = m_columns[known.m_column];
    column.m_isFound = true;
    return takeValue(place, static_cast<std::size_t>(end - place), column.m_value) ? PICKED : SOUND;
}

// False for a name that no record can have.
bool CZelROMPColumns::learn(Known &known, std::string_view name) const {
    if (ZelHoldsNul(name.data(), name.size()))
        return false;
    const auto column =
        std::find_if(m_columns.begin(), m_columns.end(), [name](const Column &one) { return one.m_name == name; });
    known = {std::string(name), static_cast<std::size_t>(column - m_columns.begin())};
    return true;
}
