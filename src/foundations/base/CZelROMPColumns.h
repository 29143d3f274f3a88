// Picks the values of some columns out of packed records without decoding the rest.
//
// Reads one packet at a time: its values are good until the next one. The names outlive it.
//
// Several threads have an object each, so what is written to for each packet lies apart.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/ZelShortBytes.h"
#include "foundations/port/ZelExport.h"

class QUINTOR_API CZelROMPColumns {
public:
    void add(const CZelAtom &name);  // of text; gets the next number from 0 on
    bool isEmpty() const { return m_columns.empty(); }

    // False: the packet is damaged, or a value among those looked for is a list, an object or data. Whoever wants it
    // then decodes the record. The checks of the bodies are left alone: the bytes are known to be as they were written.
    bool pick(const unsigned char *packet, int length);

    // The same for bytes that nobody has vouched for yet.
    enum Finding {
        DAMAGED,  // the packet can't be decoded whole
        SOUND,    // it can, but a value is no plain one
        PICKED
    };
    Finding pickChecked(const unsigned char *packet, int length);

    bool isThere(std::size_t column) const { return m_columns[column].m_isFound; }
    // Null where the column is not there or has no value. Of two columns of one name it is the first one's.
    const CZelAtom *value(std::size_t column) const {
        const CZelAtom &value = m_columns[column].m_value;
        return value.RAIsUndefined() ? nullptr : &value;
    }

    CZelAtom take(std::size_t column) { return std::move(m_columns[column].m_value); }  // undefined for null

private:
    static constexpr std::size_t APART = 64;  // bytes of a line of the processor's caches

    struct alignas(APART) Column {
        std::string_view m_name;
        CZelAtom m_value;
        bool m_isFound = false;
    };

    // An entry's name in the packet before: packets of one table mostly have the same names in the same order.
    static constexpr std::size_t NOT_YET = SIZE_MAX;
    struct Known {
        std::string m_name;
        std::size_t m_column = NOT_YET;  // their number: none that is looked for
    };
    static constexpr std::size_t MOST_KNOWN = 64;

    void forget();
    bool takeBody(const unsigned char *body, std::size_t length);
    Finding takeChecked(const unsigned char *body, std::size_t length, std::size_t entry);
    bool isKnown(const Known &known, std::string_view name) const {
        return known.m_column != NOT_YET && known.m_name.size() == name.size() &&
               ZelSameBytes(known.m_name.data(), name.data(), name.size());
    }
    bool learn(Known &known, std::string_view name) const;
    static bool takeValue(const unsigned char *place, std::size_t length, CZelAtom &value);

    alignas(APART) std::vector<Column> m_columns;
    std::size_t m_missing = 0;   // not found yet
    std::vector<Known> m_known;  // of entries that were checked
};
