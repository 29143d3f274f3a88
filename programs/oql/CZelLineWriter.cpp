#include "programs/oql/CZelLineWriter.h"

#include <algorithm>

#include "programs/oql/CZelResult.h"
#include "programs/oql/CZelShellOutput.h"
#include "programs/oql/ZelValueText.h"

namespace {

int widestName(const CZelRecord &row) {
    int width = 0;
    const CZelVBList *values = row.RRVbIterator();
    for (const CZelVarBind *value = values->RVBLHead(); value != nullptr; value = values->RVBLGetNext(value))
        width = std::max(width, static_cast<int>(value->RVBName().RATextLength()));
    return width;
}

std::string rowText(const CZelRecord &row) {
    int width = widestName(row);
    std::string text;
    const CZelVBList *values = row.RRVbIterator();
    for (const CZelVarBind *value = values->RVBLHead(); value != nullptr; value = values->RVBLGetNext(value)) {
        std::string_view name = value->RVBName().RATextView();
        text.append(static_cast<std::size_t>(width) - name.size(), ' ').append(name).append(" = ");
        text.append(ZelOneLine(ZelPlainText(value->RVBValue()))).append("\n");
    }
    return text + "\n";
}

}  // namespace

void CZelLineWriter::Write(CZelResult &result, const char *statement, const CZelStore &store) {
    if (!result.GivesRows())
        return;
    result.FindColumns(statement, store);
    for (const std::unique_ptr<CZelRecord> &row : result.Rows())
        m_output.Write(rowText(*row));
}
