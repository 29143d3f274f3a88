// The rows that are in memory after a start: which ones, and how they get there.
#include <memory>
#include <vector>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelRecord.h"
#include "store/CZelCachedRecord.h"
#include "store/CZelRecordCache.h"

namespace {

CZelAtom *handleIn(const CZelPointer *node) {
    return static_cast<CZelAtom *>(node->RPData());
}

}  // namespace

// Decodes rows from a number on, in the thread that reads their pages. What it can't give is left to the caller's.
class CZelRecordCache::Filler : public CZelPageFile::Viewer {
public:
    Filler(const CZelRecordCache &cache, int first)
        : m_atPage(cache.m_atPage), m_first(first), m_records(cache.RRCNumbers() - static_cast<std::size_t>(first)) {}

    void beginParts(std::size_t /*parts*/) override {}
    bool wants(std::size_t page) const override { return page < m_atPage.size() && m_atPage[page] >= m_first; }
    void view(std::size_t /*part*/, std::size_t page, const unsigned char *encoding, int length) override {
        auto record = std::make_unique<CZelRecord>();
        if (record->ROMTryDecode(encoding, length))
            recordOf(m_atPage[page]) = std::move(record);
    }

    std::unique_ptr<CZelRecord> &recordOf(int number) { return m_records[static_cast<std::size_t>(number - m_first)]; }

private:
    const std::vector<int> &m_atPage;
    int m_first;
    std::vector<std::unique_ptr<CZelRecord>> m_records;  // by number, from the first on
};

void CZelRecordCache::RRCFillMemory() {
    if (!isBounded() || m_inCore.length() > 0 || RRCLength() == 0)
        return;
    const CZelPointer *first = firstToStay();
    Filler filler(*this, handleIn(first)->RAInt());
    m_file.lookThrough(filler);
    for (const CZelPointer *node = first; node != nullptr; node = CZelBag::RBNext(node)) {
        CZelCachedRecord &entry = *m_handles.find(*handleIn(node));
        std::unique_ptr<CZelRecord> record = std::move(filler.recordOf(numberOf(entry)));
        if (record == nullptr)
            record.reset(readFromDisk(entry));
        if (record != nullptr)
            bringIn(entry, record.release(), false);
    }
}

const CZelPointer *CZelRecordCache::firstToStay() const {
    return m_type == E_RCTByProportion ? firstOfShare() : firstOfBytes();
}

unsigned long long CZelRecordCache::sizeOf(const CZelPointer *node) const {
    return static_cast<unsigned long long>(m_handles.find(*handleIn(node))->RCRSize());
}

// A row comes in when those before it are within the share, whatever its own size; so the last one stays, and of the
// others as many as fit beside each other.
const CZelPointer *CZelRecordCache::firstOfShare() const {
    const auto *first = static_cast<const CZelPointer *>(m_handles.inOrder()->RDLTail());
    unsigned long long bytes = 0;
    for (const CZelPointer *node = first; node != nullptr;) {
        first = node;
        node = static_cast<const CZelPointer *>(m_handles.inOrder()->RDLGetPrev(node));
        bytes += node != nullptr ? sizeOf(node) : 0;
        if (isFull(bytes, 0))
            break;
    }
    return first;
}

// Of rows that come in one by one, each a little later than the one before, the first that came is always the one to
// leave; so it is enough to count.
const CZelPointer *CZelRecordCache::firstOfBytes() const {
    const auto *first = static_cast<const CZelPointer *>(m_handles.inOrder()->RDLHead());
    unsigned long long bytes = 0;
    for (const CZelPointer *node = first; node != nullptr; node = CZelBag::RBNext(node)) {
        const unsigned long long size = sizeOf(node);
        unsigned long long asked = size;
        for (; first != node && isFull(bytes, asked); first = CZelBag::RBNext(first)) {
            asked = sizeOf(first);
            bytes -= asked;
        }
        if (first == node && isFull(bytes, asked))
            reportNothingToEvict();
        bytes += size;
    }
    return first;
}
