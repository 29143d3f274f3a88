#include "store/CZelCacheWalk.h"

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/port/CZelError.h"
#include "store/CZelRecordCache.h"

namespace {

const CZelPointer *firstOf(const CZelDoubleList *handles) {
    return handles != nullptr ? static_cast<const CZelPointer *>(handles->RDLHead()) : nullptr;
}

}  // namespace

CZelCacheWalk::CZelCacheWalk(CZelRecordCache &cache, const CZelBag *handles) : m_cache(cache) {
    find(handles != nullptr ? handles->RBFirst() : firstOf(cache.RRCHandleIterator()));
}

CZelCacheWalk::~CZelCacheWalk() {
    letGo();
}

void CZelCacheWalk::advance() {
    letGo();
    find(m_next);
}

// Goes to the first row from `node` on that can be read.
void CZelCacheWalk::find(const CZelPointer *node) {
    for (; node != nullptr && m_record == nullptr; node = m_next) {
        m_next = CZelBag::RBNext(node);
        m_handle = node->RPData();
        m_isOwned = false;
        m_record = m_cache.RRCRetrieveRecord(handle(), m_isOwned);
        if (m_record == nullptr)
            ZEL_REPORT(E_RCBadArgument, "CZelCacheWalk: a row that its cache can't give is passed over");
    }
}

void CZelCacheWalk::letGo() {
    if (m_isOwned)
        delete m_record;
    m_record = nullptr;
}
