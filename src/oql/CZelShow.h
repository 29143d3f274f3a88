// show. By its names: both, one table's schema; a database, its tables; none, the databases; a table name
// alone (the bare statement), a dump of the whole store.
#pragma once

#include "oql/CZelDbObject.h"

class CZelAtom;

class QUINTOR_API CZelShow : public CZelDbObject {
public:
    CZelShow(char *database, char *table);  // takes both over; each may be null
    CZelShow(const CZelShow &other);
    CZelShow &operator=(const CZelShow &) = delete;
    ~CZelShow() override;

    int RDODestroy() override;
    int RDOInitialise(CZelStore *store) override;
    CZelBag *RDOCompilables() override;
    char *RDOAsString() override;

    CZelAtom *RSDbName() const { return m_database; }
    CZelAtom *RSTblName() const { return m_table; }

private:
    CZelAtom *m_database;
    CZelAtom *m_table;
};
