// The row of a join in progress: the tables of the query, each with the record that is chosen at the moment.
//
// A table has a place, in the order of the query. Two tables of one identifier share a place. Places of tables that
// a tuple brings along come behind those of the walk.
#pragma once

#include <string_view>
#include <vector>

#include "foundations/base/CZelAtom.h"

class CZelRecord;
class CZelTable;

class CZelJoinRow {
public:
    static constexpr int NOWHERE = -1;
    static constexpr int BROUGHT = -1;  // the level of a table that is no step of the walk

    // The place of a table, made when there is none. The identifier outlives the row.
    int place(const CZelAtom &table, CZelTable *live, int level) {
        int found = find(table.RATextView());
        if (found == NOWHERE) {
            m_tables.push_back({&table, live, nullptr, level});
            found = static_cast<int>(m_tables.size()) - 1;
        }
        m_tables[static_cast<std::size_t>(found)].m_level = level;
        return found;
    }

    int find(std::string_view table) const {
        for (std::size_t i = 0; i < m_tables.size(); ++i) {
            if (m_tables[i].m_identifier->RATextView() == table)
                return static_cast<int>(i);
        }
        return NOWHERE;
    }

    int length() const { return static_cast<int>(m_tables.size()); }
    const CZelAtom *identifier(int place) const { return at(place).m_identifier; }
    CZelTable *table(int place) const { return at(place).m_table; }  // null when it was brought along
    int level(int place) const { return at(place).m_level; }         // the last step that may choose its record

    // Null while none is chosen, and for no place.
    CZelRecord *record(int place) const { return place == NOWHERE ? nullptr : at(place).m_record; }

    void choose(int place, CZelRecord *record) {
        m_tables[static_cast<std::size_t>(place)].m_record = record;
        ++m_chosen;
    }
    void drop(int place) {
        m_tables[static_cast<std::size_t>(place)].m_record = nullptr;
        --m_chosen;
    }
    int chosen() const { return m_chosen; }  // how many places have a record
    void dropAll() {
        for (Place &place : m_tables)
            place.m_record = nullptr;
        m_chosen = 0;
    }

    // The records of all places, null where none is chosen.
    void save(CZelRecord **records) const {
        for (const Place &place : m_tables)
            *records++ = place.m_record;
    }
    void load(CZelRecord *const *records) {
        m_chosen = 0;
        for (Place &place : m_tables) {
            place.m_record = *records++;
            m_chosen += place.m_record != nullptr ? 1 : 0;
        }
    }

private:
    struct Place {
        const CZelAtom *m_identifier;
        CZelTable *m_table;
        CZelRecord *m_record;
        int m_level;
    };
    const Place &at(int place) const { return m_tables[static_cast<std::size_t>(place)]; }

    std::vector<Place> m_tables;
    int m_chosen = 0;
};
