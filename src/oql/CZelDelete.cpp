#include "oql/CZelDelete.h"

#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelString.h"
#include "oql/CZelDbEntity.h"
#include "oql/ZelStatementTextImpl.h"
#include "store/CZelFilter.h"

CZelDelete::CZelDelete(CZelDbEntity *target, CZelFilter *filter)
    : CZelDbObject(E_DODelete), m_filter(filter), m_target(target) {}

CZelDelete::~CZelDelete() {
    delete m_compilables;
    delete m_filter;
    delete m_target;
}

int CZelDelete::RDODestroy() {
    return 1;
}

int CZelDelete::RDOInitialise(CZelStore * /*store*/) {
    return 1;
}

CZelBag *CZelDelete::RDOCompilables() {
    if (m_compilables == nullptr)
        RDResetClauses();
    return m_compilables;
}

void CZelDelete::RDResetClauses() {
    delete m_compilables;
    m_compilables = new CZelBag();
    if (m_target != nullptr)
        m_compilables->RBAppend(m_target->RDEClauses());
    if (m_filter != nullptr)
        m_filter->RFEvalClauses(m_compilables);
}

void CZelDelete::RDSetTarget(CZelDbEntity *target) {
    delete m_target;
    m_target = target;
    RDResetClauses();
}

char *CZelDelete::RDOAsString() {
    CZelString text("delete from ");
    if (!ZelAppendEntity(text, m_target))
        return nullptr;
    if (m_filter != nullptr) {
        text.RSStrCat(" where ");
        if (!ZelAppendFilter(text, *m_filter, true))
            return nullptr;
    }
    text.RSStrCat(';');
    return text.RSTakeString();
}
