#include "store/CZelJoinCondition.h"

#include <algorithm>
#include <utility>

#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelString.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelDbEntity.h"
#include "store/CZelBoolean.h"
#include "store/CZelFilter.h"
#include "store/CZelFilterNodes.h"
#include "store/CZelTable.h"

struct CZelJoinCondition::Marks {
    int m_first;
    int m_level;
    std::uint32_t m_open;
    std::uint32_t m_whole;

    static Marks both(const Marks &a, const Marks &b, EZelAlgebraic op) {
        return {std::min(a.m_first, b.m_first), std::max(a.m_level, b.m_level), a.m_open | b.m_open,
                op == E_RAAnd ? a.m_whole & b.m_whole : a.m_whole | b.m_whole};
    }
    // What is not known can't be negated.
    Marks negated() const { return {m_first, m_level, m_open, m_open}; }
};

struct CZelJoinCondition::Part {
    enum Exit { GIVEN, TRUE_IS_NEXT, FALSE_IS_NEXT };

    const CZelFilter *m_node;
    int m_onTrue;
    int m_onFalse;
    Exit m_exit = GIVEN;        // one of the exits is the part that is compiled by then
    bool m_isCombined = false;  // the branches are compiled: joins their marks
};

// Compiles a term from its end, so that the exits of a part are known when it comes.
class CZelJoinCondition::Compiler {
public:
    explicit Compiler(CZelJoinCondition &condition) : m_condition(condition) {}

    Term run(const CZelFilter &root) {
        m_waiting.push_back({&root, PASSED, FAILED});
        while (!m_waiting.empty()) {
            Part part = m_waiting.back();
            m_waiting.pop_back();
            if (part.m_exit != Part::GIVEN)
                (part.m_exit == Part::TRUE_IS_NEXT ? part.m_onTrue : part.m_onFalse) = last();
            compile(part);
        }
        const Marks marks = m_marks.back();
        return {last(), root.RFKernel() != nullptr, marks.m_first, marks.m_level, marks.m_open, marks.m_whole};
    }

private:
    int last() const { return static_cast<int>(m_condition.m_steps.size()) - 1; }

    void compile(const Part &part) {
        const EZelAlgebraic op = part.m_node != nullptr ? part.m_node->RFOperator() : E_RANoOp;
        if (part.m_isCombined)
            combine(op);
        else if (part.m_node == nullptr || part.m_node->RFKernel() != nullptr || op == E_RANoOp)
            addStep(part);
        else
            enter(part, op);
    }

    void enter(const Part &part, EZelAlgebraic op) {
        const CZelFilter *left = part.m_node->RFLeft();
        const CZelFilter *right = part.m_node->RFRight();
        m_waiting.push_back({part.m_node, 0, 0, Part::GIVEN, true});
        if (op == E_RANot) {
            m_waiting.push_back({right, part.m_onFalse, part.m_onTrue});
            return;
        }
        const Part::Exit exit = op == E_RAAnd ? Part::TRUE_IS_NEXT : Part::FALSE_IS_NEXT;
        m_waiting.push_back({left, part.m_onTrue, part.m_onFalse, exit});
        m_waiting.push_back({right, part.m_onTrue, part.m_onFalse});
    }

    void combine(EZelAlgebraic op) {
        const Marks mine = m_marks.back();
        m_marks.pop_back();
        if (op == E_RANot) {
            m_marks.push_back(mine.negated());
            return;
        }
        m_marks.back() = Marks::both(m_marks.back(), mine, op);
    }

    void addStep(const Part &part) {
        CZelBoolean *kernel = part.m_node != nullptr ? part.m_node->RFKernel() : nullptr;
        CZelJoinTest test =
            kernel != nullptr ? CZelJoinTest(*kernel, m_condition.listOf(kernel), m_condition.m_row) : CZelJoinTest();
        m_condition.m_isFaithful = m_condition.m_isFaithful && test.isFaithful(m_condition.m_row);
        const std::uint32_t open = test.open(m_condition.m_row, m_condition.m_levels);
        m_marks.push_back({test.first(m_condition.m_row), test.level(m_condition.m_row), open, open});
        m_condition.m_steps.push_back({std::move(test), part.m_onTrue, part.m_onFalse});
    }

    CZelJoinCondition &m_condition;
    std::vector<Part> m_waiting;
    std::vector<Marks> m_marks;
};

CZelJoinCondition::CZelJoinCondition(CZelFilter *filter, const CZelJoinRow &row, int levels, CZelTable &driver)
    : m_filter(filter), m_row(row), m_levels(levels) {
    if (filter == nullptr)
        return;
    runSubqueries(driver);
    cutIntoTerms();
    reportStrayColumn();
}

void CZelJoinCondition::runSubqueries(CZelTable &driver) {
    for (const CZelFilter *leaf : ZelLeavesOf(*m_filter)) {
        CZelBoolean *kernel = leaf->RFKernel();
        CZelAtomVector *values = kernel->RBRvalType() == E_RBRQuery ? driver.valuesOfSubQuery(*kernel) : nullptr;
        if (values != nullptr)
            m_lists.emplace(kernel, CZelAtom(values));
    }
}

const CZelAtom *CZelJoinCondition::listOf(const CZelBoolean *boolean) const {
    const auto found = m_lists.find(boolean);
    return found != m_lists.end() ? &found->second : nullptr;
}

void CZelJoinCondition::cutIntoTerms() {
    std::vector<const CZelFilter *> waiting{m_filter};
    while (!waiting.empty()) {
        const CZelFilter *node = waiting.back();
        waiting.pop_back();
        const bool isAnd = node->RFKernel() == nullptr && node->RFOperator() == E_RAAnd && node->RFLeft() != nullptr &&
                           node->RFRight() != nullptr;
        if (isAnd) {
            waiting.push_back(node->RFRight());
            waiting.push_back(node->RFLeft());
        } else {
            m_terms.push_back(Compiler(*this).run(*node));
        }
    }
}

// Once for a query, however many rows it has.
void CZelJoinCondition::reportStrayColumn() const {
    for (const Step &step : m_steps) {
        for (const CZelJoinTest::Side *side : {&step.m_test.left(), &step.m_test.right()}) {
            if (!side->isColumn() || side->m_place != CZelJoinRow::NOWHERE)
                continue;
            CZelString text("CZelTable::RTExecJoinedQuery: a column of none of the tables has no value: ");
            text.RSStrCat(side->m_entity->RDEColName());
            ZEL_REPORT(E_RCBadArgument, text.RSString());
            return;
        }
    }
}

bool CZelJoinCondition::holds(const Term &term, const CZelJoinRow &row) const {
    int next = term.m_entry;
    while (next >= 0) {
        const Step &step = m_steps[indexOf(next)];
        next = step.m_test.holds(row) ? step.m_onTrue : step.m_onFalse;
    }
    return next == PASSED;
}
