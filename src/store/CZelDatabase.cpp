#include "store/CZelDatabase.h"

#include <cstdio>
#include <memory>
#include <string>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelDirectory.h"
#include "foundations/base/CZelEnv.h"
#include "foundations/base/CZelString.h"
#include "foundations/base/CZelTreeList.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/CZelError.h"
#include "foundations/port/ZelDebug.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelExpr.h"
#include "store/CZelCacheFiles.h"
#include "store/CZelDbCallback.h"
#include "store/CZelTable.h"

namespace {

// The text that an expression names, or null while it has none.
const char *textOf(CZelExpr &name) {
    switch (name.REType()) {
        case E_RETAtom:
        case E_RETClause:
            return name.REAtomVal() != nullptr ? name.REAtomVal()->RAString() : nullptr;
        case E_RETEntity:
            return name.REEntityVal()->RDEColName();
        case E_RETFunction:
            return nullptr;
    }
    ZEL_REPORT(E_RCBadExprType, "CZelDatabase::RDInitialise");
    return nullptr;
}

void deleteCompilables(CZelBag *compilables) {
    const CZelBagGuard<CZelExpr> owner(compilables);
}

CZelTable *tableOf(const CZelPointer *node) {
    return static_cast<CZelTable *>(node->RPData());
}

void reportNoFolder(const char *folder, const char *cacheName, const char *database) {
    CZelString text("Unable to access directory ");
    text.RSStrCat(folder);
    text.RSStrCat(" in order to clear cache files for files matching ");
    text.RSStrCat(cacheName);
    text.RSStrCat(".Cache.");
    text.RSStrCat(database);
    text.RSStrCat(".*.");
    text.RSStrCat(CZelEnv::REDomain(nullptr));
    ZEL_REPORT(E_RCBadValue, text.RSString());
}

}  // namespace

CZelDatabase::CZelDatabase(char *name)
    : CZelDbObject(E_DODatabase),
      m_name(name != nullptr ? new CZelAtom(name) : nullptr),
      m_tables(new CZelTreeList(E_RBFalse)) {}

CZelDatabase::CZelDatabase(CZelExpr *name) : CZelDbObject(E_DODatabase), m_tables(new CZelTreeList(E_RBFalse)) {
    if (name == nullptr) {
        ZEL_REPORT(E_RCBadArgument, "CZelDatabase::CZelDatabase: no name expression");
        return;
    }
    m_compilables = new CZelBag();
    m_compilables->RBAdd(static_cast<void *>(name));
}

CZelDatabase::CZelDatabase(CZelDatabase *source, const CZelAtom *newName)
    : CZelDbObject(E_DODatabase), m_name(new CZelAtom(*newName)), m_tables(new CZelTreeList(E_RBFalse)) {
    CZelDoubleList *tables = source->RDTableIterator();
    for (CZelListable *node = tables->RDLHead(); node != nullptr; node = tables->RDLGetNext(node)) {
        auto *copy = new CZelTable(tableOf(static_cast<CZelPointer *>(node)), m_name, nullptr);
        const int status = RDAddTable(copy);
        if (status != 1) {
            ZEL_REPORT(status, "CZelDatabase: a table could not be copied");
            delete copy;
        }
    }
}

CZelDatabase::~CZelDatabase() {
    if (m_callback != nullptr)
        m_callback->RDCPreDestroy(this);
    CZelDoubleList *tables = m_tables->RTLIterator();
    for (CZelListable *node = tables->RDLHead(); node != nullptr; node = tables->RDLGetNext(node))
        delete tableOf(static_cast<CZelPointer *>(node));
    delete m_tables;
    delete m_name;
    deleteCompilables(m_compilables);
}

int CZelDatabase::RDODestroy() {
    return 1;
}

int CZelDatabase::RDOInitialise(CZelStore *store) {
    if (m_callback != nullptr)
        m_callback->RDCPreInitialise(this);
    m_store = store;
    CZelDoubleList *tables = m_tables->RTLIterator();
    for (CZelListable *node = tables->RDLHead(); node != nullptr; node = tables->RDLGetNext(node)) {
        const int status = tableOf(static_cast<CZelPointer *>(node))->RDOInitialise(store);
        if (status != 1)
            ZEL_REPORT(status, "CZelStore::CRSInitialise");
    }
    return 1;
}

CZelBag *CZelDatabase::RDOCompilables() {
    return m_compilables;
}

char *CZelDatabase::RDOAsString() {
    if (m_name == nullptr && m_compilables == nullptr) {
        ZEL_REPORT(E_RCNull, "CZelDatabase::RDOAsString: no name");
        return nullptr;
    }
    CZelString text("create database ");
    if (m_name != nullptr)
        text.RSStrCat(m_name);
    else  // not settled yet: the clause that will give it
        text.RSStrCat(CZelMallocText(static_cast<CZelExpr *>(m_compilables->RBFirst()->RPData())->REPrint()).get());
    text.RSStrCat(";\n");
    return text.RSTakeString();
}

__boolean CZelDatabase::RDInitialise() {
    if (m_compilables == nullptr) {
        if (m_name == nullptr)
            ZEL_REPORT(E_RCBadArgument, "CZelDatabase::RDInitialise: no name");
        return ZelBool(m_name != nullptr);
    }
    if (m_name != nullptr)
        ZEL_REPORT(E_RCBadValue, "Name already defined in RDInitialise");
    else if (m_compilables->RBLength() != 1)
        ZEL_REPORT(E_RCBadArgument, "CZelDatabase::RDInitialise: not exactly one name");
    else if (const char *text = textOf(*static_cast<CZelExpr *>(m_compilables->RBFirst()->RPData())))
        m_name = new CZelAtom(text);
    if (m_name == nullptr && __Zeltronix_Debug_Level != 0)
        std::fputs("Error: Database name evaluated to NULL\n", stderr);
    deleteCompilables(m_compilables);
    m_compilables = nullptr;
    return ZelBool(m_name != nullptr);
}

CZelDoubleList *CZelDatabase::RDTableIterator() const {
    return m_tables->RTLIterator();
}

CZelAtomVector *CZelDatabase::RDTableNames() const {
    return m_tables->RTLGetKeys();
}

int CZelDatabase::RDAddTable(CZelTable *table) {
    if (m_callback != nullptr && m_callback->RDCPreAddTable(this, table) != E_RBTrue)
        return 1;
    const int status = m_tables->RTLAdd(table->RTName(), table, true);
    if (status == 1)
        return 1;
    const int code = status == E_RCDuplicate ? E_RCDuplicateTable : status;
    CZelString text("CZelDatabase::RDAddTable: ");
    text.RSStrCat(table->RTIdentifier());
    return ZEL_FAIL(code, text.RSString());
}

int CZelDatabase::RDDropTable(const char *name) {
    CZelTable *table = name != nullptr ? RDTableNamed(name) : nullptr;
    if (table == nullptr)
        return E_RCNotInTree;
    if (m_callback != nullptr && m_callback->RDCPreDropTable(this, table) != E_RBTrue)
        return 1;
    const int status = m_tables->RTLDelete(table->RTName());
    if (m_callback != nullptr)
        m_callback->RDCPostDropTable(this, table);
    if (status == 1) {
        table->RTDropTable();
        delete table;
    }
    return status;
}

void CZelDatabase::RDTableInitialised(CZelTable *table) {
    if (m_callback != nullptr)
        m_callback->RDCPostAddTable(this, table);
}

CZelTable *CZelDatabase::RDTableNamed(const char *name) const {
    return name != nullptr ? static_cast<CZelTable *>(m_tables->RTLData(name)) : nullptr;
}

CZelTable *CZelDatabase::RDTableNamed(const CZelAtom &name) const {
    return static_cast<CZelTable *>(m_tables->RTLData(&name));
}

CZelDoubleList *CZelDatabase::RDTables() const {
    auto *entities = new CZelDoubleList();
    CZelDoubleList *tables = m_tables->RTLIterator();
    for (CZelListable *node = tables->RDLHead(); node != nullptr; node = tables->RDLGetNext(node)) {
        const CZelAtom *name = tableOf(static_cast<CZelPointer *>(node))->RTName();
        const char *noColumn = nullptr;
        entities->RDLAddToListEnd(new CZelPointer(new CZelDbEntity(m_name->RAString(), name->RAString(), noColumn)));
    }
    return entities;
}

void CZelDatabase::RDSetDbCallback(CZelDbCallback *callback) {
    if (m_callback != nullptr && m_callback->RDCCallbackOverridden(this, callback) != E_RBTrue) {
        if (__Zeltronix_Debug_Level > 0)
            std::printf("Warning: CZelDatabase::RDSetDbCallback unsuccessful at %s:%d\n", ZEL_SOURCE_NAME, __LINE__);
        return;
    }
    m_callback = callback;
}

void CZelDatabase::RDClearCache(const char *cacheName, const char *database) {
    if (cacheName == nullptr || database == nullptr)
        return;
    const std::string folder = CZelCacheFiles::folder();
    if (folder.empty())
        return;
    const CZelDirectory directory(folder.c_str());
    if (directory.RDCheckAccess() != E_DROk) {
        reportNoFolder(folder.c_str(), cacheName, database);
        return;
    }
    const std::unique_ptr<CZelAtomVector> names(directory.RDGetFileList(nullptr, nullptr, nullptr));
    for (unsigned int i = 0; i < names->RAVSize(); ++i) {
        const std::string_view name = names->RAVGetValue(i)->RATextView();
        if (CZelCacheFiles::isOfDatabase(name, cacheName, database))
            CZelCacheFiles::remove(folder + std::string(name));
    }
}
