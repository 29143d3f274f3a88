#include "store/CZelRecordCache.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <memory>

#include "foundations/base/CZelEnv.h"
#include "foundations/base/CZelROMPer.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/base/CZelString.h"
#include "foundations/base/CZelVarBind.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/CZelError.h"
#include "store/CZelCachedRecord.h"

namespace {

constexpr const char *FOLDER = "/var/solvantis/";

char *defaultLocation() {
    const char *home = CZelEnv().REHome();
    if (home == nullptr)
        return nullptr;
    CZelString folder(home);
    folder.RSStrCat(FOLDER);
    return folder.RSTakeString();
}

}  // namespace

CZelRecordCache::CZelRecordCache(long rowsAtMost) : m_location(defaultLocation()), m_handles(rowsAtMost) {}

// The file goes while it is still locked, so that no other process finds it in between. One that was never opened
// may be another's.
CZelRecordCache::~CZelRecordCache() {
    if (m_deleteFile == E_RBTrue && m_file.isOpen())
        RRCDeleteCacheFile(path().c_str());
    static_cast<void>(m_file.close());  // reports
    std::free(m_name);
    std::free(m_location);
}

int CZelRecordCache::RRCCreateByPropn(const char *name, float proportion, __boolean persistent, CZelRowKeys *keys) {
    if (m_type != E_RCTNotCreated)
        return ZEL_FAIL(E_RCBadArgument, "CZelRecordCache::RRCCreateByPropn: the cache has been created before");
    setProportion(proportion);
    return create(name, persistent, keys);
}

int CZelRecordCache::RRCCreateBySize(const char *name, unsigned long long bytes, __boolean persistent,
                                     CZelRowKeys *keys) {
    if (m_type != E_RCTNotCreated)
        return ZEL_FAIL(E_RCBadArgument, "CZelRecordCache::RRCCreateBySize: the cache has been created before");
    m_byteLimit = bytes;
    m_type = bytes != 0 ? E_RCTBySize : E_RCTAllOnDisk;
    return create(name, persistent, keys);
}

void CZelRecordCache::setProportion(float proportion) {
    const bool isShare = proportion >= 0 && proportion <= 1;  // not of NaN
    if (!isShare)
        ZEL_REPORT(E_RCBadValue, "Invalid cache size - no cache will be used");
    m_proportion = isShare ? proportion : 0;
    if (m_proportion > 0)
        m_type = m_proportion < 1 ? E_RCTByProportion : E_RCTAllInCore;
    else
        m_type = E_RCTAllOnDisk;
}

int CZelRecordCache::create(const char *name, __boolean persistent, CZelRowKeys *keys) {
    setName(name);
    m_persistent = persistent;
    if (m_type == E_RCTAllInCore && m_persistent != E_RBTrue)
        return E_RCOk;
    const int status = openFile();
    return status == E_RCOk && m_persistent == E_RBTrue ? readFile(keys) : status;
}

void CZelRecordCache::setName(const char *name) {
    if (name == nullptr)
        ZEL_REPORT(E_RCBadArgument, "CZelRecordCache::RRCSetName: a cache needs a name");
    std::free(m_name);
    m_name = ZelStrDup(name);
}

void CZelRecordCache::RRCSetFileLocation(const char *folder) {
    char *location = ZelStrDup(folder);
    std::free(m_location);
    m_location = location;
}

std::string CZelRecordCache::path() const {
    return std::string(m_location) + m_name;
}

int CZelRecordCache::openFile() {
    if (m_name == nullptr || m_location == nullptr)
        return ZEL_FAIL(E_RCBadArgument, "CZelRecordCache::RRCOpenCacheFile: no name or no location");
    return m_file.open(path().c_str(), m_persistent == E_RBTrue);
}

SZelCacheUse CZelRecordCache::RRCUse() const {
    return {m_type, m_persistent, RRCLength(), m_totalBytes, m_inCoreBytes, m_file.counts()};
}

CZelDoubleList *CZelRecordCache::RRCHandleIterator() {
    return m_type != E_RCTNotCreated ? m_handles.inOrder() : nullptr;
}

void CZelRecordCache::RRCDeleteCacheFile(const char *path) {
    if (path == nullptr) {
        ZEL_REPORT(E_RCNull, "Attempt to delete NULL cache file name ");
        return;
    }
    if (::unlink(path) == 0 || errno == ENOENT)
        return;
    CZelString text("Could not unlink cache file ");
    text.RSStrCat(path);
    text.RSStrCat(" : ");
    text.RSStrCat(std::strerror(errno));
    text.RSStrCat('\n');
    ZEL_REPORT(E_RCBadValue, text.RSString());
}
