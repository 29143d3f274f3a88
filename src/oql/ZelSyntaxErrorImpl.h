#pragma once

#include <string_view>

// Reports a syntax error with the line and the whole text; E_RCSyntax.
int ZelReportSyntaxError(int line, std::string_view text);
