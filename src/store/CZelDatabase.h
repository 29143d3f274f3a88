// A named container of tables; itself the statement `create database`.
#pragma once

#include "oql/CZelDbObject.h"

class CZelAtom;
class CZelAtomVector;
class CZelDbCallback;
class CZelDoubleList;
class CZelExpr;
class CZelTable;
class CZelTreeList;

class QUINTOR_API CZelDatabase : public CZelDbObject {
public:
    explicit CZelDatabase(char *name);      // takes over the text
    explicit CZelDatabase(CZelExpr *name);  // takes over; RDInitialise takes the name from its value
    CZelDatabase(CZelDatabase *source, const CZelAtom *newName);  // copies the definitions of the tables, no rows
    CZelDatabase(const CZelDatabase &) = delete;
    CZelDatabase &operator=(const CZelDatabase &) = delete;
    ~CZelDatabase() override;  // with the tables

    int RDODestroy() override;
    int RDOInitialise(CZelStore *store) override;  // brings every table to life; 1
    CZelBag *RDOCompilables() override;
    char *RDOAsString() override;

    __boolean RDInitialise();  // settles the name; false when there is none

    CZelAtom *RDName() const { return m_name; }
    CZelStore *RDStore() const { return m_store; }
    CZelDbCallback *RDDbCallback() const { return m_callback; }
    CZelDoubleList *RDTableIterator() const;  // CZelPointer to CZelTable, in name order; the database's
    CZelAtomVector *RDTableNames() const;     // new
    void RDSetStoreErrorStatus(EZelStoreErrorStatus status) { m_status = status; }
    EZelStoreErrorStatus RDGetStoreErrorStatus() const { return m_status; }

    // 1 when added, and when the callback kept the table out; E_RCDuplicateTable, reported.
    int RDAddTable(CZelTable *table);
    // 1 when dropped, and when the callback kept the table; E_RCNotInTree for an unknown name.
    int RDDropTable(const char *name);
    void RDTableInitialised(CZelTable *table);
    CZelTable *RDTableNamed(const char *name) const;
    CZelTable *RDTableNamed(const CZelAtom &name) const;
    CZelDoubleList *RDTables() const;  // a new list of CZelPointer to new CZelDbEntity, the caller's
    void RDSetDbCallback(CZelDbCallback *callback);

    // Removes the cache files of every table of a database in the process's domain, whether a store knows the table
    // or not; those of live tables stay and are reported.
    static void RDClearCache(const char *cacheName, const char *database);

private:
    CZelAtom *m_name = nullptr;
    CZelTreeList *m_tables;
    CZelStore *m_store = nullptr;
    CZelDbCallback *m_callback = nullptr;
    CZelBag *m_compilables = nullptr;  // one CZelExpr, owned, until the name is settled
    EZelStoreErrorStatus m_status = E_RSEOk;
};
