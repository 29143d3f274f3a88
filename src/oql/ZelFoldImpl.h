// Arithmetic on values: int and long compute as int, long64 as long64, float with anything as float; whole numbers
// wrap.
#pragma once

#include "foundations/base/CZelAtom.h"

enum class EZelFold { ADD, SUBTRACT, MULTIPLY, DIVIDE };

// False, and the result untouched, for a division by zero and for operands that are no numbers. Requires: the result is
// undefined, or the left operand.
bool ZelCompute(const CZelAtom &left, EZelFold operation, const CZelAtom &right, CZelAtom &result);
void ZelNegate(CZelAtom &value);  // leaves what is no number
