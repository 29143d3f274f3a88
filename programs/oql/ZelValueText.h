// Values as text, for people and for programs.
#pragma once

#include <string>
#include <string_view>

class CZelAtom;
class CZelRecord;

// The value for a reader: a text as it is, all else as an OQL literal; null is NULL.
std::string ZelPlainText(const CZelAtom *value);

// A literal that OQL reads back to the same value. What no literal can spell is reported.
std::string ZelLiteral(const CZelAtom *value);

// The row as an object literal: {name=value, name=value}.
std::string ZelRowLiteral(const CZelRecord &row);

// Appends the value as JSON. Lists and objects become arrays and objects, data {"data":"hex"}, null and numbers
// that JSON has no form for (NaN, infinities) null. Floats read back as the same float.
void ZelAppendJson(std::string &out, const CZelAtom *value);

// Appends a JSON string. A byte that is not part of valid UTF-8 becomes \u00XX, with the byte's value.
void ZelAppendJsonString(std::string &out, std::string_view text);

// Keeps a text to one line: line feed, tab and other control characters become \n, \t, \xNN, and so do bytes
// that are no UTF-8.
std::string ZelOneLine(std::string_view text);

// Columns that a valid UTF-8 text without control characters takes on a terminal.
int ZelDisplayWidth(std::string_view text);
