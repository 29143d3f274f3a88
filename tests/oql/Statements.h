// Statements parsed and printed.
#pragma once

#include <gtest/gtest.h>
#include <pthread.h>

#include <functional>
#include <string>
#include <vector>

#include "foundations/base/CZelStack.h"
#include "foundations/base/ZelMalloc.h"
#include "oql/CZelDbObject.h"
#include "oql/CZelOQLParser.h"

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

// Runs `work` in a thread with a stack of 1 MiB.
inline void onSmallStack(std::function<void()> work) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    ASSERT_EQ(0, pthread_attr_setstacksize(&attributes, 1U << 20));
    pthread_t thread = {};
    const auto run = [](void *arg) -> void * {
        (*static_cast<std::function<void()> *>(arg))();
        return nullptr;
    };
    ASSERT_EQ(0, pthread_create(&thread, &attributes, run, &work));
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}
