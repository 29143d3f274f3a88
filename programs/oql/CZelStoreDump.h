// A store as OQL text that -schema and .read turn into the same store again: databases, tables with all their
// constraints, rows in order, indexes.
//
// Literals are written for `set escape off`; a statement with a text that has no literal then is set between
// `set escape on` and `set escape off`. What OQL can't say is kept as a problem, and as near to it written as
// can be.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "foundations/port/CZelErrorCapture.h"

class CZelAtom;
class CZelColDef;
class CZelDatabase;
class CZelRecord;
class CZelStoreMgr;
class CZelTable;

class CZelStoreDump {
public:
    using Sink = std::function<void(std::string_view)>;

    CZelStoreDump(CZelStoreMgr &manager, Sink sink);

    void WriteAll(const std::string &file);  // with a header that names the file

    // Definitions without rows; null names mean all. False when there is no such database or table.
    bool WriteDefinitions(const char *database, const char *table);

    const std::vector<SZelReport> &Problems() const { return m_problems; }

private:
    void header(const std::string &file);
    void database(const CZelDatabase &database);
    void table(const CZelTable &table);
    void indexes(const CZelTable &table);
    void rows(const CZelTable &table);
    void row(const CZelTable &table, const CZelRecord &row);
    bool definitionsOf(const CZelDatabase &database, const char *table);

    void statement(const std::function<std::string()> &text, const std::string &about);
    void checkRow(const CZelTable &table, const CZelRecord &row);
    void problem(const std::string &about, const std::string &text);
    std::string rowName(const CZelTable &table) const;

    CZelStoreMgr &m_manager;
    Sink m_sink;
    std::vector<SZelReport> m_problems;
    long m_rowNumber = 0;  // in the table being written, from 1
};
