// Reads the language of clauses: text becomes nodes (CZelCompiledClause).
#pragma once

#include "foundations/port/ZelExport.h"

class CZelBag;
class CZelEvalClause;

class QUINTOR_API CZelClauseParser {
public:
    // Adds the node of each expression of the text to `out`, in text order; they are the caller's. 1, also after a
    // syntax error, which is reported and printed: then what was complete before it stands in `out`.
    int RCPParse(const char *text, CZelBag *out);

    // The clause that a text of the form eval(type,'text') spells, the caller's; null for any other text.
    CZelEvalClause *ParseToClause(const char *text);
};
