#include "store/CZelFilterWalk.h"

#include <utility>

#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelString.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelExpr.h"
#include "store/CZelBoolean.h"
#include "store/CZelCacheCondition.h"
#include "store/CZelFilter.h"
#include "store/CZelTable.h"

namespace {

// A report of a missing side holds the text of the node. So that a long chain of columns that are not the
// table's costs no more than its length, an evaluation stops reporting at this many bytes.
constexpr std::size_t MOST_REPORTED = 65536;

bool isEmptyBag(const CZelBag *bag) {
    return bag != nullptr && bag->RBLength() == 0;
}

bool isJoiner(EZelAlgebraic op) {
    return op == E_RAAnd || op == E_RAOr;
}

}  // namespace

CZelFilterWalk::CZelFilterWalk(CZelTable &table, bool partial, const CZelCacheCondition *known)
    : m_table(table), m_partial(partial), m_known(known), m_total(table.RTTotalRecordCount()) {}

CZelBag *CZelFilterWalk::run(CZelFilter *filter, CZelBag *input, __boolean *all) {
    CZelFilter *next = filter;
    CZelBag *rows = input;
    Answer answer;
    for (bool isKnown = false; !isKnown || !m_steps.empty();) {
        if (!isKnown && !isLeaf(next) && !answersAsRange(next, answer)) {
            next = enter(next, rows);
        } else {
            if (!isKnown && isLeaf(next))
                answer = answerLeaf(next, rows);
            isKnown = m_steps.empty() || !turnsRight(answer, &next);
        }
        rows = inputOfBranch();
    }
    if (all != nullptr)
        *all = ZelBool(answer.all);
    return answer.bag;
}

// A node that combines nothing counts as a leaf without a comparison.
bool CZelFilterWalk::isLeaf(const CZelFilter *node) const {
    return node == nullptr || node->RFKernel() != nullptr ||
           (!isJoiner(node->RFOperator()) && node->RFOperator() != E_RANot);
}

CZelFilter *CZelFilterWalk::enter(CZelFilter *node, CZelBag *input) {
    const bool isNot = node->RFOperator() == E_RANot;
    m_steps.push_back({node, input, {}, isNot});
    m_nots += isNot ? 1 : 0;
    return isNot ? node->RFRight() : node->RFLeft();
}

// Of an And only the rows that its left branch left over matter to the right one.
CZelBag *CZelFilterWalk::inputOfBranch() const {
    if (m_steps.empty())
        return nullptr;
    const Step &step = m_steps.back();
    const bool narrows = step.isInRight && step.node->RFOperator() == E_RAAnd && step.node->RFLeft() != nullptr;
    return narrows ? step.left.bag : step.input;
}

// The branch looked at has given `answer`. True: its node needs the right branch too, which is *next. False:
// the node is left, and `answer` is now the node's.
bool CZelFilterWalk::turnsRight(Answer &answer, CZelFilter **next) {
    Step &step = m_steps.back();
    if (!step.isInRight) {
        step.left = std::exchange(answer, Answer());
        step.isInRight = true;
        *next = step.node->RFRight();
        if (step.node->RFOperator() == E_RAAnd && narrows(*next, step.left)) {
            answer = step.left;
            m_steps.pop_back();
            return false;
        }
        // Below a Not it matters whether the right branch leaves something open, also where no row is left.
        const bool mustLook = m_partial && m_nots > 0;
        if (*next == nullptr || step.node->RFOperator() != E_RAAnd || mustLook || !isEmptyBag(inputOfBranch()))
            return true;
        answer.bag = new CZelBag;
    }
    answer = answerNode(step, answer);
    m_nots -= step.node->RFOperator() == E_RANot ? 1 : 0;
    m_steps.pop_back();
    return false;
}

// Does another table's column stand on the left of a subquery? RTEvalBoolean would look for it in its own rows.
bool CZelFilterWalk::isForeign(CZelBoolean &boolean) const {
    CZelDbEntity *column =
        boolean.RBRvalType() == E_RBRQuery && boolean.RBLeft() != nullptr ? boolean.RBLeft()->REEntityVal() : nullptr;
    return column != nullptr && m_table.RTMatchSelfTest(column) != E_RBTrue;
}

CZelFilterWalk::Answer CZelFilterWalk::answerLeaf(CZelFilter *node, CZelBag *input) {
    Answer answer;
    if (node == nullptr || node->RFKernel() == nullptr)
        return answer;
    __boolean evaluated = ZelBool(m_known != nullptr);
    if (m_known != nullptr)
        answer.bag = m_known->rowsOf(node, input);
    else if (!m_partial || !isForeign(*node->RFKernel()))
        answer.bag = m_table.RTEvalBoolean(node->RFKernel(), &evaluated, input);
    if (evaluated == E_RBFalse && m_partial) {
        delete answer.bag;
        answer.bag = m_table.allRows();
        answer.open = true;
    }
    answer.all = answer.bag != nullptr && answer.bag->RBLength() == m_total;
    return answer;
}

CZelFilterWalk::Answer CZelFilterWalk::answerNode(const Step &step, Answer right) {
    Answer left = step.left;
    Answer answer;
    answer.open = left.open || right.open;
    if (step.node->RFOperator() == E_RANot) {
        // What can't be answered can't be negated either; a Not of nothing is true of every row.
        const bool isUnanswered = right.bag == nullptr && step.node->RFRight() != nullptr;
        answer.bag = isUnanswered ? nullptr : negate(right);
    } else {
        completeSides(step.node, left, right);
        answer.bag = join(step.node->RFOperator(), left, right);
    }
    delete left.bag;
    delete right.bag;
    answer.all = answer.bag != nullptr && answer.bag->RBLength() == m_total;
    return answer;
}

// What is not known can't be negated: behind an open branch every row stays possible.
CZelBag *CZelFilterWalk::negate(const Answer &right) {
    if (right.open)
        return m_table.allRows();
    if (right.all)
        return new CZelBag;
    CZelBag *everything = m_table.allRows();
    if (right.bag == nullptr || right.bag->RBLength() == 0)
        return everything;
    CZelBag *result = CZelTable::RTNotBags(everything, right.bag);
    delete everything;
    return result;
}

// Takes the result out of the sides.
CZelBag *CZelFilterWalk::join(EZelAlgebraic op, Answer &left, Answer &right) {
    if (op == E_RAAnd) {
        if (!left.all && !right.all)
            return CZelTable::RTAndBags(left.bag, right.bag);
        return std::exchange(right.all ? left.bag : right.bag, nullptr);
    }
    if (!left.all && !right.all)
        return CZelTable::RTOrBags(left.bag, right.bag);
    return std::exchange(left.all ? left.bag : right.bag, nullptr);
}

void CZelFilterWalk::completeSides(CZelFilter *node, Answer &left, Answer &right) {
    if (left.bag == nullptr || right.bag == nullptr)
        reportMissingSide(node, left, right);
    if (left.bag == nullptr)
        left.bag = new CZelBag;
    if (right.bag == nullptr)
        right.bag = new CZelBag;
}

void CZelFilterWalk::reportMissingSide(CZelFilter *node, const Answer &left, const Answer &right) {
    if (m_reported >= MOST_REPORTED)
        return;
    const CZelMallocText condition(node->RFPrint());
    CZelString text(condition.get());
    text.RSStrCat(left.bag != nullptr ? ", leftQry exists" : " leftQry doesn't exist");
    text.RSStrCat(right.bag != nullptr ? ", rightQry exists" : ", rightQry doesn't exist");
    text.RSStrCat(", operator = ");
    text.RSStrCat(static_cast<int>(node->RFOperator()));
    text.RSStrCat('.');
    m_reported += text.RSStringLength();
    ZEL_REPORT(E_RCBadArgument, text.RSString());
}
