// Joined queries that start at this table.
#include <cstdio>
#include <memory>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/base/CZelTreeList.h"
#include "foundations/port/CZelError.h"
#include "foundations/port/ZelDebug.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelExpr.h"
#include "store/CZelBoolean.h"
#include "store/CZelColumnReader.h"
#include "store/CZelFilter.h"
#include "store/CZelFilterNodes.h"
#include "store/CZelJoinTaker.h"
#include "store/CZelJoinWalk.h"
#include "store/CZelTable.h"
#include "store/CZelTuple.h"

namespace {

// Rows of cached tables by address. What is left in it at the end belongs to nobody else.
class Copies {
public:
    Copies() : m_tree(E_RBFalse) {}
    Copies(const Copies &) = delete;
    Copies &operator=(const Copies &) = delete;
    ~Copies() {
        const CZelDoubleList *nodes = m_tree.RTLIterator();
        for (CZelListable *node = nodes->RDLHead(); node != nullptr; node = nodes->RDLGetNext(node))
            delete static_cast<CZelRecord *>(static_cast<CZelPointer *>(node)->RPData());
    }
    CZelTreeList &tree() { return m_tree; }

private:
    CZelTreeList m_tree;
};

// Makes tuples that stay.
class Tuples : public CZelJoinTaker {
public:
    Tuples(CZelBag &out, CZelBag &garbage, CZelTreeList &copies) : m_out(out), m_garbage(garbage), m_copies(copies) {}

    void take(const std::vector<CZelTuple> &rows) override {
        for (const CZelTuple &row : rows) {
            auto *tuple = new CZelTuple(row);
            m_out.RBAdd(static_cast<void *>(tuple));
            m_garbage.RBAdd(static_cast<void *>(tuple));
            if (m_copies.RTLLength() > 0)
                tuple->RTEliminateRecordsFromList(&m_copies);
        }
    }

private:
    CZelBag &m_out;
    CZelBag &m_garbage;
    CZelTreeList &m_copies;
};

int followers(const CZelDoubleList &tables, const CZelPointer *position) {
    int count = 0;
    const CZelListable *node = position != nullptr ? tables.RDLGetNext(position) : tables.RDLHead();
    for (; node != nullptr; node = tables.RDLGetNext(node))
        ++count;
    return count;
}

bool isTooLong(int count) {
    if (count <= CZelJoinWalk::MOST_TABLES)
        return false;
    ZEL_REPORT(E_RCUnsupported, "CZelTable::RTExecJoinedQuery: more than 16 tables");
    return true;
}

}  // namespace

void CZelTable::RTExecJoinedQuery(CZelFilter *filter, CZelBag *out, CZelDoubleList *tables, CZelPointer *position,
                                  CZelTuple *tuple) {
    RTExecJoinedQuery(filter, out, tables, position, tuple, nullptr);
}

void CZelTable::RTExecJoinedQuery(CZelFilter *filter, CZelBag *out, CZelDoubleList *tables, CZelPointer *position,
                                  CZelTuple *tuple, CZelTreeList *garbage) {
    if (out == nullptr || tables == nullptr || m_garbage == nullptr) {
        ZEL_REPORT(E_RCBadArgument, "CZelTable::RTExecJoinedQuery: no tables, no result, or a table that is not live");
        return;
    }
    if (garbage == nullptr && position != nullptr && __Zeltronix_Debug_Level >= 1)
        std::puts("WARNING - garbage should be NULL on first run\nonly ");
    if (position == nullptr)
        RTPurgeGarbage();
    Copies own;
    CZelTreeList &copies = garbage != nullptr ? *garbage : own.tree();
    const int count = followers(*tables, position);
    if (count == 0)
        finishTuple(filter, *out, tuple, copies);
    else if (!isTooLong(count)) {
        Tuples tuples(*out, *m_garbage, copies);
        CZelJoinWalk(*this, filter, *tables, position, tuple, copies).run(tuples);
    }
}

void CZelTable::RTJoinInto(CZelFilter *filter, CZelDoubleList *tables, CZelJoinTaker &taker) {
    if (tables == nullptr || m_garbage == nullptr) {
        ZEL_REPORT(E_RCBadArgument, "CZelTable::RTExecJoinedQuery: no tables, no result, or a table that is not live");
        return;
    }
    RTPurgeGarbage();
    Copies copies;
    if (!isTooLong(followers(*tables, nullptr)))
        CZelJoinWalk(*this, filter, *tables, nullptr, nullptr, copies.tree()).run(taker);
}

int CZelTable::RTCountJoinedQuery(CZelFilter *filter, CZelDoubleList *tables) {
    Copies copies;
    if (tables == nullptr || isTooLong(followers(*tables, nullptr)))
        return 0;
    return static_cast<int>(CZelJoinWalk(*this, filter, *tables, nullptr, nullptr, copies.tree()).count());
}

// A tuple that holds all it can: into the result, or deleted.
void CZelTable::finishTuple(CZelFilter *filter, CZelBag &out, CZelTuple *tuple, CZelTreeList &copies) {
    if (tuple == nullptr)
        return;
    RTPurgeScratch();
    m_scratch->RBAdd(static_cast<void *>(tuple));
    const std::unique_ptr<CZelBag> passed(RTReturnJoinedRows(filter));
    m_scratch->RBEmptyBag();
    if (passed == nullptr || passed->RBLength() == 0) {
        delete tuple;
        return;
    }
    out.RBAdd(static_cast<void *>(tuple));
    m_garbage->RBAdd(static_cast<void *>(tuple));
    tuple->RTEliminateRecordsFromList(&copies);
}

CZelFilter *CZelTable::RTTupleToFilterInternals(CZelFilter *filter, CZelTuple *tuple, __boolean *complete) {
    *complete = E_RBTrue;
    if (filter == nullptr)
        return nullptr;
    auto *copy = new CZelFilter(*filter);
    const std::vector<CZelFilter *> originals = ZelLeavesOf(*filter);
    const std::vector<CZelFilter *> copies = ZelLeavesOf(*copy);
    for (std::size_t i = 0; i < copies.size(); ++i) {
        CZelBoolean &kernel = *copies[i]->RFKernel();
        CZelBoolean &original = *originals[i]->RFKernel();
        bindOperand(kernel.RBLeft(), original.RBLeft(), *tuple, complete);
        if (kernel.RBRvalType() == E_RBRExpr)
            bindOperand(kernel.RBRight(), original.RBRight(), *tuple, complete);
    }
    return copy;
}

// A column of the tuple becomes its value. So does a clause, whose copy has no result.
void CZelTable::bindOperand(CZelExpr *operand, const CZelExpr *original, const CZelTuple &tuple, __boolean *complete) {
    if (operand == nullptr)
        return;
    if (operand->REType() == E_RETClause)
        operand->RESetOverride(original->REHeadAtomVal());
    CZelDbEntity *column = operand->REEntityVal();
    if (column == nullptr)
        return;
    const CZelAtom *value = nullptr;
    __boolean found = E_RBFalse;
    EZelListUpdateType selector = E_RLUNext;
    const bool isWild =
        column->RDEIsColSpecWild(&selector) == E_RBTrue && (selector == E_RLUAny || selector == E_RLUAll);
    if (!isWild)
        tuple.RTValueOf(column->RDEIdent(), column->RDEColNameAtom(), column->RDEColSpec(), &value, &found);
    if (found == E_RBTrue)
        operand->RESetOverride(value);
    else
        *complete = E_RBFalse;
}

void CZelTable::RTPurgeGarbage() {
    deleteTuplesIn(m_garbage);
}

void CZelTable::RTPurgeScratch() {
    deleteTuplesIn(m_scratch);
}

void CZelTable::deleteTuplesIn(CZelBag *tuples) {
    if (tuples == nullptr)
        return;
    for (CZelPointer *node = tuples->RBFirst(); node != nullptr; node = CZelBag::RBNext(node))
        delete static_cast<CZelTuple *>(node->RPData());
    tuples->RBEmptyBag();
}
