#include "oql/CZelExprComplex.h"

#include <cstdio>
#include <utility>

#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelVBList.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelExpr.h"
#include "oql/CZelExprComplexVarBind.h"

// A list or object on the way through a nest: the next member to look at, and the value built so far.
class CZelExprComplexLevel {
public:
    explicit CZelExprComplexLevel(const CZelExprComplex &nest)
        : m_members(nest.m_members), m_type(nest.m_type), m_next(nest.m_members->RDLHead()) {}

    bool isDone() const { return m_next == nullptr; }
    CZelExprComplex *value() const { return CZelExprComplex::valueOf(m_next, m_type); }
    void step() { m_next = m_members->RDLGetNext(m_next); }

    void startBuilding() {
        m_built = m_type == E_RECTList ? CZelAtom(new CZelAtomVector(static_cast<unsigned int>(m_members->RDLLength())))
                                       : CZelAtom(new CZelVBList);
    }

    // A copy of the next member around a value of its own.
    CZelListable *wrap(CZelExprComplex *value) const {
        if (m_type == E_RECTList)
            return value;
        return new CZelExprComplexVarBind(CZelAtom(member().RECVName()), value);
    }

    // Gives the next member its value and steps. A member without one is undefined in a list and bound to
    // nothing in an object.
    void give(CZelAtom *value) {
        if (m_type == E_RECTList)
            m_built.RAList()->RAVAddToEnd(value != nullptr ? new CZelAtom(std::move(*value)) : new CZelAtom);
        else
            m_built.RAObject()->RVBLAddToListEnd(bindingOf(value));
        step();
    }
    CZelAtom &built() { return m_built; }

private:
    const CZelExprComplexVarBind &member() const { return *static_cast<const CZelExprComplexVarBind *>(m_next); }
    CZelVarBind *bindingOf(CZelAtom *value) const {
        const CZelAtom &name = member().RECVName();
        if (value != nullptr)
            return new CZelVarBind(name, std::move(*value));
        return new CZelVarBind(name, static_cast<const CZelAtom *>(nullptr));
    }

    const CZelDoubleList *m_members;
    EZelExprComplexType m_type;
    CZelListable *m_next;
    CZelAtom m_built;
};

namespace {

CZelExpr *copyOf(const CZelExpr *value) {
    return value != nullptr ? new CZelExpr(*value) : nullptr;
}

}  // namespace

CZelExprComplex::CZelExprComplex(CZelExpr *value) : m_type(E_RECTSimple), m_value(value) {}

CZelExprComplex::CZelExprComplex(CZelDoubleList *members, EZelExprComplexType type)
    : m_type(E_RECTSimple), m_value(nullptr) {
    if (type != E_RECTList && type != E_RECTObject) {
        ZEL_REPORT(E_RCBadState, "Attempt to construct CZelExprComplex of incorrect type");
        delete members;
    } else if (members == nullptr) {
        ZEL_REPORT(E_RCNullList, "CZelExprComplex::CZelExprComplex: no list");
    } else {
        m_type = type;
        m_members = members;
    }
}

CZelExprComplex::CZelExprComplex(const CZelExprComplex &other)
    : CZelListable(other), m_type(E_RECTSimple), m_value(nullptr) {
    if (!other.isNest()) {
        m_value = copyOf(other.m_value);
        return;
    }
    std::vector<CZelExprComplexCopy> nested{{&other, this}};
    while (!nested.empty()) {
        const CZelExprComplexCopy next = nested.back();
        nested.pop_back();
        next.m_to->copyLevel(*next.m_from, nested);
    }
}

CZelExprComplex::~CZelExprComplex() {
    if (isNest())
        deleteNest(m_members, m_type);
    else
        delete m_value;
    delete m_last;
}

CZelListable *CZelExprComplex::RLTargetDeepCopy(const CZelListable *source) const {
    return new CZelExprComplex(*static_cast<const CZelExprComplex *>(source));
}

CZelExprComplex *CZelExprComplex::valueOf(CZelListable *member, EZelExprComplexType type) {
    if (type == E_RECTList)
        return static_cast<CZelExprComplex *>(member);
    return static_cast<CZelExprComplexVarBind *>(member)->RECVValue();
}

// Copies one list or object; lists and objects inside it are left to the caller.
void CZelExprComplex::copyLevel(const CZelExprComplex &other, std::vector<CZelExprComplexCopy> &nested) {
    m_members = new CZelDoubleList;
    m_type = other.m_type;
    for (CZelExprComplexLevel level(other); !level.isDone(); level.step()) {
        const CZelExprComplex *value = level.value();
        const bool isDeep = value != nullptr && value->isNest();
        auto *copy = new CZelExprComplex(value == nullptr || isDeep ? nullptr : copyOf(value->m_value));
        if (isDeep)
            nested.push_back({value, copy});
        m_members->RDLAddToListEnd(level.wrap(copy));
    }
}

// Each level is emptied of the levels below it before it goes, so that no destructor meets a deep one.
void CZelExprComplex::deleteNest(CZelDoubleList *members, EZelExprComplexType type) {
    std::vector<std::pair<CZelDoubleList *, EZelExprComplexType>> waiting{{members, type}};
    while (!waiting.empty()) {
        const auto [level, levelType] = waiting.back();
        waiting.pop_back();
        for (CZelListable *member = level->RDLHead(); member != nullptr; member = level->RDLGetNext(member)) {
            CZelExprComplex *value = valueOf(member, levelType);
            if (value == nullptr || !value->isNest())
                continue;
            waiting.emplace_back(value->m_members, value->m_type);
            value->m_type = E_RECTSimple;
            value->m_value = nullptr;
        }
        delete level;
    }
}

CZelBag *CZelExprComplex::RECBagVal() {
    if (!isNest())
        return m_value != nullptr ? m_value->REBagVal() : nullptr;
    auto *bag = new CZelBag;
    bag->RBAdd(RECAtomVal());
    return bag;
}

int CZelExprComplex::RECValueCount() const {
    if (isNest())
        return 1;
    return m_value != nullptr ? m_value->REValueCount() : -1;
}

const CZelAtom *CZelExprComplex::simpleValue() const {
    const int count = RECValueCount();
    if (count > 1)
        ZEL_REPORT(E_RCBadState, "Multiple return nested evals not supported");
    return count > 0 ? m_value->REHeadAtomVal() : nullptr;
}

bool CZelExprComplex::RECCopyValue(CZelAtom &value) const {
    if (isNest()) {
        value = buildNest();
        return true;
    }
    const CZelAtom *simple = simpleValue();
    if (simple != nullptr)
        value = *simple;
    return simple != nullptr;
}

CZelAtom *CZelExprComplex::RECAtomVal() {
    if (!isNest())
        return const_cast<CZelAtom *>(simpleValue());
    auto *built = new CZelAtom(buildNest());
    delete std::exchange(m_last, built);
    return m_last;
}

CZelAtom CZelExprComplex::buildNest() const {
    std::vector<CZelExprComplexLevel> path;
    path.emplace_back(*this).startBuilding();
    for (;;) {
        CZelExprComplexLevel &level = path.back();
        if (level.isDone()) {
            CZelAtom built = std::move(level.built());
            path.pop_back();
            if (path.empty())
                return built;
            path.back().give(&built);
        } else if (level.value() != nullptr && level.value()->isNest()) {
            path.emplace_back(*level.value()).startBuilding();
        } else {
            CZelAtom value;
            const bool isThere = level.value() != nullptr && level.value()->RECCopyValue(value);
            level.give(isThere ? &value : nullptr);
        }
    }
}

CZelBag *CZelExprComplex::RECCompilables() {
    auto *bag = new CZelBag;
    RECAppendCompilables(*bag);
    return bag;
}

void CZelExprComplex::RECAppendCompilables(CZelBag &out) {
    if (!isNest()) {
        if (m_value != nullptr)
            out.RBAdd(m_value);
        return;
    }
    std::vector<CZelExprComplexLevel> path;
    path.emplace_back(*this);
    while (!path.empty()) {
        if (path.back().isDone()) {
            path.pop_back();
            continue;
        }
        CZelExprComplex *value = path.back().value();
        path.back().step();
        if (value != nullptr && value->isNest())
            path.emplace_back(*value);
        else if (value != nullptr)
            value->RECAppendCompilables(out);
    }
}

void CZelExprComplex::RECDump() {
    const CZelAtom *value = RECAtomVal();
    const CZelMallocText text(value != nullptr ? value->RAStrRep() : nullptr);
    std::puts(text != nullptr ? text.get() : "NULL");
}
