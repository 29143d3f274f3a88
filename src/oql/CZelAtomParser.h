// Reads the literal syntax of a value, such as {a=1,b=[1,2]}.
#pragma once

#include "foundations/port/ZelExport.h"

class CZelAtom;
class CZelColDef;

class QUINTOR_API CZelAtomParser {
public:
    CZelAtomParser() = default;
    virtual ~CZelAtomParser();

    // A new atom, the caller's; null after a syntax error, with *status E_RCSyntax. `status` may be null.
    CZelAtom *RAPParse(const char *text, int *status);

    // Coerces the elements of a list to the element type of a list column's definition, in place; elements
    // that can't be are reported and stay. 1, or E_RCBadType when `list` is null or no list.
    int RAPCoerceList(CZelColDef *definition, CZelAtom *list);
};
