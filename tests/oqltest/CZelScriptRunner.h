// Runs a script on a store of its own and tells where an answer is not what the script says.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "programs/oql/CZelStatementStore.h"
#include "tests/oqltest/CZelScript.h"

class CZelScriptRunner {
public:
    // Prints each difference; gives the number of steps that differ. With `accept` the script takes over what
    // was answered.
    int Run(const std::string &path, CZelScript &script, bool accept);

    // The lines that a statement answers with, as a script spells them.
    static std::vector<std::string> AnswerTo(CZelStatementStore &store, const std::string &text);

    // Is the answer what the step expects? `=?` in an expected row stands for any value.
    static bool Matches(const SZelStep &step, const std::vector<std::string> &answer);

private:
    std::vector<std::string> answerInContext(const SZelStep &step);
    void printDifference(const std::string &path, const SZelStep &step, const std::vector<std::string> &answer);

    std::unique_ptr<CZelStatementStore> m_store;
};
