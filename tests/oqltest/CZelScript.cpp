#include "tests/oqltest/CZelScript.h"

#include <cstdio>
#include <fstream>
#include <sstream>
#include <utility>

namespace {

bool beginsWith(const std::string &line, const char *start) {
    return line.rfind(start, 0) == 0;
}

bool endsWith(const std::string &text, const std::string &end) {
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

// "plain", "share F" or "bytes N", the latter two with "persistent" behind. False for other words.
bool readKind(std::istringstream &words, SZelShellCache &cache) {
    std::string kind, rest;
    words >> kind;
    cache.m_isByShare = kind == "share" && words >> cache.m_share;
    cache.m_isBySize = kind == "bytes" && words >> cache.m_bytes;
    const bool isCached = cache.m_isByShare || cache.m_isBySize;
    cache.m_name = isCached ? "script" : "";
    cache.m_isPersistent = isCached && words >> rest && rest == "persistent";
    if (cache.m_isPersistent)
        rest.clear();
    return (isCached || kind == "plain") && rest.empty() && !(words >> rest);
}

}  // namespace

bool CZelScript::Read(const std::string &path) {
    std::ifstream file(path);
    if (!file) {
        m_problem = path + ": can't be read";
        return false;
    }
    m_markdown = endsWith(path, ".md");
    for (std::string line; std::getline(file, line);)
        m_lines.push_back(line);
    for (std::size_t i = 0; i < m_lines.size(); ++i) {
        if (readLine(i))
            continue;
        m_problem = path + ":" + std::to_string(i + 1) + ": is no line of a script: " + m_lines[i];
        return false;
    }
    if (m_stores.empty())
        m_stores.push_back({"store plain", {}});
    return true;
}

bool CZelScript::readLine(std::size_t index) {
    const std::string &line = m_lines[index];
    if (m_markdown && isFenceLine(line)) {
        m_open = false;
        return true;
    }
    if (m_markdown && !m_inFence)
        return true;
    if (line.empty() || line[0] == '#') {
        m_open = false;
        return true;
    }
    if (line == "new store") {
        m_newStore = true;
        m_open = false;
        return true;
    }
    if (beginsWith(line, "store "))
        return takeStore(line);
    if (beginsWith(line, "record ") || beginsWith(line, "const ")) {
        m_context.push_back(line);
        m_open = false;
        return true;
    }
    return line[0] == '>' ? takeStatement(index) : takeAnswer(index);
}

bool CZelScript::isFenceLine(const std::string &line) {
    if (!beginsWith(line, "```"))
        return false;
    m_inFence = line == "```oqltest";
    return true;
}

// All of them stand before the first statement.
bool CZelScript::takeStore(const std::string &line) {
    SZelScriptStore store{line, {}};
    std::istringstream words(line.substr(line.find(' ') + 1));
    if (!m_steps.empty() || !readKind(words, store.m_cache))
        return false;
    m_stores.push_back(store);
    return true;
}

bool CZelScript::takeStatement(std::size_t index) {
    const std::string &line = m_lines[index];
    std::string text = line.size() > 1 && line[1] == ' ' ? line.substr(2) : line.substr(1);
    bool goesOn = m_open && m_steps.back().m_answerBegin == index;
    if (!goesOn) {
        m_steps.emplace_back();
        m_steps.back().m_line = static_cast<int>(index) + 1;
        m_steps.back().m_newStore = m_newStore;
        m_steps.back().m_context = std::move(m_context);
        m_context.clear();
        m_newStore = false;
        m_open = true;
    }
    SZelStep &step = m_steps.back();
    step.m_text += (goesOn ? "\n" : "") + text;
    step.m_answerBegin = step.m_answerEnd = index + 1;
    return true;
}

bool CZelScript::takeAnswer(std::size_t index) {
    const std::string &line = m_lines[index];
    if (!m_open)
        return false;
    SZelStep &step = m_steps.back();
    if (line == "unordered")
        step.m_unordered = true;
    else if (beginsWith(line, "row {") || beginsWith(line, "status ") || beginsWith(line, "report "))
        step.m_expected.push_back(line);
    else
        return false;
    step.m_answerEnd = index + 1;
    return true;
}

void CZelScript::Replace(const SZelStep &step, const std::vector<std::string> &answer) {
    auto begin = m_lines.begin() + static_cast<std::ptrdiff_t>(step.m_answerBegin);
    begin = m_lines.erase(begin, m_lines.begin() + static_cast<std::ptrdiff_t>(step.m_answerEnd));
    m_lines.insert(begin, answer.begin(), answer.end());
}

bool CZelScript::Write(const std::string &path) const {
    std::ofstream file(path);
    for (const std::string &line : m_lines)
        file << line << '\n';
    return static_cast<bool>(file.flush());
}
