// The seam of record caches: names of their files and the removal of files. A cache itself can't be made yet, so
// every table keeps its rows in memory.

#include <cstdio>
#include <cstring>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelEnv.h"
#include "foundations/base/CZelReadOnlyFile.h"
#include "foundations/base/CZelString.h"
#include "foundations/port/CZelError.h"
#include "foundations/port/ZelDebug.h"
#include "store/CZelTable.h"

namespace {

constexpr const char *CACHE_FOLDER = "/var/solvantis/";

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

void reportUnreachable(const char *home, const char *file) {
    CZelString text("Failed to clear cache for QMTHome ");
    text.RSStrCat(orNull(home));
    text.RSStrCat(" and cache file ");
    text.RSStrCat(orNull(file));
    ZEL_REPORT(E_RCBadValue, text.RSString());
}

// A name with a slash would lead out of the folder.
bool isFileName(const CZelString &name) {
    return name.RSStringLength() > 0 && std::strchr(name.RSString(), '/') == nullptr;
}

void removeFile(const char *path) {
    if (CZelReadOnlyFile(path).ROFCheckAccess() != E_FROk)
        return;
    if (__Zeltronix_Debug_Level >= 4)
        std::printf("CZelTable::RTClearCache removing %s\n", path);
    if (std::remove(path) != 0)
        ZEL_REPORT(E_RCOpenFailed, path);
}

}  // namespace

void CZelTable::RTDropTable() {
    if (m_cache != nullptr)
        ZEL_REPORT(E_RCUnsupported, "CZelTable::RTDropTable: this build has no record caches");
}

char *CZelTable::RTCreateCache(CZelAtom *name) {
    delete name;
    if (m_cache == nullptr)
        ZEL_REPORT(E_RCUnsupported, "Cache not created: this build has no record caches");
    else if (__Zeltronix_Debug_Level >= 4)
        std::puts("Cache already exists");
    return nullptr;
}

void CZelTable::RTCacheMe(CZelAtom *name, unsigned long long, __boolean) {
    if (RTCreateCache(name) == nullptr && __Zeltronix_Debug_Level >= 4)
        std::puts("Will not initialise cache");
}

void CZelTable::RTCacheMe(CZelAtom *name, float, __boolean) {
    if (RTCreateCache(name) == nullptr && __Zeltronix_Debug_Level >= 4)
        std::puts("Will not initialise cache");
}

void CZelTable::RTBuildCacheName(CZelString &out, const CZelAtom &cacheName, const CZelAtom &database,
                                 const CZelAtom &table) {
    out.RSStrCat(&cacheName);
    out.RSStrCat(".Cache.");
    out.RSStrCat(&database);
    out.RSStrCat('.');
    out.RSStrCat(&table);
    out.RSStrCat('.');
    out.RSStrCat(CZelEnv::REDomain(nullptr));
}

void CZelTable::RTClearCache(const char *cacheName, const char *database, const char *table) {
    if (cacheName == nullptr || database == nullptr || table == nullptr) {
        reportMissing(cacheName, database, table);
        return;
    }
    CZelString name;
    RTBuildCacheName(name, CZelAtom(cacheName), CZelAtom(database), CZelAtom(table));
    const char *home = CZelEnv().REHome();
    if (home == nullptr || !isFileName(name)) {
        reportUnreachable(home, name.RSString());
        return;
    }
    CZelString path(home);
    path.RSStrCat(CACHE_FOLDER);
    path.RSStrCat(name.RSString());
    removeFile(path.RSString());
}
