#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelROMPer.h"
#include "foundations/base/CZelROMPer_format.h"
#include "foundations/base/CZelVBList.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/ZelCodes.h"

namespace {

// Reads from a body and never past its end. Every operation is false when the body does not hold what it
// should; a good check does not say that an entry was written by this system.
class Reader {
public:
    Reader(const unsigned char *place, std::size_t length) : m_place(place), m_left(length) {}

    bool IsAtEnd() const { return m_left == 0; }
    bool Text(std::string_view *text);
    bool Value(CZelAtom *value, bool *isThere, int depth);

private:
    template <class Number>
    bool number(Number *value) {
        if (m_left < sizeof(*value))
            return false;
        *value = RompLoad<Number>(m_place);
        advance(sizeof(*value));
        return true;
    }
    void advance(std::size_t size) {
        m_place += size;
        m_left -= size;
    }
    bool bytes(const unsigned char **data, std::size_t *length);
    bool count(std::uint32_t *value);
    bool narrow(EZelDataType type, CZelAtom *value);
    bool wide(EZelDataType type, CZelAtom *value);
    bool text(CZelAtom *value);
    bool block(CZelAtom *value);
    bool list(CZelAtom *value, int depth);
    bool object(CZelAtom *value, int depth);
    bool element(CZelAtomVector &elements, int depth);
    bool member(CZelVBList &members, int depth);

    const unsigned char *m_place;
    std::size_t m_left;
};

bool Reader::bytes(const unsigned char **data, std::size_t *length) {
    std::uint32_t size = 0;
    if (!number(&size) || size > m_left)
        return false;
    *data = m_place;
    *length = size;
    advance(size);
    return true;
}

// How many values follow. Each takes a byte at least, which bounds what a count can make us allocate.
bool Reader::count(std::uint32_t *value) {
    return number(value) && *value <= m_left;
}

bool Reader::Text(std::string_view *text) {
    const unsigned char *data = nullptr;
    std::size_t length = 0;
    if (!bytes(&data, &length) || std::memchr(data, 0, length) != nullptr)
        return false;
    *text = {reinterpret_cast<const char *>(data), length};
    return true;
}

bool Reader::Value(CZelAtom *value, bool *isThere, int depth) {
    if (m_left == 0)
        return false;
    unsigned char type = *m_place;
    advance(1);
    *isThere = type != ROMP_NO_VALUE;
    switch (type) {
        case E_RDTInt:
        case E_RDTFloat:
            return narrow(static_cast<EZelDataType>(type), value);
        case E_RDTLong:
        case E_RDTLong64:
            return wide(static_cast<EZelDataType>(type), value);
        case E_RDTText:
            return text(value);
        case E_RDTData:
            return block(value);
        case E_RDTList:
            return list(value, depth);
        case E_RDTObject:
            return object(value, depth);
        default:
            return type == ROMP_NO_VALUE || type == E_RDTUndefined;
    }
}

bool Reader::narrow(EZelDataType type, CZelAtom *value) {
    std::uint32_t bits = 0;
    if (!number(&bits))
        return false;
    *value = type == E_RDTInt ? CZelAtom(static_cast<int>(bits)) : CZelAtom(std::bit_cast<float>(bits));
    return true;
}

bool Reader::wide(EZelDataType type, CZelAtom *value) {
    std::uint64_t bits = 0;
    if (!number(&bits))
        return false;
    *value = type == E_RDTLong ? CZelAtom(static_cast<long>(bits)) : CZelAtom(static_cast<long long>(bits));
    return true;
}

bool Reader::text(CZelAtom *value) {
    std::string_view found;
    if (!Text(&found))
        return false;
    *value = CZelAtom(found.data(), found.size());
    return true;
}

bool Reader::block(CZelAtom *value) {
    const unsigned char *data = nullptr;
    std::size_t length = 0;
    if (!bytes(&data, &length))
        return false;
    *value = CZelAtom(data, static_cast<int>(length));
    return true;
}

bool Reader::list(CZelAtom *value, int depth) {
    std::uint32_t size = 0;
    if (depth == CZelROMPer::MAX_DEPTH || !count(&size))
        return false;
    *value = CZelAtom(new CZelAtomVector(size));
    for (std::uint32_t i = 0; i < size; ++i) {
        if (!element(*value->RAList(), depth + 1))
            return false;
    }
    return true;
}

bool Reader::element(CZelAtomVector &elements, int depth) {
    CZelAtom *value = new CZelAtom;
    bool isThere = true;
    bool good = Value(value, &isThere, depth);
    if (!isThere) {
        delete value;
        value = nullptr;
    }
    elements.RAVAddToEnd(value);
    return good;
}

bool Reader::object(CZelAtom *value, int depth) {
    std::uint32_t size = 0;
    if (depth == CZelROMPer::MAX_DEPTH || !count(&size))
        return false;
    *value = CZelAtom(new CZelVBList);
    for (std::uint32_t i = 0; i < size; ++i) {
        if (!member(*value->RAObject(), depth + 1))
            return false;
    }
    return true;
}

bool Reader::member(CZelVBList &members, int depth) {
    std::string_view name;
    if (!Text(&name))
        return false;
    CZelVarBind *pair = new CZelVarBind(CZelAtom::RAName(name.data(), name.size()), CZelAtom());
    members.RVBLAddToListEnd(pair);
    bool isThere = true;
    bool good = Value(pair->RVBForWriting(), &isThere, depth);
    if (!isThere)
        pair->RVBSetValue(static_cast<const CZelAtom *>(nullptr));
    return good;
}

// Reads the name and the value of a whole body.
bool readPair(Reader body, CZelAtom *name, CZelAtom *value, bool *isThere) {
    std::string_view text;
    if (!body.Text(&text) || !body.Value(value, isThere, 0) || !body.IsAtEnd())
        return false;
    *name = CZelAtom::RAName(text.data(), text.size());
    return true;
}

}  // namespace

CZelROMPer::CZelROMPer(unsigned char *data, int length, __boolean)
    : m_data(data), m_length(data == nullptr || length < 0 ? 0 : length) {}

CZelVarBind *CZelROMPer::RRGetNextAttrVal(int *status, CZelVarBind *reuse) {
    int ignored = E_RCOk;
    int &result = status == nullptr ? ignored : *status;
    result = E_RCOk;
    const unsigned char *body = nullptr;
    std::size_t length = 0;
    bool isIntact = nextBody(&body, &length);
    if (isIntact && body == nullptr)
        return nullptr;
    CZelAtom name, value;
    bool isThere = true;
    if (!isIntact || !readPair(Reader(body, length), &name, &value, &isThere)) {
        result = E_RCBadValue;
        return give(CZelAtom(true, ""), nullptr, reuse);
    }
    return give(name, isThere ? &value : nullptr, reuse);
}

// The next entry that is no pad, its body null at the packet's end. False when it is damaged.
bool CZelROMPer::nextBody(const unsigned char **body, std::size_t *length) {
    while (m_position < m_length) {
        std::uint32_t size = 0, check = 0;
        if (!headAt(m_position, &size, &check)) {
            skipToHead();
            return false;
        }
        const unsigned char *start = m_data + m_position + ROMP_HEAD_SIZE;
        m_position += static_cast<int>(ROMP_HEAD_SIZE + size);
        if (RompCheck(start, size) != check)
            return false;
        if (size == 0)
            continue;
        *body = start;
        *length = size;
        return true;
    }
    *body = nullptr;
    return true;
}

// Is there an intact head, with a body that lies in the packet?
bool CZelROMPer::headAt(int position, std::uint32_t *size, std::uint32_t *check) const {
    std::size_t left = static_cast<std::size_t>(m_length - position);
    return left >= ROMP_HEAD_SIZE && RompLoadHead(m_data + position, size, check) && *size <= left - ROMP_HEAD_SIZE;
}

void CZelROMPer::skipToHead() {
    std::uint32_t size = 0, check = 0;
    do {
        ++m_position;
    } while (m_position < m_length && !headAt(m_position, &size, &check));
}

CZelVarBind *CZelROMPer::give(const CZelAtom &name, CZelAtom *value, CZelVarBind *reuse) {
    CZelVarBind *pair = reuse;
    if (pair == nullptr)
        pair = new CZelVarBind(name, CZelAtom());
    else
        pair->rename(name);
    if (value != nullptr)
        pair->RVBForWriting()->RASet(value);
    else
        pair->RVBSetValue(static_cast<const CZelAtom *>(nullptr));
    return pair;
}
