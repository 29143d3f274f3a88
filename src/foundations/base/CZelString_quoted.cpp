// Texts as literals of OQL.
//
// A literal runs from its quote to the next quote of the same kind. While the escape switch is off, nothing
// else has a meaning in it. While it is on, a quote behind a backslash does not close it, even if that
// backslash is itself escaped, and behind a backslash b, n and t stand for control characters and any other
// character for itself. So a literal must not end in a backslash, and every other text can be spelled.
#include <cmath>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelString.h"
#include "foundations/base/ZelEscape.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/CZelError.h"

namespace {

bool holds(std::string_view text, char character) {
    return text.find(character) != std::string_view::npos;
}

char otherQuote(char quote) {
    return quote == '\'' ? '"' : '\'';
}

void reportUnspeakable(std::string_view text, const char *reason) {
    CZelString report("CZelString: no literal can spell the text ");
    report.RSStrCat(text);
    report.RSStrCat(reason);
    ZEL_REPORT(E_RCBadValue, report.RSString());
}

// With the switch off: no way to spell the quote inside.
void appendWithSwappedQuotes(CZelString &out, std::string_view text, char quote) {
    reportUnspeakable(text, ", which holds both quotes.");
    out.RSReserve(out.RSStringLength() + text.size());
    for (char character : text)
        out.RSStrCat(character == quote ? otherQuote(quote) : character);
}

void appendEscaped(CZelString &out, std::string_view text, char quote) {
    out.RSReserve(out.RSStringLength() + text.size());
    for (char character : text) {
        if (character == '\\' || character == quote)
            out.RSStrCat('\\');
        out.RSStrCat(character);
    }
}

std::string_view withoutLastBackslashes(std::string_view text) {
    if (text.empty() || text.back() != '\\')
        return text;
    reportUnspeakable(text, ", which ends in a backslash.");
    return text.substr(0, text.find_last_not_of('\\') + 1);
}

}  // namespace

void CZelString::appendQuoted(std::string_view text, char quote) {
    bool escapes = ZelEscapeIsOn();
    if (escapes)
        text = withoutLastBackslashes(text);
    bool plain = !escapes || !holds(text, '\\');  // nothing in the text but quotes can have a meaning
    bool spare = !holds(text, otherQuote(quote));
    bool clash = holds(text, quote);
    if (plain && clash && spare) {
        quote = otherQuote(quote);
        clash = false;
    }
    RSStrCat(quote);
    if (plain && !clash)
        RSStrCat(text);
    else if (escapes)
        appendEscaped(*this, text, quote);
    else
        appendWithSwappedQuotes(*this, text, quote);
    RSStrCat(quote);
}

void CZelString::appendQuoted(const CZelAtom *atom, char quote) {
    EZelDataType type = atom == nullptr ? E_RDTUndefined : atom->RAType();
    switch (type) {
        case E_RDTUndefined:
            RSStrCat("NULL");
            break;
        case E_RDTText:
            appendQuoted(atom->RATextView(), quote);
            break;
        case E_RDTFloat:
            if (std::isnan(atom->RAFloat()))
                RSStrCat("NULL");  // there is no literal for it
            else
                RSStrCat(atom);
            break;
        case E_RDTData:
            appendQuoted(CZelMallocText(atom->RAStrRep()).get(), quote);
            break;
        case E_RDTList:
            RSStrCat(CZelMallocText(atom->RAListAsString(E_RBTrue)).get());
            break;
        default:
            RSStrCat(atom);
    }
}

void CZelString::RSStrCatQuoted(const char *text) {
    if (text != nullptr)
        appendQuoted(std::string_view(text), '\'');
}

void CZelString::RSStrCatQuoted(const CZelAtom *atom) {
    appendQuoted(atom, '\'');
}

void CZelString::RSStrCatDoubleQuoted(const char *text) {
    if (text != nullptr)
        appendQuoted(std::string_view(text), '"');
}

void CZelString::RSStrCatDoubleQuoted(const CZelAtom *atom) {
    appendQuoted(atom, '"');
}
