// What one statement gave: its rows, its status and its reports.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "foundations/base/CZelRecord.h"
#include "foundations/base/ZelEnums.h"
#include "foundations/port/CZelErrorCapture.h"

class CZelBag;
class CZelQuery;
class CZelStore;

class CZelResult {
public:
    CZelResult() = default;
    CZelResult(const CZelResult &) = delete;
    CZelResult &operator=(const CZelResult &) = delete;

    void TakeRows(CZelBag *records);  // with all in it; null for a statement that gives no rows
    void AddRow(std::unique_ptr<CZelRecord> row);

    bool GivesRows() const { return m_givesRows; }
    const std::vector<std::unique_ptr<CZelRecord>> &Rows() const { return m_rows; }

    // A report other than a warning, or a status other than "done" and "nothing matched".
    bool HasFailed() const;
    static bool IsWarning(int code);

    // For formats with columns. The columns of what was selected, in the order of the text; those of `select *`
    // in the order of their first appearance in a row, then the table's others. A name that stands twice in a
    // row is two columns. What `show` gives, one value that lists all, becomes a row for each thing shown. A null
    // statement is none: the rows say all.
    void FindColumns(const char *statement, const CZelStore &store);
    const std::vector<std::string> &Columns() const { return m_columns; }
    // The values of a row, one for each column; null where there is none.
    std::vector<const CZelAtom *> Cells(const CZelRecord &row) const;

    EZelStoreErrorStatus m_status = E_RSEOk;
    std::vector<SZelReport> m_reports;

private:
    void findQueryColumns(const CZelQuery &query, const CZelStore &store);
    void addSelected(const CZelQuery &query);
    void addTableColumns(const CZelQuery &query, const CZelStore &store);
    void addRowColumns();
    bool isOfTheseColumns(const CZelRecord &row) const;
    void addColumn(const std::string &name, int occurrence);
    void spreadShow();
    void spreadDump();
    void spreadNames(const std::string &column, const CZelAtom &names);
    void spreadSchema(const CZelAtom &schema);

    bool m_givesRows = false;
    std::vector<std::unique_ptr<CZelRecord>> m_rows;
    std::vector<std::string> m_columns;
};
