// drop table, drop database.
#pragma once

#include "oql/CZelDbObject.h"

class CZelDbEntity;

class QUINTOR_API CZelDropObject : public CZelDbObject {
public:
    CZelDropObject(CZelDbEntity *target, EZelDropObjectTarget type);  // takes over
    CZelDropObject(const CZelDropObject &) = delete;
    CZelDropObject &operator=(const CZelDropObject &) = delete;
    ~CZelDropObject() override;

    int RDODestroy() override;
    int RDOInitialise(CZelStore *store) override;
    CZelBag *RDOCompilables() override;
    char *RDOAsString() override;

    CZelDbEntity *RDOTarget() const { return m_target; }
    // What is dropped. Through a CZelDbObject the same name gives the statement's kind.
    EZelDropObjectTarget RDOType() const { return m_type; }

private:
    EZelDropObjectTarget m_type;
    CZelDbEntity *m_target;
};
