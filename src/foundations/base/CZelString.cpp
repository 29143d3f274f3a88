#include "foundations/base/CZelString.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <utility>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/ZelMalloc.h"

CZelString::CZelString(const char *text) {
    RSStrCat(text);
}

CZelString::CZelString(const CZelAtom *atom) {
    RSStrCat(atom);
}

CZelString::CZelString(const CZelString &other) {
    RSStrCat(&other);
}

CZelString &CZelString::operator=(const CZelString &other) {
    if (this != &other) {
        RSSetToNull();
        RSStrCat(&other);
    }
    return *this;
}

CZelString::~CZelString() {
    std::free(m_text);
}

// Makes room for `length` bytes more. Gives the text to append, which moves when it lies in the buffer.
const char *CZelString::grow(const char *text, std::size_t length) {
    bool isOwn = m_text != nullptr && text >= m_text && text <= m_text + m_length;
    std::size_t offset = isOwn ? static_cast<std::size_t>(text - m_text) : 0;
    RSReserve(std::max(m_length + length, 2 * m_capacity));
    return isOwn ? m_text + offset : text;
}

void CZelString::RSReserve(std::size_t length) {
    constexpr std::size_t FIRST = 64;
    if (length < m_capacity)
        return;
    std::size_t capacity = std::max(length + 1, FIRST);
    m_text = static_cast<char *>(ZelRealloc(m_text, capacity));
    m_capacity = capacity;
    m_text[m_length] = '\0';
}

void CZelString::RSStrCat(char character) {
    if (character != '\0')
        append(&character, 1);
}

void CZelString::RSStrCat(int number) {
    RSStrCat(static_cast<long long>(number));
}

void CZelString::RSStrCat(long number) {
    RSStrCat(static_cast<long long>(number));
}

void CZelString::RSStrCat(long long number) {
    char digits[24];
    const char *end = std::to_chars(digits, digits + sizeof(digits), number).ptr;
    append(digits, static_cast<std::size_t>(end - digits));
}

void CZelString::RSStrCat(const CZelAtom *atom) {
    if (atom == nullptr)
        return;
    switch (atom->RAType()) {
        case E_RDTText:
            RSStrCat(atom->RATextView());
            break;
        case E_RDTInt:
        case E_RDTLong:
        case E_RDTLong64:
            RSStrCat(atom->RALongLong());
            break;
        default:
            RSStrCat(CZelMallocText(atom->RAStrRep()).get());
    }
}

void CZelString::RSStrCat(const CZelString *other) {
    if (other != nullptr && other->m_text != nullptr)
        append(other->m_text, other->m_length);
}

void CZelString::RSSpaces(int count) {
    if (count <= 0)
        return;
    std::size_t length = static_cast<std::size_t>(count);
    if (length >= m_capacity - m_length)
        grow(nullptr, length);
    std::memset(m_text + m_length, ' ', length);
    m_length += length;
    m_text[m_length] = '\0';
}

void CZelString::RSNewLine() {
    append("\n", 1);
}

void CZelString::RSSearchAndReplace(const char *what, const char *with) {
    const char *found = m_text == nullptr || what == nullptr || *what == '\0' ? nullptr : std::strstr(m_text, what);
    if (found == nullptr)
        return;
    std::string_view replacement = with == nullptr ? std::string_view() : std::string_view(with);
    std::size_t skip = std::strlen(what);
    CZelString result;
    result.RSReserve(m_length);
    const char *rest = m_text;
    for (; found != nullptr; found = std::strstr(rest, what)) {
        result.append(rest, static_cast<std::size_t>(found - rest));
        result.RSStrCat(replacement);
        rest = found + skip;
    }
    result.append(rest, static_cast<std::size_t>(m_text + m_length - rest));
    swap(result);
}

void CZelString::swap(CZelString &other) noexcept {
    std::swap(m_text, other.m_text);
    std::swap(m_length, other.m_length);
    std::swap(m_capacity, other.m_capacity);
}

char *CZelString::RSTakeString() {
    if (m_text == nullptr)
        return ZelStrDup("");
    m_length = 0;
    m_capacity = 0;
    return std::exchange(m_text, nullptr);
}

char *CZelString::RSStringCopy() const {
    return ZelStrDup(m_text == nullptr ? "" : m_text, m_length);
}

CZelAtom *CZelString::RSStringAsAtom() const {
    return new CZelAtom(m_text == nullptr ? "" : m_text, m_length);
}

void CZelString::RSSetToNull() {
    m_length = 0;
    if (m_text != nullptr)
        *m_text = '\0';
}
