#include "store/CZelFilter.h"

#include <cstdio>
#include <cstring>
#include <utility>
#include <vector>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelBag.h"
#include "foundations/port/CZelError.h"
#include "foundations/port/ZelDebug.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelExpr.h"
#include "oql/CZelQuery.h"
#include "store/CZelBoolean.h"

namespace {

// Visits a tree from the top, left before right, until the visitor says that it is done.
template <class Visitor>
void visitInOrder(CZelFilter *root, Visitor isDone) {
    std::vector<CZelFilter *> waiting{root};
    while (!waiting.empty()) {
        CZelFilter *node = waiting.back();
        waiting.pop_back();
        if (isDone(*node))
            return;
        if (node->RFRight() != nullptr)
            waiting.push_back(node->RFRight());
        if (node->RFLeft() != nullptr)
            waiting.push_back(node->RFLeft());
    }
}

CZelBag *bagFor(CZelBag *bag) {
    return bag != nullptr ? bag : new CZelBag;
}

CZelBag *appendAll(CZelBag *bag, const CZelBag *found) {
    if (found == nullptr || found->RBLength() == 0)
        return bag;
    bag = bagFor(bag);
    bag->RBAppend(found);
    return bag;
}

CZelBag *appendClauses(CZelBag *bag, CZelExpr *expression) {
    if (expression == nullptr)
        return bag;
    if (expression->REType() == E_RETEntity)
        return appendAll(bag, expression->REEntityVal()->RDEClauses());
    if (expression->REType() != E_RETClause)
        return bag;
    bag = bagFor(bag);
    bag->RBAdd(expression);
    return bag;
}

CZelBag *appendClausesOf(CZelBag *bag, CZelBoolean &kernel) {
    bag = appendClauses(bag, kernel.RBLeft());
    if (kernel.RBRvalType() == E_RBRExpr)
        return appendClauses(bag, kernel.RBRight());
    return kernel.RBRightQuery() != nullptr ? appendAll(bag, kernel.RBRightQuery()->RDOCompilables()) : bag;
}

CZelBag *appendEntity(CZelBag *bag, CZelExpr *expression) {
    if (expression == nullptr || expression->REType() != E_RETEntity)
        return bag;
    bag = bagFor(bag);
    bag->RBAdd(expression);
    return bag;
}

CZelBag *appendEntitiesOf(CZelBag *bag, CZelQuery *query) {
    const CZelBag *expressions = query != nullptr ? query->RDOCompilables() : nullptr;
    if (expressions == nullptr)
        return bag;
    for (CZelPointer *node = expressions->RBFirst(); node != nullptr; node = CZelBag::RBNext(node))
        bag = appendEntity(bag, static_cast<CZelExpr *>(node->RPData()));
    return bag;
}

CZelBag *appendEntitiesOf(CZelBag *bag, CZelBoolean &kernel) {
    bag = appendEntity(bag, kernel.RBLeft());
    if (kernel.RBRvalType() == E_RBRExpr)
        return appendEntity(bag, kernel.RBRight());
    return appendEntitiesOf(bag, kernel.RBRightQuery());
}

// A new copy of what the column is compared with in this comparison, or null.
CZelAtom *comparedWith(CZelBoolean *kernel, const char *column) {
    const CZelExpr *left = kernel != nullptr ? kernel->RBLeft() : nullptr;
    const CZelDbEntity *entity = left != nullptr ? left->REEntityVal() : nullptr;
    const char *name = entity != nullptr ? entity->RDEColName() : nullptr;
    if (name == nullptr || std::strcmp(name, column) != 0 || kernel->RBRvalType() == E_RBRQuery)
        return nullptr;
    const CZelExpr *right = kernel->RBRight();
    const CZelAtom *value = right != nullptr ? right->REAtomVal() : nullptr;
    return value != nullptr ? new CZelAtom(*value) : nullptr;
}

// A new tree over copies of both, or a copy of the only one.
CZelFilter *join(const CZelFilter *a, const CZelFilter *b, EZelAlgebraic op, const char *operation) {
    if (a == nullptr && b == nullptr) {
        if (__Zeltronix_Debug_Level >= 1)
            std::printf("Error: %s caled with NULL arguments\n", operation);
        return nullptr;
    }
    if (a == nullptr || b == nullptr)
        return new CZelFilter(a != nullptr ? *a : *b);
    auto *joined = new CZelFilter;
    joined->RFAddLeft(new CZelFilter(*a));
    joined->RFAddRight(new CZelFilter(*b));
    joined->RFSetOp(op);
    return joined;
}

}  // namespace

CZelFilter::CZelFilter(CZelBoolean *kernel) : m_kernel(kernel) {}

CZelFilter::CZelFilter(__boolean answer)
    : m_kernel(
          new CZelBoolean(new CZelExpr(CZelAtom(answer == E_RBTrue ? 1 : 0)), new CZelExpr(CZelAtom(1)), E_ROEqual)) {}

CZelFilter::CZelFilter(const CZelFilter &other) {
    std::vector<std::pair<const CZelFilter *, CZelFilter *>> waiting{{&other, this}};
    while (!waiting.empty()) {
        const auto [from, to] = waiting.back();
        waiting.pop_back();
        to->m_op = from->m_op;
        to->m_kernel = from->m_kernel != nullptr ? new CZelBoolean(*from->m_kernel) : nullptr;
        if (from->m_right != nullptr)
            waiting.emplace_back(from->m_right, to->m_right = new CZelFilter);
        if (from->m_left != nullptr)
            waiting.emplace_back(from->m_left, to->m_left = new CZelFilter);
    }
}

CZelFilter::~CZelFilter() {
    RFClearFilter();
}

void CZelFilter::RFSetFilter(CZelBoolean *kernel) {
    RFClearFilter();
    m_kernel = kernel;
    m_op = E_RANoOp;
}

void CZelFilter::RFClearFilter() {
    delete std::exchange(m_kernel, nullptr);
    if (m_left == nullptr && m_right == nullptr)
        return;
    std::vector<CZelFilter *> waiting{std::exchange(m_left, nullptr), std::exchange(m_right, nullptr)};
    while (!waiting.empty()) {
        CZelFilter *node = waiting.back();
        waiting.pop_back();
        if (node == nullptr)
            continue;
        waiting.push_back(std::exchange(node->m_left, nullptr));
        waiting.push_back(std::exchange(node->m_right, nullptr));
        delete node;
    }
}

int CZelFilter::addBranch(CZelFilter *&place, CZelFilter *branch) {
    if (place != nullptr)
        return E_RCBranchTaken;
    if (m_kernel != nullptr)
        return E_RCHasKernel;
    place = branch;
    return 1;
}

int CZelFilter::RFAddLeft(CZelFilter *branch) {
    return addBranch(m_left, branch);
}

int CZelFilter::RFAddRight(CZelFilter *branch) {
    return addBranch(m_right, branch);
}

// 1 when one of the two branches was `old`. Requires: no kernel.
int CZelFilter::replaceHere(const CZelFilter *old, CZelFilter *replacement) {
    if (m_left == nullptr || m_right == nullptr)
        return ZEL_FAIL(E_RCBadArgument, "CZelFilter::RFReplaceBranch: a branch is missing");
    if (m_left != old && m_right != old)
        return E_RCNotInTree;
    (m_left == old ? m_left : m_right) = replacement;
    return 1;
}

int CZelFilter::RFReplaceBranch(CZelFilter *old, CZelFilter *replacement) {
    if (old == nullptr || replacement == nullptr)
        return ZEL_FAIL(E_RCBadArgument, "CZelFilter::RFReplaceBranch: no filter");
    if (this == old)
        return E_RCDuplicate;
    if (m_kernel != nullptr)
        return E_RCHasKernel;
    std::vector<CZelFilter *> waiting{this};
    while (!waiting.empty()) {
        CZelFilter *node = waiting.back();
        waiting.pop_back();
        const int status = node->replaceHere(old, replacement);
        if (status == 1 || (status != E_RCNotInTree && node == this))
            return status;
        for (CZelFilter *branch : {node->m_right, node->m_left}) {
            if (status == E_RCNotInTree && branch->m_kernel == nullptr)
                waiting.push_back(branch);
        }
    }
    return E_RCNotInTree;
}

CZelBag *CZelFilter::RFEvalClauses(CZelBag *bag) {
    visitInOrder(this, [&](CZelFilter &node) {
        if (node.m_kernel != nullptr)
            bag = appendClausesOf(bag, *node.m_kernel);
        return false;
    });
    return bag;
}

CZelBag *CZelFilter::RFInternals() {
    CZelBag *bag = nullptr;
    visitInOrder(this, [&](CZelFilter &node) {
        if (node.m_kernel != nullptr)
            bag = appendEntitiesOf(bag, *node.m_kernel);
        return false;
    });
    return bag;
}

CZelFilter *CZelFilter::RFAndFilters(CZelFilter *a, CZelFilter *b) {
    return join(a, b, E_RAAnd, "CZelFilter::RFAndFilters");
}

CZelFilter *CZelFilter::RFOrFilters(CZelFilter *a, CZelFilter *b) {
    return join(a, b, E_RAOr, "CZelFilter::RFOrFilters");
}

CZelAtom *CZelFilter::ExtractQueryCondition(const char *column) {
    CZelAtom *found = nullptr;
    if (column == nullptr)
        return found;
    visitInOrder(this, [&](CZelFilter &node) {
        found = comparedWith(node.m_kernel, column);
        return found != nullptr;
    });
    return found;
}
