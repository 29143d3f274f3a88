// A store with databases and live tables, made in code, for tests.
#pragma once

#include <initializer_list>
#include <string>
#include <vector>

#include "foundations/base/CZelStack.h"
#include "oql/CZelIndex.h"
#include "oql/CZelQuery.h"
#include "store/CZelColDef.h"
#include "store/CZelDatabase.h"
#include "store/CZelStore.h"
#include "store/CZelTable.h"
#include "tests/store/Conditions.h"

namespace conditions {

// The roads that joins take are open to tests.
class OpenTable : public CZelTable {
public:
    using CZelTable::CZelTable;
    using CZelTable::RTMatchSelfTest;
    using CZelTable::RTReturnPossibleRows;
    using CZelTable::RTTupleToFilterInternals;
};

struct Column {
    const char *name;
    EZelDataType type;
    bool isUnique = false;
};

inline CZelColDef *definition(const Column &column) {
    CZelColDef *element = column.type == E_RDTList ? new CZelColDef(nullptr, E_RDTInt, nullptr, -1) : nullptr;
    auto *made = new CZelColDef(ZelStrDup(column.name), column.type, element, -1);
    made->RCDSetUnique(ZelBool(column.isUnique));
    return made;
}

inline OpenTable *table(const char *database, const char *name, std::initializer_list<Column> columns) {
    CZelStack attributes(-1);
    for (const Column &column : columns)
        attributes.RSPush(definition(column));
    return new OpenTable(new CZelDbEntity(database, name, nullptr), &attributes);
}

// A store with the database d.
class LiveStore : public CZelStore {
public:
    LiveStore() {
        RSAddDb(new CZelDatabase(ZelStrDup("d")));
        RSInitialise();
    }

    OpenTable *add(OpenTable *made) {
        RSAddTbl(made, E_RBTrue);
        made->RDOInitialise(this);
        return made;
    }
};

inline CZelRecord *insert(CZelTable &into, CZelRecord *row) {
    return into.RTAddRow(row, E_RBFalse) == 1 ? row : nullptr;
}

inline void addIndex(CZelTable &to, const char *column) {
    auto *columns = new CZelAtomVector;
    columns->RAVAddToEnd(new CZelAtom(column));
    const std::string name = std::string("index_") + column;
    const CZelIndex index(ZelStrDup(name.c_str()), new CZelDbEntity("d", "t", nullptr), columns);
    to.RTAddIndex(&index);
}

// select ITEMS from d.TABLE where FILTER; without items select *. All may be taken over.
inline CZelQuery *select(const char *from, std::initializer_list<CZelExpr *> items, CZelFilter *where) {
    auto *query = new CZelQuery(new CZelDbEntity("d", from, nullptr), where, nullptr, nullptr, nullptr);
    if (items.size() == 0)
        return query;
    auto *selection = new CZelBag;
    for (CZelExpr *item : items)
        selection->RBAdd(static_cast<void *>(item));
    query->RQSetSelection(selection);
    return query;
}

}  // namespace conditions
