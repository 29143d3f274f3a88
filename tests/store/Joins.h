// Joins written down: tables as a list, tuples as texts, and the walk told step by step, as one would do it by hand.
#pragma once

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "foundations/base/CZelDoubleList.h"
#include "foundations/base/CZelTreeList.h"
#include "store/CZelJoinTaker.h"
#include "store/CZelJoinWalk.h"
#include "store/CZelTuple.h"
#include "tests/store/LiveTable.h"

namespace joins {

using namespace conditions;
using Tables = std::vector<OpenTable *>;
using Texts = std::vector<std::string>;

inline std::unique_ptr<CZelDoubleList> listOf(const Tables &tables) {
    auto list = std::make_unique<CZelDoubleList>();
    for (OpenTable *table : tables)
        list->RDLAddToListEnd(new CZelPointer(static_cast<void *>(static_cast<CZelTable *>(table))));
    return list;
}

// "d_a:1 d_b:7", by the column id.
inline std::string textOf(const CZelTuple &tuple) {
    std::string text;
    for (std::size_t i = 0; i < tuple.RTLength(); ++i) {
        const SZelTupleEntry &entry = tuple.RTEntries()[i];
        const CZelAtom *id = entry.m_record->RRValueOf("id");
        text += (i == 0 ? "" : " ") + std::string(entry.m_table->RAString()) + ":" +
                (id != nullptr ? std::to_string(id->RAInt()) : "?");
    }
    return text;
}

inline Texts textsOf(const CZelBag &tuples) {
    Texts texts;
    for (const CZelTuple *tuple : contents<CZelTuple>(&tuples))
        texts.push_back(textOf(*tuple));
    std::sort(texts.begin(), texts.end());
    return texts;
}

inline Texts join(CZelFilter *filter, const Tables &tables) {
    CZelBag out;
    tables.front()->RTExecJoinedQuery(filter, &out, listOf(tables).get(), nullptr, nullptr);
    Texts texts = textsOf(out);
    tables.front()->RTPurgeGarbage();
    return texts;
}

// The rows as they come, of a walk on which so many may wait for each other.
class Sequence : public CZelJoinTaker {
public:
    Sequence(CZelFilter *filter, const Tables &tables, std::size_t together) {
        CZelTreeList copies(E_RBFalse);
        CZelJoinWalk(*tables.front(), filter, *listOf(tables), nullptr, nullptr, copies, together).run(*this);
    }

    void take(const std::vector<CZelTuple> &rows) override {
        for (const CZelTuple &row : rows)
            texts.push_back(textOf(row));
    }
    std::unique_ptr<CZelJoinTaker> another() const override { return std::unique_ptr<Sequence>(new Sequence); }
    void append(CZelJoinTaker &other) override {
        const Texts &more = static_cast<Sequence &>(other).texts;
        texts.insert(texts.end(), more.begin(), more.end());
    }

    Texts texts;

private:
    Sequence() = default;
};

// The walk by copies of the condition, tuple by tuple and table by table.
class StepByStep {
public:
    StepByStep(CZelFilter *filter, const Tables &tables) : m_filter(filter), m_tables(tables), m_list(listOf(tables)) {}

    Texts run() {
        descend(0, nullptr);
        Texts texts = textsOf(m_out);
        m_tables.front()->RTPurgeGarbage();
        return texts;
    }

private:
    void descend(std::size_t index, CZelTuple *tuple) {
        if (index == m_tables.size()) {
            auto *last = static_cast<CZelPointer *>(m_list->RDLTail());
            m_tables.front()->RTExecJoinedQuery(m_filter, &m_out, m_list.get(), last, tuple);
            return;
        }
        const std::unique_ptr<CZelBag> rows(rowsOf(*m_tables[index], tuple));
        if (rows == nullptr)
            return;
        for (CZelRecord *row : contents<CZelRecord>(rows.get()))
            follow(index, tuple, row);
        if (rows->RBLength() == 0)
            follow(index, tuple, nullptr);
    }

    CZelBag *rowsOf(OpenTable &table, CZelTuple *tuple) {
        __boolean complete = E_RBTrue;
        const std::unique_ptr<CZelFilter> sub(
            tuple != nullptr ? table.RTTupleToFilterInternals(m_filter, tuple, &complete) : nullptr);
        return complete == E_RBTrue ? table.RTReturnRows(sub.get()) : table.RTReturnPossibleRows(sub.get());
    }

    void follow(std::size_t index, const CZelTuple *tuple, CZelRecord *row) {
        CZelTuple *next = tuple != nullptr ? new CZelTuple(*tuple) : nullptr;
        if (row != nullptr && next == nullptr)
            next = new CZelTuple(m_tables[index]->RTIdentifier(), row);
        else if (row != nullptr)
            next->RTAddRecord(m_tables[index]->RTIdentifier(), row);
        descend(index + 1, next);
        if (index + 1 < m_tables.size())
            delete next;
    }

    CZelFilter *m_filter;
    const Tables &m_tables;
    std::unique_ptr<CZelDoubleList> m_list;
    CZelBag m_out;
};

}  // namespace joins
