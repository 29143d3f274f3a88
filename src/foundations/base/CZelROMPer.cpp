// The packed form. All numbers are big-endian.
//
// A packet is a sequence of entries. An entry is a head and a body:
//   0  u32  length of the body in bytes; 0 makes the entry a pad, which readers skip
//   4  u32  CRC32C of the body
//   8  u32  a check of these two numbers
//  12       the body: a name, then a value
// A name is its length (u32) and its bytes. A value is its type (u8, EZelDataType or 15 for none) and
//   int                u32
//   long, long64       u64
//   float              u32, its IEEE bits
//   text, data         length (u32), bytes
//   list               count of elements (u32), then a value for each
//   object             count of members (u32), then name and value of each
//   undefined, none    nothing
//
// The head has a check of its own, so that a damaged body does not cost the entries behind it, and a damaged
// head is known before its length is used. One check over the whole entry would have been shorter by four
// bytes, but would have left a reader of a damaged entry without a place to go on.
#include "foundations/base/CZelROMPer.h"

#include <algorithm>
#include <climits>
#include <cstdlib>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelROMPer_format.h"
#include "foundations/base/CZelVBList.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/base/ZelShortBytes.h"
#include "foundations/port/ZelCodes.h"

namespace {

constexpr std::size_t TOO_LONG = INT_MAX;

}  // namespace

// Writes an entry's body behind what the packet holds. Every step takes the place that it writes to and gives the one
// behind what it wrote, or null when the value nests too deep or the packet would become too long. Sizes are not asked
// before: to walk a value twice costs more than to look for room at each step. Names and elements see to room for a
// number too, so that most values need not look. What every pair goes through is inline, as with reading.
class CZelROMPer::Writer {
public:
    explicit Writer(CZelROMPer &packet) : m_packet(packet), m_end(packet.m_data + packet.m_capacity) {}

    unsigned char *Entry(const CZelAtom &name, const CZelAtom *value);

private:
    using Place = unsigned char *;
    static constexpr std::size_t NUMBER_SIZE = 1 + 8;  // the largest one, and its type

    Place room(Place place, std::size_t size) {
        return size <= static_cast<std::size_t>(m_end - place) ? place : grown(place, size);
    }
    Place grown(Place place, std::size_t size);
    template <class Number>
    static Place number(Place place, Number number) {
        RompStore(place, number);
        return place + sizeof(number);
    }
    static Place bytes(Place place, std::string_view bytes) {
        place = number(place, static_cast<std::uint32_t>(bytes.size()));
        ZelCopyBytes(place, bytes.data(), bytes.size());
        return place + bytes.size();
    }
    Place name(Place place, const CZelAtom &name, std::size_t head);
    Place value(Place place, const CZelAtom *value, int depth);
    Place other(Place place, const CZelAtom &value, int depth);
    Place text(Place place, std::string_view text);
    Place block(Place place, const CZelAtom &value);
    Place elements(Place place, const CZelAtomVector *list, int depth);
    Place members(Place place, const CZelVBList *object, int depth);

    CZelROMPer &m_packet;
    unsigned char *m_end;
};

CZelROMPer::Writer::Place CZelROMPer::Writer::grown(Place place, std::size_t size) {
    std::size_t used = static_cast<std::size_t>(place - m_packet.m_data);
    if (size >= TOO_LONG - used)
        return nullptr;
    m_packet.grow(used, used + size);
    m_end = m_packet.m_data + m_packet.m_capacity;
    return m_packet.m_data + used;
}

// Behind `head` bytes that are left free.
[[gnu::always_inline]] inline CZelROMPer::Writer::Place CZelROMPer::Writer::name(Place place, const CZelAtom &name,
                                                                                 std::size_t head) {
    const std::string_view text = name.RATextView();
    place = room(place, head + sizeof(std::uint32_t) + text.size() + NUMBER_SIZE);
    return place == nullptr ? nullptr : bytes(place + head, text);
}

// Requires: room for a number.
[[gnu::always_inline]] inline CZelROMPer::Writer::Place CZelROMPer::Writer::value(Place place, const CZelAtom *value,
                                                                                  int depth) {
    *place = value == nullptr ? ROMP_NO_VALUE : static_cast<unsigned char>(value->RAType());
    switch (*place++) {
        case E_RDTInt:
            return number(place, static_cast<std::uint32_t>(value->RAInt()));
        case E_RDTFloat:
            return number(place, std::bit_cast<std::uint32_t>(value->RAFloat()));
        case E_RDTLong:
        case E_RDTLong64:
            return number(place, static_cast<std::uint64_t>(value->RALongLong()));
        case E_RDTText:
            return text(place, value->RATextView());
        case ROMP_NO_VALUE:
            return place;
        default:
            return other(place, *value, depth);
    }
}

unsigned char *CZelROMPer::Writer::Entry(const CZelAtom &name, const CZelAtom *value) {
    Place place = this->name(m_packet.m_data + m_packet.m_length, name, ROMP_HEAD_SIZE);
    return place == nullptr ? nullptr : this->value(place, value, 0);
}

CZelROMPer::Writer::Place CZelROMPer::Writer::other(Place place, const CZelAtom &value, int depth) {
    switch (value.RAType()) {
        case E_RDTData:
            return block(place, value);
        case E_RDTList:
            return elements(place, value.RAList(), depth);
        case E_RDTObject:
            return members(place, value.RAObject(), depth);
        default:
            return place;
    }
}

CZelROMPer::Writer::Place CZelROMPer::Writer::text(Place place, std::string_view text) {
    place = room(place, sizeof(std::uint32_t) + text.size());
    return place == nullptr ? nullptr : bytes(place, text);
}

CZelROMPer::Writer::Place CZelROMPer::Writer::block(Place place, const CZelAtom &value) {
    unsigned char *data = nullptr;
    int length = 0;
    value.RAUChar(&data, &length);
    return text(place, {reinterpret_cast<const char *>(data), static_cast<std::size_t>(length)});
}

CZelROMPer::Writer::Place CZelROMPer::Writer::elements(Place place, const CZelAtomVector *list, int depth) {
    const unsigned int size = list == nullptr ? 0 : list->RAVSize();
    place = depth == MAX_DEPTH ? nullptr : room(place, sizeof(std::uint32_t));
    if (place == nullptr)
        return nullptr;
    place = number(place, std::uint32_t{size});
    for (unsigned int i = 0; i < size && place != nullptr; ++i) {
        place = room(place, NUMBER_SIZE);
        if (place != nullptr)
            place = value(place, list->RAVGetValue(i), depth + 1);
    }
    return place;
}

CZelROMPer::Writer::Place CZelROMPer::Writer::members(Place place, const CZelVBList *object, int depth) {
    place = depth == MAX_DEPTH ? nullptr : room(place, sizeof(std::uint32_t));
    if (place == nullptr)
        return nullptr;
    place = number(place, static_cast<std::uint32_t>(object == nullptr ? 0 : object->RVBLLength()));
    const CZelVarBind *member = object == nullptr ? nullptr : object->RVBLHead();
    for (; member != nullptr && place != nullptr; member = object->RVBLGetNext(member)) {
        place = name(place, member->RVBName(), 0);
        if (place != nullptr)
            place = value(place, member->RVBValue(), depth + 1);
    }
    return place;
}

CZelROMPer::CZelROMPer(int initialSize) : m_data(m_small), m_capacity(INITIAL_SIZE) {
    if (initialSize <= INITIAL_SIZE)
        return;
    m_data = static_cast<unsigned char *>(ZelMalloc(static_cast<std::size_t>(initialSize)));
    m_capacity = initialSize;
}

CZelROMPer::~CZelROMPer() {
    if (m_capacity != 0 && m_data != m_small)
        std::free(m_data);
}

int CZelROMPer::RRAddAttrVal(const CZelAtom *name, const CZelAtom *value) {
    if (name == nullptr || name->RAType() != E_RDTText || m_capacity == 0)
        return E_RCBadArgument;
    const unsigned char *end = Writer(*this).Entry(*name, value);
    if (end == nullptr)
        return E_RCBadValue;
    unsigned char *head = m_data + m_length;
    const auto size = static_cast<int>(end - head);
    RompStore(head, static_cast<std::uint32_t>(size) - std::uint32_t{ROMP_HEAD_SIZE});
    m_length += size;
    return E_RCOk;
}

// Writes the checks of the entries that have none yet. Done for all at once and not entry by entry: reading
// what has just been written in small pieces stalls the processor.
void CZelROMPer::seal() {
    RompSeal(m_data + m_sealed, static_cast<std::size_t>(m_length - m_sealed));
    m_sealed = m_length;
}

unsigned char *CZelROMPer::RRPacket() {
    seal();
    return m_data;
}

int CZelROMPer::RRAppendFrom(const unsigned char *data, int length) {
    if (data == nullptr || length < 0 || m_capacity == 0)
        return E_RCBadArgument;
    seal();
    unsigned char *place = reserve(static_cast<std::size_t>(length));
    if (place == nullptr)
        return E_RCBadValue;
    std::memcpy(place, data, static_cast<std::size_t>(length));
    m_copied += length;
    m_sealed = m_length;
    return E_RCOk;
}

int CZelROMPer::RRAddPad() {
    unsigned char *head = m_capacity == 0 ? nullptr : reserve(ROMP_HEAD_SIZE);
    if (head == nullptr)
        return E_RCBadArgument;
    RompStore(head, std::uint32_t{0});
    return E_RCOk;
}

unsigned char *CZelROMPer::RRTakePacket() {
    if (m_capacity == 0)
        return m_data;
    seal();
    std::size_t length = static_cast<std::size_t>(m_length);
    unsigned char *packet = m_data;
    if (m_data == m_small)
        packet = static_cast<unsigned char *>(std::memcpy(ZelMalloc(length), m_small, length));
    else if (m_capacity != m_length)
        packet = static_cast<unsigned char *>(ZelRealloc(m_data, length));
    m_data = m_small;
    m_capacity = INITIAL_SIZE;
    m_length = m_copied = m_sealed = 0;
    return packet;
}

// The next bytes of the packet, in use from now on; null when it would become too long.
unsigned char *CZelROMPer::reserve(std::size_t size) {
    std::size_t used = static_cast<std::size_t>(m_length);
    if (size >= TOO_LONG - used)
        return nullptr;
    if (used + size > static_cast<std::size_t>(m_capacity))
        grow(used, used + size);
    m_length += static_cast<int>(size);
    return m_data + used;
}

// Keeps the first `used` bytes.
void CZelROMPer::grow(std::size_t used, std::size_t needed) {
    std::size_t capacity = std::min<std::size_t>(std::max(needed, 2 * static_cast<std::size_t>(m_capacity)), INT_MAX);
    if (m_data == m_small) {
        m_data = static_cast<unsigned char *>(ZelMalloc(capacity));
        std::memcpy(m_data, m_small, used);
    } else {
        m_data = static_cast<unsigned char *>(ZelRealloc(m_data, capacity));
    }
    m_capacity = static_cast<int>(capacity);
}
