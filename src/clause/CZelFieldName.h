// The name of a field with its nest level: each & in front is one record further out. The name is interned where it
// can be, so that a record finds it by address.
#pragma once

#include "foundations/base/CZelAtom.h"

class QUINTOR_API CZelFieldName {
public:
    CZelFieldName() = default;                // no name
    explicit CZelFieldName(const char *text)  // null: no name
        : m_isName(text != nullptr) {
        while (m_isName && text[m_level] == '&')
            ++m_level;
        if (m_isName)
            m_name = CZelAtom::RAName(text + m_level);
    }

    bool IsName() const { return m_isName; }
    int Level() const { return m_level; }  // 0 is the current record
    const CZelAtom &Name() const { return m_name; }

private:
    bool m_isName = false;
    int m_level = 0;
    CZelAtom m_name;
};
