#include "store/CZelRowTest.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/base/ZelInRuns.h"
#include "foundations/port/ZelPrefetch.h"
#include "store/CZelBoolean.h"

namespace {

// One thread looks at twice as many in a millisecond; to start and await another one takes a fifth of that.
constexpr std::size_t LEAST_ROWS = 32768;

// The rows of a table are the elements of its list; those of a bag stand behind its pointers.
struct ListRows {
    const CZelListable *node;
    std::size_t left;
    const CZelDoubleList &list;
    ListRows(const SZelListRun &run, const CZelDoubleList &rows) : node(run.m_first), left(run.m_length), list(rows) {}
    bool hasRow() const { return left > 0; }
    CZelRecord *row() const { return static_cast<CZelRecord *>(const_cast<CZelListable *>(node)); }
    const CZelAtom *value(const CZelColumnReader &column) const { return column.value(*row()); }
    void addTo(CZelBag &passed) const { passed.RBAdd(static_cast<void *>(row())); }
    void advance() {
        node = list.RDLGetNext(node);
        --left;
    }
};

struct BagRows {
    const CZelPointer *node;
    std::size_t left;
    explicit BagRows(const SZelListRun &run)
        : node(static_cast<const CZelPointer *>(run.m_first)), left(run.m_length) {}
    bool hasRow() const { return left > 0; }
    CZelRecord *row() const { return static_cast<CZelRecord *>(node->RPData()); }
    const CZelAtom *value(const CZelColumnReader &column) const { return column.value(*row()); }
    void addTo(CZelBag &passed) const { passed.RBAdd(node->RPData()); }
    void advance() {
        node = CZelBag::RBNext(node);
        --left;
    }
};

// Where a row's column lies is where it lay in the row before, so the memory can be asked some rows ahead for it and
// for the bindings in front of it, which are walked.
template <class Rows>
class Ahead {
public:
    explicit Ahead(const Rows &rows) : m_rows(rows) {
        for (int i = 0; i < ROWS_AHEAD; ++i)
            advance();
    }
    void advance() {
        if (!m_rows.hasRow())
            return;
        const std::uintptr_t start = startOf(*m_rows.row());
        for (std::uintptr_t bytes = 0; bytes < std::min(m_place, MOST_BYTES); bytes += CACHE_LINE)
            ZelPrefetch(reinterpret_cast<const void *>(start + bytes));
        ZelPrefetch(reinterpret_cast<const void *>(start + m_place));
        m_rows.advance();
    }
    void learn(const Rows &rows, const CZelAtom *value) {
        m_place = reinterpret_cast<std::uintptr_t>(value) - startOf(*rows.row());
    }

private:
    static constexpr int ROWS_AHEAD = 8;
    static constexpr std::uintptr_t CACHE_LINE = 64;
    static constexpr std::uintptr_t MOST_BYTES = 4 * CACHE_LINE;
    // The address of the first binding.
    static std::uintptr_t startOf(const CZelRecord &row) {
        return reinterpret_cast<std::uintptr_t>(row.RRVbIterator()->RVBLHead());
    }
    Rows m_rows;
    std::uintptr_t m_place = MOST_BYTES - 1;  // not known yet
};

constexpr unsigned int LESS = 1, EQUAL = 2, GREATER = 4;

unsigned int ordersOf(EZelOper op) {
    constexpr unsigned int ORDERS[] = {EQUAL, LESS | GREATER, LESS, LESS | EQUAL, GREATER, GREATER | EQUAL};
    return ORDERS[op];
}

unsigned int mirrored(unsigned int orders) {
    return (orders & EQUAL) | ((orders & LESS) != 0 ? GREATER : 0) | ((orders & GREATER) != 0 ? LESS : 0);
}

bool isIn(unsigned int orders, int order) {
    const int bit = (order > 0) - (order < 0) + 1;
    return (orders >> bit & 1U) != 0;
}

bool isText(const CZelAtom &value) {
    return value.RAType() == E_RDTText;
}

bool holds(std::string_view text, std::string_view part) {
    return part.empty() || memmem(text.data(), text.size(), part.data(), part.size()) != nullptr;
}

}  // namespace

CZelRowTest::CZelRowTest(const CZelBoolean &boolean, const CZelDbEntity &column, bool swapped, const CZelAtom *value)
    : m_boolean(boolean), m_column(column), m_swapped(swapped), m_value(value) {
    m_onNull = boolean.RBEvalAtomToAtom(nullptr, ZelBool(swapped), value) == E_RBTrue;
    const CZelAtom anything(0);
    if (!CZelAtom::RAIsNull(value)) {
        prepare(*value);
    } else if (boolean.RBOperand() != E_ROExists) {
        m_kind = PRESENCE;
        m_onPresent = boolean.RBEvalAtomToAtom(&anything, ZelBool(swapped), value) == E_RBTrue;
    }
}

void CZelRowTest::prepare(const CZelAtom &value) {
    const EZelOper op = m_boolean.RBOperand();
    const bool isLike = op == E_ROLike || op == E_RONotLike;
    m_negated = op == E_RONotEqual || op == E_RONotLike;
    if (isLike && isText(value) && !m_swapped) {
        preparePattern(value.RATextView());
    } else if (op <= E_ROGreaterEqual) {
        m_orders = m_swapped ? mirrored(ordersOf(op)) : ordersOf(op);
        if (value.RAIsNumber())
            m_kind = NUMBER;
        else if (isText(value))
            m_kind = op <= E_RONotEqual ? SAME_TEXT : TEXT;
    }
}

// One part between wildcards at its ends; any other pattern stays with the general rule.
void CZelRowTest::preparePattern(std::string_view pattern) {
    const bool openFront = !pattern.empty() && pattern.front() == '%';
    m_part = pattern.substr(openFront ? 1 : 0);
    const bool openBack = !m_part.empty() && m_part.back() == '%';
    m_part = m_part.substr(0, m_part.size() - (openBack ? 1 : 0));
    if (m_part.find_first_of("%_") != std::string_view::npos)
        return;
    if (openFront)
        m_kind = openBack || m_part.empty() ? TEXT_PART : TEXT_SUFFIX;
    else
        m_kind = openBack ? TEXT_PREFIX : GENERAL;
}

bool CZelRowTest::accepts(const CZelRecord &row) const {
    const CZelColumnReader::Side side = m_column.side(row);
    if (side.list != nullptr)
        return m_boolean.RBEvalListToAtom(side.list, ZelBool(m_swapped), m_value, m_column.kind()) == E_RBTrue;
    return m_boolean.RBEvalAtomToAtom(side.value, ZelBool(m_swapped), m_value) == E_RBTrue;
}

void CZelRowTest::select(const CZelDoubleList &rows, CZelBag &passed) const {
    ZelRunsInto(rows, LEAST_ROWS, passed,
                [&](const SZelListRun &run, CZelBag &out) { dispatch(ListRows(run, rows), out); });
}

void CZelRowTest::select(const CZelBag &rows, CZelBag &passed) const {
    ZelRunsInto(*rows.RBIterator(), LEAST_ROWS, passed,
                [&](const SZelListRun &run, CZelBag &out) { dispatch(BagRows(run), out); });
}

// The test gets present values only.
template <class Rows, class Test>
void CZelRowTest::scan(Rows rows, CZelBag &passed, Test test) const {
    Ahead<Rows> ahead(rows);
    for (; rows.hasRow(); rows.advance()) {
        ahead.advance();
        const CZelAtom *value = rows.value(m_column);
        ahead.learn(rows, value);
        if (CZelAtom::RAIsNull(value) ? m_onNull : test(*value))
            rows.addTo(passed);
    }
}

template <class Rows>
void CZelRowTest::dispatch(Rows rows, CZelBag &passed) const {
    if (m_column.isWild()) {
        for (; rows.hasRow(); rows.advance()) {
            if (accepts(*rows.row()))
                rows.addTo(passed);
        }
        return;
    }
    withTest([&](auto test) { scan(rows, passed, test); });
}

bool CZelRowTest::acceptsValue(const CZelAtom *value) const {
    bool isAccepted = m_onNull;
    if (!CZelAtom::RAIsNull(value))
        withTest([&](auto test) { isAccepted = test(*value); });
    return isAccepted;
}

// Gives `use` the test of present values.
template <class Use>
void CZelRowTest::withTest(Use use) const {
    const bool differs = m_orders == (LESS | GREATER);
    const bool negated = m_negated;
    switch (m_kind) {
        case PRESENCE:
            return use([this](const CZelAtom &) { return m_onPresent; });
        case NUMBER:
            return use([=, this](const CZelAtom &value) {
                return value.RAIsNumber() ? isIn(m_orders, value.RALex(m_value, nullptr)) : differs;
            });
        case TEXT:
            return use([this](const CZelAtom &value) {
                return isText(value) && isIn(m_orders, value.RALex(m_value, nullptr));
            });
        case SAME_TEXT:
            return use([=, this](const CZelAtom &value) { return value.RASameText(*m_value) != negated; });
        case TEXT_PREFIX:
            return use([=, this](const CZelAtom &value) {
                return isText(value) && value.RATextView().starts_with(m_part) != negated;
            });
        case TEXT_SUFFIX:
            return use([=, this](const CZelAtom &value) {
                return isText(value) && value.RATextView().ends_with(m_part) != negated;
            });
        case TEXT_PART:
            return use([=, this](const CZelAtom &value) {
                return isText(value) && holds(value.RATextView(), m_part) != negated;
            });
        case GENERAL:
            return use([this](const CZelAtom &value) {
                return m_boolean.RBEvalAtomToAtom(&value, ZelBool(m_swapped), m_value) == E_RBTrue;
            });
    }
}
