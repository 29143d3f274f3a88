// The base of all statements: what the parser produces, the command compiler sorts, the store executes.
// CZelDatabase and CZelTable are of the family too: the store adopts them as the live objects.
#pragma once

#include "foundations/base/CZelPool.h"
#include "foundations/base/ZelEnums.h"
#include "foundations/port/ZelExport.h"

class CZelBag;
class CZelStore;

class QUINTOR_API CZelDbObject {
public:
    ZEL_POOLED

    CZelDbObject() = default;
    explicit CZelDbObject(__e_dbObj kind) : m_kind(kind) {}
    CZelDbObject(const CZelDbObject &) = default;
    CZelDbObject &operator=(const CZelDbObject &) = default;
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

private:
    __e_dbObj m_kind = E_DONone;
};
