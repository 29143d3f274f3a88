#pragma once

#include <string_view>

// Reports that OQL knows the function's name but does not carry it out.
void ZelReportUnsupportedWord(std::string_view name);
