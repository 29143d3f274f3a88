// A typed value: the content of every cell, list element, object member and constant.
//
// 16 bytes: type, flags, and either a text of up to 13 bytes with its NUL, or a text's length and one word
// that holds the value or points to it. An atom owns what it points to, except a text that is lent or
// interned. No atom is shared between owners: it is copied, or ownership moves.
//
// The text of an atom may lie inside the atom: RAString() is good until the atom changes, moves or dies.
//
// Threads: no lock; several threads may read an atom that nobody changes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string_view>

#include "foundations/base/CZelPool.h"
#include "foundations/base/ZelEnums.h"
#include "foundations/port/ZelExport.h"

class CZelAtomVector;
class CZelUChar;
class CZelVBList;
class CZelVarBind;

class QUINTOR_API CZelAtom {
public:
    ZEL_POOLED

    CZelAtom() noexcept : m_heap{E_RDTUndefined, 0, 0, 0, {}} {}
    CZelAtom(int value) noexcept : m_heap{E_RDTInt, 0, 0, 0, {}} { m_heap.word.whole = value; }
    CZelAtom(long value) noexcept : m_heap{E_RDTLong, 0, 0, 0, {}} { m_heap.word.whole = value; }
    CZelAtom(long long value) noexcept : m_heap{E_RDTLong64, 0, 0, 0, {}} { m_heap.word.whole = value; }
    CZelAtom(float value) noexcept : m_heap{E_RDTFloat, 0, 0, 0, {}} { m_heap.word.real = value; }
    CZelAtom(const char *text);                       // copies; null gives an undefined atom
    CZelAtom(char *text);                             // takes over a text from malloc; null likewise
    CZelAtom(const char *text, std::size_t length);   // copies; the text may hold no NUL
    CZelAtom(bool lent, const char *text);            // refers to a text that outlives the atom; lent is true
    CZelAtom(unsigned char *data, int length);        // takes over a block from malloc
    CZelAtom(const unsigned char *data, int length);  // copies the block
    CZelAtom(CZelAtomVector *list);                   // takes over
    CZelAtom(CZelVBList *object);                     // takes over
    CZelAtom(const CZelAtom &other);                  // deep copy; an interned text stays shared
    CZelAtom(CZelAtom &&other) noexcept;              // leaves `other` undefined
    CZelAtom &operator=(const CZelAtom &other);
    CZelAtom &operator=(CZelAtom &&other) noexcept;
    ~CZelAtom() {
        if (ownsMemory())
            release();
    }

    // A text atom whose text is the interned form of `text`, or a copy where it can't be interned.
    static CZelAtom RAName(const char *text, std::size_t length);
    static CZelAtom RAName(const char *text);

    // --- reading ---

    EZelDataType RAType() const { return static_cast<EZelDataType>(m_heap.type); }

    // Null is a null pointer or an undefined atom, everywhere in the system.
    bool RAIsUndefined() const { return m_heap.type == E_RDTUndefined; }
    static bool RAIsNull(const CZelAtom *atom) { return atom == nullptr || atom->RAIsUndefined(); }
    bool RAIsNumber() const {
        return m_heap.type == E_RDTInt || m_heap.type == E_RDTLong || m_heap.type == E_RDTFloat ||
               m_heap.type == E_RDTLong64;
    }

    // The number, converted between the numeric types (a float truncates and clamps); 0 for others.
    int RAInt() const;
    long RALong() const;
    long long RALongLong() const;
    float RAFloat() const;
    double RADouble() const;

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
    bool RASameText(const CZelAtom &other) const;

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
    // objects; a float is the shortest text that reads back; undefined is "undefined" at the top, NULL
    // inside; data is its bytes in hex.
    char *RAStrRep() const;

    // A list in the literal syntax of OQL, new from malloc; the argument is E_RBTrue. Null for others.
    char *RAListAsString(__boolean literal) const;

    // "int", "long", "text", "float", "long64", "data", "locator", "list", "object", else "undefined".
    static const char *RAGetDataTypeString(EZelDataType type);

    // --- changing; the old value is freed ---

    void RASet();
    void RASet(int value);
    void RASet(long value);
    void RASet(long long value);
    void RASet(float value);
    void RASet(char *text);             // takes over a text from malloc
    void RASet(const char *text);       // copies
    void RASet(const CZelAtom *other);  // copies; null makes undefined
    void RASet(CZelAtom *other);        // moves, leaves `other` undefined

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
    int RALex(const CZelAtom *other, int *status) const;

    // The same order over two possibly null pointers, no status.
    static int RACompare(const CZelAtom *left, const CZelAtom *right);

private:
    friend class CZelName;
    friend class CZelVarBind;

    enum Flag : std::uint8_t {
        INLINE = 1,    // the text lies in the atom; its length is in the upper half of the flags
        BORROWED = 2,  // the text is not owned
        INTERNED = 4,  // the text is a name of CZelName
        ABSENT = 8     // in a binding: there is no value at all
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
    void release() noexcept;  // frees what is owned; the atom is undefined afterwards
    void setText(const char *text, std::size_t length);
    void takeText(char *text, std::size_t length);

    union {
        Heap m_heap;
        Inline m_inline;
    };
};
static_assert(sizeof(CZelAtom) == 16);

QUINTOR_API std::ostream &operator<<(std::ostream &out, const CZelAtom *atom);
