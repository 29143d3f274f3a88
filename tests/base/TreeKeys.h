// Keys for the tests of trees: of all types, many of them equal, near to each other or alike at the front.
#pragma once

#include <cmath>
#include <limits>
#include <string>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "support/TestRandom.h"

struct LessByLex {
    bool operator()(const CZelAtom &left, const CZelAtom &right) const { return left.RALex(&right, nullptr) < 0; }
};

class TreeKeys {
public:
    // Of about so many different keys.
    explicit TreeKeys(TestRandom &random, unsigned variety) : m_random(random), m_variety(variety) {}

    CZelAtom key() {
        switch (m_random.below(16)) {
            case 0:
            case 1:
            case 2:
                return CZelAtom(static_cast<int>(m_random.below(m_variety)) - 20);
            case 3:
                return wide();
            case 4:
                return CZelAtom(static_cast<float>(m_random.below(m_variety)) / 2);
            case 5:
                return edge();
            case 6:
                return m_random.oneIn(4) ? list() : data();
            default:
                return text();
        }
    }
    CZelAtom text() {
        static const char *const FRONTS[] = {"", "a", "ab", "interface", "interfaces/slot", "a much longer front "};
        const std::string front = m_random.oneIn(3) ? path() : FRONTS[m_random.below(6)];
        std::string text = front + std::to_string(m_random.below(m_variety));
        if (m_random.oneIn(8))
            text.resize(m_random.below(static_cast<unsigned>(text.size()) + 1));
        return m_random.oneIn(3) ? CZelAtom::RAName(text.c_str()) : CZelAtom(text.c_str(), text.size());
    }

private:
    // So that neighbours share long fronts, and others only some of it.
    std::string path() {
        std::string path;
        for (unsigned steps = m_random.below(6); steps > 0; --steps)
            path += m_random.oneIn(2) ? "site/" : "rack/";
        return path;
    }
    // Far apart, or so near to each other that no double tells them apart.
    CZelAtom wide() {
        const auto number = static_cast<long long>(m_random.below(m_variety));
        return CZelAtom(m_random.oneIn(2) ? number << 32 : (1LL << 60) + number);
    }
    CZelAtom edge() {
        constexpr float INFINITE = std::numeric_limits<float>::infinity();
        switch (m_random.below(8)) {
            case 0:
                return CZelAtom(std::numeric_limits<float>::quiet_NaN());
            case 1:
                return CZelAtom(INFINITE);
            case 2:
                return CZelAtom(-INFINITE);
            case 3:
                return CZelAtom(std::numeric_limits<long long>::min());
            case 4:
                return CZelAtom(std::numeric_limits<long long>::max());
            case 5:
                return CZelAtom(9223372036854775808.0F);
            case 6:
                return CZelAtom("\x80\xff");
            default:
                return CZelAtom("");
        }
    }
    CZelAtom data() {
        auto byte = static_cast<unsigned char>(m_random.below(m_variety));
        return CZelAtom(static_cast<const unsigned char *>(&byte), 1);
    }
    CZelAtom list() {
        auto *list = new CZelAtomVector(1);
        list->RAVAddToEnd(new CZelAtom(static_cast<int>(m_random.below(m_variety))));
        return CZelAtom(list);
    }

    TestRandom &m_random;
    unsigned m_variety;
};
