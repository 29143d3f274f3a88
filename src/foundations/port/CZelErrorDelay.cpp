#include "foundations/port/CZelErrorDelay.h"

#include <utility>

#include "foundations/port/CZelError.h"

namespace {

thread_local CZelErrorDelay *t_innermost = nullptr;

}  // namespace

CZelErrorDelay::CZelErrorDelay() : m_outer(t_innermost) {
    t_innermost = this;
}

CZelErrorDelay::~CZelErrorDelay() {
    t_innermost = m_outer;
}

std::vector<SZelReport> CZelErrorDelay::TakeReports() {
    return std::exchange(m_reports, {});
}

void CZelErrorDelay::Make(const std::vector<SZelReport> &reports) {
    for (const SZelReport &report : reports)
        const CZelError again(report.m_code, report.m_source.c_str(), report.m_line, report.m_text.c_str());
}

bool CZelErrorDelay::Keeps(int code, const char *source, int line, const char *text) {
    if (t_innermost == nullptr || CZelErrorCapture::Innermost() != nullptr)
        return false;
    t_innermost->m_reports.push_back({code, text, source, line});
    return true;
}
