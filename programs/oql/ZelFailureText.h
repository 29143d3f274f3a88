// What people read on standard error when a statement failed.
#pragma once

#include <string>
#include <string_view>

class CZelResult;

// Where a statement begins in what was read.
struct SZelPlace {
    std::string m_source;  // a file's name; empty where people type
    int m_line = 1;
    int m_column = 1;
};

// A line for each report, and for a status that is a failure. A syntax error comes with the line it is in and a
// caret under the word that no rule accepts. Empty when there is nothing to say.
std::string ZelFailureText(const SZelPlace &place, const std::string &statement, const CZelResult &result);

// The line and the caret of a syntax error in `text`, and the place of the error; empty when the text parses.
std::string ZelSyntaxPointer(const std::string &text, SZelPlace &place);

// "oql: FILE:LINE:COLUMN: ", or "oql: " where people type.
std::string ZelPlacePrefix(const SZelPlace &place);
