// Arithmetic on values in place: int and long compute as int, long64 as long64, float with anything as float; whole
// numbers wrap; a division by zero and operands that are no numbers leave the value as it is.
#pragma once

class CZelAtom;

enum class EZelFold { ADD, SUBTRACT, MULTIPLY, DIVIDE };

void ZelFold(CZelAtom &left, EZelFold operation, const CZelAtom &right);
void ZelNegate(CZelAtom &value);
