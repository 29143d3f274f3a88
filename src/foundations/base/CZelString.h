// A growable text builder, used on the stack; OQL texts and messages are put together with it.
#pragma once

#include <cstddef>
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

    void RSStrCat(const char *text);  // null adds nothing
    void RSStrCat(char character);
    void RSStrCat(int number);
    void RSStrCat(long number);
    void RSStrCat(long long number);
    void RSStrCat(const CZelAtom *atom);  // the value's text, as RAStrRep; null adds nothing
    void RSStrCat(const CZelString *other);
    void RSStrCat(std::string_view text);

    // Append as an OQL literal that reads back as the same value under the process's escape switch. The
    // text forms always quote. An atom goes by its type: text quoted, numbers plain, lists and objects as
    // literals, null as NULL, data as its quoted text form. The preferred quote is ' or, in the Double forms,
    // "; where the text needs it the other one serves. A text that no literal can spell is reported
    // (E_RCBadValue) and written in a form that still closes where it should.
    void RSStrCatQuoted(const char *text);
    void RSStrCatQuoted(const CZelAtom *atom);
    void RSStrCatDoubleQuoted(const char *text);
    void RSStrCatDoubleQuoted(const CZelAtom *atom);

    void RSSpaces(int count);
    void RSNewLine();
    void RSSearchAndReplace(const char *what, const char *with);  // every occurrence, from the left

    const char *RSString() const { return m_text; }  // null only while nothing was ever appended
    std::size_t RSStringLength() const { return m_length; }
    char *RSTakeString();              // detaches the buffer (from malloc); the string is empty afterwards
    char *RSStringCopy() const;        // new from malloc, empty text for an empty string
    CZelAtom *RSStringAsAtom() const;  // new text atom
    void RSSetToNull();
    void RSReserve(std::size_t length);

private:
    void append(const char *text, std::size_t length);

    char *m_text = nullptr;
    std::size_t m_length = 0;
    std::size_t m_capacity = 0;
};
