// The process's debug level, 0 to 4. Trace printing to standard output is guarded by it.
//
// Threads: written at start-up only and read without a lock.
#pragma once

#include "foundations/port/ZelExport.h"

extern QUINTOR_API int __Zeltronix_Debug_Level;
