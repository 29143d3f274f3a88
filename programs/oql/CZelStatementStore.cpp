#include "programs/oql/CZelStatementStore.h"

#include "programs/oql/CZelResult.h"

void CZelStatementStore::Run(const char *text, CZelResult &result) {
    CZelErrorCapture reports;
    CZelBag *rows = nullptr;
    RSMProcessOQLGetRecs(text, &rows, &result.m_status, nullptr);
    result.TakeRows(rows);
    result.m_reports = reports.Reports();
}

int CZelStatementStore::RSMDoExit(CZelExit *statement, EZelStoreErrorStatus *status, CZelQryInfo *request) {
    m_shutdown = true;
    return CZelStoreMgr::RSMDoExit(statement, status, request);
}
