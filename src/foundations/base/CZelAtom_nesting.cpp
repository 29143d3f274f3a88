#include "foundations/base/CZelAtom_nesting.h"

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelVBList.h"
#include "foundations/port/CZelError.h"

namespace {

constinit thread_local int t_levels = 0;
constinit thread_local bool t_reported = false;

// Values whose release waits until the stack is shallow again. Freeing goes a few levels down by recursion,
// which is the quick way for real nests; what lies deeper is moved here and freed by the outermost release.
struct Postponed {
    int m_levels = 0;
    CZelVBList *m_values = nullptr;  // on the stack of the outermost release
};
constinit thread_local Postponed t_postponed;
constexpr int RELEASED_BY_RECURSION = 32;

}  // namespace

CZelNesting::CZelNesting(const char *operation) : m_tooDeep(t_levels >= CZelAtom::MAX_NESTING) {
    ++t_levels;
    if (!m_tooDeep || t_reported)
        return;
    t_reported = true;
    ZEL_REPORT(E_RCBadValue, operation);
}

CZelNesting::~CZelNesting() {
    if (--t_levels == 0)
        t_reported = false;
}

void CZelAtom::copyNest(const CZelAtom &other) {
    CZelNesting level("CZelAtom: a value is nested too deep to be copied whole.");
    m_heap = {E_RDTUndefined, 0, 0, 0, {}};
    if (level.TooDeep())
        return;
    m_heap.type = other.m_heap.type;
    if (other.RAList() != nullptr)
        m_heap.word.list = new CZelAtomVector(*other.m_heap.word.list);
    else if (other.RAObject() != nullptr)
        m_heap.word.object = new CZelVBList(*other.m_heap.word.object);
}

void CZelAtom::releaseNest() {
    if (t_postponed.m_levels == 0) {
        releaseOutermost();
    } else if (t_postponed.m_levels < RELEASED_BY_RECURSION) {
        ++t_postponed.m_levels;
        deleteNest();
        --t_postponed.m_levels;
    } else {
        t_postponed.m_values->RVBLAddToListEnd(new CZelVarBind(CZelAtom(""), std::move(*this)));
    }
}

void CZelAtom::releaseOutermost() {
    CZelVBList values;
    t_postponed = {1, &values};
    deleteNest();
    while (values.RVBLHead() != nullptr)
        values.RVBLRemove(values.RVBLHead());
    t_postponed = {};
}

void CZelAtom::deleteNest() {
    if (m_heap.type == E_RDTList)
        delete m_heap.word.list;
    else
        delete m_heap.word.object;
}
