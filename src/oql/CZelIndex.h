// create index.
#pragma once

#include "oql/CZelDbObject.h"

class CZelAtom;
class CZelAtomVector;
class CZelDbEntity;
class CZelExpr;

class QUINTOR_API CZelIndex : public CZelDbObject {
public:
    CZelIndex(char *name, CZelDbEntity *table, CZelAtomVector *columns);  // take all over
    CZelIndex(CZelExpr *name, CZelDbEntity *table, CZelAtomVector *columns);
    CZelIndex(const CZelIndex &other);  // deep
    CZelIndex &operator=(const CZelIndex &) = delete;
    ~CZelIndex() override;

    int RDODestroy() override;
    int RDOInitialise(CZelStore *store) override;
    CZelBag *RDOCompilables() override;
    char *RDOAsString() override;

    const CZelAtom *RIName() const;  // null until a computed name is known
    CZelExpr *RINameExpr() const { return m_name; }
    CZelDbEntity *RITable() const { return m_table; }
    CZelAtomVector *RIColNameList() const { return m_columns; }
    void RIResetExprPtrs();
    void RIDump();
    char *RIPrint();

private:
    void keepName(const CZelIndex &other);

    CZelExpr *m_name;
    CZelDbEntity *m_table;
    CZelAtomVector *m_columns;
    CZelBag *m_compilables = nullptr;  // elements not owned
};
