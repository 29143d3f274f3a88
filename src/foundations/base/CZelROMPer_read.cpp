#include <type_traits>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelROMPer.h"
#include "foundations/base/CZelROMPer_format.h"
#include "foundations/base/CZelVBList.h"
#include "foundations/base/ZelShortBytes.h"
#include "foundations/port/ZelCodes.h"

namespace {

constexpr const CZelAtom *NO_VALUE = nullptr;

// The name that the thread's last packet began with.
constinit thread_local const CZelAtom *t_firstName = nullptr;

// What stands for a damaged pair: at the end of the list, instead of one that was begun behind `former`.
void addNameless(CZelVBList &pairs, const CZelVarBind *former) {
    CZelVarBind *begun = pairs.RVBLTail();
    if (begun == former) {
        pairs.RVBLAddToListEnd(new CZelVarBind("", NO_VALUE));
        return;
    }
    begun->RVBSetName(CZelAtom(true, ""));
    begun->RVBSetValue(NO_VALUE);
}

// Moves name and value into a binding that is there.
CZelVarBind *moved(CZelVarBind *pair, CZelVarBind *reuse) {
    reuse->RVBSetName(pair->RVBName());
    if (pair->RVBValue() == nullptr)
        reuse->RVBSetValue(NO_VALUE);
    else
        *reuse->RVBForWriting() = std::move(*pair->RVBValue());
    delete pair;
    return reuse;
}

}  // namespace

// Reads a body. Every step takes the place that it reads from and gives the one behind what it read, or null when the
// body does not hold what it should; none reads past the end. A good check does not say that an entry was written by
// this system.
//
// Values are built where they stay, in atoms that are undefined before. What every pair goes through is inline: most
// values are a few bytes, and a call costs as much as reading them.
class CZelROMPer::Reader {
public:
    using Place = const unsigned char *;

    // The name that came before, null at the beginning of a packet or when it is not interned.
    explicit Reader(const CZelAtom *lastName) : m_lastName(lastName) {}

    // A whole body as a new binding at the end of a list. On failure it may be there too, half of it.
    [[gnu::always_inline]] bool Body(Place body, Place end, CZelVBList &pairs) {
        m_end = end;
        return pair(body, pairs, 0) == end;
    }
    const CZelAtom *LastName() const { return m_lastName; }

private:
    Place pair(Place place, CZelVBList &pairs, int depth);
    std::size_t left(Place place) const { return static_cast<std::size_t>(m_end - place); }
    Place bytes(Place place, std::string_view *result) const;
    Place count(Place place, std::uint32_t *result) const;
    CZelVarBind *newPair(std::string_view name);
    CZelVarBind *unexpected(std::string_view name);
    Place value(Place place, CZelAtom *atom, int depth);
    [[gnu::noinline]] Place other(unsigned char type, Place place, CZelAtom *atom, int depth);
    template <class Bits, class Value>
    Place number(Place place, CZelAtom *atom) const;
    [[gnu::noinline]] Place text(Place place, CZelAtom *atom) const;
    Place block(Place place, CZelAtom *atom) const;
    Place list(Place place, CZelAtom *atom, int depth);
    Place element(Place place, CZelAtomVector &elements, int depth);
    Place object(Place place, CZelAtom *atom, int depth);

    Place m_end = nullptr;
    const CZelAtom *m_lastName;
};

[[gnu::always_inline]] inline CZelROMPer::Reader::Place CZelROMPer::Reader::bytes(Place place,
                                                                                  std::string_view *result) const {
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
inline CZelROMPer::Reader::Place CZelROMPer::Reader::count(Place place, std::uint32_t *result) const {
    if (left(place) < sizeof(*result))
        return nullptr;
    *result = RompLoad<std::uint32_t>(place);
    place += sizeof(*result);
    return *result <= left(place) ? place : nullptr;
}

[[gnu::always_inline]] inline CZelVarBind *CZelROMPer::Reader::newPair(std::string_view name) {
    const CZelAtom *guess = m_lastName == nullptr ? t_firstName : CZelName::RNSuccessor(m_lastName);
    if (guess == nullptr || !CZelName::RNIsText(*guess, name))
        return unexpected(name);
    m_lastName = guess;
    return new CZelVarBind(guess);
}

CZelVarBind *CZelROMPer::Reader::unexpected(std::string_view name) {
    if (ZelHoldsNul(name.data(), name.size()))
        return nullptr;
    const CZelAtom *before = m_lastName;
    m_lastName = CZelName::RNInternBehind(before, name.data(), name.size());
    if (before == nullptr)
        t_firstName = m_lastName;
    if (m_lastName != nullptr)
        return new CZelVarBind(m_lastName);
    return new CZelVarBind(CZelAtom(name.data(), name.size()), CZelAtom());
}

template <class Bits, class Value>
inline CZelROMPer::Reader::Place CZelROMPer::Reader::number(Place place, CZelAtom *atom) const {
    if (left(place) < sizeof(Bits))
        return nullptr;
    if constexpr (std::is_floating_point_v<Value>)
        new (atom) CZelAtom(std::bit_cast<Value>(RompLoad<Bits>(place)));
    else
        new (atom) CZelAtom(static_cast<Value>(RompLoad<Bits>(place)));
    return place + sizeof(Bits);
}

[[gnu::always_inline]] inline CZelROMPer::Reader::Place CZelROMPer::Reader::value(Place place, CZelAtom *atom,
                                                                                  int depth) {
    if (place == m_end)
        return nullptr;
    const unsigned char type = *place++;
    switch (type) {
        case E_RDTInt:
            return number<std::uint32_t, int>(place, atom);
        case E_RDTLong:
            return number<std::uint64_t, long>(place, atom);
        case E_RDTFloat:
            return number<std::uint32_t, float>(place, atom);
        case E_RDTLong64:
            return number<std::uint64_t, long long>(place, atom);
        case E_RDTText:
            return text(place, atom);
        default:
            return other(type, place, atom, depth);
    }
}

CZelROMPer::Reader::Place CZelROMPer::Reader::other(unsigned char type, Place place, CZelAtom *atom, int depth) {
    switch (type) {
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

[[gnu::always_inline]] inline CZelROMPer::Reader::Place CZelROMPer::Reader::pair(Place place, CZelVBList &pairs,
                                                                                 int depth) {
    std::string_view name;
    place = bytes(place, &name);
    CZelVarBind *binding = place == nullptr ? nullptr : newPair(name);
    if (binding == nullptr)
        return nullptr;
    pairs.RVBLAddToListEnd(binding);
    if (place == m_end || *place != ROMP_NO_VALUE)
        return value(place, binding->RVBForWriting(), depth);
    binding->RVBSetValue(NO_VALUE);
    return place + 1;
}

[[gnu::always_inline]] inline CZelROMPer::Reader::Place CZelROMPer::Reader::element(Place place,
                                                                                    CZelAtomVector &elements,
                                                                                    int depth) {
    if (place != m_end && *place == ROMP_NO_VALUE) {
        elements.RAVAddToEnd(nullptr);
        return place + 1;
    }
    CZelAtom *atom = new CZelAtom;
    elements.RAVAddToEnd(atom);
    return value(place, atom, depth);
}

CZelROMPer::Reader::Place CZelROMPer::Reader::text(Place place, CZelAtom *atom) const {
    std::string_view found;
    place = bytes(place, &found);
    if (place == nullptr || ZelHoldsNul(found.data(), found.size()))
        return nullptr;
    new (atom) CZelAtom(found.data(), found.size());
    return place;
}

CZelROMPer::Reader::Place CZelROMPer::Reader::block(Place place, CZelAtom *atom) const {
    std::string_view found;
    place = bytes(place, &found);
    if (place != nullptr)
        new (atom) CZelAtom(reinterpret_cast<const unsigned char *>(found.data()), static_cast<int>(found.size()));
    return place;
}

CZelROMPer::Reader::Place CZelROMPer::Reader::list(Place place, CZelAtom *atom, int depth) {
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

CZelROMPer::Reader::Place CZelROMPer::Reader::object(Place place, CZelAtom *atom, int depth) {
    std::uint32_t size = 0;
    place = depth == CZelROMPer::MAX_DEPTH ? nullptr : count(place, &size);
    if (place == nullptr)
        return nullptr;
    CZelVBList *members = new CZelVBList;
    new (atom) CZelAtom(members);
    for (; size != 0 && place != nullptr; --size)
        place = pair(place, *members, depth + 1);
    return place;
}

CZelROMPer::CZelROMPer(unsigned char *data, int length, __boolean)
    : m_data(data), m_length(data == nullptr || length < 0 ? 0 : length) {}

CZelVarBind *CZelROMPer::RRGetNextAttrVal(int *status, CZelVarBind *reuse) {
    CZelVBList pairs;
    const int result = read(pairs, true);
    if (status != nullptr)
        *status = result;
    CZelVarBind *pair = pairs.RVBLTakeHead();
    return pair == nullptr || reuse == nullptr ? pair : moved(pair, reuse);
}

int CZelROMPer::RRGetRest(CZelVBList &pairs) {
    return read(pairs, false);
}

// Appends all pairs that are left, or if `one` the next.
int CZelROMPer::read(CZelVBList &pairs, bool one) {
    int result = E_RCOk;
    Reader reader(m_lastName);
    while (m_position < m_length && !(one && pairs.RVBLHead() != nullptr)) {
        const CZelVarBind *former = pairs.RVBLTail();
        if (m_position < m_intact || checkOn() ? readIntact(reader, pairs) : skipDamage())
            continue;
        addNameless(pairs, former);
        result = E_RCBadValue;
    }
    m_lastName = reader.LastName();
    return result;
}

// Appends the pair of an intact entry. A pad has none.
[[gnu::always_inline]] inline bool CZelROMPer::readIntact(Reader &reader, CZelVBList &pairs) {
    const unsigned char *body = m_data + m_position + ROMP_HEAD_SIZE;
    const std::uint32_t size = RompLoad<std::uint32_t>(m_data + m_position);
    m_position += static_cast<int>(ROMP_HEAD_SIZE + size);
    return size == 0 || reader.Body(body, body + size, pairs);
}

// Checks the entries from here on as far as they are intact. Is there any?
bool CZelROMPer::checkOn() {
    m_intact += static_cast<int>(RompIntact(m_data + m_position, static_cast<std::size_t>(m_length - m_position)));
    return m_position < m_intact;
}

// Moves behind a damaged entry; false.
bool CZelROMPer::skipDamage() {
    std::uint32_t size = 0, check = 0;
    if (headAt(m_position, &size, &check))
        m_position += static_cast<int>(ROMP_HEAD_SIZE + size);
    else
        skipToHead();
    m_intact = m_position;
    return false;
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
