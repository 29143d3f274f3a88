// For a process that has run out of file handles.
#pragma once

#include "foundations/port/ZelExport.h"

enum EZelFdStatus : int { E_FDOk = 0, E_FDNoneLeft = 1 };

class QUINTOR_API CZelFileDescriptor {
public:
    // Does this errno mean that there are no handles left?
    static bool RFDIsUnavailable(int errnoValue);

    // Makes room for more handles by raising the process's own limit towards what the system allows it.
    static EZelFdStatus RFDMakeAvailable();
};
