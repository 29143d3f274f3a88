// Random atoms and records of every type, nested a few levels deep.
#pragma once

#include <cmath>
#include <cstdint>
#include <string>

#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelRecord.h"
#include "support/TestRandom.h"

class RandomValues {
public:
    int Below(int limit) { return static_cast<int>(m_random.below(static_cast<unsigned>(limit))); }
    std::string Name() { return "n" + std::to_string(Below(12)); }

    // Short and long texts, many of them equal or close to each other.
    std::string Text() {
        std::string text;
        for (int length = Below(4) == 0 ? 10 + Below(30) : Below(4); length > 0; --length)
            text += "ab\xC3 "[Below(4)];
        return text;
    }

    // Around the edges of the types, and such that floats and integers meet.
    long long Whole() {
        static constexpr long long EDGES[] = {0,         1LL << 24,    2147483647LL, -2147483648LL,
                                              1LL << 53, -(1LL << 53), INT64_MAX,    INT64_MIN};
        return static_cast<long long>(static_cast<unsigned long>(EDGES[Below(8)]) +
                                      static_cast<unsigned long>(Below(5)) - 2);
    }

    float Real() {
        static constexpr float EDGES[] = {0.5F, -0.0F, 1e30F, -1e30F, HUGE_VALF, -HUGE_VALF, NAN};
        return Below(3) == 0 ? EDGES[Below(7)] : static_cast<float>(Whole());
    }

    CZelAtom Atom(int depth = 3) {
        switch (Below(depth == 0 ? 7 : 9)) {
            case 0:
                return {};
            case 1:
                return static_cast<int>(Whole());
            case 2:
                return static_cast<long>(Whole());
            case 3:
                return Whole();
            case 4:
                return Real();
            case 5:
                return Text().c_str();
            case 6:
                return Block();
            case 7:
                return List(depth - 1);
            default:
                return CZelAtom(Members(depth - 1));
        }
    }

    CZelAtom Block() {
        std::string bytes = Text();
        return {reinterpret_cast<const unsigned char *>(bytes.data()), static_cast<int>(bytes.size())};
    }

    CZelAtom List(int depth) {
        CZelAtomVector *list = new CZelAtomVector;
        for (int size = Below(4); size > 0; --size)
            list->RAVAddToEnd(Below(10) == 0 ? nullptr : new CZelAtom(Atom(depth)));
        return list;
    }

    CZelVBList *Members(int depth) {
        CZelVBList *members = new CZelVBList;
        for (int size = Below(4); size > 0; --size) {
            CZelAtom *value = Below(10) == 0 ? nullptr : new CZelAtom(Atom(depth));
            members->RVBLAddToListEnd(new CZelVarBind(Name().c_str(), &value));
        }
        return members;
    }

private:
    TestRandom m_random;
};

// Equal in type, value and shape, where RALex sees only the value: 1 and 1.0 differ here.
bool IsSame(const CZelAtom *left, const CZelAtom *right);
bool IsSame(const CZelVBList &left, const CZelVBList &right);

inline bool IsSame(const CZelAtomVector &left, const CZelAtomVector &right) {
    bool same = left.RAVSize() == right.RAVSize();
    for (unsigned int i = 0; same && i < left.RAVSize(); ++i)
        same = IsSame(left.RAVGetValue(i), right.RAVGetValue(i));
    return same;
}

inline bool IsSame(const CZelVBList &left, const CZelVBList &right) {
    const CZelVarBind *mine = left.RVBLHead();
    const CZelVarBind *theirs = right.RVBLHead();
    bool same = left.RVBLLength() == right.RVBLLength();
    for (; same && mine != nullptr; mine = left.RVBLGetNext(mine), theirs = right.RVBLGetNext(theirs))
        same = mine->RVBName().RASameText(theirs->RVBName()) && IsSame(mine->RVBValue(), theirs->RVBValue());
    return same;
}

inline bool IsSame(const CZelAtom *left, const CZelAtom *right) {
    if (left == nullptr || right == nullptr)
        return left == right;
    if (left->RAType() != right->RAType())
        return false;
    if (left->RAList() != nullptr)
        return IsSame(*left->RAList(), *right->RAList());
    if (left->RAObject() != nullptr)
        return IsSame(*left->RAObject(), *right->RAObject());
    return left->RALex(right, nullptr) == 0;
}
