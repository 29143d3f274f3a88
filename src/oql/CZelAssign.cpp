#include "oql/CZelAssign.h"

#include "foundations/base/CZelBag.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelExpr.h"

CZelAssign::CZelAssign(CZelDbEntity *target, CZelExpr *value) : m_target(target), m_value(value) {}

CZelAssign::~CZelAssign() {
    delete m_clauses;
    delete m_value;
    delete m_target;
}

CZelBag *CZelAssign::RAClauses() {
    if (m_clauses == nullptr)
        RAResetClauses();
    return m_clauses;
}

void CZelAssign::RAResetClauses() {
    delete m_clauses;
    m_clauses = new CZelBag();
    if (m_target != nullptr)
        m_clauses->RBAppend(m_target->RDEClauses());
    if (m_value != nullptr)
        m_clauses->RBAdd(static_cast<void *>(m_value));
}
