#include "foundations/base/CZelRecord.h"

#include <cstdlib>
#include <iostream>

#include "foundations/base/CZelPointer.h"
#include "foundations/base/CZelROMPer.h"
#include "foundations/base/CZelUChar.h"
#include "foundations/port/CZelError.h"
#include "foundations/port/ZelDebug.h"

namespace {

constexpr int DEBUG_ALL = 4;

}  // namespace

CZelRecord::~CZelRecord() = default;

CZelListable *CZelRecord::RLTargetDeepCopy(const CZelListable *) const {
    return new CZelRecord(RRVbIterator());
}

void CZelRecord::BeginRead() {}
void CZelRecord::EndRead() {}
void CZelRecord::BeginWrite() {}
void CZelRecord::EndWrite() {}
void CZelRecord::UsedByDatabase() {}

void CZelRecord::DroppedFromDatabase() {
    delete this;
}

int CZelRecord::ROMDecode(const unsigned char *data, int length) {
    if (data == nullptr)
        return ZEL_FAIL(E_RCBadArgument, "CZelRecord::ROMDecode was given no data.");
    unsigned char *block = const_cast<unsigned char *>(data);
    CZelROMPer packet(block, length, E_RBTrue);
    m_values.RVBLEmptyList();
    int status = packet.RRGetRest(m_values);
    if (packet.RRTakePacket() != block)
        ZEL_REPORT(E_RCBadValue, "CZelRecord::ROMDecode: the reader changed its packet.");
    if (status != E_RCOk)
        discardDamaged(status);
    return status;
}

bool CZelRecord::ROMTryDecode(const unsigned char *data, int length) {
    CZelROMPer packet(const_cast<unsigned char *>(data), length, E_RBTrue);
    m_values.RVBLEmptyList();
    const bool isWhole = packet.RRGetRest(m_values) == E_RCOk;
    if (!isWhole)
        m_values.RVBLEmptyList();
    return isWhole;
}

void CZelRecord::discardDamaged(int status) {
    ZEL_REPORT(status, "CZelRecord::ROMDecode found a damaged value; the record is discarded.");
    if (__Zeltronix_Debug_Level >= DEBUG_ALL) {
        std::cout << "Warning: Some corruption has been detected in the following record"
                     " - It will be discarded...\n";
        RRPrint();
    }
    m_values.RVBLEmptyList();
}

int CZelRecord::RRConsumeAndDecode(unsigned char *data, int length) {
    int status = ROMDecode(data, length);
    std::free(data);
    return status;
}

int CZelRecord::RRConsumeAndDecode(CZelPointer &pointer) {
    CZelAtom *atom = static_cast<CZelAtom *>(pointer.RPData());
    if (atom == nullptr)
        return E_RCOk;
    if (atom->RAType() != E_RDTData)
        return E_RCBadType;
    int length = 0;
    unsigned char *data = atom->RAUChar()->RUCTakeData(&length);
    delete atom;
    pointer.RPSetData(nullptr);
    return data == nullptr ? E_RCOk : RRConsumeAndDecode(data, length);
}
