// Arithmetic on the values of atoms.
#pragma once

#include "oql/CZelNumberImpl.h"

// False, and the result untouched, for a division by zero and for operands that are no numbers. Requires: the result is
// undefined, or the left operand.
bool ZelCompute(const CZelAtom &left, EZelFold operation, const CZelAtom &right, CZelAtom &result);
void ZelNegate(CZelAtom &value);  // leaves what is no number
