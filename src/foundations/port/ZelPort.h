// Small services of the platform.
//
// Threads: any, unless told otherwise.
#pragma once

#include "foundations/port/ZelExport.h"

struct in_addr;

// Readies the process: exhausted memory in `new` ends it in order from now on. Once, before other threads
// start: a second call gives false until the cleanup, which undoes it.
QUINTOR_API bool ZelInitPortingLibrary();
QUINTOR_API bool ZelCleanupPortingLibrary();

// The calling thread sleeps, signals or not.
QUINTOR_API void ZelSleep(unsigned int milliseconds);

// Sends a signal to this process. 1 or E_RCBadArgument.
QUINTOR_API int ZelSigSend(int signal);

// Local time as "Thu Nov 24 12:08:24 2026\n". Gives the buffer, or null when it is too small (26 bytes
// serve) or the time has no calendar date.
QUINTOR_API char *ZelCTime_r(const long *seconds, char *buffer, int size);

// Local time in a form of strftime. Gives the buffer, or null, as above.
QUINTOR_API char *ZelStrfTime_r(const long *seconds, const char *format, char *buffer, int size);

// The one-way hash of passwords, with a salt of two characters of [./0-9A-Za-z]. New from malloc; null
// for a bad salt or a null.
QUINTOR_API char *ZelCrypt(const char *text, const char *salt);

// The dotted form of an address in host byte order, of which the low 32 bits count. New from malloc.
QUINTOR_API char *ZelGetIPStr(unsigned long address);

// Reads a whole text of the form 1.2.3.4 into network byte order. 1, or -1 with `address` unchanged.
QUINTOR_API int ZelInetAtoN(const char *text, in_addr *address);

// Resident memory in bytes; 0 when unknown.
QUINTOR_API unsigned long ZelGetProcMemSize(unsigned long pid);
