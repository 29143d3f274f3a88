// One assignment of an update: a column takes the value of an expression. Owns both.
#pragma once

#include "foundations/base/CZelPool.h"
#include "foundations/port/ZelExport.h"

class CZelBag;
class CZelDbEntity;
class CZelExpr;

class QUINTOR_API CZelAssign {
public:
    ZEL_POOLED

    CZelAssign(CZelDbEntity *target, CZelExpr *value);  // takes both over
    CZelAssign(const CZelAssign &) = delete;
    CZelAssign &operator=(const CZelAssign &) = delete;
    virtual ~CZelAssign();

    CZelDbEntity *RATarget() const { return m_target; }
    CZelExpr *RAValue() const { return m_value; }
    CZelBag *RAClauses();  // the target's expressions, then the value; the assignment's bag
    void RAResetClauses();

private:
    CZelDbEntity *m_target;
    CZelExpr *m_value;
    CZelBag *m_clauses = nullptr;
};
