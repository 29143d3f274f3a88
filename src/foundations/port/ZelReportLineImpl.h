// The line that a report becomes, and its way out. For CZelError and ZelOutOfMemory.
#pragma once

#include <cstddef>
#include <string>

struct SZelReportParts {
    int m_code;
    const char *m_source;
    int m_line;
    const char *m_text;
};

// One line, its line feed included, with what the level adds.
std::string ZelReportLine(const SZelReportParts &report, int level);

// Writes all bytes to a descriptor as far as it takes them. No signal, no wait for a full pipe's reader
// beyond the system's own, errno kept.
void ZelWriteLine(int handle, const char *bytes, std::size_t length);
