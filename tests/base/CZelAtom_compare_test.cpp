#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <vector>

#include "base/RandomValues.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/ZelCodes.h"

namespace {

std::string printed(const CZelAtom &atom) {
    return CZelMallocText(atom.RAStrRep()).get();
}

int sign(int order) {
    return (order > 0) - (order < 0);
}

bool holds(const CZelAtom &left, EZelOper op, const CZelAtom &right) {
    __boolean result = right.RAEvalExtOp(&left, op);
    EXPECT_EQ(result, left.RAEvalRelop(op, &right)) << printed(left) << " " << op << " " << printed(right);
    return result == E_RBTrue;
}

CZelAtom listOf(std::initializer_list<CZelAtom> elements) {
    CZelAtomVector *list = new CZelAtomVector;
    for (const CZelAtom &element : elements)
        list->RAVAddToEnd(new CZelAtom(element));
    return list;
}

bool like(const std::string &text, const std::string &pattern) {
    CZelAtom left(text.c_str()), right(pattern.c_str());
    bool result = right.RAEvalExtOp(&left, E_ROLike) == E_RBTrue;
    EXPECT_EQ(!result, right.RAEvalExtOp(&left, E_RONotLike) == E_RBTrue);
    return result;
}

// The plain definition, exponential on bad patterns.
bool likeByDefinition(const char *text, const char *pattern) {
    if (*pattern == '\0')
        return *text == '\0';
    if (*pattern == '%')
        return likeByDefinition(text, pattern + 1) || (*text != '\0' && likeByDefinition(text + 1, pattern));
    return *text != '\0' && (*pattern == '_' || *pattern == *text) && likeByDefinition(text + 1, pattern + 1);
}

}  // namespace

TEST(AtomCompare, OrdersPairs) {
    const long long ABOVE_FLOAT = (1LL << 53) + 1;
    const struct {
        CZelAtom m_left, m_right;
        int m_order;
    } TABLE[] = {
        {1, 2, -1},
        {1, 1L, 0},
        {1, 1LL, 0},
        {1, 1.0F, 0},
        {1, 1.5F, -1},
        {-1, -1.5F, 1},
        {0.0F, -0.0F, 0},
        {ABOVE_FLOAT, 9007199254740992.0F, 1},  // equal if the integer were rounded to a float or a double
        {LLONG_MAX, 9223372036854775808.0F, -1},
        {LLONG_MIN, -9223372036854775808.0F, 0},
        {LLONG_MIN, -HUGE_VALF, 1},
        {NAN, -HUGE_VALF, -1},
        {NAN, LLONG_MIN, -1},
        {NAN, NAN, 0},
        {"a", "b", -1},
        {"", "a", -1},
        {"abc", "abcd", -1},
        {"abcdefghijklm", "abcdefghijklmn", -1},
        {"\x7F", "\x80", -1},
        {"abcdefg\x7F", "abcdefg\x80", -1},
        {CZelAtom::RAName("b"), "b", 0},
        {CZelAtom::RAName("b"), CZelAtom::RAName("a"), 1},
        {listOf({1, 2}), listOf({1, 3}), -1},
        {listOf({1}), listOf({1, 2}), -1},
        {listOf({1.0F}), listOf({1}), 0},
    };
    for (const auto &[left, right, order] : TABLE) {
        SCOPED_TRACE(printed(left) + " and " + printed(right));
        int status = E_RCOk;
        EXPECT_EQ(order, sign(left.RALex(&right, &status)));
        EXPECT_EQ(-order, sign(right.RALex(&left, &status)));
        EXPECT_EQ(E_RCOk, status);
        EXPECT_EQ(order == 0, holds(left, E_ROEqual, right));
        EXPECT_EQ(order != 0, holds(left, E_RONotEqual, right));
        EXPECT_EQ(order < 0, holds(left, E_ROLess, right));
        EXPECT_EQ(order <= 0, holds(left, E_ROLessEqual, right));
        EXPECT_EQ(order > 0, holds(left, E_ROGreater, right));
        EXPECT_EQ(order >= 0, holds(left, E_ROGreaterEqual, right));
    }
}

TEST(AtomCompare, DifferentTypesAreUnequalAndNothingElse) {
    const CZelAtom atoms[] = {
        {}, 1, "1", CZelAtom(reinterpret_cast<const unsigned char *>("1"), 1), listOf({1}), CZelAtom(new CZelVBList)};
    for (std::size_t left = 0; left < std::size(atoms); ++left) {
        for (std::size_t right = left + 1; right < std::size(atoms); ++right) {
            int status = E_RCOk;
            EXPECT_GT(0, atoms[left].RALex(&atoms[right], &status));
            EXPECT_EQ(E_RCBadType, status);
            EXPECT_TRUE(holds(atoms[left], E_RONotEqual, atoms[right]));
            for (EZelOper op :
                 {E_ROEqual, E_ROLess, E_ROLessEqual, E_ROGreater, E_ROGreaterEqual, E_ROLike, E_RONotLike})
                EXPECT_FALSE(holds(atoms[left], op, atoms[right])) << op;
        }
    }
}

TEST(AtomCompare, NullIsAPointerOrAnUndefinedAtom) {
    CZelAtom undefined, one(1);
    EXPECT_EQ(0, CZelAtom::RACompare(nullptr, &undefined));
    EXPECT_EQ(0, CZelAtom::RACompare(&undefined, nullptr));
    EXPECT_GT(0, CZelAtom::RACompare(nullptr, &one));
    EXPECT_LT(0, CZelAtom::RACompare(&one, nullptr));
    EXPECT_EQ(E_RBTrue, undefined.RAEvalRelop(E_ROEqual, nullptr));
    EXPECT_EQ(E_RBTrue, one.RAEvalRelop(E_RONotEqual, nullptr));
}

TEST(AtomCompare, IsATotalOrder) {
    RandomValues values;
    std::vector<CZelAtom> atoms;
    for (int i = 0; i < 160; ++i)
        atoms.push_back(values.Atom());
    for (const CZelAtom &a : atoms) {
        for (const CZelAtom &b : atoms) {
            int ab = sign(a.RALex(&b, nullptr));
            ASSERT_EQ(-ab, sign(b.RALex(&a, nullptr))) << printed(a) << " and " << printed(b);
            for (const CZelAtom &c : atoms) {
                bool ordered = ab <= 0 && b.RALex(&c, nullptr) <= 0;
                ASSERT_TRUE(!ordered || a.RALex(&c, nullptr) <= 0)
                    << printed(a) << ", " << printed(b) << ", " << printed(c);
            }
        }
    }
}

TEST(AtomCompare, InAndBetweenReadTheList) {
    const CZelAtom list = listOf({1, "two", CZelAtom(), 3});
    const CZelAtom three(3.0F);
    EXPECT_EQ(E_RBTrue, list.RAEvalRelop(E_ROIn, &three));
    const struct {
        CZelAtom m_left;
        EZelOper m_op;
        CZelAtom m_right;
        __boolean m_result;
    } TABLE[] = {
        {1L, E_ROIn, list, E_RBTrue},
        {"two", E_ROIn, list, E_RBTrue},
        {"1", E_ROIn, list, E_RBFalse},
        {"1", E_RONotIn, list, E_RBTrue},
        {3, E_RONotIn, list, E_RBFalse},
        {3, E_ROIn, 3, E_RBFalse},
        {3, E_RONotIn, 3, E_RBFalse},
        {3, E_ROBetween, listOf({3, 5}), E_RBTrue},
        {5.0F, E_ROBetween, listOf({3, 5}), E_RBTrue},
        {5.5F, E_ROBetween, listOf({3, 5}), E_RBFalse},
        {5.5F, E_RONotBetween, listOf({3, 5}), E_RBTrue},
        {4, E_ROBetween, listOf({5, 3}), E_RBFalse},
        {4, E_ROBetween, listOf({3}), E_RBFalse},
        {4, E_RONotBetween, listOf({3}), E_RBFalse},
        {"4", E_RONotBetween, listOf({3, 5}), E_RBFalse},
        {1, E_ROExists, listOf({}), E_RBFalse},
        {1, E_ROExists, list, E_RBTrue},
        {1, E_ROIsNull, 1, E_RBFalse},
        {1, E_RONone, "x", E_RBTrue},
    };
    for (const auto &[left, op, right, result] : TABLE)
        EXPECT_EQ(result, right.RAEvalExtOp(&left, op)) << printed(left) << " " << op << " " << printed(right);
}

TEST(AtomCompare, LikeAgreesWithItsDefinition) {
    RandomValues values;
    for (int i = 0; i < 20000; ++i) {
        std::string text, pattern;
        for (int length = values.Below(12); length > 0; --length)
            text += "ab"[values.Below(2)];
        for (int length = values.Below(8); length > 0; --length)
            pattern += "aabb_%"[values.Below(6)];
        ASSERT_EQ(likeByDefinition(text.c_str(), pattern.c_str()), like(text, pattern)) << text << " like " << pattern;
    }
    EXPECT_FALSE(like("Core", "core"));
    EXPECT_TRUE(like("a.b*c", "a.b*_"));
}

// Each of these takes minutes when every place of the text is tried.
TEST(AtomCompare, LikeTakesLinearTime) {
    std::string text(2000000, 'a');
    std::string part(1000, 'a');
    EXPECT_FALSE(like(text, "%" + part + "b%"));
    EXPECT_FALSE(like(text, "%" + part + "_b%"));
    EXPECT_FALSE(like(text, "%_" + std::string(60, 'a') + "b%"));
    EXPECT_TRUE(like(text + "b", "%" + part + "_b%"));
    EXPECT_FALSE(like(text, "%a%a%a%a%a%a%a%a%b"));
}
