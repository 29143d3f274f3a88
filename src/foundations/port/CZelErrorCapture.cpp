#include "foundations/port/CZelErrorCapture.h"

#include <algorithm>

namespace {

thread_local CZelErrorCapture *t_innermost = nullptr;

}  // namespace

CZelErrorCapture::CZelErrorCapture(bool silent) : m_silent(silent), m_outer(t_innermost) {
    t_innermost = this;
}

CZelErrorCapture::~CZelErrorCapture() {
    t_innermost = m_outer;
}

bool CZelErrorCapture::Holds(int code) const {
    return std::any_of(m_reports.begin(), m_reports.end(),
                       [code](const SZelReport &report) { return report.m_code == code; });
}

bool CZelErrorCapture::Holds(int code, const char *text) const {
    return std::any_of(m_reports.begin(), m_reports.end(), [code, text](const SZelReport &report) {
        return report.m_code == code && report.m_text == text;
    });
}

CZelErrorCapture *CZelErrorCapture::Innermost() {
    return t_innermost;
}

void CZelErrorCapture::Take(int code, const char *source, int line, const char *text) {
    m_reports.push_back({code, text, source, line});
}
