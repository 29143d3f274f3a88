// Tuples of the scratch bag against a condition, and products of tables.
#include <memory>
#include <utility>
#include <vector>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelExpr.h"
#include "store/CZelBoolean.h"
#include "store/CZelColumnReader.h"
#include "store/CZelFilter.h"
#include "store/CZelTable.h"
#include "store/CZelTuple.h"

namespace {

// With the value on the left only these read the operands the other way round.
bool swapsOperands(EZelOper op) {
    return (op >= E_ROLess && op <= E_RONotIn) || op == E_ROBetween || op == E_RONotBetween;
}

CZelColumnReader::Side sideOf(CZelDbEntity &entity, const CZelColumnReader &reader, const CZelTuple &tuple) {
    const CZelRecord *record = tuple.RTRecordOf(entity.RDEIdent());
    return record != nullptr ? reader.side(*record) : CZelColumnReader::Side{nullptr, nullptr};
}

__boolean testColumn(CZelDbEntity &column, bool swapped, const CZelAtom *value, const CZelBoolean &boolean,
                     const CZelTuple &tuple) {
    const CZelColumnReader reader(column);
    const CZelColumnReader::Side side = sideOf(column, reader, tuple);
    return side.list != nullptr ? boolean.RBEvalListToAtom(side.list, ZelBool(swapped), value, reader.kind())
                                : boolean.RBEvalAtomToAtom(side.value, ZelBool(swapped), value);
}

const CZelAtom *headOf(const CZelExpr *expression) {
    return expression != nullptr ? expression->REHeadAtomVal() : nullptr;
}

CZelDbEntity *entityOf(const CZelExpr *expression) {
    return expression != nullptr ? expression->REEntityVal() : nullptr;
}

template <class Test>
CZelBag *tuplesThat(const CZelBag &tuples, Test test) {
    auto *passed = new CZelBag;
    for (const CZelPointer *node = tuples.RBFirst(); node != nullptr; node = CZelBag::RBNext(node)) {
        if (test(static_cast<CZelTuple *>(node->RPData())) == E_RBTrue)
            passed->RBAdd(node->RPData());
    }
    return passed;
}

// One evaluation of a condition over tuples, as a set algebra; a loop over the nodes, however deep they are.
class TupleWalk {
public:
    TupleWalk(CZelTable &table, const CZelBag &all) : m_table(table), m_all(all) {}

    CZelBag *run(CZelFilter &root, CZelBag *input) {
        enter(&root, input);
        while (!m_steps.empty()) {
            Step &step = m_steps.back();
            if (step.state == LEFT)
                goRight(step);
            else if (step.state == RIGHT)
                leave();
            else
                begin(step);
        }
        return m_answer;
    }

private:
    enum State { NEW, LEFT, RIGHT };
    struct Step {
        CZelFilter *node;
        CZelBag *input;
        CZelBag *left;
        State state;
    };

    void enter(CZelFilter *node, CZelBag *input) { m_steps.push_back({node, input, nullptr, NEW}); }

    void begin(Step &step) {
        CZelFilter *node = step.node;
        CZelBag *input = step.input;
        if (node->RFKernel() != nullptr) {
            m_steps.pop_back();
            m_answer = m_table.RTEvalJoinedBoolean(node->RFKernel(), input);
            return;
        }
        step.state = LEFT;
        m_answer = nullptr;
        if (node->RFLeft() != nullptr && node->RFOperator() != E_RANot)
            enter(node->RFLeft(), input);
    }

    void goRight(Step &step) {
        step.left = std::exchange(m_answer, nullptr);
        step.state = RIGHT;
        CZelBag *input = step.node->RFOperator() == E_RAAnd ? step.left : nullptr;
        if (step.node->RFRight() != nullptr)
            enter(step.node->RFRight(), input);
    }

    void leave() {
        const Step step = m_steps.back();
        m_steps.pop_back();
        CZelBag *left = step.left;
        CZelBag *right = std::exchange(m_answer, nullptr);
        m_answer = combine(step.node->RFOperator(), left, right);
        delete left;
        delete right;
    }

    // Takes the result out of the sides; a missing one counts as empty.
    CZelBag *combine(EZelAlgebraic op, CZelBag *&left, CZelBag *&right) {
        if (op == E_RANot)
            return isAll(right) ? new CZelBag : notIn(right);
        if (op != E_RAAnd && op != E_RAOr)
            return nullptr;
        complete(left);
        complete(right);
        if (isAll(left) || isAll(right))
            return std::exchange(isAll(left) == (op == E_RAAnd) ? right : left, nullptr);
        return op == E_RAAnd ? CZelTable::RTAndBags(left, right) : CZelTable::RTOrBags(left, right);
    }

    CZelBag *notIn(CZelBag *minus) const {
        CZelBag all(m_all);
        return CZelTable::RTNotBags(&all, minus);
    }
    static void complete(CZelBag *&side) {
        if (side != nullptr)
            return;
        ZEL_REPORT(E_RCBadArgument, "CZelTable::RTEvalJoinedFilter: a condition lacks a side");
        side = new CZelBag;
    }
    bool isAll(const CZelBag *bag) const { return bag != nullptr && bag->RBLength() == m_all.RBLength(); }

    CZelTable &m_table;
    const CZelBag &m_all;
    std::vector<Step> m_steps;
    CZelBag *m_answer = nullptr;
};

}  // namespace

CZelBag *CZelTable::RTReturnJoinedRows(CZelFilter *filter) {
    return filter != nullptr ? RTEvalJoinedFilter(filter) : inputOrScratch(nullptr);
}

CZelBag *CZelTable::RTEvalJoinedFilter(CZelFilter *filter) {
    return RTEvalJoinedFilter(filter, nullptr, nullptr);
}

CZelBag *CZelTable::RTEvalJoinedFilter(CZelFilter *filter, __boolean *all, CZelBag *input) {
    CZelBag *passed = nullptr;
    if (m_scratch == nullptr || filter == nullptr)
        ZEL_REPORT(E_RCBadArgument, "CZelTable::RTEvalJoinedFilter: no condition, or a table that is not live");
    else
        passed = TupleWalk(*this, *m_scratch).run(*filter, input);
    if (all != nullptr)
        *all = ZelBool(passed != nullptr && passed->RBLength() == m_scratch->RBLength());
    return passed;
}

CZelBag *CZelTable::inputOrScratch(const CZelBag *input) const {
    if (input != nullptr)
        return new CZelBag(*input);
    return m_scratch != nullptr ? new CZelBag(*m_scratch) : new CZelBag;
}

CZelBag *CZelTable::RTEvalJoinedBoolean(CZelBoolean *boolean, CZelBag *input) {
    if (boolean->RBRvalType() == E_RBRQuery)
        return RTEvalSubQuery(boolean, E_RBTrue, input);
    if (boolean->RBOperand() == E_RONone)
        return inputOrScratch(input);
    CZelExpr *left = boolean->RBLeft();
    CZelExpr *right = boolean->RBRight();
    switch (boolean->RBEvalType()) {
        case E_RBEColumnValue:
            return RTEvalJoined(boolean, left, headOf(right), E_RBFalse, input);
        case E_RBEValueColumn:
            return RTEvalJoined(boolean, right, headOf(left), E_RBTrue, input);
        case E_RBEColumnColumn: {
            const std::unique_ptr<CZelBag> tuples(inputOrScratch(input));
            return tuplesThat(*tuples, [&](CZelTuple *tuple) {
                return RTEvalTupleTest(entityOf(left), entityOf(right), boolean, tuple);
            });
        }
        default:
            return CZelBoolean::RBEvalExpr(headOf(left), headOf(right), boolean->RBOperand()) == E_RBTrue
                       ? inputOrScratch(input)
                       : new CZelBag;
    }
}

CZelBag *CZelTable::RTEvalJoined(CZelBoolean *boolean, CZelExpr *expression, const CZelAtom *value, __boolean reversed,
                                 CZelBag *input) {
    CZelDbEntity *column = entityOf(expression);
    if (column == nullptr) {
        const __boolean answer = CZelBoolean::RBEvalExpr(headOf(expression), value, boolean->RBOperand());
        return answer == E_RBTrue ? inputOrScratch(input) : new CZelBag;
    }
    const std::unique_ptr<CZelBag> tuples(inputOrScratch(input));
    const bool swapped = reversed == E_RBTrue && swapsOperands(boolean->RBOperand());
    return tuplesThat(*tuples, [&](CZelTuple *tuple) { return testColumn(*column, swapped, value, *boolean, *tuple); });
}

__boolean CZelTable::RTEvalTupleTest(CZelDbEntity *column, const CZelAtom *value, CZelBoolean *boolean,
                                     CZelTuple *tuple) {
    return column != nullptr ? testColumn(*column, false, value, *boolean, *tuple) : E_RBFalse;
}

__boolean CZelTable::RTEvalTupleTest(CZelDbEntity *left, CZelDbEntity *right, CZelBoolean *boolean, CZelTuple *tuple) {
    if (left == nullptr || right == nullptr)
        return E_RBFalse;
    const CZelColumnReader mine(*left);
    const CZelColumnReader theirs(*right);
    const CZelColumnReader::Side a = sideOf(*left, mine, *tuple);
    const CZelColumnReader::Side b = sideOf(*right, theirs, *tuple);
    return boolean->RBEvalComplex(a.value, a.list, mine.kind(), b.value, b.list, theirs.kind());
}

int CZelTable::RTCartesianProductOf(CZelTable *other) {
    if (other == nullptr || m_scratch == nullptr || RTIsCacheUsed() != other->RTIsCacheUsed())
        return ZEL_FAIL(E_RCBadArgument, "CZelTable::RTCartesianProductOf: no table, or tables of two kinds");
    const std::unique_ptr<CZelBag> theirs(other->RTReturnRows(nullptr));
    if (m_scratch->RBLength() > 0)
        multiplyScratch(*theirs, *other->m_identifier);
    else
        fillScratch(*theirs, *other->m_identifier);
    return 1;
}

void CZelTable::addToTuple(CZelTuple &tuple, const CZelAtom &table, CZelRecord *row) {
    const int status = tuple.RTAddRecord(&table, row);
    if (status != 1)
        ZEL_REPORT(status, "CZelTable::RTCartesianProductOf");
}

// Each tuple takes the first row itself, and its copies the others.
void CZelTable::multiplyScratch(const CZelBag &rows, const CZelAtom &table) {
    CZelBag made;
    const CZelPointer *first = rows.RBFirst();
    for (CZelPointer *node = m_scratch->RBFirst(); first != nullptr && node != nullptr; node = CZelBag::RBNext(node)) {
        auto *tuple = static_cast<CZelTuple *>(node->RPData());
        for (CZelPointer *row = CZelBag::RBNext(first); row != nullptr; row = CZelBag::RBNext(row)) {
            auto *copy = new CZelTuple(*tuple);
            addToTuple(*copy, table, static_cast<CZelRecord *>(row->RPData()));
            made.RBAdd(static_cast<void *>(copy));
        }
        addToTuple(*tuple, table, static_cast<CZelRecord *>(first->RPData()));
    }
    m_scratch->RBAppend(&made);
}

void CZelTable::fillScratch(const CZelBag &rows, const CZelAtom &table) {
    const std::unique_ptr<CZelBag> mine(RTReturnRows(nullptr));
    for (CZelPointer *node = mine->RBFirst(); node != nullptr; node = CZelBag::RBNext(node)) {
        for (CZelPointer *row = rows.RBFirst(); row != nullptr; row = CZelBag::RBNext(row)) {
            auto *tuple = new CZelTuple(m_identifier, static_cast<CZelRecord *>(node->RPData()));
            addToTuple(*tuple, table, static_cast<CZelRecord *>(row->RPData()));
            m_scratch->RBAdd(static_cast<void *>(tuple));
        }
    }
}
