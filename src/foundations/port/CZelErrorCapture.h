// Collects the reports that this thread makes while the capture lives on its stack. Captures nest: the
// innermost one collects. The observer sees captured reports all the same.
//
// Threads: made, used and destroyed by one thread; reports of other threads go their usual way.
#pragma once

#include <string>
#include <vector>

#include "foundations/port/ZelExport.h"

struct SZelReport {
    int m_code;
    std::string m_text;    // as given to the report, line feeds included; empty for none
    std::string m_source;  // the reporting source's name
    int m_line;
};

class QUINTOR_API CZelErrorCapture {
public:
    // Silent: captured reports are not printed on standard error.
    explicit CZelErrorCapture(bool silent = true);
    CZelErrorCapture(const CZelErrorCapture &) = delete;
    CZelErrorCapture &operator=(const CZelErrorCapture &) = delete;
    ~CZelErrorCapture();

    const std::vector<SZelReport> &Reports() const { return m_reports; }
    std::size_t Count() const { return m_reports.size(); }
    bool Holds(int code) const;
    bool Holds(int code, const char *text) const;  // the text word for word
    int LastCode() const { return m_reports.empty() ? 0 : m_reports.back().m_code; }
    std::string LastText() const { return m_reports.empty() ? std::string() : m_reports.back().m_text; }
    void Clear() { m_reports.clear(); }

    // For CZelError: this thread's innermost capture, or null.
    static CZelErrorCapture *Innermost();
    void Take(int code, const char *source, int line, const char *text);
    bool IsSilent() const { return m_silent; }

private:
    bool m_silent;
    CZelErrorCapture *m_outer;
    std::vector<SZelReport> m_reports;
};
