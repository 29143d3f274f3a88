// What a node of a clause gives when it is evaluated: no value, an atom, or a whole list (of record_names and
// record_values, which no arithmetic changes).
//
// An atom that exists already, in a record, a constant or the node, is referred to and not copied. It must stay
// unchanged for as long as the value does.
#pragma once

#include <utility>

#include "foundations/base/CZelAtom.h"

class CZelExpr;

class QUINTOR_API CZelClauseValue {
public:
    CZelClauseValue() = default;
    CZelClauseValue(const CZelClauseValue &) = delete;
    CZelClauseValue &operator=(const CZelClauseValue &) = delete;

    void Clear() { m_atom = nullptr; }
    void Refer(const CZelAtom *atom) {  // null: no value
        m_atom = atom;
        m_isWhole = false;
    }
    void Set(CZelAtom &&atom) {  // Requires: no part of this value
        m_own.~CZelAtom();
        new (static_cast<void *>(&m_own)) CZelAtom(std::move(atom));
        Refer(&m_own);
    }
    void SetWhole(CZelAtom &&list) {
        Set(std::move(list));
        m_isWhole = true;
    }
    void Adopt(CZelAtom *atom);        // takes over a new atom; null: no value
    void Adopt(CZelExpr *value);       // takes over an expression that is an atom, or a clause with a result
    void Move(CZelClauseValue &from);  // leaves `from` without a value

    bool HasValue() const { return m_atom != nullptr; }
    bool IsWhole() const { return m_isWhole; }
    const CZelAtom *Get() const { return m_atom; }  // null: no value
    const CZelAtom *Head() const;                   // the atom, or the first element of a whole list

    CZelAtom &Own() {  // the atom to be changed in place. Requires: a value
        if (m_atom != &m_own)
            Set(CZelAtom(*m_atom));
        return m_own;
    }

    // Where a value computed from the present one can be put, to be referred to then: undefined, or the present value.
    CZelAtom &Place() {
        if (m_atom != &m_own) {
            m_own.~CZelAtom();
            new (static_cast<void *>(&m_own)) CZelAtom();
        }
        return m_own;
    }

    // Afterwards there is no value. New ones are the caller's, null for no value.
    CZelAtom Take();  // undefined for no value
    CZelAtom *TakeAtom();
    CZelExpr *TakeExpr();

private:
    const CZelAtom *m_atom = nullptr;  // m_own, or another's
    bool m_isWhole = false;
    CZelAtom m_own;
};
