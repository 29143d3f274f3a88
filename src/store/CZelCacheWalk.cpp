#include "store/CZelCacheWalk.h"

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelROMPColumns.h"
#include "foundations/port/CZelError.h"

namespace {

const CZelPointer *firstOf(const CZelDoubleList *handles) {
    return handles != nullptr ? static_cast<const CZelPointer *>(handles->RDLHead()) : nullptr;
}

}  // namespace

CZelCacheWalk::CZelCacheWalk(CZelRecordCache &cache, const CZelBag *handles, CZelROMPColumns *columns)
    : m_cache(cache), m_columns(columns) {
    find(handles != nullptr ? handles->RBFirst() : firstOf(cache.RRCHandleIterator()));
}

void CZelCacheWalk::advance() {
    find(m_next);
}

// Goes to the first row from `node` on that can be read.
void CZelCacheWalk::find(const CZelPointer *node) {
    m_handle = nullptr;
    for (; node != nullptr && m_handle == nullptr; node = m_next) {
        m_next = CZelBag::RBNext(node);
        auto *handle = static_cast<CZelAtom *>(node->RPData());
        if (lookAt(handle))
            m_handle = handle;
        else
            ZEL_REPORT(E_RCBadArgument, "CZelCacheWalk: a row that its cache can't give is passed over");
    }
}

bool CZelCacheWalk::lookAt(CZelAtom *handle) {
    if (!m_cache.RRCLookAt(handle, m_row))
        return false;
    if (m_row.m_record != nullptr || (m_columns != nullptr && m_columns->pick(m_row.m_encoding, m_row.m_length)))
        return true;
    m_decoded.reset(CZelRecordCache::RRCCopyOf(m_row));
    m_row = {m_decoded.get(), nullptr, 0};
    return m_decoded != nullptr;
}
