#include <chrono>
#include <cstdio>

#include "programs/oql/CZelResult.h"
#include "programs/oql/CZelShell.h"

void CZelShell::runStatement(const std::string &text) {
    auto begin = std::chrono::steady_clock::now();
    CZelResult result;
    m_store.Run(text.c_str(), result);
    std::chrono::duration<double> took = std::chrono::steady_clock::now() - begin;
    show(result, text.c_str());
    showFailure(result, text);
    if (m_timer) {
        char line[64];
        std::snprintf(line, sizeof(line), "%.6f s\n", took.count());
        say(line);
    }
    m_stopped = m_stopped || m_store.ShutdownAsked();
}

// Writing can meet values that no literal spells: those reports come behind the statement's own.
void CZelShell::show(CZelResult &result, const char *statement) {
    CZelErrorCapture reports;
    m_writer->Write(result, statement, *m_store.RSMGetStore());
    result.m_reports.insert(result.m_reports.end(), reports.Reports().begin(), reports.Reports().end());
    m_output.Flush();
}

void CZelShell::showFailure(const CZelResult &result, const std::string &statement) {
    std::string text = ZelFailureText(m_place, statement, result);
    if (text.empty() && m_terminal && result.m_status == E_RSENoMatch)
        text = "no row matched\n";
    if (!text.empty())
        say(text);
    if (result.HasFailed())
        failed();
}
