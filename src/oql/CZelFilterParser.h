// Parses one search condition that stands alone.
#pragma once

#include "foundations/base/ZelEnums.h"
#include "foundations/port/ZelExport.h"

class CZelFilter;

class QUINTOR_API CZelFilterParser {
public:
    CZelFilterParser() = default;
    ~CZelFilterParser() = default;

    // A new filter, the caller's. An empty text gives null and status 1; a syntax error is reported and gives
    // null and E_RCSyntax. `status` may be null.
    CZelFilter *RFPParse(const char *text, int *status);

    static const char *RFPOperatorToString(EZelOper op);            // " = ", " Not In ", ...
    static const char *RFPAlgebraicToString(EZelAlgebraic joiner);  // " And ", ...
};
