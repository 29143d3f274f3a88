// delete from.
#pragma once

#include "oql/CZelDbObject.h"

class CZelDbEntity;
class CZelFilter;

class QUINTOR_API CZelDelete : public CZelDbObject {
public:
    CZelDelete(CZelDbEntity *target, CZelFilter *filter);  // takes both over; the filter may be null
    CZelDelete(const CZelDelete &) = delete;
    CZelDelete &operator=(const CZelDelete &) = delete;
    ~CZelDelete() override;

    int RDODestroy() override;
    int RDOInitialise(CZelStore *store) override;
    CZelBag *RDOCompilables() override;
    char *RDOAsString() override;

    CZelDbEntity *RDTarget() const { return m_target; }
    CZelFilter *RDFilter() const { return m_filter; }
    void RDSetTarget(CZelDbEntity *target);  // takes over
    void RDResetClauses();

private:
    CZelFilter *m_filter;
    CZelDbEntity *m_target;
    CZelBag *m_compilables = nullptr;  // elements not owned
};
