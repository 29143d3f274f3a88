#include "programs/oql/ZelFailureText.h"

#include <algorithm>

#include "foundations/port/ZelCodes.h"
#include "oql/CZelOQLParser.h"
#include "programs/oql/CZelResult.h"
#include "programs/oql/ZelValueText.h"
#include "storemgr/CZelStoreMgr.h"

namespace {

constexpr std::size_t WINDOW = 80;  // bytes shown to each side of a caret

std::string codeText(const SZelReport &report) {
    const char *name = ZelCodeName(report.m_code);
    std::string text = name == nullptr ? "code" : name;
    return text + " (" + std::to_string(report.m_code) + ")";
}

// Reports travel outwards with their code and no text of their own.
bool repeatsFormer(const CZelResult &result, std::size_t index) {
    const std::vector<SZelReport> &reports = result.m_reports;
    return index > 0 && reports[index].m_text.empty() && reports[index].m_code == reports[index - 1].m_code;
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && (text.front() == '\n' || text.front() == ' '))
        text.remove_prefix(1);
    while (!text.empty() && (text.back() == '\n' || text.back() == ' '))
        text.remove_suffix(1);
    return text;
}

std::string reportLine(const SZelPlace &place, const SZelReport &report) {
    std::string line = ZelPlacePrefix(place) + codeText(report);
    std::string_view text = trimmed(report.m_text);
    if (!text.empty())
        line += ": " + ZelOneLine(text);
    return line + "\n";
}

std::string syntaxText(SZelPlace place, const SZelReport &report, const std::string &statement) {
    std::string pointer = ZelSyntaxPointer(statement, place);
    if (pointer.empty())
        return reportLine(place, report);
    return ZelPlacePrefix(place) + codeText(report) + ": syntax error\n" + pointer;
}

std::string statusText(const SZelPlace &place, EZelStoreErrorStatus status) {
    std::string line = ZelPlacePrefix(place) + "status " + std::to_string(status);
    return line + ": " + std::string(trimmed(CZelStoreMgr::RSMStatusSentence(status))) + "\n";
}

std::size_t offsetOf(std::string_view text, int line, int column) {
    std::size_t offset = 0;
    for (; line > 1; --line)
        offset = text.find('\n', offset) + 1;
    return std::min(offset + static_cast<std::size_t>(column) - 1, text.size());
}

// Of a very long line only what is around the caret.
std::string pointAt(std::string_view line, std::size_t offset) {
    if (!line.empty() && line.back() == '\r')
        line.remove_suffix(1);
    offset = std::min(offset, line.size());
    std::size_t begin = offset > WINDOW ? offset - WINDOW : 0;
    std::string before = (begin > 0 ? "..." : "") + ZelOneLine(line.substr(begin, offset - begin));
    std::string after = ZelOneLine(line.substr(offset, WINDOW));
    if (line.size() > offset + WINDOW)
        after += "...";
    std::string blanks(static_cast<std::size_t>(ZelDisplayWidth(before)), ' ');
    return "    " + before + after + "\n    " + blanks + "^\n";
}

}  // namespace

std::string ZelPlacePrefix(const SZelPlace &place) {
    if (place.m_source.empty())
        return "oql: ";
    return "oql: " + place.m_source + ":" + std::to_string(place.m_line) + ":" + std::to_string(place.m_column) + ": ";
}

std::string ZelSyntaxPointer(const std::string &text, SZelPlace &place) {
    CZelErrorCapture quiet;
    CZelOQLParser parser;
    parser.ROPParse(text.c_str(), E_RBTrue);
    if (parser.ROPErrorLine() < 1 || parser.ROPErrorColumn() < 1)
        return std::string();
    std::size_t offset = offsetOf(text, parser.ROPErrorLine(), parser.ROPErrorColumn());
    // Text that ends too early is wrong where it ends, not lines below.
    if (text.find_first_not_of(" \t\r\n", offset) == std::string::npos)
        offset = text.find_last_not_of(" \t\r\n", offset) + 1;
    std::size_t begin = offset == 0 ? 0 : text.rfind('\n', offset - 1) + 1;
    if (begin > 0)
        place.m_column = 1;
    place.m_column += static_cast<int>(offset - begin);
    place.m_line +=
        static_cast<int>(std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(offset), '\n'));
    std::string_view line = std::string_view(text).substr(begin, text.find('\n', begin) - begin);
    return pointAt(line, offset - begin);
}

std::string ZelFailureText(const SZelPlace &place, const std::string &statement, const CZelResult &result) {
    std::string text;
    for (std::size_t i = 0; i < result.m_reports.size(); ++i) {
        const SZelReport &report = result.m_reports[i];
        if (report.m_code == E_RCSyntax)
            text += syntaxText(place, report, statement);
        else if (!repeatsFormer(result, i))
            text += reportLine(place, report);
    }
    if (result.m_status != E_RSEOk && result.m_status != E_RSENoMatch)
        text += statusText(place, result.m_status);
    return text;
}
