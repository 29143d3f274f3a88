// A number taken out of an atom, to compute with. int and long compute as int, of a long the low 32 bits count; long64
// as long64, float with anything as float; whole numbers wrap.
#pragma once

#include "foundations/base/CZelAtom.h"

enum class EZelFold { ADD, SUBTRACT, MULTIPLY, DIVIDE };

class CZelNumber {
public:
    explicit CZelNumber(const CZelAtom *atom) : m_type(atom != nullptr ? atom->RAType() : E_RDTUndefined), m_whole(0) {
        if (m_type == E_RDTFloat)
            m_real = atom->RAFloat();
        else if (atom != nullptr && atom->RAIsNumber())
            m_whole = atom->RALongLong();
        else
            m_type = E_RDTUndefined;
    }

    bool IsNumber() const { return m_type != E_RDTUndefined; }

    // Requires for all others: numbers.
    CZelAtom Atom() const {
        switch (m_type) {
            case E_RDTFloat:
                return {m_real};
            case E_RDTLong64:
                return {m_whole};
            case E_RDTLong:
                return {static_cast<long>(m_whole)};
            default:
                return {static_cast<int>(m_whole)};
        }
    }

    bool Compute(EZelFold operation, CZelNumber right) {  // false, and nothing changed, for a division by zero
        if (operation == EZelFold::DIVIDE && right.isZero())
            return false;
        if (m_type == E_RDTFloat || right.m_type == E_RDTFloat)
            setReal(real(operation, asReal(), right.asReal()));
        else if (m_type == E_RDTLong64 || right.m_type == E_RDTLong64)
            setWhole(E_RDTLong64, whole<unsigned long long>(operation, wide(), right.wide()));
        else
            setWhole(E_RDTInt, whole<unsigned int>(operation, narrow(), right.narrow()));
        return true;
    }

    void Negate() {
        if (m_type == E_RDTFloat)
            m_real = -m_real;
        else if (m_type == E_RDTInt)
            m_whole = whole<unsigned int>(EZelFold::SUBTRACT, 0, narrow());
        else
            m_whole = whole<unsigned long long>(EZelFold::SUBTRACT, 0LL, m_whole);
    }

private:
    int narrow() const { return static_cast<int>(m_whole); }
    long long wide() const { return m_type == E_RDTLong64 ? m_whole : narrow(); }
    float asReal() const { return m_type == E_RDTFloat ? m_real : static_cast<float>(m_whole); }
    bool isZero() const {
        if (m_type == E_RDTFloat)
            return m_real == 0;
        return m_type == E_RDTLong64 ? m_whole == 0 : narrow() == 0;
    }

    void setReal(float value) {
        m_type = E_RDTFloat;
        m_real = value;
    }
    void setWhole(EZelDataType type, long long value) {
        m_type = type;
        m_whole = value;
    }

    // Computed without sign; the smallest number divided by -1 is itself.
    template <class Unsigned, class Signed>
    static Signed whole(EZelFold operation, Signed left, Signed right) {
        const auto a = static_cast<Unsigned>(left);
        const auto b = static_cast<Unsigned>(right);
        switch (operation) {
            case EZelFold::ADD:
                return static_cast<Signed>(a + b);
            case EZelFold::SUBTRACT:
                return static_cast<Signed>(a - b);
            case EZelFold::MULTIPLY:
                return static_cast<Signed>(a * b);
            case EZelFold::DIVIDE:
                break;
        }
        return right == -1 ? static_cast<Signed>(Unsigned{0} - a) : left / right;
    }

    static float real(EZelFold operation, float left, float right) {
        switch (operation) {
            case EZelFold::ADD:
                return left + right;
            case EZelFold::SUBTRACT:
                return left - right;
            case EZelFold::MULTIPLY:
                return left * right;
            case EZelFold::DIVIDE:
                break;
        }
        return left / right;
    }

    EZelDataType m_type;
    union {
        long long m_whole;
        float m_real;
    };
};
