// The name of a field with its nest level: each & in front is one record further out. The name is interned where it
// can be, so that a record finds it by address.
#pragma once

#include "foundations/base/CZelRecord.h"
#include "foundations/base/CZelRecordVector.h"

class QUINTOR_API CZelFieldName {
public:
    CZelFieldName() = default;                // no name
    explicit CZelFieldName(const char *text)  // null: no name
        : m_isName(text != nullptr) {
        while (m_isName && text[m_level] == '&')
            ++m_level;
        if (m_isName)
            m_name = CZelAtom::RAName(text + m_level);
        m_interned = CZelName::RNAtomOf(m_name);
    }

    bool IsName() const { return m_isName; }
    int Level() const { return m_level; }  // 0 is the current record
    const CZelAtom &Name() const { return m_name; }

    // The field's value, the record's; null for none. The records may be null; the last is the current one.
    const CZelAtom *ValueIn(const CZelRecordVector *records) const {
        const CZelRecord *record = m_isName && records != nullptr ? records->RRVGetValueFromEnd(m_level) : nullptr;
        const CZelVarBind *field = record != nullptr ? find(*record->RRVbIterator()) : nullptr;
        return field != nullptr ? field->RVBValue() : nullptr;
    }

private:
    const CZelVarBind *find(const CZelVBList &fields) const {
        return m_interned != nullptr ? fields.RVBLFindInterned(m_interned) : fields.RVBLFind(m_name);
    }

    bool m_isName = false;
    int m_level = 0;
    CZelAtom m_name;
    const CZelAtom *m_interned = nullptr;
};
