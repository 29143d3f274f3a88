#include "tests/oqltest/CZelScriptRunner.h"

#include <algorithm>
#include <cstdio>

#include "foundations/base/ZelEscape.h"
#include "foundations/port/ZelCodes.h"
#include "programs/oql/CZelResult.h"
#include "programs/oql/ZelValueText.h"

namespace {

const char *const STATUS_NAMES[] = {"E_RSEOk",           "E_RSEPermission",     "E_RSENoDatabase",
                                    "E_RSENoTable",      "E_RSENoColumn",       "E_RSENoIndex",
                                    "E_RSEBadType",      "E_RSEIncompleteRow",  "E_RSENoMatch",
                                    "E_RSECreateTable",  "E_RSECreateDatabase", "E_RSECreateIndex",
                                    "E_RSEDuplicateKey", "E_RSEUpdateFailed"};

// In double quotes, on one line.
std::string quoted(const std::string &text) {
    std::string out = "\"";
    for (char c : text) {
        if (c == '"' || c == '\\')
            out += '\\';
        out += c;
    }
    std::string line;
    for (char c : out + "\"") {
        if (c == '\n' || c == '\r' || c == '\t')
            line += c == '\n' ? "\\n" : c == '\r' ? "\\r" : "\\t";
        else
            line += c;
    }
    return line;
}

std::string reportLine(const SZelReport &report) {
    const char *name = ZelCodeName(report.m_code);
    std::string line = "report " + (name == nullptr ? std::to_string(report.m_code) : std::string(name));
    return report.m_text.empty() ? line : line + " " + quoted(report.m_text);
}

// An expected report that ends in " ..." says nothing of its text; `=?` in a row is any value.
bool lineMatches(const std::string &expected, const std::string &line) {
    const std::string anyText = " ...";
    if (expected.rfind("report ", 0) == 0 && expected.size() > anyText.size() &&
        expected.compare(expected.size() - anyText.size(), anyText.size(), anyText) == 0) {
        std::string code = expected.substr(0, expected.size() - anyText.size());
        return line == code || line.rfind(code + " ", 0) == 0;
    }
    std::size_t wild = expected.find("=?");
    if (wild == std::string::npos)
        return expected == line;
    if (line.compare(0, wild + 1, expected, 0, wild + 1) != 0)
        return false;
    std::string rest = expected.substr(wild + 2);
    for (std::size_t i = wild + 1; i <= line.size(); ++i) {
        if (lineMatches(rest, line.substr(i)))
            return true;
    }
    return false;
}

// Takes each expected line's match out of the answer; the exact ones first, so that a `=?` takes what is left.
bool matchesUnordered(const std::vector<std::string> &expected, std::vector<std::string> answer) {
    for (bool wild : {false, true}) {
        for (const std::string &line : expected) {
            if ((line.find("=?") != std::string::npos) != wild)
                continue;
            auto found = std::find_if(answer.begin(), answer.end(),
                                      [&line](const std::string &candidate) { return lineMatches(line, candidate); });
            if (found == answer.end())
                return false;
            answer.erase(found);
        }
    }
    return answer.empty();
}

// "record {a=1}", "record off" or "const NAME VALUE". Empty when done, else what is wrong.
std::string applyContext(CZelStatementStore &store, const std::string &line) {
    const std::size_t blank = line.find(' ');
    const std::string argument = line.substr(blank + 1);
    std::string problem;
    if (line == "record off")
        store.ClearRecord();
    else if (line.compare(0, blank, "record") == 0)
        problem = store.SetRecord(argument) ? "" : "is no record: " + line;
    else
        store.SetConstant(argument.substr(0, argument.find(' ')), argument.substr(argument.find(' ') + 1), &problem);
    return problem;
}

}  // namespace

std::vector<std::string> CZelScriptRunner::AnswerTo(CZelStatementStore &store, const std::string &text) {
    CZelResult result;
    store.Run(text.c_str(), result);
    std::vector<std::string> lines;
    for (const std::unique_ptr<CZelRecord> &row : result.Rows())
        lines.push_back("row " + ZelOneLine(ZelRowLiteral(*row)));
    if (result.m_status != E_RSEOk)
        lines.push_back(std::string("status ") + STATUS_NAMES[result.m_status]);
    for (const SZelReport &report : result.m_reports)
        lines.push_back(reportLine(report));
    return lines;
}

bool CZelScriptRunner::Matches(const SZelStep &step, const std::vector<std::string> &answer) {
    if (step.m_unordered)
        return matchesUnordered(step.m_expected, answer);
    return std::equal(step.m_expected.begin(), step.m_expected.end(), answer.begin(), answer.end(), lineMatches);
}

std::vector<std::string> CZelScriptRunner::answerInContext(const SZelStep &step) {
    for (const std::string &line : step.m_context) {
        const std::string problem = applyContext(*m_store, line);
        if (!problem.empty())
            return {problem};
    }
    return AnswerTo(*m_store, step.m_text);
}

int CZelScriptRunner::Run(const std::string &path, CZelScript &script, bool accept) {
    const SZelScriptStore &first = script.Stores().front();
    if (accept)
        return runIn(first, path, script, true);
    int differing = 0;
    for (const SZelScriptStore &kind : script.Stores()) {
        const int found = runIn(kind, path, script, false);
        if (found > 0 && &kind != &first)
            std::printf("%s: the last %d in a \"%s\"\n", path.c_str(), found, kind.m_line.c_str());
        differing += found;
    }
    return differing;
}

// Files of the former store are not this one's.
void CZelScriptRunner::openStore(const SZelShellCache &cache) {
    m_store.reset();
    m_home.empty();
    m_store = std::make_unique<CZelStatementStore>(cache);
    ZelSetEscape(false);
}

int CZelScriptRunner::runIn(const SZelScriptStore &kind, const std::string &path, CZelScript &script, bool accept) {
    std::vector<std::pair<SZelStep, std::vector<std::string>>> differing;
    for (const SZelStep &step : script.Steps()) {
        if (&step == &script.Steps().front() || step.m_newStore)
            openStore(kind.m_cache);
        std::vector<std::string> answer = answerInContext(step);
        if (Matches(step, answer))
            continue;
        printDifference(path, step, answer);
        differing.emplace_back(step, answer);
    }
    for (std::size_t i = differing.size(); accept && i > 0; --i)
        script.Replace(differing[i - 1].first, differing[i - 1].second);
    return static_cast<int>(differing.size());
}

// What both have at the beginning and at the end stands once, around what differs.
void CZelScriptRunner::printDifference(const std::string &path, const SZelStep &step,
                                       const std::vector<std::string> &answer) {
    std::printf("%s:%d: %s\n", path.c_str(), step.m_line, step.m_text.c_str());
    const std::vector<std::string> &expected = step.m_expected;
    std::size_t shorter = std::min(expected.size(), answer.size());
    std::size_t same = 0;
    while (same < shorter && lineMatches(expected[same], answer[same]))
        ++same;
    std::size_t tail = 0;
    while (tail < shorter - same && lineMatches(expected[expected.size() - 1 - tail], answer[answer.size() - 1 - tail]))
        ++tail;
    for (std::size_t i = 0; i < same; ++i)
        std::printf("      %s\n", expected[i].c_str());
    for (std::size_t i = same; i < expected.size() - tail; ++i)
        std::printf("    - %s\n", expected[i].c_str());
    for (std::size_t i = same; i < answer.size() - tail; ++i)
        std::printf("    + %s\n", answer[i].c_str());
    for (std::size_t i = expected.size() - tail; i < expected.size(); ++i)
        std::printf("      %s\n", expected[i].c_str());
}
