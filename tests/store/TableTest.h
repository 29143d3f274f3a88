// A live table d.t, and what tests say to it in a line.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "foundations/port/CZelErrorCapture.h"
#include "oql/CZelDelete.h"
#include "oql/CZelDropIndex.h"
#include "oql/CZelInsert.h"
#include "oql/CZelUpdate.h"
#include "store/CZelTableProps.h"
#include "store/CZelTblCallback.h"
#include "tests/store/LiveTable.h"

using namespace conditions;  // the language of these tests

using Texts = std::vector<std::string>;

enum Flags { PLAIN = 0, UNIQUE = 1, KEY = 2, NOT_NULL = 4 };

inline CZelColDef *column(const char *name, EZelDataType type, int flags = PLAIN, int maxLen = -1) {
    auto *made = new CZelColDef(ZelStrDup(name), type, nullptr, maxLen);
    made->RCDSetUnique(ZelBool((flags & UNIQUE) != 0));
    made->RCDSetIndex(ZelBool((flags & KEY) != 0));
    made->RCDSetNullable(ZelBool((flags & NOT_NULL) == 0));
    return made;
}

inline CZelAtomVector *names(std::initializer_list<const char *> texts) {
    auto *vector = new CZelAtomVector;
    for (const char *text : texts)
        vector->RAVAddToEnd(new CZelAtom(text));
    return vector;
}

inline CZelTableProps *props(void (CZelTableProps::*kind)(CZelAtomVector *),
                             std::initializer_list<const char *> texts) {
    auto *made = new CZelTableProps;
    (made->*kind)(names(texts));
    return made;
}
inline CZelTableProps *uniques(std::initializer_list<const char *> texts) {
    return props(&CZelTableProps::RTPSetUniques, texts);
}
inline CZelTableProps *keyOf(std::initializer_list<const char *> texts) {
    return props(&CZelTableProps::RTPSetIndices, texts);
}
inline CZelTableProps *counters(std::initializer_list<const char *> texts) {
    return props(&CZelTableProps::RTPSetCounters, texts);
}
inline CZelTableProps *timestamps(std::initializer_list<const char *> texts) {
    return props(&CZelTableProps::RTPSetTimestamps, texts);
}

inline CZelDbEntity *target(const char *table = "t") {
    return new CZelDbEntity("d", table, nullptr);
}

// A parsed table that is in no database.
inline CZelTable *parsed(std::initializer_list<CZelTblAttr *> attributes, const char *name = "t") {
    CZelStack stack(-1);
    for (CZelTblAttr *attribute : attributes)
        stack.RSPush(attribute);
    return new CZelTable(target(name), &stack);
}

inline std::string text(const CZelRecord &row) {
    std::string all;
    const CZelVBList *values = row.RRVbIterator();
    for (const CZelVarBind *pair = values->RVBLHead(); pair != nullptr; pair = values->RVBLGetNext(pair))
        all += (all.empty() ? "" : " ") + taken(pair->RVBVbAsString());
    return all;
}

// Writes each event down with the row's text and the argument; says no to the events that it was told to.
class EventLog : public CZelTblCallback {
public:
    Texts events;
    std::string refused;  // the event to which the answer is no
    CZelUpdate *statement = nullptr;

    __boolean RTCPreAdd(CZelTable *, CZelRecord *row, int, __boolean) override { return note("preAdd", row); }
    void RTCPostAdd(CZelTable *, CZelRecord *row, int, __boolean) override { note("postAdd", row); }
    __boolean RTCPreDelete(CZelTable *, CZelRecord *row, int, __boolean) override { return note("preDelete", row); }
    void RTCPostDelete(CZelTable *, CZelRecord *row, int, __boolean) override { note("postDelete", row); }
    __boolean RTCPreUpdate(CZelTable *, CZelRecord *row, int, __boolean) override { return note("preUpdate", row); }
    void RTCPostUpdate(CZelTable *, CZelRecord *row, int, __boolean) override { note("postUpdate", row); }
    __boolean RTCPrePreUpdate(CZelTable *, CZelRecord *row, int, __boolean, CZelUpdate *update) override {
        statement = update;
        return note("prePreUpdate", row);
    }
    __boolean RTCPreDuplicate(CZelTable *, CZelRecord *row, int, __boolean) override {
        return note("preDuplicate", row);
    }
    void RTCPostDuplicate(CZelTable *, CZelRecord *row, int, __boolean) override { note("postDuplicate", row); }
    void RTCInitialised(CZelTable *, int argument) override {
        events.push_back("initialised " + std::to_string(argument));
    }
    void RTCDestroyed(CZelTable *, int argument) override { events.push_back("destroyed " + std::to_string(argument)); }

private:
    __boolean note(const char *event, const CZelRecord *row) {
        events.push_back(event + (" " + text(*row)));
        return ZelBool(refused != event);
    }
};

class TableTest : public testing::Test {
protected:
    CZelTable &make(std::initializer_list<CZelTblAttr *> attributes) {
        m_table = parsed(attributes);
        m_store.RSAddTbl(m_table, E_RBTrue);
        m_table->RDOInitialise(&m_store);
        return *m_table;
    }

    int insert(Values values) { return insert(record(values)); }
    int insert(CZelRecord *row) {
        const int status = m_table->RTAddRow(row, E_RBFalse);
        if (status != 1)
            delete row;
        return status;
    }

    // insert into t (columns) unique (...) values (...)
    int insertUnique(Values values, std::initializer_list<const char *> columns) {
        auto *labels = new CZelAtomVector, *list = new CZelAtomVector;
        for (const auto &[name, value] : values) {
            labels->RAVAddToEnd(new CZelAtom(name));
            list->RAVAddToEnd(new CZelAtom(value));
        }
        CZelInsert statement(target(), names(columns), labels, list, nullptr);
        return m_table->RTAddRow(&statement, E_RBFalse);
    }

    int update(Values changes, CZelFilter *where) {
        CZelUpdate statement(target(), nullptr, where);
        for (const auto &[name, value] : changes)
            statement.RUAddAssignment(name, &value);
        return m_table->RTUpdateRows(&statement, E_RBFalse);
    }

    int erase(CZelFilter *where) {
        CZelDelete statement(target(), where);
        return m_table->RTDeleteRows(&statement, E_RBFalse);
    }

    static CZelFilter *where(const char *column, const CZelAtom &value) {
        return leaf(col(column), E_ROEqual, val(value));
    }

    Texts select(CZelFilter *filter) {
        CZelBag *found = m_table->RTReturnRows(filter);
        Texts all;
        for (const CZelRecord *row : contents<CZelRecord>(found))
            all.push_back(text(*row));
        delete found;
        delete filter;
        return all;
    }
    Texts rows() { return select(nullptr); }

    LiveStore m_store;
    CZelTable *m_table = nullptr;
};
