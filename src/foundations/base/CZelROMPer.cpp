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
#include "foundations/port/ZelCodes.h"

namespace {

constexpr std::size_t TOO_LONG = INT_MAX;  // as a size: also what is nested too deep

std::size_t sizeOfText(std::string_view text) {
    return 4 + text.size();
}

std::size_t sizeOfValue(const CZelAtom *value, int depth);

std::size_t sizeOfElements(const CZelAtomVector *list, int depth) {
    std::size_t size = 4;
    for (unsigned int i = 0; list != nullptr && i < list->RAVSize() && size < TOO_LONG; ++i)
        size += sizeOfValue(list->RAVGetValue(i), depth);
    return size;
}

std::size_t sizeOfMembers(const CZelVBList *object, int depth) {
    std::size_t size = 4;
    const CZelVarBind *member = object == nullptr ? nullptr : object->RVBLHead();
    for (; member != nullptr && size < TOO_LONG; member = object->RVBLGetNext(member))
        size += sizeOfText(member->RVBName().RATextView()) + sizeOfValue(member->RVBValue(), depth);
    return size;
}

std::size_t sizeOfNest(const CZelAtom &value, int depth) {
    if (depth == CZelROMPer::MAX_DEPTH)
        return TOO_LONG;
    bool isList = value.RAType() == E_RDTList;
    return isList ? sizeOfElements(value.RAList(), depth + 1) : sizeOfMembers(value.RAObject(), depth + 1);
}

std::size_t sizeOfBlock(const CZelAtom &value) {
    unsigned char *data = nullptr;
    int length = 0;
    value.RAUChar(&data, &length);
    return 4 + static_cast<std::size_t>(length);
}

std::size_t sizeOfValue(const CZelAtom *value, int depth) {
    switch (value == nullptr ? E_RDTUndefined : value->RAType()) {
        case E_RDTInt:
        case E_RDTFloat:
            return 1 + 4;
        case E_RDTLong:
        case E_RDTLong64:
            return 1 + 8;
        case E_RDTText:
            return 1 + sizeOfText(value->RATextView());
        case E_RDTData:
            return 1 + sizeOfBlock(*value);
        case E_RDTList:
        case E_RDTObject:
            return 1 + sizeOfNest(*value, depth);
        default:
            return 1;
    }
}

// Writes into a place that is known to be large enough.
class Writer {
public:
    explicit Writer(unsigned char *place) : m_place(place) {}

    void Text(std::string_view text) { bytes(text.data(), text.size()); }
    void Value(const CZelAtom *value);

private:
    void type(unsigned char value) { *m_place++ = value; }
    template <class Number>
    void number(Number value) {
        RompStore(m_place, value);
        m_place += sizeof(value);
    }
    void count(std::size_t value) { number(static_cast<std::uint32_t>(value)); }
    void bytes(const void *data, std::size_t length) {
        count(length);
        copy(static_cast<const unsigned char *>(data), length);
        m_place += length;
    }
    void copy(const unsigned char *data, std::size_t length);
    void block(const CZelAtom &value);
    void elements(const CZelAtomVector *list);
    void members(const CZelVBList *object);

    unsigned char *m_place;
};

void Writer::Value(const CZelAtom *value) {
    if (value == nullptr) {
        type(ROMP_NO_VALUE);
        return;
    }
    type(static_cast<unsigned char>(value->RAType()));
    switch (value->RAType()) {
        case E_RDTInt:
            return number(static_cast<std::uint32_t>(value->RAInt()));
        case E_RDTFloat:
            return number(std::bit_cast<std::uint32_t>(value->RAFloat()));
        case E_RDTLong:
        case E_RDTLong64:
            return number(static_cast<std::uint64_t>(value->RALongLong()));
        case E_RDTText:
            return Text(value->RATextView());
        case E_RDTData:
            return block(*value);
        case E_RDTList:
            return elements(value->RAList());
        case E_RDTObject:
            return members(value->RAObject());
        default:
            return;
    }
}

// Most names and texts are short: two copies of fixed size that overlap spare the call.
void Writer::copy(const unsigned char *data, std::size_t length) {
    constexpr std::size_t WORD = 8, HALF = 4;
    if (length > 2 * WORD) {
        std::memcpy(m_place, data, length);
    } else if (length >= WORD) {
        std::memcpy(m_place, data, WORD);
        std::memcpy(m_place + length - WORD, data + length - WORD, WORD);
    } else if (length >= HALF) {
        std::memcpy(m_place, data, HALF);
        std::memcpy(m_place + length - HALF, data + length - HALF, HALF);
    } else {
        for (std::size_t i = 0; i < length; ++i)
            m_place[i] = data[i];
    }
}

void Writer::block(const CZelAtom &value) {
    unsigned char *data = nullptr;
    int length = 0;
    value.RAUChar(&data, &length);
    bytes(data, static_cast<std::size_t>(length));
}

void Writer::elements(const CZelAtomVector *list) {
    unsigned int size = list == nullptr ? 0 : list->RAVSize();
    count(size);
    for (unsigned int i = 0; i < size; ++i)
        Value(list->RAVGetValue(i));
}

void Writer::members(const CZelVBList *object) {
    count(object == nullptr ? 0 : static_cast<std::size_t>(object->RVBLLength()));
    const CZelVarBind *member = object == nullptr ? nullptr : object->RVBLHead();
    for (; member != nullptr; member = object->RVBLGetNext(member)) {
        Text(member->RVBName().RATextView());
        Value(member->RVBValue());
    }
}

}  // namespace

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
    std::size_t size = sizeOfText(name->RATextView()) + sizeOfValue(value, 0);
    unsigned char *head = reserve(ROMP_HEAD_SIZE + size);
    if (head == nullptr)
        return E_RCBadValue;
    RompStore(head, static_cast<std::uint32_t>(size));
    Writer writer(head + ROMP_HEAD_SIZE);
    writer.Text(name->RATextView());
    writer.Value(value);
    return E_RCOk;
}

// Writes the checks of the entries that have none yet. Done for all at once and not entry by entry: reading
// what has just been written in small pieces stalls the processor.
void CZelROMPer::seal() {
    while (m_sealed < m_length) {
        unsigned char *head = m_data + m_sealed;
        std::uint32_t size = RompLoad<std::uint32_t>(head);
        RompStoreHead(head, size, RompCheck(head + ROMP_HEAD_SIZE, size));
        m_sealed += static_cast<int>(ROMP_HEAD_SIZE + size);
    }
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
        grow(used + size);
    m_length += static_cast<int>(size);
    return m_data + used;
}

void CZelROMPer::grow(std::size_t needed) {
    std::size_t capacity = std::min<std::size_t>(std::max(needed, 2 * static_cast<std::size_t>(m_capacity)), INT_MAX);
    if (m_data == m_small) {
        m_data = static_cast<unsigned char *>(ZelMalloc(capacity));
        std::memcpy(m_data, m_small, static_cast<std::size_t>(m_length));
    } else {
        m_data = static_cast<unsigned char *>(ZelRealloc(m_data, capacity));
    }
    m_capacity = static_cast<int>(capacity);
}
