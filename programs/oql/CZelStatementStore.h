// The store behind the shell. It keeps what clauses refer to, and that `shutdown` was asked for.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>

#include "clause/CZelCmdCmplr.h"
#include "foundations/base/CZelRecord.h"
#include "programs/oql/CZelShellOptions.h"
#include "storemgr/CZelStoreMgr.h"

class CZelResult;

class CZelStatementStore : public CZelStoreMgr {
public:
    explicit CZelStatementStore(const SZelShellCache &cache = SZelShellCache());  // keeps the name of the cache

    // Called with each table that was found in its file; talk for people.
    void OnRecovered(std::function<void(const std::string &)> tell) { m_tell = std::move(tell); }

    // Tables of schema files get caches too. Rows that a schema has for a table that was found in its file are not
    // inserted again.
    int RSMConsumeSchema(CZelSchema &schema) override;
    int RSMDoTable(CZelTable *table, EZelStoreErrorStatus *status) override;

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
    void cacheTables();
    void insertIntoNew(CZelSchema &schema);
    void tellRecovered(const CZelTable &table) const;

    explicit CZelStatementStore(const SZelShellCache &cache, std::unique_ptr<std::string> name);

    std::unique_ptr<std::string> m_cacheName;  // the store refers to it
    bool m_isCached;
    std::function<void(const std::string &)> m_tell;

    CZelCmdCmplr m_compiler;                           // its constants are kept
    std::map<std::string, CZelVarBind *> m_constants;  // the compiler's
    std::unique_ptr<CZelRecord> m_record;
    bool m_shutdown = false;
};
