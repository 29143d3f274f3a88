#include "clause/CZelCompiledExpr.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "clause/CZelClauseValue.h"
#include "clause/CZelCmdCmplr.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelExpr.h"
#include "oql/ZelFoldImpl.h"

namespace {

EZelFold foldOf(EZelClauseOpr op) {
    switch (op) {
        case E_RCOPlus:
            return EZelFold::ADD;
        case E_RCOMinus:
            return EZelFold::SUBTRACT;
        case E_RCODivide:
            return EZelFold::DIVIDE;
        default:
            return EZelFold::MULTIPLY;
    }
}

void compute(CZelClauseValue &left, EZelFold operation, const CZelAtom &right) {
    CZelAtom &result = left.Place();
    if (!left.IsWhole() && ZelCompute(*left.Get(), operation, right, result))
        left.Refer(&result);
}

// Minus, divide and multiply need both operands: a missing one is reported, and a left one that is missing leaves no
// value.
void strictly(CZelClauseValue &left, const CZelClauseValue &right, EZelFold operation) {
    if (!right.HasValue()) {
        ZEL_REPORT(E_RCBadArgument, "CZelCompiledExpr: no right value");
        return;
    }
    const CZelAtom *operand = right.Head();
    if (CZelAtom::RAIsNull(operand))
        ZEL_REPORT(E_RCBadArgument, "CZelCompiledExpr: the right value is null");
    if (left.HasValue() && operand != nullptr)
        compute(left, operation, *operand);
}

}  // namespace

// Goes up the left spine of `root` from its foot. A right operand that is such a spine itself is gone through while
// the left one waits.
template <class Visitor>
void CZelCompiledExpr::walk(const CZelCompiledExpr *root, Visitor &visitor) {
    struct Waiting {
        const CZelCompiledExpr *node;
        const CZelCompiledExpr *head;
    };
    std::vector<Waiting> waiting;
    const CZelCompiledExpr *head = root;
    const CZelCompiledExpr *node = head->m_foot;
    visitor.Begin(node->m_left);
    for (;; node = node->m_up) {
        while (node->m_rightExpr != nullptr) {
            visitor.Hold();
            waiting.push_back({node, head});
            head = node->m_rightExpr;
            node = head->m_foot;
            visitor.Begin(node->m_left);
        }
        visitor.Step(*node);
        while (node == head && !waiting.empty()) {
            node = waiting.back().node;
            head = waiting.back().head;
            waiting.pop_back();
            visitor.Join(*node);
        }
        if (node == head)
            return;
    }
}

// The same for a spine without such operands.
template <class Visitor>
void CZelCompiledExpr::climb(const CZelCompiledExpr *head, Visitor &visitor) {
    const CZelCompiledExpr *node = head->m_foot;
    visitor.Begin(node->m_left);
    for (; node != head; node = node->m_up)
        visitor.Step(*node);
    visitor.Step(*head);
}

// Computes into one value, from the lowest operand up.
class CZelCompiledExpr::Evaluation {
public:
    Evaluation(CZelCmdCmplr &compiler, CZelClauseValue &value) : m_compiler(compiler), m_value(value) {}

    void Begin(const CZelCompiledClause *leaf) {
        m_value.Clear();
        if (leaf != nullptr)
            leaf->RCCEvaluate(m_compiler, m_value);
    }
    void Hold() {
        m_left.push_back(std::make_unique<CZelClauseValue>());
        m_left.back()->Move(m_value);
    }
    void Step(const CZelCompiledExpr &node) {
        if (node.m_unary)
            return negate();
        CZelClauseValue right;
        if (node.m_right != nullptr)
            node.m_right->RCCEvaluate(m_compiler, right);
        node.combine(m_value, right);
    }
    void Join(const CZelCompiledExpr &node) {
        node.combine(*m_left.back(), m_value);
        m_value.Move(*m_left.back());
        m_left.pop_back();
    }

private:
    void negate() {
        if (m_value.HasValue() && !m_value.IsWhole())
            ZelNegate(m_value.Own());
    }

    CZelCmdCmplr &m_compiler;
    CZelClauseValue &m_value;
    std::vector<std::unique_ptr<CZelClauseValue>> m_left;
};

// Builds a copy on the copies of its operands.
class CZelCompiledExpr::Copying {
public:
    void Begin(const CZelCompiledClause *leaf) { m_copy = cloneOf(leaf); }
    void Hold() { m_left.push_back(m_copy); }
    void Step(const CZelCompiledExpr &node) { m_copy = node.copyOver(m_copy, cloneOf(node.m_right)); }
    void Join(const CZelCompiledExpr &node) {
        m_copy = node.copyOver(m_left.back(), m_copy);
        m_left.pop_back();
    }
    CZelCompiledClause *Copy() const { return m_copy; }

private:
    CZelCompiledClause *m_copy = nullptr;
    std::vector<CZelCompiledClause *> m_left;
};

CZelCompiledExpr::CZelCompiledExpr(CZelCompiledClause *left, EZelClauseOpr op, CZelCompiledClause *right)
    : CZelCompiledExpr(left) {
    m_op = op;
    m_right = right;
    m_unary = false;
    m_rightExpr = dynamic_cast<const CZelCompiledExpr *>(right);
    m_isNested = m_isNested || m_rightExpr != nullptr;
    m_depth = std::max(m_depth, op >= E_RCOPlus && op <= E_RCOMultiply ? depthOfRight() : NOT_SIMPLE);
    requireOperand(right);
}

CZelCompiledExpr::CZelCompiledExpr(CZelCompiledClause *operand) : m_left(operand), m_unary(true) {
    requireOperand(operand);
    if (auto *spine = dynamic_cast<CZelCompiledExpr *>(operand)) {
        spine->m_up = this;
        m_foot = spine->m_foot;
        m_isNested = spine->m_isNested;
        m_depth = spine->m_depth;
    } else if (operand == nullptr || !operand->RCCIsPlain()) {
        m_depth = NOT_SIMPLE;
    }
}

// Nodes of this class below are taken out of their parents before they are deleted.
CZelCompiledExpr::~CZelCompiledExpr() {
    std::vector<CZelCompiledClause *> doomed{m_left, m_right};
    while (!doomed.empty()) {
        CZelCompiledClause *clause = doomed.back();
        doomed.pop_back();
        if (auto *node = dynamic_cast<CZelCompiledExpr *>(clause)) {
            doomed.push_back(std::exchange(node->m_left, nullptr));
            doomed.push_back(std::exchange(node->m_right, nullptr));
        }
        delete clause;
    }
}

CZelAtom *CZelCompiledExpr::RCCEvaluateToAtom(CZelCmdCmplr & /*compiler*/) const {
    ZEL_REPORT(E_RCBadValue, "Unexpected call to CZelCompiledExpr::RCCEvaluateToAtom");
    return nullptr;
}

CZelExpr *CZelCompiledExpr::RCCEvaluateToExpr(CZelCmdCmplr &compiler) const {
    CZelClauseValue value;
    RCCEvaluate(compiler, value);
    return value.TakeExpr();
}

void CZelCompiledExpr::RCCEvaluate(CZelCmdCmplr &compiler, CZelClauseValue &value) const {
    if (m_depth <= MAX_SIMPLE_DEPTH) {
        const CZelNumber computed = number(compiler.RCCRecords());
        if (computed.IsNumber())
            return value.Set(computed.Atom());
    }
    evaluateAny(compiler, value);
}

void CZelCompiledExpr::evaluateAny(CZelCmdCmplr &compiler, CZelClauseValue &value) const {
    Evaluation evaluation(compiler, value);
    if (!m_isNested)
        return climb(this, evaluation);
    walk(this, evaluation);
}

int CZelCompiledExpr::depthOfRight() const {
    if (m_rightExpr != nullptr)
        return std::min(m_rightExpr->m_depth + 1, NOT_SIMPLE);
    return m_right != nullptr && m_right->RCCIsPlain() ? 0 : NOT_SIMPLE;
}

CZelNumber CZelCompiledExpr::number(const CZelRecordVector *records) const {
    const CZelCompiledExpr *node = m_foot;
    CZelNumber number(node->m_left->RCCPlainValue(records));
    for (; number.IsNumber(); node = node->m_up) {
        if (node->m_unary)
            number.Negate();
        else if (const CZelNumber right = node->rightNumber(records); right.IsNumber())
            number.Compute(foldOf(node->m_op), right);  // a division by zero leaves the number
        else
            return right;
        if (node == this)
            return number;
    }
    return number;
}

CZelNumber CZelCompiledExpr::rightNumber(const CZelRecordVector *records) const {
    return m_rightExpr != nullptr ? m_rightExpr->number(records) : CZelNumber(m_right->RCCPlainValue(records));
}

void CZelCompiledExpr::combine(CZelClauseValue &left, CZelClauseValue &right) const {
    switch (m_op) {
        case E_RCOPlus:
            return RCCEvaluatePlus(left, right);
        case E_RCOMinus:
            return RCCEvaluateMinus(left, right);
        case E_RCODivide:
            return RCCEvaluateDivide(left, right);
        case E_RCOMultiply:
            return RCCEvaluateMultiply(left, right);
    }
    left.Clear();
    ZEL_REPORT(E_RCBadExprType, "CZelCompiledExpr::RCCEvaluateToExpr");
}

void CZelCompiledExpr::RCCEvaluatePlus(CZelClauseValue &left, CZelClauseValue &right) const {
    if (!right.HasValue())
        return;
    const CZelAtom *operand = right.Head();
    if (CZelAtom::RAIsNull(operand))
        ZEL_REPORT(E_RCBadArgument, "CZelCompiledExpr: the right value is null");
    if (!left.HasValue())
        return left.Move(right);
    if (operand != nullptr)
        compute(left, EZelFold::ADD, *operand);
}

void CZelCompiledExpr::RCCEvaluateMinus(CZelClauseValue &left, const CZelClauseValue &right) const {
    strictly(left, right, EZelFold::SUBTRACT);
}

void CZelCompiledExpr::RCCEvaluateDivide(CZelClauseValue &left, const CZelClauseValue &right) const {
    strictly(left, right, EZelFold::DIVIDE);
}

void CZelCompiledExpr::RCCEvaluateMultiply(CZelClauseValue &left, const CZelClauseValue &right) const {
    strictly(left, right, EZelFold::MULTIPLY);
}

CZelCompiledExpr *CZelCompiledExpr::copyOver(CZelCompiledClause *left, CZelCompiledClause *right) const {
    return m_unary ? new CZelCompiledExpr(left) : new CZelCompiledExpr(left, m_op, right);
}

CZelCompiledClause *CZelCompiledExpr::RCCClone() const {
    Copying copying;
    walk(this, copying);
    return copying.Copy();
}
