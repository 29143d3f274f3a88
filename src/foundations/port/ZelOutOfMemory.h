// The one place where exhausted memory is met. Class allocators and the malloc helpers call it and so never
// give null.
#pragma once

#include "foundations/port/ZelExport.h"

// Reports E_RCNoMemory once, without taking memory, writes out what standard output holds, runs the
// handlers of at_quick_exit and ends the process with status 1. Destructors of statics don't run: the
// calling thread may hold the locks that they need. A second thread that comes here waits for the end.
[[noreturn]] QUINTOR_API void ZelOutOfMemory();
