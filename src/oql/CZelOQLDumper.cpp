#include "oql/CZelOQLDumper.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/base/CZelStack.h"
#include "foundations/base/CZelString.h"
#include "foundations/base/CZelTreeList.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/CZelError.h"
#include "foundations/port/ZelDebug.h"
#include "foundations/port/ZelPort.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelIndex.h"
#include "oql/CZelOQLParser.h"
#include "oql/CZelQuery.h"
#include "oql/CZelShow.h"
#include "store/CZelDatabase.h"
#include "store/CZelStore.h"
#include "store/CZelTable.h"

namespace {

constexpr const char *CRLF = "\r\n";
constexpr int RULE_SLASHES = 39;
constexpr int RULE_STARS = 69;
constexpr int TIME_SIZE = 64;

void trace(const char *text) {
    if (__Zeltronix_Debug_Level >= 1)
        std::puts(text);
}

void addText(CZelBag &out, const char *label, CZelString &text) {
    auto *record = new CZelRecord();
    CZelAtom *value = text.RSStringAsAtom();
    record->RRAddValue(label, &value);
    out.RBAdd(static_cast<void *>(record));
}

// The member of a column's description as text, or null.
const char *member(const CZelAtom &column, const char *name) {
    const CZelAtom *value = column.RASubVal(name);
    return value != nullptr ? value->RAString() : nullptr;
}

bool isYes(const CZelAtom &column, const char *name) {
    const char *text = member(column, name);
    return text != nullptr && text[0] == 'Y';
}

void appendDefault(CZelString &text, const CZelAtom &column) {
    const CZelAtom *value = column.RASubVal("Default");
    if (value == nullptr)
        return;
    text.RSStrCat(" default ");
    text.RSStrCatDoubleQuoted(value);
}

// One column of a create table; its unique constraint goes into a text of its own. False when the description
// is no column's.
bool appendColumn(CZelString &columns, CZelString &uniques, const CZelVarBind &entry) {
    const CZelAtom *column = entry.RVBValue();
    const char *type = column != nullptr && column->RAObject() != nullptr ? member(*column, "DataType") : nullptr;
    if (type == nullptr)
        return false;
    columns.RSStrCat(CRLF);
    columns.RSStrCat('\t');
    columns.RSStrCat(&entry.RVBName());
    columns.RSStrCat("\t\t");
    columns.RSStrCat(type);
    if (isYes(*column, "NotNull"))
        columns.RSStrCat(" not null");
    if (isYes(*column, "PrimaryKey"))
        columns.RSStrCat(" primary key");
    appendDefault(columns, *column);
    if (!isYes(*column, "Unique"))
        return true;
    if (uniques.RSStringLength() > 0) {
        uniques.RSStrCat(",");
        uniques.RSStrCat(CRLF);
    }
    uniques.RSStrCat("\tunique(");
    uniques.RSStrCat(&entry.RVBName());
    uniques.RSStrCat(")");
    return true;
}

void appendNames(CZelString &text, const CZelAtomVector &names) {
    for (unsigned int i = 0; i < names.RAVSize(); ++i) {
        if (i > 0)
            text.RSStrCat(", ");
        text.RSStrCat(names.RAVGetValue(i));
    }
}

void appendHeaderLine(CZelString &out, const char *text, const char *rest) {
    out.RSStrCat(text);
    out.RSStrCat(rest);
    out.RSStrCat(CRLF);
}

void appendStars(CZelString &out) {
    out.RSStrCat("//");
    for (int i = 0; i < RULE_STARS; ++i)
        out.RSStrCat('*');
    out.RSStrCat(CRLF);
}

void appendOrigin(CZelString &out, const char *user, const char *domain, const char *tool) {
    out.RSStrCat("//");
    if (user != nullptr) {
        out.RSStrCat(" by ");
        out.RSStrCatQuoted(user);
    }
    out.RSStrCat(" on the domain ");
    out.RSStrCatQuoted(domain != nullptr ? domain : "");
    out.RSStrCat(" using ");
    appendHeaderLine(out, tool, ".");
}

// The present time as one line.
void formatNow(char *buffer, int size) {
    const long now = static_cast<long>(std::time(nullptr));
    buffer[0] = '\0';
    ZelCTime_r(&now, buffer, size);
    for (char *c = buffer; *c != '\0'; ++c)
        if (*c == '\n')
            *c = '\0';
}

// The only statement of a text, when it is a query; what else the text held is deleted.
CZelQuery *parseQuery(const char *text) {
    CZelOQLParser parser;
    if (parser.ROPParse(text, E_RBTrue) != 1 || parser.ROPResults()->RSLength() != 1)
        return nullptr;
    const auto *statement = static_cast<const CZelDbObject *>(parser.ROPResults()->RSPeek(0));
    if (statement->RDOType() != E_DOQuery)
        return nullptr;
    return static_cast<CZelQuery *>(static_cast<CZelDbObject *>(parser.ROPResults()->RSPop()));
}

// The names of a list in a show record; null when there is no such list.
const CZelAtomVector *namesOf(const CZelRecord *record, const char *label) {
    const CZelAtom *list = record != nullptr ? record->RRValueOf(label) : nullptr;
    return list != nullptr ? list->RAList() : nullptr;
}

// A row as the object of a record that is named by its table.
CZelRecord *wrapRow(const char *tableName, CZelRecord *row) {
    auto *value = new CZelAtom(row->RRTakeValues());
    auto *record = new CZelRecord();
    record->RRAddValue(tableName, &value);
    delete row;
    return record;
}

}  // namespace

CZelOQLDumper::CZelOQLDumper(CZelStore *store) : m_store(store) {}

CZelOQLDumper::~CZelOQLDumper() = default;

CZelRecord *CZelOQLDumper::GetShowRec(const char *database, const char *table) {
    CZelShow show(ZelStrDup(database), ZelStrDup(table));
    EZelStoreErrorStatus status = E_RSEOk;
    CZelBagGuard<CZelRecord> rows(m_store->RSShowGetRecs(&show, &status));
    if (rows->RBLength() != 1 || status != E_RSEOk) {
        ZEL_REPORT(E_RCBadValue, "Unexpected status in GetShowRec");
        return nullptr;
    }
    auto *record = static_cast<CZelRecord *>(rows->RBFirst()->RPData());
    rows->RBEmptyBag();
    return record;
}

int CZelOQLDumper::WriteSchema(CZelBag &out) {
    const CZelRecord *record = GetShowRec(nullptr, nullptr);
    const CZelAtom *list = record != nullptr ? record->RRValueOf("databases") : nullptr;
    int status = 1;
    if (list == nullptr || list->RAType() != E_RDTList)
        trace("CZelOQLDumper::WriteSchema: Store is empty");
    else if (list->RAList() == nullptr)
        status = E_RCNull;
    else
        for (unsigned int i = 0; i < list->RAList()->RAVSize(); ++i)
            status = WriteSchemaDb(out, list->RAList()->RAVGetValue(i)->RAString());
    delete record;
    return status;
}

int CZelOQLDumper::WriteSchemaDb(CZelBag &out, const char *database) {
    CZelString text(CRLF);
    for (int i = 0; i < RULE_SLASHES; ++i)
        text.RSStrCat('/');
    text.RSStrCat(CRLF);
    text.RSStrCat("// Create ");
    text.RSStrCat(database);
    text.RSStrCat(" database\r\n//\r\ncreate database ");
    text.RSStrCat(database);
    text.RSStrCat(";\r\n\r\n");
    addText(out, "database", text);

    const CZelRecord *record = GetShowRec(database, nullptr);
    const CZelAtomVector *tables = namesOf(record, "tables");
    int status = tables != nullptr ? 1 : E_RCBadValue;
    if (tables == nullptr && __Zeltronix_Debug_Level >= 1)
        std::printf("CZelOQLDumper::WriteSchemaDb no tables for '%s' database \n", database);
    for (unsigned int i = 0; tables != nullptr && i < tables->RAVSize(); ++i)
        status = writeTable(out, database, tables->RAVGetValue(i)->RAString());
    delete record;
    return status;
}

int CZelOQLDumper::writeTable(CZelBag &out, const char *database, const char *table) {
    const CZelRecord *schema = GetShowRec(database, table);
    int status = schema != nullptr ? WriteSchemaTbl(out, database, table, *schema) : E_RCBadValue;
    delete schema;
    if (status != 1)
        return status;
    status = WriteSchemaIdx(out, database, table);
    return status == 1 ? WriteSchemaIns(out, database, table) : status;
}

int CZelOQLDumper::WriteSchemaTbl(CZelBag &out, const char *database, const char *table, const CZelRecord &schema) {
    const CZelAtom *description = schema.RRValueOf("Schema");
    const CZelVBList *columns = description != nullptr ? description->RAObject() : nullptr;
    if (columns == nullptr)
        return E_RCBadValue;
    CZelString text("create table ");
    text.RSStrCat(database);
    text.RSStrCat(".");
    text.RSStrCat(table);
    text.RSStrCat("\r\n(");
    CZelString uniques;
    for (const CZelVarBind *column = columns->RVBLHead(); column != nullptr; column = columns->RVBLGetNext(column)) {
        if (column != columns->RVBLHead())
            text.RSStrCat(",");
        if (!appendColumn(text, uniques, *column))
            return E_RCBadValue;
    }
    if (uniques.RSStringLength() > 0) {
        text.RSStrCat(",\r\n\r\n");
        text.RSStrCat(&uniques);
    }
    text.RSStrCat("\r\n);\r\n\r\n");
    addText(out, "table", text);
    return 1;
}

CZelTable *CZelOQLDumper::findTable(const char *database, const char *table) const {
    const CZelDatabase *owner = m_store->RSDatabase(database);
    if (owner == nullptr) {
        trace("CZelOQLDumper::WriteSchemaIdx null db");
        return nullptr;
    }
    CZelTable *found = owner->RDTableNamed(table);
    if (found == nullptr)
        trace("CZelOQLDumper::WriteSchemaIdx null table");
    return found;
}

int CZelOQLDumper::WriteSchemaIdx(CZelBag &out, const char *database, const char *table) {
    const CZelTable *found = findTable(database, table);
    if (found == nullptr)
        return E_RCBadValue;
    CZelDoubleList *indices = found->RTIndices()->RTLIterator();
    for (CZelListable *node = indices->RDLHead(); node != nullptr; node = indices->RDLGetNext(node)) {
        const auto *index = static_cast<const CZelIndex *>(static_cast<CZelPointer *>(node)->RPData());
        if (index->RIName() == nullptr || index->RIColNameList() == nullptr)
            continue;
        CZelString text("create index ");
        text.RSStrCat(index->RIName());
        text.RSStrCat(" on ");
        text.RSStrCat(database);
        text.RSStrCat(".");
        text.RSStrCat(table);
        text.RSStrCat(" (");
        appendNames(text, *index->RIColNameList());
        text.RSStrCat(");\r\n\r\n");
        addText(out, "index", text);
    }
    return 1;
}

int CZelOQLDumper::WriteSchemaIns(CZelBag &out, const char *database, const char *table) {
    CZelString text("select * from ");
    text.RSStrCat(database);
    text.RSStrCat(".");
    text.RSStrCat(table);
    text.RSStrCat(";");
    CZelQuery *query = parseQuery(text.RSString());
    if (query == nullptr)
        return E_RCNull;
    if (findTable(database, table) == nullptr) {
        delete query;
        return E_RCBadValue;
    }
    appendRows(out, database, table, query);
    return 1;
}

void CZelOQLDumper::appendRows(CZelBag &out, const char *database, const char *table, CZelQuery *query) {
    EZelStoreErrorStatus status = E_RSEOk;
    CZelBag *rows = m_store->RSQueryGetRecs(query, &status, findTable(database, table)->RTIsCacheUsed());
    delete query;
    if (rows == nullptr || status != E_RSEOk) {
        ZEL_REPORT(E_RCBadValue, "CZelOQLDumper::WriteSchemaIns: the rows can't be read");
        const CZelBagGuard<CZelRecord> owner(rows);
        return;
    }
    CZelString name(database);
    name.RSStrCat(".");
    name.RSStrCat(table);
    for (CZelPointer *node = rows->RBFirst(); node != nullptr; node = CZelBag::RBNext(node)) {
        auto *row = static_cast<CZelRecord *>(node->RPData());
        if (row == nullptr)
            trace("CZelOQLDumper::WriteSchemaIns null rec");
        else
            out.RBAdd(static_cast<void *>(wrapRow(name.RSString(), row)));
    }
    delete rows;
}

void CZelOQLDumper::GenerateDumpfileHeader(CZelString &out, const char *file, const char *user, const char *domain,
                                           const char *tool) {
    char now[TIME_SIZE];
    formatNow(now, TIME_SIZE);
    appendStars(out);
    appendHeaderLine(out, "//", "");
    appendHeaderLine(out, "// File: ", file);
    appendHeaderLine(out, "//", "");
    appendHeaderLine(out, "// Automatically generated on: ", now);
    appendOrigin(out, user, domain, tool);
    appendHeaderLine(out, "//", "");
    appendStars(out);
}

const char *CZelOQLDumper::FindInsertTableName(const CZelRecord &record) {
    const CZelVarBind *first = record.RRVbIterator()->RVBLHead();
    if (first == nullptr || first->RVBValue() == nullptr || first->RVBValue()->RAType() != E_RDTObject)
        return nullptr;
    return first->RVBName().RAString();
}

char *CZelOQLDumper::ExtractOQLString(const CZelRecord &record) {
    const CZelVarBind *first = record.RRVbIterator()->RVBLHead();
    const CZelAtom *value = first != nullptr ? first->RVBValue() : nullptr;
    if (value == nullptr)
        return nullptr;
    if (value->RAType() == E_RDTText)
        return ZelStrDup(value->RAString());
    if (value->RAObject() == nullptr)
        return nullptr;
    const char *table = FindInsertTableName(record);
    if (table != nullptr)
        return VbListToInsert(table, *value->RAObject());
    ZEL_REPORT(E_RCNull, "CZelOQLDumper::ExtractOQLString: the row has no table name");
    return nullptr;
}

char *CZelOQLDumper::VbListToInsert(const char *table, const CZelVBList &values) {
    CZelString names;
    CZelString literals;
    for (const CZelVarBind *pair = values.RVBLHead(); pair != nullptr; pair = values.RVBLGetNext(pair)) {
        const CZelAtom *value = pair->RVBValue();
        if (CZelAtom::RAIsNull(value))
            continue;
        if (names.RSStringLength() > 0) {
            names.RSStrCat(",\r\n\t");
            literals.RSStrCat(",\r\n\t");
        }
        names.RSStrCat(&pair->RVBName());
        if (value->RAType() == E_RDTList)
            literals.RSStrCat(CZelMallocText(value->RAListAsString(E_RBTrue)).get());
        else
            literals.RSStrCatDoubleQuoted(value);
    }
    CZelString text("");
    if (names.RSStringLength() == 0)
        return text.RSStringCopy();
    text.RSStrCat("insert into ");
    text.RSStrCat(table);
    text.RSStrCat("\r\n(\r\n\t");
    text.RSStrCat(&names);
    text.RSStrCat("\r\n)\r\nvalues\r\n(\r\n\t");
    text.RSStrCat(&literals);
    text.RSStrCat("\r\n);\r\n\r\n");
    return text.RSTakeString();
}
