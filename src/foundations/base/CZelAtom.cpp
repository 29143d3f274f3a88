#include "foundations/base/CZelAtom.h"

#include <cstdlib>

#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelName.h"
#include "foundations/base/CZelUChar.h"
#include "foundations/base/CZelVBList.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/base/ZelShortBytes.h"
#include "foundations/port/CZelError.h"

namespace {

// Up to 16 bytes as two words in memory order, zeros behind them.
struct ShortText {
    std::uint64_t m_first;
    std::uint64_t m_second;
};

template <class Word>
std::uint64_t load(const char *text) {
    Word word;
    std::memcpy(&word, text, sizeof(word));
    return word;
}

// Reads by words that overlap, never outside the text.
ShortText loadShort(const char *text, std::size_t length) {
    constexpr std::size_t WORD = sizeof(std::uint64_t), HALF = sizeof(std::uint32_t);
    if (length > WORD)
        return {load<std::uint64_t>(text), load<std::uint64_t>(text + length - WORD) >> 8 * (2 * WORD - length)};
    if (length >= HALF)
        return {load<std::uint32_t>(text) | load<std::uint32_t>(text + length - HALF) << 8 * (length - HALF), 0};
    if (length == 0)
        return {0, 0};
    return {load<unsigned char>(text) | load<unsigned char>(text + length / 2) << 8 * (length / 2) |
                load<unsigned char>(text + length - 1) << 8 * (length - 1),
            0};
}

}  // namespace

CZelAtom::CZelAtom(const char *text) : CZelAtom() {
    if (text != nullptr)
        setText(text, std::strlen(text));
}

CZelAtom::CZelAtom(char *text) : CZelAtom() {
    if (text != nullptr)
        takeText(text, std::strlen(text));
}

CZelAtom::CZelAtom(const char *text, std::size_t length) : CZelAtom() {
    if (text != nullptr)
        setText(text, length);
}

CZelAtom::CZelAtom(bool, const char *text) : CZelAtom() {
    if (text == nullptr)
        return;
    setWords(headOf(E_RDTText, BORROWED, static_cast<std::uint32_t>(std::strlen(text))), wordOf(text));
}

CZelAtom::CZelAtom(unsigned char *data, int length) {
    setWords(headOf(E_RDTData), wordOf(new CZelUChar(data, length)));
}

CZelAtom::CZelAtom(const unsigned char *data, int length) {
    std::size_t size = data == nullptr || length < 0 ? 0 : static_cast<std::size_t>(length);
    unsigned char *copy = static_cast<unsigned char *>(ZelMalloc(size));
    if (size != 0)
        std::memcpy(copy, data, size);
    setWords(headOf(E_RDTData), wordOf(new CZelUChar(copy, static_cast<int>(size))));
}

CZelAtom::CZelAtom(CZelAtomVector *list) {
    setWords(headOf(E_RDTList), wordOf(list));
}

CZelAtom::CZelAtom(CZelVBList *object) {
    setWords(headOf(E_RDTObject), wordOf(object));
}

CZelAtom CZelAtom::RAName(const char *text, std::size_t length) {
    const CZelAtom *name = CZelName::RNIntern(text, length);
    return name != nullptr ? CZelAtom(*name) : CZelAtom(text, length);
}

CZelAtom CZelAtom::RAName(const char *text) {
    return text == nullptr ? CZelAtom() : RAName(text, std::strlen(text));
}

CZelAtomVector *CZelAtom::RATakeList() {
    CZelAtomVector *list = RAList();
    if (list != nullptr)
        m_heap.word.list = nullptr;
    return list;
}

void CZelAtom::RAUChar(unsigned char **data, int *length) const {
    const CZelUChar *block = RAUChar();
    *data = block == nullptr ? nullptr : block->RUCData();
    *length = block == nullptr ? 0 : block->RUCLength();
}

const CZelAtom *CZelAtom::RASubVal(const char *name) const {
    const CZelVarBind *member = RASubVarBind(name);
    return member == nullptr ? nullptr : member->RVBValue();
}

const CZelVarBind *CZelAtom::RASubVarBind(const char *name) const {
    return RAObject() == nullptr || name == nullptr ? nullptr : RAObject()->RVBLFind(name);
}

const char *CZelAtom::RAGetDataTypeString(EZelDataType type) {
    static constexpr const char *NAMES[] = {"int",  "long",    "text", "float",  "long64",
                                            "data", "locator", "list", "object", "undefined"};
    return type < E_RDTInt || type > E_RDTUndefined ? NAMES[E_RDTUndefined] : NAMES[type];
}

CZelAtom CZelAtom::RAKey(const CZelAtom &value) {
    return value.m_heap.type == E_RDTText && !value.isFlat() ? RAKey(value.m_heap.word.text, value.m_heap.length)
                                                             : value;
}

CZelAtom CZelAtom::RAKey(const char *text, std::size_t length) {
    CZelAtom key;
    key.setText(text, length, CZelPool::KEYS);
    return key;
}

void CZelAtom::RASet(const CZelAtom *other) {
    if (other == nullptr)
        RASet();
    else
        *this = *other;
}

void CZelAtom::RASet(CZelAtom *other) {
    if (other == nullptr)
        RASet();
    else
        *this = std::move(*other);
}

void CZelAtom::release() {
    if (m_heap.type == E_RDTText && (m_heap.flags & POOLED) != 0)
        CZelPool::RPGive(m_heap.word.text, m_heap.length + std::size_t{1}, kindOfText());
    else if (m_heap.type == E_RDTText)
        std::free(m_heap.word.text);
    else if (m_heap.type == E_RDTData)
        delete m_heap.word.data;
    else
        releaseNest();
    setUndefined();
}

void CZelAtom::copyMemory(const CZelAtom &other) {
    if (other.m_heap.type == E_RDTText) {
        setText(other.RAString(), other.RATextLength());
    } else if (other.m_heap.type == E_RDTData) {
        setWords(headOf(E_RDTData), wordOf(new CZelUChar(*other.m_heap.word.data)));
    } else {
        copyNest(other);
    }
}

void CZelAtom::assignMemory(const CZelAtom &other) {
    if (!fitsInPlace(other)) {
        *this = CZelAtom(other);
    } else if (this != &other) {
        char *text = m_heap.word.text;
        ZelCopyBytes(text, other.m_heap.word.text, std::size_t{other.m_heap.length} + 1);
        setWords(headOf(E_RDTText, m_heap.flags, other.m_heap.length), wordOf(text));
    }
}

// Can this text's block hold the other's text?
bool CZelAtom::fitsInPlace(const CZelAtom &other) const {
    const bool arePooled = ownsMemory() && other.ownsMemory() && (m_heap.flags & other.m_heap.flags & POOLED) != 0;
    return arePooled && CZelPool::RPServes(std::size_t{m_heap.length} + 1, std::size_t{other.m_heap.length} + 1);
}

void CZelAtom::ownLentText() noexcept {
    setText(m_heap.word.text, m_heap.length);
}

void CZelAtom::setText(const char *text, std::size_t length, CZelPool::Kind kind) {
    if (length <= INLINE_MAX)
        setInline(text, length);
    else if (length < CZelPool::LARGEST)
        setPooled(text, length, kind);
    else
        takeText(ZelStrDup(text, length), length);
}

void CZelAtom::setPooled(const char *text, std::size_t length, CZelPool::Kind kind) {
    auto *copy = static_cast<char *>(CZelPool::RPTake(length + 1, kind));
    ZelCopyBytes(copy, text, length);
    copy[length] = '\0';
    const unsigned flags = kind == CZelPool::KEYS ? POOLED | KEY : POOLED;
    setWords(headOf(E_RDTText, flags, static_cast<std::uint32_t>(length)), wordOf(copy));
}

void CZelAtom::setInline(const char *text, std::size_t length) {
    std::uint8_t flags = static_cast<std::uint8_t>(INLINE | length << 4);
    if constexpr (std::endian::native == std::endian::little) {
        // Built in registers and stored as two words: what is stored byte by byte can't be read back as words
        // at once, and an atom is often copied or compared right after it was made.
        ShortText bytes = loadShort(text, length);
        std::uint64_t words[2] = {bytes.m_first << 16 | std::uint64_t{flags} << 8 | E_RDTText,
                                  bytes.m_second << 16 | bytes.m_first >> 48};
        std::memcpy(static_cast<void *>(this), words, sizeof(words));
    } else {
        m_inline = {E_RDTText, flags, {}};
        std::memcpy(m_inline.text, text, length);
    }
}

void CZelAtom::takeText(char *text, std::size_t length) {
    CZelMallocText owner(text);
    if (length <= INLINE_MAX) {
        setInline(text, length);
    } else if (length > UINT32_MAX) {
        setUndefined();
        ZEL_REPORT(E_RCBadValue, "CZelAtom: a text of 4 GiB or more is no value.");
    } else {
        setWords(headOf(E_RDTText, 0, static_cast<std::uint32_t>(length)), wordOf(owner.release()));
    }
}
