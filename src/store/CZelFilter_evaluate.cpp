// One record against a condition.
#include <cstddef>
#include <cstdio>
#include <memory_resource>
#include <vector>

#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/port/CZelError.h"
#include "foundations/port/ZelDebug.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelExpr.h"
#include "store/CZelBoolean.h"
#include "store/CZelColumnReader.h"
#include "store/CZelFilter.h"

namespace {

// A node whose left or right branch is being looked at.
struct Step {
    const CZelFilter *node;
    bool isInRight;
};

bool isSettledByLeft(EZelAlgebraic op, bool left) {
    return (op == E_RAAnd && !left) || (op == E_RAOr && left);
}

bool combine(EZelAlgebraic op, bool right) {
    switch (op) {
        case E_RAAnd:
        case E_RAOr:
            return right;
        case E_RANot:
            return !right;
        default:
            return false;
    }
}

// The usual conditions fit into the first block, so that looking at a record takes no memory.
class Path {
public:
    void enter(const CZelFilter *node) { m_steps.push_back({node, false}); }
    bool isEmpty() const { return m_steps.empty(); }

    // The branch looked at has given `answer`. True: its node needs the right branch too, which is *next.
    // False: the node is left, and `answer` is now the node's.
    bool turnsRight(bool &answer, const CZelFilter **next) {
        Step &step = m_steps.back();
        const EZelAlgebraic op = step.node->RFOperator();
        if (!step.isInRight && !isSettledByLeft(op, answer)) {
            step.isInRight = true;
            *next = step.node->RFRight();
            return true;
        }
        answer = step.isInRight ? combine(op, answer) : answer;
        m_steps.pop_back();
        return false;
    }

private:
    std::byte m_space[512];
    std::pmr::monotonic_buffer_resource m_memory{m_space, sizeof m_space};
    std::pmr::vector<Step> m_steps{&m_memory};
};

struct Operand {
    CZelColumnReader::Side side;
    EZelListUpdateType kind;
};

constexpr EZelListUpdateType NO_KIND = static_cast<EZelListUpdateType>(0);

Operand columnOf(const CZelExpr *expression, const CZelRecord *record) {
    const CZelDbEntity *entity = expression != nullptr ? expression->REEntityVal() : nullptr;
    if (entity == nullptr || record == nullptr)
        return {{nullptr, nullptr}, NO_KIND};
    const CZelColumnReader reader(*entity);
    return {reader.side(*record), reader.kind()};
}

Operand valueOf(const CZelExpr *expression) {
    return {{expression != nullptr ? expression->REHeadAtomVal() : nullptr, nullptr}, NO_KIND};
}

}  // namespace

__boolean CZelFilter::RFFilterRecord(const CZelRecord *record) {
    if (m_kernel != nullptr)
        return RFEvalBoolean(m_kernel, record);
    Path path;
    path.enter(this);
    const CZelFilter *next = m_left;
    for (bool isKnown = false, answer = false;;) {
        if (!isKnown && next != nullptr && next->m_kernel == nullptr) {
            path.enter(next);
            next = next->m_left;
            continue;
        }
        if (!isKnown)
            answer = next != nullptr && RFEvalBoolean(next->m_kernel, record) == E_RBTrue;
        if (path.isEmpty())
            return ZelBool(answer);
        isKnown = !path.turnsRight(answer, &next);
    }
}

CZelBag *CZelFilter::RFFilterRecordBag(CZelBag *records) {
    if (records == nullptr)
        return nullptr;
    auto *matching = new CZelBag;
    for (CZelPointer *node = records->RBFirst(); node != nullptr; node = CZelBag::RBNext(node)) {
        if (RFFilterRecord(static_cast<const CZelRecord *>(node->RPData())) == E_RBTrue)
            matching->RBAdd(node->RPData());
    }
    if (matching->RBLength() != 0)
        return matching;
    delete matching;
    return nullptr;
}

__boolean CZelFilter::RFEvalBoolean(CZelBoolean *boolean, const CZelRecord *record) {
    if (boolean == nullptr || boolean->RBRvalType() == E_RBRQuery)
        return E_RBFalse;
    if (boolean->RBOperand() == E_RONone)
        return E_RBTrue;
    if (record == nullptr && boolean->RBEvalType() != E_RBEValueValue) {
        if (__Zeltronix_Debug_Level >= 4)
            std::printf("Warning: Scalar Boolean required for literal evaluation of a filter \n");
        return E_RBFalse;
    }
    return RFEvalRecordTest(boolean->RBLeft(), boolean->RBRight(), boolean->RBEvalType(), record, boolean);
}

__boolean CZelFilter::RFEvalRecordTest(CZelExpr *left, CZelExpr *right, EZelBoolEvalType evalType,
                                       const CZelRecord *record, CZelBoolean *boolean) {
    const bool leftIsColumn = evalType == E_RBEColumnValue || evalType == E_RBEColumnColumn;
    const bool rightIsColumn = evalType == E_RBEValueColumn || evalType == E_RBEColumnColumn;
    const Operand mine = leftIsColumn ? columnOf(left, record) : valueOf(left);
    const Operand theirs = rightIsColumn ? columnOf(right, record) : valueOf(right);
    return boolean->RBEvalComplex(mine.side.value, mine.side.list, mine.kind, theirs.side.value, theirs.side.list,
                                  theirs.kind);
}
