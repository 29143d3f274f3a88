// What the grammar of conditions builds beside the shared parts: its one result.
#pragma once

#include <memory>

#include "oql/CZelGrammarActionsImpl.h"
#include "store/CZelFilter.h"

class CZelFilterActions : public CZelGrammarActions {
public:
    using CZelGrammarActions::CZelGrammarActions;

    // A syntax error may come behind a condition that was whole, so the result is kept here until it is asked for.
    void SetResult(CZelFilter *filter) { m_result.reset(filter); }
    CZelFilter *TakeResult() { return m_result.release(); }

private:
    std::unique_ptr<CZelFilter> m_result;
};
