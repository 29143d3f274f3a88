#include "programs/oql/CZelCsvWriter.h"

#include "programs/oql/CZelResult.h"
#include "programs/oql/CZelShellOutput.h"
#include "programs/oql/ZelValueText.h"

namespace {

void appendField(std::string &line, std::string_view text) {
    if (!text.empty() && text.find_first_of(",\"\r\n") == std::string_view::npos) {
        line += text;
        return;
    }
    line += '"';
    for (char c : text) {
        if (c == '"')
            line += '"';
        line += c;
    }
    line += '"';
}

std::string headerOf(const std::vector<std::string> &columns) {
    std::string line;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        line += i > 0 ? "," : "";
        appendField(line, columns[i]);
    }
    return line + "\r\n";
}

std::string lineOf(const std::vector<const CZelAtom *> &cells) {
    std::string line;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        line += i > 0 ? "," : "";
        if (!CZelAtom::RAIsNull(cells[i]))
            appendField(line, ZelPlainText(cells[i]));
    }
    return line + "\r\n";
}

}  // namespace

void CZelCsvWriter::Write(CZelResult &result, const char *statement, const CZelStore &store) {
    if (!result.GivesRows())
        return;
    result.FindColumns(statement, store);
    m_output.Write(headerOf(result.Columns()));
    for (const std::unique_ptr<CZelRecord> &row : result.Rows())
        m_output.Write(lineOf(result.Cells(*row)));
}
