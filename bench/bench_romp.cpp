// A record packed and read back: eight fields, of which one is a list and one an object.
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "bench/MsgPack.h"
#include "bench/PairTable.h"
#include "bench/works.h"
#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelROMPer.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/base/CZelVBList.h"
#include "foundations/base/CZelVarBind.h"

namespace {

constexpr int TIMES = 200000;
constexpr long long SPEED = 40000000000LL;

const BenchPeer MSGPACK = {"msgpack"};

const PackedRecord &theirRecord() {
    static const PackedRecord record = {
        "node3ade68b1.site17", 42, 632872348503LL, SPEED, 73.25, "uplink 3 to rack 17, row 04711", {80, 443, 161, 8080},
        {"oslo", 17, 1.5}};
    return record;
}

CZelVBList *objectOf(const PackedPlace &place) {
    auto *object = new CZelVBList();
    object->RVBLAddToListEnd(new CZelVarBind("Site", place.site.c_str()));
    object->RVBLAddToListEnd(new CZelVarBind("Rack", place.rack));
    object->RVBLAddToListEnd(new CZelVarBind(CZelAtom::RAName("Height"), CZelAtom(place.height)));
    return object;
}

CZelAtomVector *listOf(const std::vector<int> &ports) {
    auto *list = new CZelAtomVector();
    for (const int port : ports)
        list->RAVAddToEnd(new CZelAtom(port));
    return list;
}

std::unique_ptr<CZelRecord> recordOf(const PackedRecord &from) {
    auto record = std::make_unique<CZelRecord>();
    const auto add = [&](const char *name, CZelAtom *value) { record->RRAddValue(name, &value); };
    record->RRAddValue("EntityName", from.entityName.c_str());
    add("EntityType", new CZelAtom(from.entityType));
    add("ObjectId", new CZelAtom(from.objectId));
    add("Speed", new CZelAtom(from.speed));
    add("Load", new CZelAtom(from.load));
    record->RRAddValue("Descr", from.descr.c_str());
    add("Ports", new CZelAtom(listOf(from.ports)));
    add("Place", new CZelAtom(objectOf(from.place)));
    return record;
}

const CZelRecord &ourRecord() {
    static const std::unique_ptr<CZelRecord> record = recordOf(theirRecord());
    return *record;
}

void require(bool isSo, const char *what) {
    if (isSo)
        return;
    std::fprintf(stderr, "romp: %s\n", what);
    std::exit(1);
}

BenchRun encodeOurs() {
    const CZelRecord &record = ourRecord();
    long bytes = 0;
    const double seconds = secondsOf([&] {
        for (int i = 0; i < TIMES; ++i) {
            CZelROMPer packet(CZelROMPer::INITIAL_SIZE);
            record.ROMEncode(packet);
            bytes += packet.RRPacket() != nullptr ? packet.RRCreatedLength() : 0;
        }
    });
    require(bytes > 0, "nothing was packed");
    return {TIMES, seconds};
}

BenchRun encodeTheirs() {
    MsgPack theirs(theirRecord());
    std::size_t bytes = 0;
    const double seconds = secondsOf([&] {
        for (int i = 0; i < TIMES; ++i)
            bytes += theirs.encode();
    });
    require(bytes > 0, "msgpack packed nothing");
    return {TIMES, seconds};
}

BenchRun decodeOurs() {
    CZelROMPer packet(CZelROMPer::INITIAL_SIZE);
    ourRecord().ROMEncode(packet);
    const CZelAtom name = CZelAtom::RAName("Speed");
    long long sum = 0;
    const double seconds = secondsOf([&] {
        for (int i = 0; i < TIMES; ++i) {
            CZelRecord record;
            record.ROMDecode(packet.RRPacket(), packet.RRCreatedLength());
            sum += record.RRValueOf(&name)->RALongLong();
        }
    });
    require(sum == TIMES * SPEED, "a field was read wrong");
    return {TIMES, seconds};
}

BenchRun decodeTheirs() {
    MsgPack theirs(theirRecord());
    theirs.encode();
    long long sum = 0;
    const double seconds = secondsOf([&] {
        for (int i = 0; i < TIMES; ++i)
            sum += theirs.decode();
    });
    require(sum == TIMES * SPEED, "msgpack read a field wrong");
    return {TIMES, seconds};
}

}  // namespace

void addRompWorks() {
    const bool isHere = MsgPack::isHere();
    addPair("romp: encode a nested record of eight fields", "record", encodeOurs, isHere ? encodeTheirs : BenchWork(),
            MSGPACK);
    addPair("romp: decode it", "record", decodeOurs, isHere ? decodeTheirs : BenchWork(), MSGPACK);
}
