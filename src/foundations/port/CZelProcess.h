// The running process and what the platform keeps for it.
//
// Threads: any.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "foundations/port/ZelExport.h"

class QUINTOR_API CZelProcess {
public:
    static CZelProcess &Instance();

    int GetPID() const;

    // Runs the exit handlers, writes out open streams and ends the process.
    [[noreturn]] void Exit(int status);

    // Moves to $QMTHOME/var/core, where core files are looked for. False, and no move, if it isn't there.
    bool ChangeToCoreDumpDir();

    // Tells the service manager that listens on $NOTIFY_SOCKET that the process is up. True when told;
    // false without one.
    bool NowRunning();

    // Stored options of this program, as pairs of option and value, from the file named by $QMT_REGISTRY,
    // else $QMTHOME/etc/registry.ini; see ZelRegistry.h. The vector is emptied first.
    void GetRegistryArgs(std::vector<std::pair<std::string, std::string>> &pairs);

    // CPU time used so far, in microseconds. False, both 0, if unknown.
    bool GetCPUUsage(long long &system, long long &user);

private:
    CZelProcess() = default;
};
