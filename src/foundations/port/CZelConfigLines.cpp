#include "foundations/port/CZelConfigLinesImpl.h"

#include "foundations/port/CZelError.h"

bool CZelConfigLines::Next(std::string &line) {
    while (std::getline(m_file, line)) {
        ++m_number;
        line = ZelTrimmed(line);
        if (!line.empty() && m_comments.find(line[0]) == std::string::npos)
            return true;
    }
    return false;
}

void CZelConfigLines::ReportLine(const char *problem) const {
    const std::string text = m_path + " line " + std::to_string(m_number) + ": " + problem;
    ZEL_REPORT(E_RCBadValue, text.c_str());
}

std::string ZelTrimmed(const std::string &text) {
    static const char blanks[] = " \t\r";
    const std::size_t first = text.find_first_not_of(blanks);
    return first == std::string::npos ? std::string() : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}
