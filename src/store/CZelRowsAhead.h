// A look ahead along a bag of records. Rows that lie far apart in memory cost a wait for each of their pieces; this
// asks for the pieces of those that come next while one is at work: the record, some rows later its bindings, and
// some rows later the texts behind these. It changes nothing and reads only what earlier steps have asked for.
#pragma once

#include <utility>
#include <vector>

#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/port/ZelPrefetch.h"

class CZelRowsAhead {
public:
    // The bag's pointers must be to records until `advance` has passed them. The columns whose values will be read;
    // none: all.
    explicit CZelRowsAhead(const CZelBag &rows, std::vector<const CZelAtom *> columns = {})
        : m_columns(std::move(columns)), m_records(rows.RBFirst()), m_bindings(m_records), m_texts(m_records) {
        for (int i = 0; i < APART; ++i)
            askForRecord();
        for (int i = 0; i < APART; ++i) {
            askForRecord();
            askForBindings();
        }
        for (int i = 0; i < APART; ++i) {
            askForRecord();
            askForBindings();
            askForTexts();
        }
    }

    // To be called once for each row, before it is worked on.
    void advance() {
        askForRecord();
        askForBindings();
        askForTexts();
    }

private:
    static constexpr int APART = 3;

    static const CZelRecord *take(const CZelPointer *&node) {
        if (node == nullptr)
            return nullptr;
        const auto *record = static_cast<const CZelRecord *>(node->RPData());
        node = CZelBag::RBNext(node);
        return record;
    }
    void askForRecord() {
        if (const CZelRecord *record = take(m_records))
            ZelPrefetch(record);
    }
    void askForBindings() {
        if (const CZelRecord *record = take(m_bindings))
            record->RRVbIterator()->RVBLPrefetch();
    }
    void askForTexts() {
        const CZelRecord *record = take(m_texts);
        if (record == nullptr)
            return;
        if (m_columns.empty())
            record->RRVbIterator()->RVBLPrefetchValues();
        for (const CZelAtom *column : m_columns)
            if (const CZelAtom *value = record->RRValueOf(column))
                value->RAPrefetch();
    }

    std::vector<const CZelAtom *> m_columns;
    const CZelPointer *m_records;
    const CZelPointer *m_bindings;
    const CZelPointer *m_texts;
};
