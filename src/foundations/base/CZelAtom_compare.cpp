#include <algorithm>
#include <cmath>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelAtom_like.h"
#include "foundations/base/CZelAtom_nesting.h"
#include "foundations/base/CZelUChar.h"
#include "foundations/base/CZelVBList.h"
#include "foundations/port/ZelCodes.h"

namespace {

// The place of each type in the total order; types of one rank order by value.
constexpr int RANK_OF_NULL = 0;
constexpr int RANK_OF_NUMBERS = 1;
constexpr int RANKS[] = {RANK_OF_NUMBERS, RANK_OF_NUMBERS, 2, RANK_OF_NUMBERS, RANK_OF_NUMBERS, 3, 4, 5, 6,
                         RANK_OF_NULL};

int sign(int comparison) {
    return static_cast<int>(comparison > 0) - static_cast<int>(comparison < 0);
}

int orderSizes(std::size_t left, std::size_t right) {
    return static_cast<int>(left > right) - static_cast<int>(left < right);
}

int orderBytes(const void *left, std::size_t leftSize, const void *right, std::size_t rightSize) {
    std::size_t common = std::min(leftSize, rightSize);
    int result = common == 0 ? 0 : std::memcmp(left, right, common);
    return result != 0 ? sign(result) : orderSizes(leftSize, rightSize);
}

// NaN stands before every number and equals itself.
int orderFloats(float left, float right) {
    if (std::isnan(left) || std::isnan(right))
        return static_cast<int>(std::isnan(right)) - static_cast<int>(std::isnan(left));
    return static_cast<int>(left > right) - static_cast<int>(left < right);
}

// Exact: neither side is rounded to the other's type.
int orderWholeAndFloat(long long whole, float real) {
    constexpr float BEYOND = 9223372036854775808.0F;
    if (std::isnan(real) || real < -BEYOND)
        return 1;
    if (real >= BEYOND)
        return -1;
    long long below = static_cast<long long>(real);
    if (whole != below)
        return whole < below ? -1 : 1;
    return orderFloats(static_cast<float>(below), real);
}

int orderLists(const CZelAtomVector *left, const CZelAtomVector *right) {
    unsigned int leftSize = left == nullptr ? 0 : left->RAVSize();
    unsigned int rightSize = right == nullptr ? 0 : right->RAVSize();
    for (unsigned int i = 0; i < leftSize && i < rightSize; ++i) {
        int result = CZelAtom::RACompare(left->RAVGetValue(i), right->RAVGetValue(i));
        if (result != 0)
            return result;
    }
    return orderSizes(leftSize, rightSize);
}

int orderMembers(const CZelVarBind &left, const CZelVarBind &right) {
    int result = left.RVBName().RALex(&right.RVBName(), nullptr);
    return result != 0 ? result : CZelAtom::RACompare(left.RVBValue(), right.RVBValue());
}

int orderObjects(const CZelVBList *left, const CZelVBList *right) {
    const CZelVarBind *mine = left == nullptr ? nullptr : left->RVBLHead();
    const CZelVarBind *theirs = right == nullptr ? nullptr : right->RVBLHead();
    while (mine != nullptr && theirs != nullptr) {
        int result = orderMembers(*mine, *theirs);
        if (result != 0)
            return result;
        mine = left->RVBLGetNext(mine);
        theirs = right->RVBLGetNext(theirs);
    }
    return static_cast<int>(mine != nullptr) - static_cast<int>(theirs != nullptr);
}

int orderBlocks(const CZelAtom &left, const CZelAtom &right) {
    unsigned char *mine = nullptr, *theirs = nullptr;
    int mySize = 0, theirSize = 0;
    left.RAUChar(&mine, &mySize);
    right.RAUChar(&theirs, &theirSize);
    return orderBytes(mine, static_cast<std::size_t>(mySize), theirs, static_cast<std::size_t>(theirSize));
}

bool holdsRelation(EZelOper op, int order) {
    switch (op) {
        case E_ROEqual:
            return order == 0;
        case E_RONotEqual:
            return order != 0;
        case E_ROLess:
            return order < 0;
        case E_ROLessEqual:
            return order <= 0;
        case E_ROGreater:
            return order > 0;
        default:
            return order >= 0;
    }
}

}  // namespace

int CZelAtom::rank() const {
    return RANKS[m_heap.type];
}

int CZelAtom::lexFully(const CZelAtom *other, int *status) const {
    int mine = rank();
    int theirs = other == nullptr ? RANK_OF_NULL : other->rank();
    if (mine != theirs) {
        if (status != nullptr)
            *status = E_RCBadType;
        return order(mine, theirs);
    }
    if (mine == RANK_OF_NULL)
        return 0;
    if (mine == RANK_OF_NUMBERS)
        return lexNumber(*other);
    if (m_heap.type == E_RDTText)
        return orderBytes(RAString(), RATextLength(), other->RAString(), other->RATextLength());
    return m_heap.type == E_RDTData ? orderBlocks(*this, *other) : lexNest(*other);
}

int CZelAtom::lexNumber(const CZelAtom &other) const {
    if (isWhole() && other.isWhole())
        return order(m_heap.word.whole, other.m_heap.word.whole);
    if (isWhole())
        return orderWholeAndFloat(m_heap.word.whole, other.m_heap.word.real);
    if (other.isWhole())
        return -orderWholeAndFloat(other.m_heap.word.whole, m_heap.word.real);
    return orderFloats(m_heap.word.real, other.m_heap.word.real);
}

int CZelAtom::lexNest(const CZelAtom &other) const {
    CZelNesting level("CZelAtom: two values are nested too deep to be compared whole.");
    if (level.TooDeep())
        return 0;
    return m_heap.type == E_RDTList ? orderLists(RAList(), other.RAList()) : orderObjects(RAObject(), other.RAObject());
}

bool CZelAtom::isRelated(EZelOper op, const CZelAtom &right) const {
    bool textsForEquality = op <= E_RONotEqual && m_heap.type == E_RDTText && right.m_heap.type == E_RDTText;
    if (textsForEquality)
        return RASameText(right) == (op == E_ROEqual);
    if (rank() != right.rank())
        return op == E_RONotEqual;
    return holdsRelation(op, RALex(&right, nullptr));
}

bool CZelAtom::holdsValue(const CZelAtom &value) const {
    const CZelAtomVector *list = RAList();
    unsigned int size = list == nullptr ? 0 : list->RAVSize();
    for (unsigned int i = 0; i < size; ++i) {
        const CZelAtom *element = list->RAVGetValue(i);
        if (element != nullptr && value.isRelated(E_ROEqual, *element))
            return true;
    }
    return false;
}

bool CZelAtom::isBetween(const CZelAtom &value, bool negated) const {
    if (RAList() == nullptr || RAList()->RAVSize() < 2)
        return false;
    const CZelAtom *lower = RAList()->RAVGetValue(0);
    const CZelAtom *upper = RAList()->RAVGetValue(1);
    bool comparable =
        lower != nullptr && upper != nullptr && value.rank() == lower->rank() && value.rank() == upper->rank();
    if (!comparable)
        return false;
    bool inside = value.RALex(lower, nullptr) >= 0 && value.RALex(upper, nullptr) <= 0;
    return inside != negated;
}

bool CZelAtom::isLike(const CZelAtom &text, bool negated) const {
    if (m_heap.type != E_RDTText || text.m_heap.type != E_RDTText)
        return false;
    return ZelLike(text.RATextView(), RATextView()) != negated;
}

bool CZelAtom::exists() const {
    return m_heap.type == E_RDTList ? RAList() != nullptr && RAList()->RAVSize() != 0 : !RAIsUndefined();
}

__boolean CZelAtom::RAEvalRelop(EZelOper op, const CZelAtom *other) const {
    const CZelAtom nothing;
    const CZelAtom &value = other == nullptr ? nothing : *other;
    if (op == E_ROIn)
        return ZelBool(holdsValue(value));
    if (op == E_RONotIn)
        return ZelBool(RAList() != nullptr && !holdsValue(value));
    return value.RAEvalExtOp(this, op);
}

__boolean CZelAtom::RAEvalExtOp(const CZelAtom *left, EZelOper op) const {
    const CZelAtom nothing;
    const CZelAtom &value = left == nullptr ? nothing : *left;
    switch (op) {
        case E_ROEqual:
        case E_RONotEqual:
        case E_ROLess:
        case E_ROLessEqual:
        case E_ROGreater:
        case E_ROGreaterEqual:
            return ZelBool(value.isRelated(op, *this));
        case E_ROIn:
            return ZelBool(holdsValue(value));
        case E_RONotIn:
            return ZelBool(RAList() != nullptr && !holdsValue(value));
        case E_ROLike:
        case E_RONotLike:
            return ZelBool(isLike(value, op == E_RONotLike));
        case E_ROBetween:
        case E_RONotBetween:
            return ZelBool(isBetween(value, op == E_RONotBetween));
        case E_ROExists:
            return ZelBool(exists());
        case E_ROIsNull:
        case E_ROIsNotNull:
            return ZelBool(value.RAIsUndefined() == (op == E_ROIsNull));
        default:
            return ZelBool(op == E_RONone);
    }
}
