#include "bench/MsgPack.h"

#ifdef QUINTOR_BENCH_MSGPACK

#include <msgpack.hpp>

#include <cstring>

namespace {

using Packer = msgpack::packer<msgpack::sbuffer>;

void packText(Packer &packer, const char *text, std::size_t length) {
    packer.pack_str(static_cast<std::uint32_t>(length));
    packer.pack_str_body(text, static_cast<std::uint32_t>(length));
}

template <std::size_t size>
Packer &packName(Packer &packer, const char (&name)[size]) {
    packText(packer, name, size - 1);
    return packer;
}

void packPlace(Packer &packer, const PackedPlace &place) {
    packer.pack_map(3);
    packText(packName(packer, "Site"), place.site.data(), place.site.size());
    packName(packer, "Rack").pack_int(place.rack);
    packName(packer, "Height").pack_float(place.height);
}

void packRecord(Packer &packer, const PackedRecord &record) {
    packer.pack_map(8);
    packText(packName(packer, "EntityName"), record.entityName.data(), record.entityName.size());
    packName(packer, "EntityType").pack_int(record.entityType);
    packName(packer, "ObjectId").pack_int64(record.objectId);
    packName(packer, "Speed").pack_int64(record.speed);
    packName(packer, "Load").pack_float(record.load);
    packText(packName(packer, "Descr"), record.descr.data(), record.descr.size());
    packName(packer, "Ports").pack_array(static_cast<std::uint32_t>(record.ports.size()));
    for (const int port : record.ports)
        packer.pack_int(port);
    packPlace(packName(packer, "Place"), record.place);
}

bool isNamed(const msgpack::object &name, const char *text) {
    return name.via.str.size == std::strlen(text) && std::memcmp(name.via.str.ptr, text, name.via.str.size) == 0;
}

}  // namespace

struct MsgPack::Parts {
    PackedRecord record;
    msgpack::sbuffer buffer;
};

bool MsgPack::isHere() {
    return true;
}

MsgPack::MsgPack(const PackedRecord &record) : m_parts(new Parts{record, {}}) {}

MsgPack::~MsgPack() {
    delete m_parts;
}

std::size_t MsgPack::encode() {
    m_parts->buffer = msgpack::sbuffer();
    Packer packer(m_parts->buffer);
    packRecord(packer, m_parts->record);
    return m_parts->buffer.size();
}

// Without a function that says what may be referred to, texts are copied out of the buffer.
long long MsgPack::decode() const {
    const msgpack::object_handle handle = msgpack::unpack(m_parts->buffer.data(), m_parts->buffer.size());
    const msgpack::object_map &map = handle.get().via.map;
    for (std::uint32_t i = 0; i < map.size; ++i)
        if (isNamed(map.ptr[i].key, "Speed"))
            return map.ptr[i].val.via.i64;
    return 0;
}

#else

struct MsgPack::Parts {};

bool MsgPack::isHere() {
    return false;
}

MsgPack::MsgPack(const PackedRecord & /*record*/) : m_parts(nullptr) {}

MsgPack::~MsgPack() = default;

std::size_t MsgPack::encode() {
    return 0;
}

long long MsgPack::decode() const {
    return 0;
}

#endif
