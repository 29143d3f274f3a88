// Packets from outside. The first byte of the input says how the rest is taken: 0 as a packet, anything else
// as bodies of entries whose checks are put in order here, since no mutation finds a CRC. In the second form a
// 0xF5 byte, which no head needs, ends a body.
//
// What must hold: nothing is read past the end, a pair that is accepted packs to the very same body again, and
// reading into a binding gives what reading into a new one gives.
#include <cstdlib>
#include <vector>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelROMPer.h"
#include "foundations/base/CZelROMPer_format.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/port/CZelErrorCapture.h"
#include "foundations/port/ZelCodes.h"

namespace {

using Bytes = std::vector<unsigned char>;

constexpr unsigned char END_OF_BODY = 0xF5;

void require(bool holds) {
    if (!holds)
        std::abort();
}

void appendEntry(Bytes &packet, const Bytes &body) {
    std::size_t head = packet.size();
    packet.resize(head + ROMP_HEAD_SIZE);
    RompStoreHead(packet.data() + head, static_cast<std::uint32_t>(body.size()), RompCheck(body.data(), body.size()));
    packet.insert(packet.end(), body.begin(), body.end());
}

Bytes packetOfBodies(const std::uint8_t *data, std::size_t size) {
    Bytes packet, body;
    for (std::size_t i = 0; i < size; ++i) {
        if (data[i] != END_OF_BODY) {
            body.push_back(data[i]);
            continue;
        }
        appendEntry(packet, body);
        body.clear();
    }
    appendEntry(packet, body);
    return packet;
}

Bytes packedAgain(const CZelVarBind &pair) {
    CZelROMPer builder(CZelROMPer::INITIAL_SIZE);
    require(builder.RRAddAttrVal(&pair.RVBName(), pair.RVBValue()) == E_RCOk);
    return {builder.RRPacket(), builder.RRPacket() + builder.RRCreatedLength()};
}

// Walks the packet. Gives the bytes that the good pairs pack to, in order.
Bytes walk(Bytes &packet, CZelVarBind *reuse, bool *intact) {
    CZelROMPer reader(packet.data(), static_cast<int>(packet.size()), E_RBTrue);
    Bytes again;
    int status = E_RCOk;
    while (CZelVarBind *pair = reader.RRGetNextAttrVal(&status, reuse)) {
        *intact = *intact && status == E_RCOk;
        if (status == E_RCOk) {
            Bytes bytes = packedAgain(*pair);
            again.insert(again.end(), bytes.begin(), bytes.end());
        }
        if (reuse == nullptr)
            delete pair;
    }
    require(reader.RRTakePacket() == packet.data());
    return again;
}

bool holdsPads(const Bytes &packet) {
    for (std::size_t place = 0; place + ROMP_HEAD_SIZE <= packet.size();) {
        std::uint32_t size = RompLoad<std::uint32_t>(packet.data() + place);
        if (size == 0)
            return true;
        place += ROMP_HEAD_SIZE + size;
    }
    return false;
}

void decodeAsRecord(const Bytes &packet, bool intact) {
    CZelErrorCapture silent;
    CZelRecord record;
    int status = record.ROMDecode(packet.data(), static_cast<int>(packet.size()));
    require((status == E_RCOk) == intact);
    require(intact || record.RRVbIterator()->RVBLLength() == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size == 0)
        return 0;
    Bytes packet = data[0] == 0 ? Bytes(data + 1, data + size) : packetOfBodies(data + 1, size - 1);
    packet.shrink_to_fit();
    bool intact = true;
    Bytes again = walk(packet, nullptr, &intact);
    require(!intact || holdsPads(packet) || again == packet);
    CZelVarBind reuse("former", "value");
    require(walk(packet, &reuse, &intact) == again);
    if (!packet.empty())
        decodeAsRecord(packet, intact);
    return 0;
}
