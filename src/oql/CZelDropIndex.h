// drop index.
#pragma once

#include "oql/CZelDbObject.h"

class CZelAtom;
class CZelExpr;

class QUINTOR_API CZelDropIndex : public CZelDbObject {
public:
    explicit CZelDropIndex(char *name);  // take over
    explicit CZelDropIndex(CZelExpr *name);
    CZelDropIndex(const CZelDropIndex &) = delete;
    CZelDropIndex &operator=(const CZelDropIndex &) = delete;
    ~CZelDropIndex() override;

    int RDODestroy() override;
    int RDOInitialise(CZelStore *store) override;
    CZelBag *RDOCompilables() override;
    char *RDOAsString() override;

    const CZelAtom *RDIName() const;
    CZelExpr *RDINameExpr() const { return m_name; }
    void RDIResetExprPtrs();
    void RDIDump();
    char *RDIPrint();

private:
    CZelExpr *m_name;
    CZelBag *m_compilables = nullptr;  // elements not owned
};
