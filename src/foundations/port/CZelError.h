// A report of a failure. Building one is reporting: the object can be dropped at once. Nothing is thrown
// and the process goes on; what happens next is the caller's business.
//
// A report goes, in this order and by one thread at a time,
//  - to the innermost CZelErrorCapture of the reporting thread, if there is one;
//  - to standard error as one line, unless that capture is silent;
//  - to the log handle, if one is set;
//  - to the observer, if one is set.
// Under a CZelErrorDelay it goes nowhere until another thread makes it.
//
// A line begins with the code and its name. The text follows without line feeds at its ends; those inside
// it are written as \n and other control characters as \xNN, so that a line is always one line and never
// drives a terminal. Its length has no limit. What the reporting level adds:
//   1  code, name and text: for people at a shell
//   2  and where it was seen, in brackets: for developers
//   3  and, at the front, local time, process and thread: for the log of a server
//
// Threads: any, also from within an observer, whose own reports do not reach it again.
#pragma once

#include "foundations/port/ZelCodes.h"
#include "foundations/port/ZelExport.h"

// Sees each report once. `source` and `text` are never null and live for the call only. Called with the
// report lock held: it must not wait for a thread that may report.
using ZelErrorObserver = void (*)(int code, const char *source, int line, const char *text, void *arg);

struct SZelErrorObserver {
    ZelErrorObserver m_call;
    void *m_arg;
};

class QUINTOR_API CZelError {
public:
    // Reports. `source` and `text` may be null.
    CZelError(int code, const char *source, int line, const char *text);

    // Replaces the observer and gives the former one; null for none. When this returns, no call of the
    // former one is under way in another thread.
    static SZelErrorObserver SetObserver(ZelErrorObserver call, void *arg = nullptr);

    // 1 to 3, as told above; others are taken as the nearest. 1 until set.
    static void SetErrorReportingLevel(int level);
    static int ErrorReportingLevel();

    // A descriptor to which each line is written too, in the form of level 3; -1 for none. It stays the
    // caller's. Gives the former one.
    static int SetLogHandle(int handle);

    // How many reports this process has made.
    static unsigned long ReportCount();
};

// Reports and gives the code back.
QUINTOR_API int ZelFail(int code, const char *source, int line, const char *text);

#define ZEL_SOURCE_NAME __FILE_NAME__
// Reports; the value is the code, to be returned.
#define ZEL_FAIL(code, text) ZelFail((code), ZEL_SOURCE_NAME, __LINE__, (text))
// Reports, where the code goes no further.
#define ZEL_REPORT(code, text) static_cast<void>(ZelFail((code), ZEL_SOURCE_NAME, __LINE__, (text)))
