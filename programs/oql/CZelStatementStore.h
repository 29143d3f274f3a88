// The store behind the shell. It keeps what clauses refer to, and that `shutdown` was asked for.
#pragma once

#include <map>
#include <memory>
#include <string>

#include "clause/CZelCmdCmplr.h"
#include "foundations/base/CZelRecord.h"
#include "storemgr/CZelStoreMgr.h"

class CZelResult;

class CZelStatementStore : public CZelStoreMgr {
public:
    CZelStatementStore() : CZelStoreMgr(static_cast<CZelEngine *>(nullptr), nullptr) {}

    // Runs a text. Its reports go into the result and nowhere else.
    void Run(const char *text, CZelResult &result);

    // The record whose fields clauses read, by an object literal, {Speed=100,Name='eth0'}, and no such record. False
    // for another text, and then nothing has changed.
    bool SetRecord(const std::string &literal);
    void ClearRecord() { m_record.reset(); }

    // A constant, by a literal; it takes the place of one of that name. False, and *problem says why.
    bool SetConstant(const std::string &name, const std::string &literal, std::string *problem);

    bool ShutdownAsked() const { return m_shutdown; }

    int RSMDoExit(CZelExit *statement, EZelStoreErrorStatus *status, CZelQryInfo *request) override;

private:
    bool isSystemConstant(const std::string &name);

    CZelCmdCmplr m_compiler;                           // its constants are kept
    std::map<std::string, CZelVarBind *> m_constants;  // the compiler's
    std::unique_ptr<CZelRecord> m_record;
    bool m_shutdown = false;
};
