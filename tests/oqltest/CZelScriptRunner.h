// Runs a script in stores of its own and tells where an answer is not what the script says. Files of caches lie in a
// directory that goes with the runner.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "programs/oql/CZelStatementStore.h"
#include "tests/oqltest/CZelScript.h"
#include "tests/support/CacheHome.h"

class CZelScriptRunner {
public:
    // Prints each difference; gives the number of steps that differ, in all the script's kinds of stores. With
    // `accept` it runs in the first of them alone, and takes over what was answered.
    int Run(const std::string &path, CZelScript &script, bool accept);

    // The lines that a statement answers with, as a script spells them.
    static std::vector<std::string> AnswerTo(CZelStatementStore &store, const std::string &text);

    // Is the answer what the step expects? `=?` in an expected row stands for any value.
    static bool Matches(const SZelStep &step, const std::vector<std::string> &answer);

private:
    int runIn(const SZelScriptStore &kind, const std::string &path, CZelScript &script, bool accept);
    void openStore(const SZelShellCache &cache);
    std::vector<std::string> answerInContext(const SZelStep &step);
    void printDifference(const std::string &path, const SZelStep &step, const std::vector<std::string> &answer);

    CacheHome m_home;
    std::unique_ptr<CZelStatementStore> m_store;
};
