#include <algorithm>
#include <charconv>
#include <cmath>
#include <ostream>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelAtom_nesting.h"
#include "foundations/base/CZelAtom_number.h"
#include "foundations/base/CZelString.h"
#include "foundations/base/CZelVBList.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/CZelError.h"

namespace {

const char *floatText(float value, char *begin, char *end) {
    if (std::isnan(value))
        return std::copy_n("nan", 3, begin);
    if (std::isinf(value))
        return value < 0 ? std::copy_n("-1e999", 6, begin) : std::copy_n("1e999", 5, begin);
    char *last = std::to_chars(begin, end, value).ptr;
    bool looksWhole = std::none_of(begin, last, [](char character) { return character == '.' || character == 'e'; });
    return looksWhole ? std::copy_n(".0", 2, last) : last;
}

char *hexText(const CZelAtom &atom) {
    constexpr const char *DIGITS = "0123456789abcdef";
    unsigned char *data = nullptr;
    int length = 0;
    atom.RAUChar(&data, &length);
    char *text = static_cast<char *>(ZelMalloc(2 * static_cast<std::size_t>(length) + 1));
    char *end = text;
    for (int i = 0; i < length; ++i) {
        *end++ = DIGITS[data[i] >> 4];
        *end++ = DIGITS[data[i] & 15];
    }
    *end = '\0';
    return text;
}

bool isLetter(char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

bool fitsIdentifier(char character) {
    return isLetter(character) || (character >= '0' && character <= '9') || character == '_' || character == '&';
}

bool isIdentifier(std::string_view name) {
    return !name.empty() && isLetter(name.front()) && std::all_of(name.begin(), name.end(), fitsIdentifier);
}

// A name can't be quoted, so one that is no identifier could turn the rest of the literal into something else.
void appendOddName(CZelString &out, std::string_view name) {
    CZelString report("CZelAtom: no literal can spell the member name ");
    report.RSStrCat(name);
    ZEL_REPORT(E_RCBadValue, report.RSString());
    if (name.empty() || !isLetter(name.front()))
        out.RSStrCat('x');
    for (char character : name)
        out.RSStrCat(fitsIdentifier(character) ? character : '_');
}

void appendName(CZelString &out, const CZelAtom &name) {
    if (isIdentifier(name.RATextView()))
        out.RSStrCat(name.RATextView());
    else
        appendOddName(out, name.RATextView());
}

void appendLiteral(CZelString &out, const CZelAtom *value);

void appendElements(CZelString &out, const CZelAtomVector *list) {
    for (unsigned int i = 0; list != nullptr && i < list->RAVSize(); ++i) {
        if (i != 0)
            out.RSStrCat(',');
        appendLiteral(out, list->RAVGetValue(i));
    }
}

void appendMembers(CZelString &out, const CZelVBList *object) {
    const CZelVarBind *member = object == nullptr ? nullptr : object->RVBLHead();
    for (; member != nullptr; member = object->RVBLGetNext(member)) {
        appendName(out, member->RVBName());
        out.RSStrCat('=');
        appendLiteral(out, member->RVBValue());
        if (object->RVBLGetNext(member) != nullptr)
            out.RSStrCat(',');
    }
}

void appendNest(CZelString &out, const CZelAtom &nest) {
    CZelNesting level("CZelAtom: a value is nested too deep to be written whole.");
    if (level.TooDeep()) {
        out.RSStrCat("NULL");
        return;
    }
    bool isList = nest.RAType() == E_RDTList;
    out.RSStrCat(isList ? '[' : '{');
    if (isList)
        appendElements(out, nest.RAList());
    else
        appendMembers(out, nest.RAObject());
    out.RSStrCat(isList ? ']' : '}');
}

void appendLiteral(CZelString &out, const CZelAtom *value) {
    if (CZelAtom::RAIsNull(value) || (value->RAType() == E_RDTFloat && std::isnan(value->RAFloat())))
        out.RSStrCat("NULL");
    else if (value->RAType() == E_RDTList || value->RAType() == E_RDTObject)
        appendNest(out, *value);
    else if (value->RAIsNumber())
        out.RSStrCat(std::string_view(SZelNumberText(*value).m_bytes));
    else
        out.RSStrCatQuoted(value);
}

}  // namespace

SZelNumberText::SZelNumberText(const CZelAtom &number) {
    char *end = m_bytes + sizeof(m_bytes) - 1;
    const char *last = number.RAType() == E_RDTFloat ? floatText(number.RAFloat(), m_bytes, end)
                                                     : std::to_chars(m_bytes, end, number.RALongLong()).ptr;
    m_length = static_cast<std::size_t>(last - m_bytes);
    m_bytes[m_length] = '\0';
}

char *CZelAtom::RAStrRep() const {
    if (m_heap.type == E_RDTText)
        return ZelStrDup(RAString(), RATextLength());
    if (RAIsNumber()) {
        SZelNumberText text(*this);
        return ZelStrDup(text.m_bytes, text.m_length);
    }
    if (m_heap.type == E_RDTData)
        return hexText(*this);
    if (m_heap.type != E_RDTList && m_heap.type != E_RDTObject)
        return ZelStrDup("undefined");
    CZelString out;
    appendNest(out, *this);
    return out.RSTakeString();
}

char *CZelAtom::RAListAsString(__boolean) const {
    return m_heap.type == E_RDTList ? RAStrRep() : nullptr;
}

std::ostream &operator<<(std::ostream &out, const CZelAtom *atom) {
    if (atom == nullptr)
        return out << "NULL";
    if (atom->RAType() == E_RDTText)
        return out << atom->RATextView();
    return out << CZelMallocText(atom->RAStrRep()).get();
}
