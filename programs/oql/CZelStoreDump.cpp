#include "programs/oql/CZelStoreDump.h"

#include <pwd.h>
#include <unistd.h>

#include <cmath>
#include <utility>

#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelEnv.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/base/CZelString.h"
#include "foundations/base/CZelTreeList.h"
#include "foundations/base/ZelEscape.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/ZelCodes.h"
#include "oql/CZelIndex.h"
#include "oql/CZelOQLDumper.h"
#include "programs/oql/ZelEach.h"
#include "programs/oql/ZelKeywords.h"
#include "programs/oql/ZelValueText.h"
#include "store/CZelColDef.h"
#include "store/CZelDatabase.h"
#include "store/CZelStore.h"
#include "store/CZelTable.h"
#include "storemgr/CZelStoreMgr.h"

namespace {

// The switch that literals are written for, as it was at the end.
class EscapeScope {
public:
    explicit EscapeScope(bool on) : m_former(ZelEscapeIsOn()) { ZelSetEscape(on); }
    EscapeScope(const EscapeScope &) = delete;
    EscapeScope &operator=(const EscapeScope &) = delete;
    ~EscapeScope() { ZelSetEscape(m_former); }

private:
    bool m_former;
};

std::string textOf(const CZelAtom *atom) {
    return std::string(atom->RATextView());
}

std::string tableName(const CZelTable &table) {
    std::string database = textOf(table.RTDatabase());
    std::string name = textOf(table.RTName());
    if (ZelIsName(database) && ZelIsName(name))
        return database + "." + name;
    return ZelLiteral(table.RTDatabase()) + "." + ZelLiteral(table.RTName());
}

std::string typeOf(const CZelColDef &column) {
    if (column.RCDDataType() == E_RDTUndefined && column.RCDNamedTypeName() != nullptr)
        return column.RCDNamedTypeName();
    CZelMallocText text(column.RCDTypeText());
    return text.get();
}

std::string columnText(const CZelColDef &column) {
    std::string text = textOf(column.RCDName()) + " " + typeOf(column);
    if (column.RCDNullable() == E_RBFalse)
        text += " not null";
    if (column.RCDUnique() == E_RBTrue)
        text += column.RCDNullable() == E_RBFalse ? " unique" : " not null unique";
    if (column.RCDIndex() == E_RBTrue)
        text += column.RCDUnique() == E_RBTrue ? " not null primary key" : " primary key";
    if (!CZelAtom::RAIsNull(column.RCDDefault()))
        text += " default " + ZelLiteral(column.RCDDefault());
    return text;
}

std::string joined(const std::vector<std::string> &texts, const char *between) {
    std::string all;
    for (const std::string &text : texts)
        all += (all.empty() ? "" : between) + text;
    return all;
}

std::vector<std::string> namesIn(const CZelAtomVector *names) {
    std::vector<std::string> texts;
    for (unsigned int i = 0; names != nullptr && i < names->RAVSize(); ++i)
        texts.push_back(textOf(names->RAVGetValue(i)));
    return texts;
}

void addConstraint(std::vector<std::string> &lines, const char *word, const std::vector<std::string> &columns) {
    if (!columns.empty())
        lines.push_back(std::string(word) + " (" + joined(columns, ", ") + ")");
}

// The columns with a role that their own definition does not tell.
template <class Told>
std::vector<std::string> untold(const CZelTreeList *columns, Told told) {
    std::vector<std::string> names;
    ZelEach<CZelColDef>(columns->RTLIterator(), [&](const CZelColDef &column) {
        if (!told(column))
            names.push_back(textOf(column.RCDName()));
    });
    return names;
}

std::string tableText(const CZelTable &table) {
    std::vector<std::string> lines;
    ZelEach<CZelColDef>(table.RTColumns()->RTLIterator(),
                        [&](const CZelColDef &column) { lines.push_back(columnText(column)); });
    addConstraint(lines, "unique",
                  untold(table.RTUniques(), [](const CZelColDef &column) { return column.RCDUnique() == E_RBTrue; }));
    addConstraint(lines, "primary key", untold(table.RTPrimaryKeys(), [](const CZelColDef &column) {
                      return column.RCDIndex() == E_RBTrue;
                  }));
    addConstraint(lines, "counter", namesIn(table.RTCounters()));
    addConstraint(lines, "timestamp", namesIn(table.RTTimestamps()));
    return "create table " + tableName(table) + "\n(\n    " + joined(lines, ",\n    ") + "\n);\n";
}

std::string insertText(const CZelTable &table, const CZelRecord &row) {
    std::vector<std::string> names;
    std::vector<std::string> literals;
    const CZelVBList *values = row.RRVbIterator();
    for (const CZelVarBind *value = values->RVBLHead(); value != nullptr; value = values->RVBLGetNext(value)) {
        if (CZelAtom::RAIsNull(value->RVBValue()))
            continue;
        names.push_back(textOf(&value->RVBName()));
        literals.push_back(ZelLiteral(value->RVBValue()));
    }
    return "insert into " + tableName(table) + " (" + joined(names, ", ") + ") values (" + joined(literals, ", ") +
           ");\n";
}

// Is there, at any depth, a value that has no literal of its type?
bool holdsUnspellable(const CZelAtom &whole) {
    std::vector<const CZelAtom *> open = {&whole};
    while (!open.empty()) {
        const CZelAtom *value = open.back();
        open.pop_back();
        if (CZelAtom::RAIsNull(value))
            continue;
        if (value->RAType() == E_RDTData || (value->RAType() == E_RDTFloat && !std::isfinite(value->RAFloat())))
            return true;
        const CZelAtomVector *list = value->RAList();
        for (unsigned int i = 0; list != nullptr && i < list->RAVSize(); ++i)
            open.push_back(list->RAVGetValue(i));
        const CZelVBList *object = value->RAObject();
        const CZelVarBind *member = object == nullptr ? nullptr : object->RVBLHead();
        for (; member != nullptr; member = object->RVBLGetNext(member))
            open.push_back(member->RVBValue());
    }
    return false;
}

const char *userName() {
    const passwd *user = getpwuid(getuid());
    return user == nullptr ? nullptr : user->pw_name;
}

}  // namespace

CZelStoreDump::CZelStoreDump(CZelStoreMgr &manager, Sink sink) : m_manager(manager), m_sink(std::move(sink)) {}

void CZelStoreDump::WriteAll(const std::string &file) {
    header(file);
    m_sink("set escape off;\n");
    CZelAtomVector *names = m_manager.RSMGetStore()->RSDatabaseNames();
    for (unsigned int i = 0; i < names->RAVSize(); ++i)
        database(*m_manager.RSMGetStore()->RSDatabase(names->RAVGetValue(i)));
    delete names;
}

void CZelStoreDump::header(const std::string &file) {
    CZelString text;
    const CZelAtom *domain = CZelEnv::REDomain(nullptr);
    const char *domainName = domain == nullptr ? "" : domain->RAString();
    CZelOQLDumper::GenerateDumpfileHeader(text, file.c_str(), userName(), domainName, "oql");
    text.RSSearchAndReplace("\r\n", "\n");
    m_sink(text.RSString());
}

void CZelStoreDump::database(const CZelDatabase &database) {
    std::string name = textOf(database.RDName());
    if (!ZelIsName(name))
        problem("database " + name, "has a name that OQL can't spell.");
    m_sink("\n// Database " + ZelOneLine(name) + "\ncreate database " + name + ";\n");
    ZelEach<CZelTable>(database.RDTableIterator(), [this](const CZelTable &each) {
        table(each);
        rows(each);
        indexes(each);
    });
}

bool CZelStoreDump::WriteDefinitions(const char *database, const char *table) {
    CZelAtomVector *names = m_manager.RSMGetStore()->RSDatabaseNames();
    bool found = database == nullptr;
    for (unsigned int i = 0; i < names->RAVSize(); ++i) {
        const CZelDatabase &each = *m_manager.RSMGetStore()->RSDatabase(names->RAVGetValue(i));
        if (database == nullptr || textOf(each.RDName()) == database)
            found = definitionsOf(each, table) || found;
    }
    delete names;
    return found;
}

bool CZelStoreDump::definitionsOf(const CZelDatabase &database, const char *only) {
    if (only == nullptr)
        m_sink("create database " + textOf(database.RDName()) + ";\n");
    bool found = only == nullptr;
    ZelEach<CZelTable>(database.RDTableIterator(), [&](const CZelTable &each) {
        if (only != nullptr && textOf(each.RTName()) != only)
            return;
        table(each);
        indexes(each);
        found = true;
    });
    return found;
}

void CZelStoreDump::table(const CZelTable &table) {
    m_sink("\n");
    statement([&] { return tableText(table); }, "table " + tableName(table));
}

void CZelStoreDump::indexes(const CZelTable &table) {
    ZelEach<CZelIndex>(table.RTIndices()->RTLIterator(), [&](const CZelIndex &index) {
        m_sink("create index " + textOf(index.RIName()) + " on " + tableName(table) + " (" +
               joined(namesIn(index.RIColNameList()), ", ") + ");\n");
    });
}

// Row by row: a table may be larger than memory.
void CZelStoreDump::rows(const CZelTable &table) {
    m_rowNumber = 0;
    m_manager.RSMGetStore()->RSReaderLock();
    table.RTVisitRows([&](const CZelRecord &each) {
        ++m_rowNumber;
        row(table, each);
    });
    m_manager.RSMGetStore()->RSUnlock();
}

void CZelStoreDump::row(const CZelTable &table, const CZelRecord &row) {
    checkRow(table, row);
    statement([&] { return insertText(table, row); }, rowName(table));
}

std::string CZelStoreDump::rowName(const CZelTable &table) const {
    return "row " + std::to_string(m_rowNumber) + " of " + tableName(table);
}

// A row that lacks a value gets the column's default when it is read back.
void CZelStoreDump::checkRow(const CZelTable &table, const CZelRecord &row) {
    bool hasValue = false;
    ZelEach<CZelColDef>(table.RTColumns()->RTLIterator(), [&](const CZelColDef &column) {
        const CZelAtom *value = row.RRValueOf(column.RCDName());
        hasValue = hasValue || !CZelAtom::RAIsNull(value);
        if (CZelAtom::RAIsNull(value) && !CZelAtom::RAIsNull(column.RCDDefault()))
            problem(rowName(table), "has no value in column " + textOf(column.RCDName()) +
                                        ", and an insert would give it the default.");
        if (!CZelAtom::RAIsNull(value) && holdsUnspellable(*value))
            problem(rowName(table), "has a value in column " + textOf(column.RCDName()) + " that has no literal.");
    });
    if (!hasValue)
        problem(rowName(table), "has no value at all, and an insert would make no row.");
}

// Writes for the switch off, or where that gives no right literal, and only there, on.
void CZelStoreDump::statement(const std::function<std::string()> &text, const std::string &about) {
    CZelErrorCapture reports;
    EscapeScope off(false);
    std::string plain = text();
    if (reports.Count() == 0)
        return m_sink(plain);
    reports.Clear();
    ZelSetEscape(true);
    std::string escaped = text();
    if (reports.Count() > 0)
        problem(about, "has a text that no literal can spell.");
    m_sink("set escape on;\n" + escaped + "set escape off;\n");
}

void CZelStoreDump::problem(const std::string &about, const std::string &text) {
    m_problems.push_back({E_RCBadValue, about + " " + text, "CZelStoreDump.cpp", __LINE__});
}
