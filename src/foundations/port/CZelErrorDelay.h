// Keeps the reports that this thread makes while it lives, unmade: for work that one thread does in another's place,
// which then makes them itself, where its captures collect them and in the order of the work. Delays nest: the
// innermost one keeps. Within one a CZelErrorCapture collects as ever.
//
// Threads: made, used and destroyed by one thread.
#pragma once

#include <vector>

#include "foundations/port/CZelErrorCapture.h"

class QUINTOR_API CZelErrorDelay {
public:
    CZelErrorDelay();
    CZelErrorDelay(const CZelErrorDelay &) = delete;
    CZelErrorDelay &operator=(const CZelErrorDelay &) = delete;
    ~CZelErrorDelay();

    std::vector<SZelReport> TakeReports();
    static void Make(const std::vector<SZelReport> &reports);  // in the calling thread

    // For CZelError: does a delay of this thread keep the report?
    static bool Keeps(int code, const char *source, int line, const char *text);

private:
    CZelErrorDelay *m_outer;
    std::vector<SZelReport> m_reports;
};
