#include "programs/oql/CZelStatementStore.h"

#include <algorithm>
#include <cctype>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelStack.h"
#include "foundations/base/CZelTreeList.h"
#include "foundations/base/CZelVarBind.h"
#include "foundations/port/CZelErrorCapture.h"
#include "oql/CZelAtomParser.h"
#include "oql/CZelInsert.h"
#include "oql/CZelSchema.h"
#include "programs/oql/CZelResult.h"
#include "programs/oql/ZelEach.h"
#include "store/CZelDatabase.h"
#include "store/CZelRecordCache.h"
#include "store/CZelStore.h"
#include "store/CZelTable.h"

namespace {

std::unique_ptr<CZelAtom> valueOf(const std::string &literal) {
    return std::unique_ptr<CZelAtom>(CZelAtomParser().RAPParse(literal.c_str(), nullptr));
}

// A name that $ can stand in front of.
bool isConstantName(const std::string &name) {
    const auto isWord = [](unsigned char c) { return c < 0x80 && (std::isalnum(c) != 0 || c == '_'); };
    return name.size() >= 2 && std::isalpha(static_cast<unsigned char>(name[0])) != 0 &&
           std::all_of(name.begin(), name.end(), isWord);
}

}  // namespace

CZelStatementStore::CZelStatementStore(const SZelShellCache &cache)
    : CZelStatementStore(cache, std::make_unique<std::string>(cache.m_name)) {}

CZelStatementStore::CZelStatementStore(const SZelShellCache &cache, std::unique_ptr<std::string> name)
    : CZelStoreMgr(static_cast<CZelEngine *>(nullptr), ZelBool(cache.m_isBySize), cache.m_bytes,
                   ZelBool(cache.m_isByShare), cache.m_share, nullptr, name->empty() ? nullptr : name->c_str(),
                   ZelBool(cache.m_isPersistent)),
      m_cacheName(std::move(name)),
      m_isCached(!cache.m_name.empty()) {}

int CZelStatementStore::RSMConsumeSchema(CZelSchema &schema) {
    if (!m_isCached)
        return CZelStoreMgr::RSMConsumeSchema(schema);
    RSMDefineStore(schema);
    cacheTables();
    RSMInitialiseStore();
    insertIntoNew(schema);
    return 1;
}

void CZelStatementStore::cacheTables() {
    const std::unique_ptr<CZelAtomVector> names(RSMGetStore()->RSDatabaseNames());
    for (unsigned int i = 0; i < names->RAVSize(); ++i) {
        const CZelDatabase &database = *RSMGetStore()->RSDatabase(names->RAVGetValue(i));
        ZelEach<CZelTable>(database.RDTableIterator(), [this](CZelTable &table) {
            if (table.RTIsCacheUsed() == E_RBTrue)
                return;
            RSMGetStore()->RSCacheTable(&table, E_RBFalse);
            tellRecovered(table);
        });
    }
}

// A table that was found has had its rows already, and may have lost some of them since.
void CZelStatementStore::insertIntoNew(CZelSchema &schema) {
    CZelStack *inserts = schema.RSGetItems(E_DOInsert);
    while (void *item = inserts != nullptr ? inserts->RSPop() : nullptr) {
        const std::unique_ptr<CZelInsert> insert(static_cast<CZelInsert *>(static_cast<CZelDbObject *>(item)));
        const CZelTable *table = RSMGetStore()->RSTableNamed(insert->RITarget());
        if (table != nullptr && table->RTGetInitialisedFromDisk() == E_RBTrue)
            continue;
        EZelStoreErrorStatus status = E_RSEOk;
        RSMDoInsert(insert.get(), &status);
    }
}

int CZelStatementStore::RSMDoTable(CZelTable *table, EZelStoreErrorStatus *status) {
    const int result = CZelStoreMgr::RSMDoTable(table, status);
    tellRecovered(*table);
    return result;
}

void CZelStatementStore::tellRecovered(const CZelTable &table) const {
    if (!m_tell || table.RTGetInitialisedFromDisk() != E_RBTrue)
        return;
    const SZelCacheUse use = table.RTCacheUse();
    m_tell("recovered " + std::string(table.RTDatabase()->RATextView()) + "." +
           std::string(table.RTName()->RATextView()) + ": " + std::to_string(use.m_rows) +
           (use.m_rows == 1 ? " row" : " rows") +
           (use.m_pages.m_outOfUse > 0 ? ", " + std::to_string(use.m_pages.m_outOfUse) + " pages out of use" : ""));
}

void CZelStatementStore::Run(const char *text, CZelResult &result) {
    CZelErrorCapture reports;
    CZelBag *rows = nullptr;
    RSMProcessOQL(m_compiler, text, &rows, &result.m_status, m_record.get(), E_RBTrue);
    result.TakeRows(rows);
    result.m_reports = reports.Reports();
}

bool CZelStatementStore::SetRecord(const std::string &literal) {
    const std::unique_ptr<CZelAtom> value = valueOf(literal);
    const CZelVBList *fields = value != nullptr ? std::as_const(*value).RAObject() : nullptr;
    if (fields != nullptr)
        m_record = std::make_unique<CZelRecord>(fields);
    return fields != nullptr;
}

bool CZelStatementStore::SetConstant(const std::string &name, const std::string &literal, std::string *problem) {
    const std::unique_ptr<CZelAtom> value = valueOf(literal);
    if (!isConstantName(name))
        *problem = "a constant's name has two letters, digits or _ at least, a letter first";
    else if (value == nullptr)
        *problem = "a constant's value is a literal, as 1, 'text' or [1,2]";
    else if (isSystemConstant(name))
        *problem = "$" + name + " is a constant of the system";
    if (!problem->empty())
        return false;
    CZelVarBind *&constant = m_constants[name];
    if (constant != nullptr) {
        constant->RVBSetValue(value.get());
    } else {
        constant = new CZelVarBind(name.c_str(), value.get());
        m_compiler.RCCAddToConstStore(constant);
    }
    return true;
}

// Those win over all others of the name.
bool CZelStatementStore::isSystemConstant(const std::string &name) {
    const CZelAtom *value = nullptr;
    return m_compiler.RCCGetNumFromConst(name.c_str(), &value) == 1 && m_constants.count(name) == 0;
}

int CZelStatementStore::RSMDoExit(CZelExit *statement, EZelStoreErrorStatus *status, CZelQryInfo *request) {
    m_shutdown = true;
    return CZelStoreMgr::RSMDoExit(statement, status, request);
}
