// The base of all statements: what the parser produces, the command compiler sorts, the store executes.
// CZelDatabase and CZelTable are of the family too: the store adopts them as the live objects.
#pragma once

#include "foundations/base/CZelPool.h"
#include "foundations/base/ZelEnums.h"
#include "foundations/port/ZelExport.h"

class CZelBag;
class CZelPointer;
class CZelStore;

class QUINTOR_API CZelDbObject {
public:
    ZEL_POOLED

    CZelDbObject() = default;
    explicit CZelDbObject(__e_dbObj kind) : m_kind(kind) {}
    CZelDbObject(const CZelDbObject &other) : m_kind(other.m_kind) {}
    CZelDbObject &operator=(const CZelDbObject &other) {
        m_kind = other.m_kind;
        return *this;
    }
    virtual ~CZelDbObject();

    virtual int RDODestroy() = 0;
    virtual int RDOInitialise(CZelStore *store) = 0;

    // The CZelExpr that the command compiler looks at, in the order in which it evaluates them. The bag stays
    // the statement's, built on first need; null when there are none.
    virtual CZelBag *RDOCompilables() = 0;

    // The statement as OQL text, new from malloc, or null when it can't be written (reported). It reads back
    // through the parser and is what travels to remote stores.
    virtual char *RDOAsString();

    __e_dbObj RDOType() const { return m_kind; }

    // Between whoever is to delete the statement and the store: the entry that lists it for deletion, and the
    // store's word that it has adopted the object, upon which the entry forgets it. A table may be made and
    // dropped by one text, so the lister can't ask the object afterwards.
    void RDOSetListing(CZelPointer *entry) { m_listing = entry; }
    void RDOAdopted();

private:
    __e_dbObj m_kind = E_DONone;
    CZelPointer *m_listing = nullptr;  // not owned
};
