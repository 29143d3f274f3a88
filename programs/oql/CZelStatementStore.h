// The store behind the shell. It keeps in mind that `shutdown` was asked for.
#pragma once

#include "storemgr/CZelStoreMgr.h"

class CZelResult;

class CZelStatementStore : public CZelStoreMgr {
public:
    CZelStatementStore() : CZelStoreMgr(static_cast<CZelEngine *>(nullptr), nullptr) {}

    // Runs a text. Its reports go into the result and nowhere else.
    void Run(const char *text, CZelResult &result);

    bool ShutdownAsked() const { return m_shutdown; }

    int RSMDoExit(CZelExit *statement, EZelStoreErrorStatus *status, CZelQryInfo *request) override;

private:
    bool m_shutdown = false;
};
