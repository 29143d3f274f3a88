#include "foundations/port/ZelRegistry.h"

#include <algorithm>

#include "foundations/port/CZelConfigLinesImpl.h"
#include "foundations/port/ZelCodes.h"

namespace {

using Pair = std::pair<std::string, std::string>;
using Pairs = std::vector<Pair>;

std::string unquoted(const std::string &value) {
    const bool quoted = value.size() >= 2 && value.front() == '"' && value.back() == '"';
    return quoted ? value.substr(1, value.size() - 2) : value;
}

Pair pairOf(const std::string &line) {
    const std::size_t equals = line.find('=');
    if (equals == std::string::npos)
        return {line, std::string()};
    return {ZelTrimmed(line.substr(0, equals)), unquoted(ZelTrimmed(line.substr(equals + 1)))};
}

bool holdsOption(const Pairs &pairs, const std::string &option) {
    return std::any_of(pairs.begin(), pairs.end(), [&option](const Pair &pair) { return pair.first == option; });
}

class Reader {
public:
    Reader(const char *path, std::string service) : m_lines(path, "#;"), m_service(std::move(service)) {}

    bool isOpen() const { return m_lines.IsOpen(); }

    int readAll() {
        std::string line;
        while (m_lines.Next(line))
            line[0] == '[' ? takeSection(line) : takeOption(line);
        return m_status;
    }

    void addTo(Pairs &pairs) const {
        pairs.insert(pairs.end(), m_own.begin(), m_own.end());
        for (const Pair &pair : m_shared)
            if (!holdsOption(m_own, pair.first))
                pairs.push_back(pair);
    }

private:
    void refuse(const char *problem) {
        m_lines.ReportLine(problem);
        m_status = E_RCBadValue;
    }

    // After a line that should have named a section, options belong to no program.
    void takeSection(const std::string &line) {
        const bool whole = line.back() == ']';
        const bool own = whole && ZelTrimmed(line.substr(1, line.size() - 2)) == m_service;
        m_target = own ? &m_own : nullptr;
        if (!whole)
            refuse("a section's name ends with ]");
    }

    void takeOption(const std::string &line) {
        Pair pair = pairOf(line);
        if (pair.first.empty())
            refuse("an option's name is missing before =");
        else if (m_target != nullptr)
            m_target->push_back(std::move(pair));
    }

    CZelConfigLines m_lines;
    std::string m_service;
    Pairs m_shared;  // before any section
    Pairs m_own;
    Pairs *m_target = &m_shared;
    int m_status = E_RCOk;
};

}  // namespace

int ZelReadRegistry(const char *path, const char *service, std::vector<std::pair<std::string, std::string>> &pairs) {
    Reader reader(path, service);
    if (!reader.isOpen())
        return E_RCOpenFailed;
    const int status = reader.readAll();
    reader.addTo(pairs);
    return status;
}
