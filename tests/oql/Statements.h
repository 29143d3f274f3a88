// Statements parsed and printed.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "foundations/base/CZelStack.h"
#include "foundations/base/ZelMalloc.h"
#include "oql/CZelDbObject.h"
#include "oql/CZelOQLParser.h"
#include "tests/support/SmallStack.h"

// The printed forms in the order of the text, each in one line with single blanks; "?" for one without a form,
// "error" when the text does not parse.
inline std::string oneLine(const char *text) {
    if (text == nullptr)
        return "?";
    std::string line;
    for (; *text != '\0'; ++text) {
        const bool blank = *text == ' ' || *text == '\n' || *text == '\t';
        if (!blank)
            line += *text;
        else if (!line.empty() && line.back() != ' ')
            line += ' ';
    }
    return !line.empty() && line.back() == ' ' ? line.substr(0, line.size() - 1) : line;
}

inline std::vector<std::string> printedStatements(const std::string &text) {
    CZelOQLParser parser;
    if (parser.ROPParse(text.c_str(), E_RBTrue) != 1)
        return {"error"};
    std::vector<std::string> printed;
    for (int i = 0; i < parser.ROPResults()->RSLength(); ++i) {
        const CZelMallocText form(static_cast<CZelDbObject *>(parser.ROPResults()->RSPeek(i))->RDOAsString());
        printed.push_back(form != nullptr ? form.get() : "?");
    }
    return printed;
}

inline std::string printed(const std::string &text) {
    std::string all;
    for (const std::string &one : printedStatements(text))
        all += (all.empty() ? "" : " ") + oneLine(one.c_str());
    return all;
}
