#include "foundations/port/ZelDebug.h"

int __Zeltronix_Debug_Level = 0;
