#include "programs/oql/CZelTableWriter.h"

#include <algorithm>

#include "programs/oql/CZelResult.h"
#include "programs/oql/CZelShellOutput.h"
#include "programs/oql/ZelValueText.h"

namespace {

struct Column {
    std::string m_name;
    int m_width;
    bool m_right = true;  // all its values are numbers
};

std::vector<Column> columnsOf(const CZelResult &result) {
    std::vector<Column> columns;
    for (const std::string &name : result.Columns()) {
        std::string shown = ZelOneLine(name);
        columns.push_back({shown, ZelDisplayWidth(shown)});
    }
    return columns;
}

std::vector<std::string> shownCells(const CZelResult &result, const CZelRecord &row, std::vector<Column> &columns) {
    std::vector<std::string> shown;
    std::vector<const CZelAtom *> cells = result.Cells(row);
    for (std::size_t i = 0; i < cells.size(); ++i) {
        shown.push_back(ZelOneLine(ZelPlainText(cells[i])));
        columns[i].m_width = std::max(columns[i].m_width, ZelDisplayWidth(shown.back()));
        columns[i].m_right = columns[i].m_right && (CZelAtom::RAIsNull(cells[i]) || cells[i]->RAIsNumber());
    }
    return shown;
}

std::string padded(const std::string &text, const Column &column, bool last) {
    std::string blanks(static_cast<std::size_t>(column.m_width - ZelDisplayWidth(text)), ' ');
    if (column.m_right)
        return blanks + text;
    return last ? text : text + blanks;
}

std::string lineOf(const std::vector<std::string> &cells, const std::vector<Column> &columns) {
    std::string line;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        line += i > 0 ? " | " : "";
        line += padded(cells[i], columns[i], i + 1 == cells.size());
    }
    return line + "\n";
}

std::string headOf(const std::vector<Column> &columns) {
    std::vector<std::string> names;
    std::string rule;
    for (const Column &column : columns) {
        names.push_back(column.m_name);
        rule += rule.empty() ? "" : "-+-";
        rule.append(static_cast<std::size_t>(column.m_width), '-');
    }
    return lineOf(names, columns) + rule + "\n";
}

std::string countOf(std::size_t rows) {
    return std::to_string(rows) + (rows == 1 ? " row\n" : " rows\n");
}

}  // namespace

void CZelTableWriter::Write(CZelResult &result, const char *statement, const CZelStore &store) {
    if (!result.GivesRows())
        return;
    result.FindColumns(statement, store);
    std::vector<Column> columns = columnsOf(result);
    std::vector<std::vector<std::string>> lines;
    for (const std::unique_ptr<CZelRecord> &row : result.Rows())
        lines.push_back(shownCells(result, *row, columns));
    if (!columns.empty() && !lines.empty())
        m_output.Write(headOf(columns));
    for (const std::vector<std::string> &line : lines)
        m_output.Write(lineOf(line, columns));
    m_output.Write(countOf(lines.size()));
}
