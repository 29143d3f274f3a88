// The words of OQL that can't be names.
#pragma once

#include <string_view>
#include <vector>

const std::vector<std::string_view> &ZelKeywords();  // in lower case

// Can the text stand in OQL as a name?
bool ZelIsName(std::string_view text);
