#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelROMPer.h"
#include "foundations/base/CZelROMPer_format.h"
#include "foundations/base/CZelVBList.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/ZelCodes.h"

namespace {

// The name that the thread's last packet began with.
constinit thread_local const CZelAtom *t_firstName = nullptr;

// Reads a body. Every step takes the place that it reads from and gives the one behind what it read, or null when the
// body does not hold what it should; none reads past the end. A good check does not say that an entry was written by
// this system.
//
// Values are built where they stay, in atoms that are undefined before.
class Reader {
public:
    // The name that came before, null at the beginning of a packet or when it is not interned.
    explicit Reader(const CZelAtom *lastName) : m_lastName(lastName) {}

    // The name and value of a whole body as a new binding, or in the one to be reused; null when it can't be
    // read.
    CZelVarBind *Pair(const unsigned char *body, const unsigned char *end, CZelVarBind *reuse);
    const CZelAtom *LastName() const { return m_lastName; }

private:
    using Place = const unsigned char *;

    std::size_t left(Place place) const { return static_cast<std::size_t>(m_end - place); }
    Place named(Place place, CZelVarBind **pair, CZelVarBind *reuse);
    CZelVarBind *pairOf(std::string_view name, CZelVarBind *reuse);
    CZelVarBind *unexpected(std::string_view name, CZelVarBind *reuse);
    Place valueOf(Place place, CZelVarBind *pair, int depth);
    Place bytes(Place place, std::string_view *result) const;
    Place count(Place place, std::uint32_t *result) const;
    Place value(Place place, CZelAtom *atom, int depth);
    template <class Bits, class Build>
    Place number(Place place, Build build) const;
    Place text(Place place, CZelAtom *atom) const;
    Place block(Place place, CZelAtom *atom) const;
    Place list(Place place, CZelAtom *atom, int depth);
    Place object(Place place, CZelAtom *atom, int depth);
    Place element(Place place, CZelAtomVector &elements, int depth);
    Place member(Place place, CZelVBList &members, int depth);

    Place m_end = nullptr;
    const CZelAtom *m_lastName;
};

CZelVarBind *renamed(CZelVarBind *reuse, const CZelAtom &name) {
    reuse->RVBSetName(name);
    reuse->RVBForWriting()->RASet();
    return reuse;
}

CZelVarBind *Reader::Pair(Place body, Place end, CZelVarBind *reuse) {
    m_end = end;
    CZelVarBind *pair = nullptr;
    Place place = named(body, &pair, reuse);
    if (place == nullptr)
        return nullptr;
    if (valueOf(place, pair, 0) == end)
        return pair;
    if (reuse == nullptr)
        delete pair;
    return nullptr;
}

// *pair has the name that stands here, and an undefined value.
Reader::Place Reader::named(Place place, CZelVarBind **pair, CZelVarBind *reuse) {
    std::string_view name;
    place = bytes(place, &name);
    if (place == nullptr)
        return nullptr;
    *pair = pairOf(name, reuse);
    return *pair == nullptr ? nullptr : place;
}

CZelVarBind *Reader::pairOf(std::string_view name, CZelVarBind *reuse) {
    const CZelAtom *guess = m_lastName == nullptr ? t_firstName : CZelName::RNSuccessor(m_lastName);
    if (guess == nullptr || !CZelName::RNIsText(*guess, name))
        return unexpected(name, reuse);
    m_lastName = guess;
    return reuse == nullptr ? new CZelVarBind(guess) : renamed(reuse, *guess);
}

CZelVarBind *Reader::unexpected(std::string_view name, CZelVarBind *reuse) {
    if (ZelHoldsNul(name.data(), name.size()))
        return nullptr;
    const CZelAtom *before = m_lastName;
    m_lastName = CZelName::RNInternBehind(before, name.data(), name.size());
    if (before == nullptr)
        t_firstName = m_lastName;
    const CZelAtom loose = m_lastName != nullptr ? *m_lastName : CZelAtom(name.data(), name.size());
    return reuse == nullptr ? new CZelVarBind(loose, CZelAtom()) : renamed(reuse, loose);
}

Reader::Place Reader::valueOf(Place place, CZelVarBind *pair, int depth) {
    if (place == m_end || *place != ROMP_NO_VALUE)
        return value(place, pair->RVBForWriting(), depth);
    pair->RVBSetValue(static_cast<const CZelAtom *>(nullptr));
    return place + 1;
}

Reader::Place Reader::bytes(Place place, std::string_view *result) const {
    if (left(place) < sizeof(std::uint32_t))
        return nullptr;
    const std::size_t length = RompLoad<std::uint32_t>(place);
    place += sizeof(std::uint32_t);
    if (length > left(place))
        return nullptr;
    *result = {reinterpret_cast<const char *>(place), length};
    return place + length;
}

// How many values follow. Each takes a byte at least, which bounds what a count can make us allocate.
Reader::Place Reader::count(Place place, std::uint32_t *result) const {
    if (left(place) < sizeof(*result))
        return nullptr;
    *result = RompLoad<std::uint32_t>(place);
    place += sizeof(*result);
    return *result <= left(place) ? place : nullptr;
}

template <class Bits, class Build>
Reader::Place Reader::number(Place place, Build build) const {
    if (left(place) < sizeof(Bits))
        return nullptr;
    build(RompLoad<Bits>(place));
    return place + sizeof(Bits);
}

Reader::Place Reader::value(Place place, CZelAtom *atom, int depth) {
    if (place == m_end)
        return nullptr;
    switch (*place++) {
        case E_RDTInt:
            return number<std::uint32_t>(place, [atom](auto bits) { new (atom) CZelAtom(static_cast<int>(bits)); });
        case E_RDTLong:
            return number<std::uint64_t>(place, [atom](auto bits) { new (atom) CZelAtom(static_cast<long>(bits)); });
        case E_RDTText:
            return text(place, atom);
        case E_RDTFloat:
            return number<std::uint32_t>(place, [atom](auto bits) { new (atom) CZelAtom(std::bit_cast<float>(bits)); });
        case E_RDTLong64:
            return number<std::uint64_t>(place,
                                         [atom](auto bits) { new (atom) CZelAtom(static_cast<long long>(bits)); });
        case E_RDTData:
            return block(place, atom);
        case E_RDTList:
            return list(place, atom, depth);
        case E_RDTObject:
            return object(place, atom, depth);
        case E_RDTUndefined:
            return place;
        default:
            return nullptr;
    }
}

Reader::Place Reader::text(Place place, CZelAtom *atom) const {
    std::string_view found;
    place = bytes(place, &found);
    if (place == nullptr || ZelHoldsNul(found.data(), found.size()))
        return nullptr;
    new (atom) CZelAtom(found.data(), found.size());
    return place;
}

Reader::Place Reader::block(Place place, CZelAtom *atom) const {
    std::string_view found;
    place = bytes(place, &found);
    if (place != nullptr)
        new (atom) CZelAtom(reinterpret_cast<const unsigned char *>(found.data()), static_cast<int>(found.size()));
    return place;
}

Reader::Place Reader::list(Place place, CZelAtom *atom, int depth) {
    std::uint32_t size = 0;
    place = depth == CZelROMPer::MAX_DEPTH ? nullptr : count(place, &size);
    if (place == nullptr)
        return nullptr;
    CZelAtomVector *elements = new CZelAtomVector(size);
    new (atom) CZelAtom(elements);
    for (; size != 0 && place != nullptr; --size)
        place = element(place, *elements, depth + 1);
    return place;
}

Reader::Place Reader::element(Place place, CZelAtomVector &elements, int depth) {
    if (place != m_end && *place == ROMP_NO_VALUE) {
        elements.RAVAddToEnd(nullptr);
        return place + 1;
    }
    CZelAtom *atom = new CZelAtom;
    elements.RAVAddToEnd(atom);
    return value(place, atom, depth);
}

Reader::Place Reader::object(Place place, CZelAtom *atom, int depth) {
    std::uint32_t size = 0;
    place = depth == CZelROMPer::MAX_DEPTH ? nullptr : count(place, &size);
    if (place == nullptr)
        return nullptr;
    CZelVBList *members = new CZelVBList;
    new (atom) CZelAtom(members);
    for (; size != 0 && place != nullptr; --size)
        place = member(place, *members, depth + 1);
    return place;
}

Reader::Place Reader::member(Place place, CZelVBList &members, int depth) {
    CZelVarBind *pair = nullptr;
    place = named(place, &pair, nullptr);
    if (place == nullptr)
        return nullptr;
    members.RVBLAddToListEnd(pair);
    return valueOf(place, pair, depth);
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
    if (!nextBody(&body))
        return nullptr;
    Reader reader(m_lastName);
    CZelVarBind *pair = body == nullptr ? nullptr : reader.Pair(body, m_data + m_position, reuse);
    m_lastName = reader.LastName();
    if (pair != nullptr)
        return pair;
    result = E_RCBadValue;
    return damagedPair(reuse);
}

int CZelROMPer::RRGetRest(CZelVBList &pairs) {
    int result = E_RCOk;
    Reader reader(m_lastName);
    const unsigned char *body = nullptr;
    while (nextBody(&body)) {
        CZelVarBind *pair = body == nullptr ? nullptr : reader.Pair(body, m_data + m_position, nullptr);
        if (pair == nullptr) {
            result = E_RCBadValue;
            pair = damagedPair(nullptr);
        }
        pairs.RVBLAddToListEnd(pair);
    }
    m_lastName = reader.LastName();
    return result;
}

// Moves behind the next entry that is no pad and gives its body, null when it is damaged. False at the packet's end.
bool CZelROMPer::nextBody(const unsigned char **body) {
    *body = nullptr;
    while (m_position < m_length) {
        if (m_position == m_intact && !checkOn())
            return skipDamage();
        const unsigned char *head = m_data + m_position;
        const std::uint32_t size = RompLoad<std::uint32_t>(head);
        m_position += static_cast<int>(ROMP_HEAD_SIZE + size);
        if (size == 0)
            continue;
        *body = head + ROMP_HEAD_SIZE;
        return true;
    }
    return false;
}

// Checks the entries from here on as far as they are intact. Is there any?
bool CZelROMPer::checkOn() {
    m_intact += static_cast<int>(RompIntact(m_data + m_position, static_cast<std::size_t>(m_length - m_position)));
    return m_position < m_intact;
}

// Moves behind a damaged entry; true.
bool CZelROMPer::skipDamage() {
    std::uint32_t size = 0, check = 0;
    if (headAt(m_position, &size, &check))
        m_position += static_cast<int>(ROMP_HEAD_SIZE + size);
    else
        skipToHead();
    m_intact = m_position;
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
