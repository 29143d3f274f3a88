#include <algorithm>
#include <cerrno>
#include <cstring>

#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelTreeList.h"
#include "oql/CZelIndex.h"
#include "programs/oql/CZelNewFile.h"
#include "programs/oql/CZelResult.h"
#include "programs/oql/CZelShell.h"
#include "programs/oql/CZelStoreDump.h"
#include "programs/oql/ZelEach.h"
#include "store/CZelDatabase.h"
#include "store/CZelRecordCache.h"
#include "store/CZelStore.h"
#include "store/CZelTable.h"

namespace {

constexpr int MAX_DEPTH = 16;

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && std::strchr(" \t\r\n;", text.back()) != nullptr)
        text.remove_suffix(1);
    while (!text.empty() && std::strchr(" \t", text.front()) != nullptr)
        text.remove_prefix(1);
    return text;
}

// "database.table" in its two parts; the second is empty without a point.
std::pair<std::string, std::string> parts(const std::string &name) {
    std::size_t point = name.find('.');
    if (point == std::string::npos)
        return {name, std::string()};
    return {name.substr(0, point), name.substr(point + 1)};
}

std::string nameOf(const CZelTable &table) {
    return std::string(table.RTDatabase()->RATextView()) + "." + std::string(table.RTName()->RATextView());
}

// Is it what is named: all for no name, a database's tables, one table?
bool isWithin(const CZelTable &table, const std::string &name) {
    return name.empty() || name == table.RTDatabase()->RATextView() || name == nameOf(table);
}

std::unique_ptr<CZelRecord> indexRow(const CZelTable &table, const CZelIndex &index) {
    auto row = std::make_unique<CZelRecord>();
    row->RRAddValue(new CZelVarBind("Index", index.RIName()));
    row->RRAddValue(new CZelVarBind("Table", nameOf(table).c_str()));
    CZelAtom columns(new CZelAtomVector(*index.RIColNameList()));
    row->RRAddValue(new CZelVarBind("Columns", &columns));
    return row;
}

void addIndexRows(const CZelTable &table, CZelResult &result) {
    ZelEach<CZelIndex>(table.RTIndices()->RTLIterator(),
                       [&](const CZelIndex &index) { result.AddRow(indexRow(table, index)); });
}

void addCount(CZelRecord &row, const char *name, long long count) {
    CZelAtom value(count);
    row.RRAddValue(new CZelVarBind(name, &value));
}

std::unique_ptr<CZelRecord> cacheRow(const CZelTable &table) {
    const SZelCacheUse use = table.RTCacheUse();
    const double share =
        use.m_bytes == 0 ? 0 : static_cast<double>(use.m_inCoreBytes) / static_cast<double>(use.m_bytes);
    auto row = std::make_unique<CZelRecord>();
    row->RRAddValue(new CZelVarBind("Table", nameOf(table).c_str()));
    addCount(*row, "Rows", use.m_rows);
    addCount(*row, "Bytes", static_cast<long long>(use.m_bytes));
    CZelAtom inMemory(static_cast<float>(share));
    row->RRAddValue(new CZelVarBind("InMemory", &inMemory));
    addCount(*row, "PagesUsed", use.m_pages.m_used);
    addCount(*row, "PagesFree", use.m_pages.m_free);
    addCount(*row, "PagesOutOfUse", use.m_pages.m_outOfUse);
    return row;
}

}  // namespace

const std::vector<CZelShell::Command> &CZelShell::commands() {
    static const std::vector<Command> all = {
        {".help", "", "these commands", &CZelShell::helpCommand},
        {".databases", "", "the databases", &CZelShell::databasesCommand},
        {".tables", "[DB]", "the tables, of one database or of all", &CZelShell::tablesCommand},
        {".schema", "[DB[.TABLE]]", "the OQL text that makes databases, tables and indexes", &CZelShell::schemaCommand},
        {".indexes", "[DB[.TABLE]]", "the created indexes", &CZelShell::indexesCommand},
        {".cache", "[DB[.TABLE]]", "what cached tables use of memory and of their files", &CZelShell::cacheCommand},
        {".describe", "DB.TABLE", "a table's columns", &CZelShell::describeCommand},
        {".read", "FILE", "run the statements in a file", &CZelShell::readCommand},
        {".dump", "[FILE]", "write the store as OQL text that -schema reads back", &CZelShell::dumpCommand},
        {".format", "FORMAT", "table, line, csv, json or oql", &CZelShell::formatCommand},
        {".output", "[FILE]", "results go to a file, or to standard output again", &CZelShell::outputCommand},
        {".record", "{NAME=VALUE,...}|off", "the record that & in clauses refers to", &CZelShell::recordCommand},
        {".const", "NAME VALUE", "a constant, $NAME in clauses", &CZelShell::constCommand},
        {".timer", "on|off", "say how long each statement took", &CZelShell::timerCommand},
        {".quit", "", "leave", &CZelShell::quitCommand},
    };
    return all;
}

const std::vector<std::string_view> &CZelShell::CommandNames() {
    static const std::vector<std::string_view> names = [] {
        std::vector<std::string_view> all;
        for (const Command &command : commands())
            all.push_back(command.m_name);
        return all;
    }();
    return names;
}

bool CZelShell::runCommand(const std::string &line) {
    std::string_view text = trimmed(line);
    std::string_view name = text.substr(0, text.find_first_of(" \t"));
    std::string argument(trimmed(text.substr(name.size())));
    for (const Command &command : commands()) {
        if (command.m_name != name)
            continue;
        if (command.m_arguments[0] == '\0' && !argument.empty())
            return complain(std::string(name) + " takes no argument");
        return (this->*command.m_run)(argument);
    }
    return complain("there is no command " + std::string(name) + ", .help lists them");
}

bool CZelShell::helpCommand(const std::string & /*argument*/) {
    for (const Command &command : commands()) {
        std::string line = std::string(command.m_name) + " " + command.m_arguments;
        line.resize(std::max<std::size_t>(line.size() + 1, 24), ' ');
        say(line + command.m_help + "\n");
    }
    return true;
}

bool CZelShell::databasesCommand(const std::string & /*argument*/) {
    runStatement("show databases;");
    return true;
}

bool CZelShell::tablesCommand(const std::string &argument) {
    CZelResult result;
    result.m_status = argument.empty() ? E_RSEOk : E_RSENoDatabase;
    std::unique_ptr<CZelAtomVector> names(m_store.RSMGetStore()->RSDatabaseNames());
    for (unsigned int i = 0; i < names->RAVSize(); ++i) {
        const CZelDatabase &database = *m_store.RSMGetStore()->RSDatabase(names->RAVGetValue(i));
        std::string start(database.RDName()->RATextView());
        if (!argument.empty() && argument != start)
            continue;
        result.m_status = E_RSEOk;
        ZelEach<CZelTable>(database.RDTableIterator(), [&](const CZelTable &table) {
            auto row = std::make_unique<CZelRecord>();
            row->RRAddValue(new CZelVarBind("Table", nameOf(table).c_str()));
            row->RRAddValue(new CZelVarBind("Rows", table.RTTotalRecordCount()));
            result.AddRow(std::move(row));
        });
    }
    show(result, nullptr);
    showFailure(result, std::string());
    return !result.HasFailed();
}

bool CZelShell::schemaCommand(const std::string &argument) {
    std::string text;
    CZelStoreDump dump(m_store, [&text](std::string_view more) { text += more; });
    auto [database, table] = parts(argument);
    if (!dump.WriteDefinitions(database.empty() ? nullptr : database.c_str(), table.empty() ? nullptr : table.c_str()))
        return complain("there is no " + argument);
    showText(text);
    return true;
}

bool CZelShell::indexesCommand(const std::string &argument) {
    CZelResult result;
    std::unique_ptr<CZelAtomVector> names(m_store.RSMGetStore()->RSDatabaseNames());
    for (unsigned int i = 0; i < names->RAVSize(); ++i) {
        const CZelDatabase &database = *m_store.RSMGetStore()->RSDatabase(names->RAVGetValue(i));
        ZelEach<CZelTable>(database.RDTableIterator(), [&](const CZelTable &table) {
            if (isWithin(table, argument))
                addIndexRows(table, result);
        });
    }
    show(result, nullptr);
    showFailure(result, std::string());
    return true;
}

bool CZelShell::cacheCommand(const std::string &argument) {
    CZelResult result;
    std::unique_ptr<CZelAtomVector> names(m_store.RSMGetStore()->RSDatabaseNames());
    for (unsigned int i = 0; i < names->RAVSize(); ++i) {
        const CZelDatabase &database = *m_store.RSMGetStore()->RSDatabase(names->RAVGetValue(i));
        ZelEach<CZelTable>(database.RDTableIterator(), [&](const CZelTable &table) {
            if (isWithin(table, argument) && table.RTIsCacheUsed() == E_RBTrue)
                result.AddRow(cacheRow(table));
        });
    }
    show(result, nullptr);
    showFailure(result, std::string());
    return true;
}

bool CZelShell::describeCommand(const std::string &argument) {
    if (parts(argument).second.empty())
        return complain(".describe needs a table, as database.table");
    runStatement("show table " + argument + ";");
    return true;
}

bool CZelShell::readCommand(const std::string &argument) {
    if (argument.empty())
        return complain(".read needs a file");
    if (m_depth == MAX_DEPTH)
        return complain("files read each other too deep");
    ++m_depth;
    bool opened = runFile(argument, false);
    --m_depth;
    return opened;
}

bool CZelShell::dumpCommand(const std::string &argument) {
    CZelResult result;
    if (argument.empty()) {
        std::string text;
        CZelStoreDump dump(m_store, [&text](std::string_view more) { text += more; });
        dump.WriteAll("standard output");
        result.m_reports = dump.Problems();
        showText(text);
    } else if (!dumpToFile(argument, result)) {
        return complain("can't write " + argument + ": " + std::strerror(errno));
    }
    showFailure(result, std::string());
    return !result.HasFailed();
}

bool CZelShell::dumpToFile(const std::string &path, CZelResult &result) {
    CZelNewFile file;
    if (!file.Open(path))
        return false;
    bool written = true;
    CZelStoreDump dump(m_store, [&](std::string_view more) { written = written && file.Write(more); });
    dump.WriteAll(path);
    result.m_reports = dump.Problems();
    return written && file.Commit();
}

bool CZelShell::formatCommand(const std::string &argument) {
    if (argument.empty())
        return complain(".format needs table, line, csv, json or oql");
    if (!ZelFormatNamed(argument, m_format))
        return complain("there is no format " + argument);
    m_writer = CZelResultWriter::Make(m_format, m_output);
    return true;
}

bool CZelShell::outputCommand(const std::string &argument) {
    if (argument.empty())
        m_output.UseStandard();
    else if (!m_output.Open(argument))
        return complain("can't write " + argument + ": " + std::strerror(errno));
    return true;
}

bool CZelShell::timerCommand(const std::string &argument) {
    if (argument != "on" && argument != "off")
        return complain(".timer is on or off");
    m_timer = argument == "on";
    return true;
}

bool CZelShell::recordCommand(const std::string &argument) {
    if (argument == "off")
        m_store.ClearRecord();
    else if (!m_store.SetRecord(argument))
        return complain(".record needs an object, as {Speed=100,Name='eth0'}, or off");
    return true;
}

bool CZelShell::constCommand(const std::string &argument) {
    std::string_view name = std::string_view(argument).substr(0, argument.find_first_of(" \t"));
    std::string problem;
    return m_store.SetConstant(std::string(name), argument.substr(name.size()), &problem) || complain(problem);
}

bool CZelShell::quitCommand(const std::string & /*argument*/) {
    m_stopped = true;
    return true;
}

// A text that is itself the result. In json it stands in a row, so that every line stays a line of json.
void CZelShell::showText(const std::string &text) {
    if (m_format != EZelFormat::JSON) {
        m_output.Write(text);
        m_output.Flush();
        return;
    }
    CZelResult result;
    auto row = std::make_unique<CZelRecord>();
    row->RRAddValue(new CZelVarBind("Oql", text.c_str()));
    result.AddRow(std::move(row));
    show(result, nullptr);
}
