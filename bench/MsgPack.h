// A record of eight named fields, of which one is a list and one an object, in an application that packs it with
// msgpack.
#pragma once

#include <string>
#include <vector>

struct PackedPlace {
    std::string site;
    int rack;
    float height;
};

struct PackedRecord {
    std::string entityName;
    int entityType;
    long long objectId;
    long long speed;
    float load;
    std::string descr;
    std::vector<int> ports;
    PackedPlace place;
};

// The packed form with names, as a map.
class MsgPack {
public:
    static bool isHere();  // was the bench built with it?

    explicit MsgPack(const PackedRecord &record);
    MsgPack(const MsgPack &) = delete;
    MsgPack &operator=(const MsgPack &) = delete;
    ~MsgPack();

    std::size_t encode();      // into a new buffer; its length
    long long decode() const;  // what encode() wrote, into values of their own; one of the fields, by its name

private:
    struct Parts;
    Parts *m_parts;
};
