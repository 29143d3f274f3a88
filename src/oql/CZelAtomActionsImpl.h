// What the grammar of literals builds beside the shared parts: its one result.
#pragma once

#include <memory>

#include "oql/CZelGrammarActionsImpl.h"

class CZelAtomActions : public CZelGrammarActions {
public:
    using CZelGrammarActions::CZelGrammarActions;

    // A syntax error may come behind a literal that was whole, so the result is kept here until it is asked for.
    void SetResult(CZelAtom *atom) { m_result.reset(atom); }
    CZelAtom *TakeResult() { return m_result.release(); }

private:
    std::unique_ptr<CZelAtom> m_result;
};
