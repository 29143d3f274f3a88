// Writes a live store as records of OQL text and row values, which together make a schema file that rebuilds
// the store. A record holds one value: "database", "table" or "index" with a text, or "db.table" with a row as
// an object.
//
// Reads through the store's own calls and their locks: a dump is not one consistent snapshot.
#pragma once

#include "foundations/port/ZelExport.h"

class CZelBag;
class CZelQuery;
class CZelRecord;
class CZelStore;
class CZelString;
class CZelTable;
class CZelVBList;

class QUINTOR_API CZelOQLDumper {
public:
    explicit CZelOQLDumper(CZelStore *store);  // not owned
    virtual ~CZelOQLDumper();

    // Appends the records of the whole store, the caller's. 1, or the code of the last step.
    int WriteSchema(CZelBag &out);

    static void GenerateDumpfileHeader(CZelString &out, const char *file, const char *user, const char *domain,
                                       const char *tool);
    // The table of a row record, or null; belongs to the record.
    static const char *FindInsertTableName(const CZelRecord &record);
    // The OQL text of a dump record, new from malloc; null for any other record.
    static char *ExtractOQLString(const CZelRecord &record);
    static char *VbListToInsert(const char *table, const CZelVBList &values);

private:
    CZelRecord *GetShowRec(const char *database, const char *table);
    int writeTable(CZelBag &out, const char *database, const char *table);
    int WriteSchemaDb(CZelBag &out, const char *database);
    int WriteSchemaTbl(CZelBag &out, const char *database, const char *table, const CZelRecord &schema);
    int WriteSchemaIdx(CZelBag &out, const char *database, const char *table);
    int WriteSchemaIns(CZelBag &out, const char *database, const char *table);
    CZelTable *findTable(const char *database, const char *table) const;
    void appendRows(CZelBag &out, const char *database, const char *table, CZelQuery *query);

    CZelStore *m_store;
};
