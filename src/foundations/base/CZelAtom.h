// A typed value: the content of every cell, list element, object member and constant.
//
// 16 bytes: type, flags, and either a text of up to 13 bytes with its NUL, or a text's length and one word
// that holds the value or points to it. An atom owns what it points to, except a text that is lent or
// interned. No atom is shared between owners: it is copied, or ownership moves.
//
// The text of an atom may lie inside the atom: RAString() is good until the atom changes, moves or dies.
//
// Lists and objects nest to any depth and are freed without deep recursion. Copying, printing and comparing go
// MAX_NESTING levels down: what lies deeper becomes undefined in a copy, prints NULL and compares equal, which
// each operation reports once (E_RCBadValue). A value nested deeper can't be packed.
//
// Threads: no lock; several threads may read an atom that nobody changes.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iosfwd>
#include <string_view>
#include <type_traits>

#include "foundations/base/CZelPool.h"
#include "foundations/base/ZelEnums.h"
#include "foundations/port/ZelExport.h"
#include "foundations/port/ZelPrefetch.h"

class CZelAtomVector;
class CZelUChar;
class CZelVBList;
class CZelVarBind;

class QUINTOR_API CZelAtom {
public:
    ZEL_POOLED

    static constexpr int MAX_NESTING = 1000;  // levels of lists and objects

    CZelAtom() noexcept { setUndefined(); }
    CZelAtom(int value) noexcept { setWords(headOf(E_RDTInt), wordOf<long long>(value)); }
    CZelAtom(long value) noexcept { setWords(headOf(E_RDTLong), wordOf<long long>(value)); }
    CZelAtom(long long value) noexcept { setWords(headOf(E_RDTLong64), wordOf(value)); }
    CZelAtom(float value) noexcept { setWords(headOf(E_RDTFloat), wordOf(value)); }
    CZelAtom(const char *text);                       // copies; null gives an undefined atom
    CZelAtom(char *text);                             // takes over a text from malloc; null likewise
    CZelAtom(const char *text, std::size_t length);   // copies; the text may hold no NUL
    CZelAtom(bool lent, const char *text);            // refers to a text that outlives the atom; lent is true.
                                                      // A copy or move of it has a text of its own
    CZelAtom(unsigned char *data, int length);        // takes over a block from malloc
    CZelAtom(const unsigned char *data, int length);  // copies the block
    CZelAtom(CZelAtomVector *list);                   // takes over
    CZelAtom(CZelVBList *object);                     // takes over
    CZelAtom(const CZelAtom &other) {                 // deep copy; an interned text stays shared
        if (other.isFlat())
            takeBits(other);
        else
            copyMemory(other);
    }
    CZelAtom(CZelAtom &&other) noexcept {  // leaves `other` undefined
        takeBits(other);
        other.setUndefined();
        if (isLent())
            ownLentText();
    }
    CZelAtom &operator=(const CZelAtom &other) {
        if (ownsMemory() || !other.isFlat())
            assignMemory(other);
        else
            takeBits(other);
        return *this;
    }
    CZelAtom &operator=(CZelAtom &&other) noexcept {
        if (this == &other)
            return *this;
        CZelAtom former;  // dies last: `other` may lie inside the old value
        former.takeBits(*this);
        return *new (static_cast<void *>(this)) CZelAtom(static_cast<CZelAtom &&>(other));
    }
    ~CZelAtom() {
        if (ownsMemory())
            release();
    }

    // A text atom whose text is the interned form of `text`, or a copy where it can't be interned.
    static CZelAtom RAName(const char *text, std::size_t length);
    static CZelAtom RAName(const char *text);

    // The same value, or text, to be a tree's key: a short text lies apart from those of rows.
    static CZelAtom RAKey(const CZelAtom &value);
    static CZelAtom RAKey(const char *text, std::size_t length);

    // --- reading ---

    EZelDataType RAType() const { return static_cast<EZelDataType>(m_heap.type); }

    // Null is a null pointer or an undefined atom, everywhere in the system.
    bool RAIsUndefined() const { return m_heap.type == E_RDTUndefined; }
    static bool RAIsNull(const CZelAtom *atom) { return atom == nullptr || atom->RAIsUndefined(); }
    bool RAIsNumber() const {
        return m_heap.type == E_RDTInt || m_heap.type == E_RDTLong || m_heap.type == E_RDTFloat ||
               m_heap.type == E_RDTLong64;
    }

    // The number, converted between the numeric types; 0 for others. A float loses its fraction and is
    // clamped to the range, NaN gives 0; RAInt gives the low 32 bits of a wider integer.
    int RAInt() const { return isWhole() ? static_cast<int>(m_heap.word.whole) : intOfOther(); }
    long RALong() const { return static_cast<long>(RALongLong()); }
    long long RALongLong() const { return isWhole() ? m_heap.word.whole : wholeOfOther(); }
    float RAFloat() const {
        if (m_heap.type == E_RDTFloat)
            return m_heap.word.real;
        return isWhole() ? static_cast<float>(m_heap.word.whole) : 0;
    }
    double RADouble() const {
        if (m_heap.type == E_RDTFloat)
            return m_heap.word.real;
        return isWhole() ? static_cast<double>(m_heap.word.whole) : 0;
    }

    // The text's own bytes, or null when the atom is no text.
    const char *RAString() const {
        if (m_heap.type != E_RDTText)
            return nullptr;
        return isInline() ? m_inline.text : m_heap.word.text;
    }
    // Bytes of a text; 0 when the atom is no text.
    std::size_t RATextLength() const {
        if (m_heap.type != E_RDTText)
            return 0;
        return isInline() ? m_inline.flags >> 4 : m_heap.length;
    }
    std::string_view RATextView() const { return {RAString(), RATextLength()}; }

    bool RAIsInterned() const { return (m_heap.flags & INTERNED) != 0; }

    // Two text atoms of the same bytes.
    bool RASameText(const CZelAtom &other) const {
        if (m_heap.type != E_RDTText || other.m_heap.type != E_RDTText)
            return false;
        if (isInline() && other.isInline())
            return sameBits(other);
        std::size_t length = RATextLength();
        return length == other.RATextLength() && std::memcmp(RAString(), other.RAString(), length) == 0;
    }

    const CZelAtomVector *RAList() const { return m_heap.type == E_RDTList ? m_heap.word.list : nullptr; }
    CZelAtomVector *RAList() { return m_heap.type == E_RDTList ? m_heap.word.list : nullptr; }
    const CZelVBList *RAObject() const { return m_heap.type == E_RDTObject ? m_heap.word.object : nullptr; }
    CZelVBList *RAObject() { return m_heap.type == E_RDTObject ? m_heap.word.object : nullptr; }

    // Detaches the list: the caller owns it, the atom stays a list without a vector. Null for others.
    CZelAtomVector *RATakeList();

    // The block without copying; the atom keeps it. Null and 0 for others.
    void RAUChar(unsigned char **data, int *length) const;
    CZelUChar *RAUChar() const { return m_heap.type == E_RDTData ? m_heap.word.data : nullptr; }

    // A member of an object by name: its value or its binding, owned by the atom. Null when absent.
    const CZelAtom *RASubVal(const char *name) const;
    const CZelVarBind *RASubVarBind(const char *name) const;

    // The printable form, new from malloc. A text stands as it is at the top and quoted inside lists and
    // objects; a float is the shortest text that reads back, always with '.' or 'e', infinity 1e999;
    // undefined is "undefined" at the top, NULL inside; NaN "nan" at the top, NULL inside; data is its bytes
    // in hex, quoted inside. A member name that is no identifier of OQL is reported (E_RCBadValue) and
    // written with '_' for each byte that can't stand in one, behind an x if it starts with no letter.
    char *RAStrRep() const;

    // A list in the literal syntax of OQL, new from malloc; the argument is E_RBTrue. Null for others.
    char *RAListAsString(__boolean literal) const;

    // "int", "long", "text", "float", "long64", "data", "locator", "list", "object", else "undefined".
    static const char *RAGetDataTypeString(EZelDataType type);

    // --- changing; the old value is freed ---

    void RASet() { *this = CZelAtom(); }
    void RASet(int value) { *this = CZelAtom(value); }
    void RASet(long value) { *this = CZelAtom(value); }
    void RASet(long long value) { *this = CZelAtom(value); }
    void RASet(float value) { *this = CZelAtom(value); }
    void RASet(char *text) { *this = CZelAtom(text); }        // takes over a text from malloc
    void RASet(const char *text) { *this = CZelAtom(text); }  // copies
    void RASet(const CZelAtom *other);                        // copies; null makes undefined
    void RASet(CZelAtom *other);                              // moves, leaves `other` undefined

    // Converts between int, long, text, float and long64 in place. 1 for equal types, an undefined atom and
    // success. E_RCBadType, the atom unchanged: another source or target, a text that does not wholly spell
    // a number of the target, a number out of its range. A float loses its fraction.
    int RACoerce(EZelDataType type);

    // --- comparing ---

    // this op other. With In the receiver is the list and `other` the value looked for.
    __boolean RAEvalRelop(EZelOper op, const CZelAtom *other) const;

    // left op this, both non-null: the full operator table. Numbers compare by value whatever their type;
    // other pairs of different types are equal never and ordered never. Between includes its bounds. In
    // against no list is false. Like takes % and _ over the whole text, in linear time.
    __boolean RAEvalExtOp(const CZelAtom *left, EZelOper op) const;

    // A total order: null, numbers by value (NaN before all numbers), text by its bytes, data, list, object.
    // Negative, 0, positive. *status, if given, becomes E_RCBadType when the types can't be ordered by value.
    int RALex(const CZelAtom *other, int *status) const {
        if (other != nullptr && isShort(*other))
            return lexShort(*other);
        return lexFully(other, status);
    }

    // The same order over two possibly null pointers, no status.
    static int RACompare(const CZelAtom *left, const CZelAtom *right) {
        if (left == nullptr)
            return RAIsNull(right) ? 0 : -1;
        return left->RALex(right, nullptr);
    }

    // Asks the memory for what lies outside of the atom.
    void RAPrefetch() const {
        if (ownsMemory())
            ZelPrefetch(m_heap.word.text);
    }

private:
    friend class CZelName;
    friend class CZelVarBind;

    enum Flag : std::uint8_t {
        INLINE = 1,    // the text lies in the atom; its length is in the upper half of the flags
        BORROWED = 2,  // the text is not owned
        INTERNED = 4,  // the text is a name of CZelName
        ABSENT = 8,    // in a binding: there is no value at all
        POOLED = 16,   // the text lies in a block of CZelPool, not of malloc; never of a text in its atom
        KEY = 32       // and it is one of KEYS, not of ROWS; only with POOLED
    };
    static constexpr std::size_t INLINE_MAX = 13;

    union Word {
        long long whole;
        float real;
        char *text;
        CZelUChar *data;
        CZelAtomVector *list;
        CZelVBList *object;
    };
    struct Heap {
        std::uint8_t type;
        std::uint8_t flags;
        std::uint16_t spare;
        std::uint32_t length;
        Word word;
    };
    struct Inline {
        std::uint8_t type;
        std::uint8_t flags;
        char text[INLINE_MAX + 1];
    };

    bool isInline() const { return (m_heap.flags & INLINE) != 0; }
    bool ownsMemory() const {
        constexpr unsigned owning = 1U << E_RDTText | 1U << E_RDTData | 1U << E_RDTList | 1U << E_RDTObject;
        return ((owning >> m_heap.type) & 1U) != 0 && (m_heap.flags & (INLINE | BORROWED)) == 0;
    }
    bool isLent() const { return (m_heap.flags & (BORROWED | INTERNED)) == BORROWED; }
    // Is a copy of the 16 bytes a copy of the value?
    bool isFlat() const { return !ownsMemory() && !isLent(); }

    void takeBits(const CZelAtom &other) {
        std::memcpy(static_cast<void *>(this), static_cast<const void *>(&other), sizeof(CZelAtom));
    }
    // The atom's two words. Stored whole: what is stored in pieces can't be read back as a word at once, and an atom is
    // often copied or compared right after it was made.
    static std::uint64_t headOf(EZelDataType type, unsigned flags = 0, std::uint32_t length = 0) {
        if constexpr (std::endian::native == std::endian::little)
            return std::uint64_t{length} << 32 | flags << 8 | static_cast<unsigned>(type);
        else
            return static_cast<std::uint64_t>(type) << 56 | std::uint64_t{flags} << 48 | length;
    }
    template <class Number>
    requires std::is_arithmetic_v<Number>
    static std::uint64_t wordOf(Number number) {
        std::uint64_t word = 0;
        std::memcpy(&word, &number, sizeof(number));
        return word;
    }
    static std::uint64_t wordOf(const void *place) { return wordOf(reinterpret_cast<std::uintptr_t>(place)); }
    void setWords(std::uint64_t head, std::uint64_t word) noexcept {
        const std::uint64_t words[2] = {head, word};
        std::memcpy(static_cast<void *>(this), words, sizeof(words));
    }
    void setUndefined() noexcept { setWords(headOf(E_RDTUndefined), 0); }
    std::uint64_t bits(std::size_t half) const {
        std::uint64_t word;
        std::memcpy(&word, reinterpret_cast<const char *>(this) + half * sizeof(word), sizeof(word));
        return word;
    }
    // Texts inside their atoms are filled up with zeros, so that they compare as two words.
    bool sameBits(const CZelAtom &other) const { return bits(0) == other.bits(0) && bits(1) == other.bits(1); }

    void setAbsent() {
        RASet();
        m_heap.flags = ABSENT;
    }
    void release();  // frees what is owned; the atom is undefined afterwards
    void releaseNest();
    void postponeRelease();
    static void releasePostponed();
    void deleteNest();
    void copyMemory(const CZelAtom &other);
    void assignMemory(const CZelAtom &other);
    bool fitsInPlace(const CZelAtom &other) const;
    void copyNest(const CZelAtom &other);
    void ownLentText() noexcept;
    void setText(const char *text, std::size_t length, CZelPool::Kind kind = CZelPool::ROWS);
    void setInline(const char *text, std::size_t length);
    void setPooled(const char *text, std::size_t length, CZelPool::Kind kind);
    CZelPool::Kind kindOfText() const { return (m_heap.flags & KEY) != 0 ? CZelPool::KEYS : CZelPool::ROWS; }
    void takeText(char *text, std::size_t length);

    // The short roads of comparing: two whole numbers, or two texts that both lie in their atoms.
    bool isWhole() const {
        constexpr unsigned whole = 1U << E_RDTInt | 1U << E_RDTLong | 1U << E_RDTLong64;
        return ((whole >> m_heap.type) & 1U) != 0;
    }
    bool isShort(const CZelAtom &other) const {
        return (isWhole() && other.isWhole()) || (m_heap.flags & other.m_heap.flags & INLINE) != 0;
    }
    template <class Value>
    static int order(Value left, Value right) {
        return static_cast<int>(left > right) - static_cast<int>(left < right);
    }
    int lexShort(const CZelAtom &other) const {
        if (isWhole())
            return order(m_heap.word.whole, other.m_heap.word.whole);
        std::uint64_t mine = inlineText(0), theirs = other.inlineText(0);
        return mine != theirs ? order(mine, theirs) : order(inlineText(1), other.inlineText(1));
    }
    // The text in the atom as two numbers that order as its bytes do; the first holds six bytes of it.
    std::uint64_t inlineText(std::size_t half) const {
        constexpr std::uint64_t SIX_BYTES = 0xFFFFFFFFFFFFU;
        std::uint64_t word = bits(half);
        if constexpr (std::endian::native == std::endian::little)
            word = __builtin_bswap64(word);
        return half == 0 ? word & SIX_BYTES : word;
    }
    int lexFully(const CZelAtom *other, int *status) const;
    int lexNumber(const CZelAtom &other) const;
    int lexNest(const CZelAtom &other) const;
    int rank() const;
    bool holdsValue(const CZelAtom &value) const;
    bool isRelated(EZelOper op, const CZelAtom &right) const;
    bool isBetween(const CZelAtom &value, bool negated) const;
    bool isLike(const CZelAtom &text, bool negated) const;
    bool exists() const;
    int intOfOther() const;
    long long wholeOfOther() const;
    bool coerceToText();
    bool coerceToFloat();
    bool coerceToWhole(EZelDataType type);

    union {
        Heap m_heap;
        Inline m_inline;
    };
};
static_assert(sizeof(CZelAtom) == 16);

QUINTOR_API std::ostream &operator<<(std::ostream &out, const CZelAtom *atom);
