#include "foundations/base/CZelAtom_nesting.h"

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelVBList.h"
#include "foundations/port/CZelError.h"

namespace {

constinit thread_local int t_levels = 0;
constinit thread_local bool t_reported = false;

// Freeing goes a few levels down by recursion, which is the quick way for real nests. What lies deeper waits until the
// stack is shallow again, when the outermost release frees it.
constexpr int RELEASED_BY_RECURSION = 32;
constinit thread_local int t_releases = 0;  // under way, one in the other
constinit thread_local CZelVBList *t_postponed = nullptr;

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
    if (level.TooDeep())
        setUndefined();
    else if (other.RAList() != nullptr)
        setWords(headOf(E_RDTList), wordOf(new CZelAtomVector(*other.m_heap.word.list)));
    else if (other.RAObject() != nullptr)
        setWords(headOf(E_RDTObject), wordOf(new CZelVBList(*other.m_heap.word.object)));
    else
        setWords(headOf(other.RAType()), 0);
}

void CZelAtom::releaseNest() {
    if (t_releases == RELEASED_BY_RECURSION) {
        postponeRelease();
        return;
    }
    ++t_releases;
    deleteNest();
    if (--t_releases == 0 && t_postponed != nullptr)
        releasePostponed();
}

void CZelAtom::postponeRelease() {
    if (t_postponed == nullptr)
        t_postponed = new CZelVBList;
    t_postponed->RVBLAddToListEnd(new CZelVarBind(CZelAtom(""), std::move(*this)));
}

void CZelAtom::releasePostponed() {
    ++t_releases;
    while (t_postponed->RVBLHead() != nullptr)
        t_postponed->RVBLRemove(t_postponed->RVBLHead());
    --t_releases;
    delete t_postponed;
    t_postponed = nullptr;
}

void CZelAtom::deleteNest() {
    if (m_heap.type == E_RDTList)
        delete m_heap.word.list;
    else
        delete m_heap.word.object;
}
