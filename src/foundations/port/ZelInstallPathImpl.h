// Where a file that belongs to the installation lies.
#pragma once

#include <string>

// The value of the environment variable, else the place under $QMTHOME; empty when neither is set.
// A null `variable` has no value.
std::string ZelInstallPath(const char *variable, const char *place);
