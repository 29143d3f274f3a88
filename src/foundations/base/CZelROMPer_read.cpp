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
//
// Values are built where they stay, in atoms that are undefined before.
class Reader {
public:
    // *lastName is the name that came before, and becomes the last one read.
    Reader(const unsigned char *place, std::size_t length, const CZelAtom **lastName)
        : m_place(place), m_left(length), m_lastName(lastName) {}

    // The name and value of a whole body as a new binding, or in the one to be reused; null when it can't be
    // read.
    CZelVarBind *Pair(CZelVarBind *reuse);

private:
    CZelVarBind *pairOf(std::string_view name, CZelVarBind *reuse);
    bool valueOf(CZelVarBind *pair, int depth);
    bool characters(std::string_view *result);
    template <class Number>
    bool number(Number *result) {
        if (m_left < sizeof(*result))
            return false;
        *result = RompLoad<Number>(m_place);
        advance(sizeof(*result));
        return true;
    }
    void advance(std::size_t size) {
        m_place += size;
        m_left -= size;
    }
    bool bytes(const unsigned char **data, std::size_t *length);
    bool count(std::uint32_t *result);
    bool value(CZelAtom *place, bool *isThere, int depth);
    bool narrow(unsigned char type, CZelAtom *place);
    bool wide(unsigned char type, CZelAtom *place);
    bool text(CZelAtom *place);
    bool block(CZelAtom *place);
    bool list(CZelAtom *place, int depth);
    bool object(CZelAtom *place, int depth);
    bool element(CZelAtomVector &elements, int depth);
    bool member(CZelVBList &members, int depth);

    const unsigned char *m_place;
    std::size_t m_left;
    const CZelAtom **m_lastName;
};

CZelVarBind *Reader::Pair(CZelVarBind *reuse) {
    std::string_view name;
    if (!characters(&name))
        return nullptr;
    CZelVarBind *pair = pairOf(name, reuse);
    if (valueOf(pair, 0) && m_left == 0)
        return pair;
    if (reuse == nullptr)
        delete pair;
    return nullptr;
}

// Its value is undefined.
CZelVarBind *Reader::pairOf(std::string_view name, CZelVarBind *reuse) {
    *m_lastName = CZelName::RNInternBehind(*m_lastName, name.data(), name.size());
    const CZelAtom loose = *m_lastName == nullptr ? CZelAtom(name.data(), name.size()) : CZelAtom();
    const CZelAtom &atom = *m_lastName == nullptr ? loose : **m_lastName;
    if (reuse == nullptr)
        return new CZelVarBind(atom, CZelAtom());
    reuse->RVBSetName(atom);
    reuse->RVBForWriting()->RASet();
    return reuse;
}

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
bool Reader::count(std::uint32_t *result) {
    return number(result) && *result <= m_left;
}

bool Reader::characters(std::string_view *result) {
    const unsigned char *data = nullptr;
    std::size_t length = 0;
    if (!bytes(&data, &length) || std::memchr(data, 0, length) != nullptr)
        return false;
    *result = {reinterpret_cast<const char *>(data), length};
    return true;
}

bool Reader::valueOf(CZelVarBind *pair, int depth) {
    CZelAtom *place = pair->RVBForWriting();
    bool isThere = true;
    bool good = value(place, &isThere, depth);
    if (!isThere)
        pair->RVBSetValue(static_cast<const CZelAtom *>(nullptr));
    return good;
}

bool Reader::value(CZelAtom *place, bool *isThere, int depth) {
    if (m_left == 0)
        return false;
    unsigned char type = *m_place;
    advance(1);
    switch (type) {
        case E_RDTInt:
        case E_RDTFloat:
            return narrow(type, place);
        case E_RDTLong:
        case E_RDTLong64:
            return wide(type, place);
        case E_RDTText:
            return text(place);
        case E_RDTData:
            return block(place);
        case E_RDTList:
            return list(place, depth);
        case E_RDTObject:
            return object(place, depth);
        default:
            *isThere = type != ROMP_NO_VALUE;
            return type == ROMP_NO_VALUE || type == E_RDTUndefined;
    }
}

bool Reader::narrow(unsigned char type, CZelAtom *place) {
    std::uint32_t bits = 0;
    if (!number(&bits))
        return false;
    if (type == E_RDTInt)
        new (place) CZelAtom(static_cast<int>(bits));
    else
        new (place) CZelAtom(std::bit_cast<float>(bits));
    return true;
}

bool Reader::wide(unsigned char type, CZelAtom *place) {
    std::uint64_t bits = 0;
    if (!number(&bits))
        return false;
    if (type == E_RDTLong)
        new (place) CZelAtom(static_cast<long>(bits));
    else
        new (place) CZelAtom(static_cast<long long>(bits));
    return true;
}

bool Reader::text(CZelAtom *place) {
    std::string_view found;
    if (!characters(&found))
        return false;
    new (place) CZelAtom(found.data(), found.size());
    return true;
}

bool Reader::block(CZelAtom *place) {
    const unsigned char *data = nullptr;
    std::size_t length = 0;
    if (!bytes(&data, &length))
        return false;
    new (place) CZelAtom(data, static_cast<int>(length));
    return true;
}

bool Reader::list(CZelAtom *place, int depth) {
    std::uint32_t size = 0;
    if (depth == CZelROMPer::MAX_DEPTH || !count(&size))
        return false;
    CZelAtomVector *elements = new CZelAtomVector(size);
    new (place) CZelAtom(elements);
    for (std::uint32_t i = 0; i < size; ++i) {
        if (!element(*elements, depth + 1))
            return false;
    }
    return true;
}

bool Reader::element(CZelAtomVector &elements, int depth) {
    CZelAtom *place = new CZelAtom;
    bool isThere = true;
    bool good = value(place, &isThere, depth);
    if (!isThere) {
        delete place;
        place = nullptr;
    }
    elements.RAVAddToEnd(place);
    return good;
}

bool Reader::object(CZelAtom *place, int depth) {
    std::uint32_t size = 0;
    if (depth == CZelROMPer::MAX_DEPTH || !count(&size))
        return false;
    CZelVBList *members = new CZelVBList;
    new (place) CZelAtom(members);
    for (std::uint32_t i = 0; i < size; ++i) {
        if (!member(*members, depth + 1))
            return false;
    }
    return true;
}

bool Reader::member(CZelVBList &members, int depth) {
    std::string_view name;
    if (!characters(&name))
        return false;
    CZelVarBind *pair = pairOf(name, nullptr);
    members.RVBLAddToListEnd(pair);
    return valueOf(pair, depth);
}

CZelVarBind *damagedPair(CZelVarBind *reuse) {
    const CZelAtom *nothing = nullptr;
    const CZelAtom noName(true, "");
    if (reuse == nullptr)
        return new CZelVarBind(noName, nothing);
    reuse->RVBSetName(noName);
    reuse->RVBSetValue(nothing);
    return reuse;
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
    CZelVarBind *pair = isIntact ? Reader(body, length, &m_lastName).Pair(reuse) : nullptr;
    if (pair != nullptr)
        return pair;
    result = E_RCBadValue;
    return damagedPair(reuse);
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
