// The event sink of a database: a server derives from it to watch tables come and go. Not owned by the
// database. Events run inside the operation, with the store lock held as writer.
#pragma once

#include "foundations/base/ZelEnums.h"
#include "foundations/port/ZelExport.h"

class CZelDatabase;
class CZelTable;

class QUINTOR_API CZelDbCallback {
public:
    CZelDbCallback(const CZelDbCallback &) = delete;
    CZelDbCallback &operator=(const CZelDbCallback &) = delete;
    virtual ~CZelDbCallback();

    // Before a table enters; E_RBFalse keeps it out.
    virtual __boolean RDCPreAddTable(CZelDatabase *database, CZelTable *table);
    // The table is live.
    virtual void RDCPostAddTable(CZelDatabase *database, CZelTable *table);
    // Before a table is dropped; E_RBFalse keeps it.
    virtual __boolean RDCPreDropTable(CZelDatabase *database, CZelTable *table);
    // The table is out of the dictionary and still a valid object.
    virtual void RDCPostDropTable(CZelDatabase *database, CZelTable *table);
    virtual void RDCPreInitialise(CZelDatabase *database);
    virtual void RDCPreDestroy(CZelDatabase *database);
    // Another callback arrives; E_RBTrue lets it take the place. By default it is reported and refused.
    virtual __boolean RDCCallbackOverridden(CZelDatabase *database, CZelDbCallback *replacement);

protected:
    CZelDbCallback();
};
