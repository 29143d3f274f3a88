// Dynamic libraries.
#pragma once

#include "foundations/port/ZelExport.h"

// The library, all its symbols resolved and private to it; null on failure. The flags have no effect.
QUINTOR_API void *ZelDLOpen(const char *path, int flags);
QUINTOR_API void *ZelDLSym(void *library, const char *name);  // null when absent
QUINTOR_API int ZelDLClose(void *library);                    // 1 or E_RCBadArgument

// What went wrong last in this thread, until it is asked for; empty for nothing, never null.
QUINTOR_API const char *ZelDLError();
