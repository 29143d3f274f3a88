// A condition: a binary tree whose leaves hold comparisons. A text can make the tree as deep as it is long,
// so everything here walks it without recursion.
#pragma once

#include "foundations/base/CZelPool.h"
#include "foundations/base/ZelEnums.h"
#include "foundations/port/ZelExport.h"

class CZelAtom;
class CZelBag;
class CZelBoolean;
class CZelExpr;
class CZelRecord;

class QUINTOR_API CZelFilter {
public:
    ZEL_POOLED

    CZelFilter() = default;                    // an empty node, NoOp
    explicit CZelFilter(CZelBoolean *kernel);  // takes over
    explicit CZelFilter(__boolean answer);     // always that answer: 1 = 1 or 0 = 1
    CZelFilter(const CZelFilter &other);       // deep
    CZelFilter &operator=(const CZelFilter &) = delete;
    virtual ~CZelFilter();

    void RFSetFilter(CZelBoolean *kernel);  // clears the node, takes the kernel over
    void RFClearFilter();
    // Take a branch over: 1, E_RCBranchTaken, E_RCHasKernel. A null branch is no branch, 1.
    int RFAddLeft(CZelFilter *branch);
    int RFAddRight(CZelFilter *branch);
    void RFSetOp(EZelAlgebraic op) { m_op = op; }
    // Puts `replacement` in the place of the branch `old`, which is not deleted. 1, E_RCBadArgument (reported),
    // E_RCDuplicate when this node is `old`, E_RCHasKernel, E_RCNotInTree.
    int RFReplaceBranch(CZelFilter *old, CZelFilter *replacement);

    CZelFilter *RFLeft() const { return m_left; }
    CZelFilter *RFRight() const { return m_right; }
    CZelBoolean *RFKernel() const { return m_kernel; }
    EZelAlgebraic RFOperator() const { return m_op; }

    // Does the record match? A subquery never does: only a table can run it.
    __boolean RFFilterRecord(const CZelRecord *record);
    CZelBag *RFFilterRecordBag(CZelBag *records);  // a new bag of those that match, in order; null for none
    __boolean RFEvalBoolean(CZelBoolean *boolean, const CZelRecord *record);
    __boolean RFEvalRecordTest(CZelExpr *left, CZelExpr *right, EZelBoolEvalType evalType, const CZelRecord *record,
                               CZelBoolean *boolean);

    // Collects what must be evaluated before the statement runs, into `bag` or a new one; null for nothing.
    CZelBag *RFEvalClauses(CZelBag *bag);
    CZelBag *RFInternals();  // a new bag of the entity expressions; null for none

    char *RFPrint();          // new from malloc
    char *RFPrintResolved();  // clauses stand as their values; new from malloc

    // A new filter over copies of both; of one when the other is null; null for two nulls.
    static CZelFilter *RFAndFilters(CZelFilter *a, CZelFilter *b);
    static CZelFilter *RFOrFilters(CZelFilter *a, CZelFilter *b);

    // A new copy of the value that the column is compared with, whatever the operator; null for none.
    CZelAtom *ExtractQueryCondition(const char *column);

private:
    int addBranch(CZelFilter *&place, CZelFilter *branch);
    int replaceHere(const CZelFilter *old, CZelFilter *replacement);

    CZelFilter *m_left = nullptr;
    CZelFilter *m_right = nullptr;
    CZelBoolean *m_kernel = nullptr;
    EZelAlgebraic m_op = E_RANoOp;
};
