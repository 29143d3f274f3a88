#include <algorithm>
#include <fstream>
#include <iterator>

#include "foundations/port/ZelCodes.h"
#include "oql/CZelSchema.h"
#include "programs/oql/CZelProgress.h"
#include "programs/oql/CZelResult.h"
#include "programs/oql/CZelShell.h"

namespace {

std::string contentsOf(const std::string &path) {
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

int linesIn(const std::string &text) {
    return static_cast<int>(std::count(text.begin(), text.end(), '\n'));
}

}  // namespace

// All files are one schema: a table may stand in one and its rows in another.
void CZelShell::readSchemas() {
    if (m_options.m_schemas.empty())
        return;
    CZelResult result;
    {
        CZelErrorCapture reports;
        CZelSchema schema;
        for (const std::string &path : m_options.m_schemas) {
            if (schema.RSReadSchema(path.c_str(), false) != 1)
                complain("can't read schema file " + path);
        }
        CZelProgress progress("the schema", 0);
        if (!m_failed)
            m_store.RSMReadSchema(schema);
        result.m_reports = reports.Reports();
    }
    if (m_failed || !result.HasFailed())
        return;
    say(schemaFailure(result));
    failed();
}

// The parser saw the files as one text; the reader wants the line in a file.
std::string CZelShell::schemaFailure(const CZelResult &result) const {
    bool syntax = std::any_of(result.m_reports.begin(), result.m_reports.end(),
                              [](const SZelReport &report) { return report.m_code == E_RCSyntax; });
    SZelPlace place;
    if (!syntax)
        return ZelFailureText(place, std::string(), result);
    std::string all;
    for (const std::string &path : m_options.m_schemas)
        all += contentsOf(path);
    std::string pointer = ZelSyntaxPointer(all, place);
    for (const std::string &path : m_options.m_schemas) {
        place.m_source = path;
        int lines = linesIn(contentsOf(path));
        if (place.m_line <= lines || path == m_options.m_schemas.back())
            break;
        place.m_line -= lines;
    }
    return ZelPlacePrefix(place) + "E_RCSyntax (" + std::to_string(E_RCSyntax) + "): syntax error\n" + pointer;
}
