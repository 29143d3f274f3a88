// A growable text builder, used on the stack; OQL texts and messages are put together with it. It holds no
// NUL: none is appended as a character, and texts given with their length have none.
#pragma once

#include <cstddef>
#include <cstring>
#include <string_view>

#include "foundations/port/ZelExport.h"

class CZelAtom;

class QUINTOR_API CZelString {
public:
    CZelString() = default;
    explicit CZelString(const char *text);
    explicit CZelString(const CZelAtom *atom);
    CZelString(const CZelString &other);
    CZelString &operator=(const CZelString &other);
    ~CZelString();

    // Null adds nothing.
    void RSStrCat(const char *text) {
        if (text != nullptr)
            append(text, std::strlen(text));
    }
    void RSStrCat(char character);
    void RSStrCat(int number);
    void RSStrCat(long number);
    void RSStrCat(long long number);
    void RSStrCat(const CZelAtom *atom);  // the value's text, as RAStrRep; null adds nothing
    void RSStrCat(const CZelString *other);
    void RSStrCat(std::string_view text) { append(text.empty() ? "" : text.data(), text.size()); }

    // Append as an OQL literal that reads back as the same value under the process's escape switch. The
    // text forms always quote; null adds nothing. An atom goes by its type: text quoted, numbers plain, lists
    // and objects as literals, null as NULL, data as its quoted text form. The preferred quote is ' or, in the
    // Double forms, "; where the text needs it the other one serves, or, with the switch on, an escape. A text
    // that no literal can spell is reported (E_RCBadValue) and written in a form that still closes where it
    // should: with the switch off a text with both quotes, its preferred ones written as the other kind; with
    // the switch on a text that ends in backslashes, those left off.
    void RSStrCatQuoted(const char *text);
    void RSStrCatQuoted(const CZelAtom *atom);
    void RSStrCatDoubleQuoted(const char *text);
    void RSStrCatDoubleQuoted(const CZelAtom *atom);

    void RSSpaces(int count);
    void RSNewLine();
    void RSSearchAndReplace(const char *what, const char *with);  // every occurrence, from the left

    const char *RSString() const { return m_text; }  // null only while nothing was ever appended
    std::size_t RSStringLength() const { return m_length; }
    char *RSTakeString();              // detaches the buffer (from malloc), never null; the string is empty afterwards
    char *RSStringCopy() const;        // new from malloc, empty text for an empty string
    CZelAtom *RSStringAsAtom() const;  // new text atom
    void RSSetToNull();
    void RSReserve(std::size_t length);  // room for a text of this length
    void swap(CZelString &other) noexcept;

private:
    void append(const char *text, std::size_t length) {
        if (length >= m_capacity - m_length)
            text = grow(text, length);
        std::memcpy(m_text + m_length, text, length);
        m_length += length;
        m_text[m_length] = '\0';
    }
    const char *grow(const char *text, std::size_t length);
    void appendQuoted(std::string_view text, char quote);
    void appendQuoted(const CZelAtom *atom, char quote);

    char *m_text = nullptr;
    std::size_t m_length = 0;
    std::size_t m_capacity = 0;  // bytes of the buffer, the NUL's included
};
