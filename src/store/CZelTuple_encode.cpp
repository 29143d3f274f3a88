// What a joined row looks like outside: a packed block, or a record.
#include <cstdlib>
#include <utility>

#include "foundations/base/CZelROMPer.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/CZelError.h"
#include "store/CZelTuple.h"
#include "store/CZelTupleProjection.h"

namespace {

void append(CZelROMPer &packet, const CZelRecord &record) {
    unsigned char *block = nullptr;
    int length = 0;
    record.ROMEncode(&block, &length);
    const int status = packet.RRAppendFrom(block, length);
    std::free(block);
    if (status != 1)
        ZEL_REPORT(status, "CZelTuple::ROMEncode: a record can't be packed");
}

}  // namespace

void CZelTuple::forgetBlock() {
    std::free(std::exchange(m_block, nullptr));
    m_blockLength = 0;
}

int CZelTuple::ROMLength() {
    return m_blockLength;
}

unsigned char *CZelTuple::ROMEncode() {
    if (m_block != nullptr)
        return m_block;
    CZelROMPer packet(CZelROMPer::INITIAL_SIZE);
    for (std::size_t i = 0; i < m_length; ++i)
        append(packet, *m_entries[i].m_record);
    if (packet.RRCreatedLength() == 0)
        packet.RRAddPad();
    m_blockLength = packet.RRCreatedLength();
    return m_block = packet.RRTakePacket();
}

unsigned char *CZelTuple::ROMEncode(CZelBag *entities) {
    forgetBlock();
    return m_block = CZelTupleProjection(entities).encode(*this, m_blockLength);
}

int CZelTuple::ROMDecode(unsigned char * /*block*/, int /*length*/) {
    return 1;
}

unsigned char *CZelTuple::RRTakeROMP(int &length) {
    ROMEncode();
    length = std::exchange(m_blockLength, 0);
    return std::exchange(m_block, nullptr);
}

unsigned char *CZelTuple::RRTakeROMP(int &length, CZelBag *entities) {
    ROMEncode(entities);
    length = std::exchange(m_blockLength, 0);
    return std::exchange(m_block, nullptr);
}

CZelRecord *CZelTuple::RTRecord() const {
    auto *whole = new CZelRecord;
    for (std::size_t i = 0; i < m_length; ++i) {
        const CZelVBList *values = m_entries[i].m_record->RRVbIterator();
        for (const CZelVarBind *value = values->RVBLHead(); value != nullptr; value = values->RVBLGetNext(value))
            whole->RRAddValue(new CZelVarBind(*value));
    }
    return whole;
}

CZelRecord *CZelTuple::RTRecord(CZelBag *entities) const {
    return CZelTupleProjection(entities).project(*this);
}
