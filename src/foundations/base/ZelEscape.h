// The escape switch of OQL: whether a backslash in a string literal escapes the character behind it.
// One byte for the whole process, off at start, read and written without order (relaxed).
#pragma once

#include "foundations/port/ZelExport.h"

QUINTOR_API bool ZelEscapeIsOn();
QUINTOR_API void ZelSetEscape(bool on);
