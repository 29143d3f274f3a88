// How a table gets a record cache, and what becomes of the cache's file.

#include <cstdio>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelDoubleList.h"
#include "foundations/base/CZelPointer.h"
#include "foundations/base/CZelReadOnlyFile.h"
#include "foundations/base/CZelString.h"
#include "foundations/base/CZelTreeList.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/CZelError.h"
#include "foundations/port/CZelRWLock.h"
#include "foundations/port/ZelDebug.h"
#include "store/CZelCacheFiles.h"
#include "store/CZelColDef.h"
#include "store/CZelRecordCache.h"
#include "store/CZelRowKeys.h"
#include "store/CZelStoreGuard.h"
#include "store/CZelTable.h"

namespace {

const char *orNull(const char *text) {
    return text != nullptr ? text : "NULL";
}

void reportMissing(const char *cacheName, const char *database, const char *table) {
    CZelString text("Attempt to clear cache APP name:");
    text.RSStrCat(orNull(cacheName));
    text.RSStrCat(", db name:");
    text.RSStrCat(orNull(database));
    text.RSStrCat(", table name:");
    text.RSStrCat(orNull(table));
    ZEL_REPORT(E_RCNull, text.RSString());
}

void reportNoFolder(const char *file) {
    CZelString text("Failed to clear cache for QMTHome NULL and cache file ");
    text.RSStrCat(file);
    ZEL_REPORT(E_RCBadValue, text.RSString());
}

// A cache without a name of its file can't be created, and says so.
const char *orNone(const char *file) {
    return file[0] != '\0' ? file : nullptr;
}

}  // namespace

void CZelTable::RTDropTable() {
    if (m_cache == nullptr)
        return;
    const CZelStoreGuard guard(*m_lock, CZelStoreGuard::WRITER);
    m_cache->RRCDeleteCacheFile();
}

char *CZelTable::RTCreateCache(CZelAtom *name) {
    const std::unique_ptr<CZelAtom> owned(name);
    if (m_cache != nullptr || m_lock == nullptr) {
        if (__Zeltronix_Debug_Level >= 4)
            std::puts("Cache already exists");
        return nullptr;
    }
    m_cache = new CZelRecordCache();
    CZelString file("");
    if (!CZelAtom::RAIsNull(name) && m_databaseName != nullptr && m_name != nullptr)
        RTBuildCacheName(file, *name, *m_databaseName, *m_name);
    return ZelStrDup(file.RSString());
}

void CZelTable::RTSetCache(CZelRecordCache *cache) {
    m_cache = cache;
    delete m_rowKeys;
    m_rowKeys = nullptr;
}

void CZelTable::RTCacheMe(CZelAtom *name, unsigned long long bytes, __boolean persistent) {
    const CZelMallocText file(RTCreateCache(name));
    if (file != nullptr)
        cacheIsMade(m_cache->RRCCreateBySize(orNone(file.get()), bytes, persistent, keysToFind()),
                    "Failed to create sized cache");
    else if (__Zeltronix_Debug_Level >= 4)
        std::puts("Will not initialise cache");
}

void CZelTable::RTCacheMe(CZelAtom *name, float proportion, __boolean persistent) {
    const CZelMallocText file(RTCreateCache(name));
    if (file != nullptr)
        cacheIsMade(m_cache->RRCCreateByPropn(orNone(file.get()), proportion, persistent, keysToFind()),
                    "Failed to create proportional cache");
    else if (__Zeltronix_Debug_Level >= 4)
        std::puts("Will not initialise cache");
}

// Of the columns that will have an index when the table comes to life.
CZelRowKeys *CZelTable::keysToFind() {
    delete m_rowKeys;
    m_rowKeys = new CZelRowKeys;
    const CZelDoubleList *columns = m_indexedColumns->RTLIterator();
    for (const CZelListable *node = columns->RDLHead(); node != nullptr; node = columns->RDLGetNext(node)) {
        const auto *column = static_cast<const CZelColDef *>(static_cast<const CZelPointer *>(node)->RPData());
        if (column->RCDIndexable() && !isSetBySystem(*column->RCDName()))
            m_rowKeys->addColumn(*column->RCDName());
    }
    return m_rowKeys;
}

void CZelTable::cacheIsMade(int status, const char *failure) {
    if (status != 1)
        ZEL_REPORT(status, failure);
    if (m_cache->RRCInitialisedFromDisk() == E_RBTrue)
        RTSetInitialisedFromDisk();
}

SZelCacheUse CZelTable::RTCacheUse() const {
    if (m_cache == nullptr)
        return {};
    const CZelStoreGuard guard(*m_lock, CZelStoreGuard::WRITER);
    return m_cache->RRCUse();
}

void CZelTable::RTBuildCacheName(CZelString &out, const CZelAtom &cacheName, const CZelAtom &database,
                                 const CZelAtom &table) {
    out.RSStrCat(
        std::string_view(CZelCacheFiles::nameOf(cacheName.RATextView(), database.RATextView(), table.RATextView())));
}

void CZelTable::RTClearCache(const char *cacheName, const char *database, const char *table) {
    if (cacheName == nullptr || database == nullptr || table == nullptr) {
        reportMissing(cacheName, database, table);
        return;
    }
    const std::string name = CZelCacheFiles::nameOf(cacheName, database, table);
    const std::string folder = CZelCacheFiles::folder();
    if (folder.empty()) {
        reportNoFolder(name.c_str());
        return;
    }
    const std::string path = folder + name;
    if (CZelReadOnlyFile(path.c_str()).ROFCheckAccess() != E_FROk)
        return;
    if (__Zeltronix_Debug_Level >= 4)
        std::printf("CZelTable::RTClearCache removing %s\n", path.c_str());
    CZelCacheFiles::remove(path);
}
