#include "programs/oql/ZelValueText.h"

#include <clocale>
#include <cwchar>

#include <charconv>
#include <cmath>
#include <vector>

#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/base/CZelString.h"

namespace {

const char HEX[] = "0123456789abcdef";

struct Character {
    unsigned int m_code;
    std::size_t m_length;  // 0 for a byte that begins no character
};

// The rules for bytes behind the first: how many, and the least code that needs that many.
Character decodeLong(std::string_view text, std::size_t length, unsigned int lead, unsigned int least) {
    if (text.size() < length)
        return {0, 0};
    unsigned int code = lead;
    for (std::size_t i = 1; i < length; ++i) {
        unsigned char byte = static_cast<unsigned char>(text[i]);
        if ((byte & 0xC0) != 0x80)
            return {0, 0};
        code = code << 6 | (byte & 0x3FU);
    }
    bool surrogate = code >= 0xD800 && code < 0xE000;
    bool good = code >= least && code <= 0x10FFFF && !surrogate;
    return {code, good ? length : 0};
}

Character decode(std::string_view text) {
    unsigned int byte = static_cast<unsigned char>(text[0]);
    if (byte < 0x80)
        return {byte, 1};
    if (byte >= 0xC0 && byte < 0xE0)
        return decodeLong(text, 2, byte & 0x1F, 0x80);
    if (byte >= 0xE0 && byte < 0xF0)
        return decodeLong(text, 3, byte & 0x0F, 0x800);
    if (byte >= 0xF0 && byte < 0xF8)
        return decodeLong(text, 4, byte & 0x07, 0x10000);
    return {0, 0};
}

void appendHexByte(std::string &out, char byte) {
    unsigned char value = static_cast<unsigned char>(byte);
    out += HEX[value >> 4];
    out += HEX[value & 15];
}

// wcwidth asks the locale of the thread.
class Utf8Locale {
public:
    Utf8Locale() : m_former(uselocale(utf8())) {}
    Utf8Locale(const Utf8Locale &) = delete;
    Utf8Locale &operator=(const Utf8Locale &) = delete;
    ~Utf8Locale() { uselocale(m_former); }

private:
    static locale_t utf8() {
        static locale_t locale = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
        return locale;
    }
    locale_t m_former;
};

// JSON's short forms; 0 for a character that has none.
char shortEscape(char c) {
    switch (c) {
        case '"':
        case '\\':
            return c;
        case '\n':
            return 'n';
        case '\r':
            return 'r';
        case '\t':
            return 't';
        default:
            return '\0';
    }
}

void appendJsonCharacter(std::string &out, std::string_view character, const Character &decoded) {
    char escape = shortEscape(character[0]);
    if (escape != '\0') {
        out += '\\';
        out += escape;
    } else if (decoded.m_length == 0 || decoded.m_code < 0x20 || decoded.m_code == 0x7F) {
        out += "\\u00";
        appendHexByte(out, character[0]);
    } else {
        out += character;
    }
}

// A list or an object that is being written, and where in it we are.
struct Level {
    const CZelAtomVector *m_list;
    unsigned int m_index;
    const CZelVarBind *m_binding;
    const CZelVBList *m_object;
};

// Writes a value without nesting calls: a text can nest values as deep as it likes.
class JsonValue {
public:
    explicit JsonValue(std::string &out) : m_out(out) {}

    void write(const CZelAtom *value) {
        begin(value);
        while (!m_levels.empty())
            next();
    }

private:
    void begin(const CZelAtom *value) {
        if (CZelAtom::RAIsNull(value)) {
            m_out += "null";
        } else if (value->RAType() == E_RDTList) {
            m_out += '[';
            m_levels.push_back({value->RAList(), 0, nullptr, nullptr});
        } else if (value->RAType() == E_RDTObject) {
            m_out += '{';
            const CZelVBList *object = value->RAObject();
            m_levels.push_back({nullptr, 0, object == nullptr ? nullptr : object->RVBLHead(), object});
        } else {
            scalar(*value);
        }
    }

    void next() {
        Level &level = m_levels.back();
        if (level.m_list != nullptr && level.m_index < level.m_list->RAVSize())
            nextElement(level);
        else if (level.m_binding != nullptr)
            nextMember(level);
        else
            end(level);
    }

    void nextElement(Level &level) {
        if (level.m_index > 0)
            m_out += ',';
        begin(level.m_list->RAVGetValue(level.m_index++));
    }

    void nextMember(Level &level) {
        const CZelVarBind *binding = level.m_binding;
        if (binding != level.m_object->RVBLHead())
            m_out += ',';
        level.m_binding = level.m_object->RVBLGetNext(binding);
        ZelAppendJsonString(m_out, binding->RVBName().RATextView());
        m_out += ':';
        begin(binding->RVBValue());
    }

    void end(const Level &level) {
        m_out += level.m_object != nullptr ? '}' : ']';
        m_levels.pop_back();
    }

    void scalar(const CZelAtom &value) {
        if (value.RAType() == E_RDTText)
            ZelAppendJsonString(m_out, value.RATextView());
        else if (value.RAType() == E_RDTFloat)
            real(value.RAFloat());
        else if (value.RAIsNumber())
            m_out += std::to_string(value.RALongLong());
        else
            data(value);
    }

    void real(float value) {
        char digits[64];
        if (std::isfinite(value))
            m_out.append(digits, std::to_chars(digits, digits + sizeof(digits), value).ptr);
        else
            m_out += "null";
    }

    void data(const CZelAtom &value) {
        unsigned char *bytes = nullptr;
        int length = 0;
        value.RAUChar(&bytes, &length);
        m_out += "{\"data\":\"";
        for (int i = 0; i < length; ++i)
            appendHexByte(m_out, static_cast<char>(bytes[i]));
        m_out += "\"}";
    }

    std::string &m_out;
    std::vector<Level> m_levels;
};

}  // namespace

std::string ZelPlainText(const CZelAtom *value) {
    if (value != nullptr && value->RAType() == E_RDTText)
        return std::string(value->RATextView());
    return ZelLiteral(value);
}

std::string ZelLiteral(const CZelAtom *value) {
    if (CZelAtom::RAIsNull(value))
        return "NULL";
    CZelString text;
    text.RSStrCatQuoted(value);
    return text.RSString() == nullptr ? std::string() : std::string(text.RSString(), text.RSStringLength());
}

std::string ZelRowLiteral(const CZelRecord &row) {
    std::string text = "{";
    const CZelVBList *values = row.RRVbIterator();
    for (const CZelVarBind *value = values->RVBLHead(); value != nullptr; value = values->RVBLGetNext(value)) {
        if (value != values->RVBLHead())
            text += ", ";
        text.append(value->RVBName().RATextView()).append("=").append(ZelLiteral(value->RVBValue()));
    }
    return text + "}";
}

void ZelAppendJson(std::string &out, const CZelAtom *value) {
    JsonValue(out).write(value);
}

void ZelAppendJsonString(std::string &out, std::string_view text) {
    out += '"';
    while (!text.empty()) {
        Character decoded = decode(text);
        std::size_t length = decoded.m_length == 0 ? 1 : decoded.m_length;
        appendJsonCharacter(out, text.substr(0, length), decoded);
        text.remove_prefix(length);
    }
    out += '"';
}

std::string ZelOneLine(std::string_view text) {
    std::string out;
    while (!text.empty()) {
        Character decoded = decode(text);
        bool control = decoded.m_code < 0x20 || (decoded.m_code >= 0x7F && decoded.m_code < 0xA0);
        std::size_t length = decoded.m_length == 0 ? 1 : decoded.m_length;
        if (text[0] == '\n' || text[0] == '\t') {
            out += text[0] == '\n' ? "\\n" : "\\t";
        } else if (control) {
            for (char byte : text.substr(0, length)) {
                out += "\\x";
                appendHexByte(out, byte);
            }
        } else {
            out += text.substr(0, length);
        }
        text.remove_prefix(length);
    }
    return out;
}

int ZelDisplayWidth(std::string_view text) {
    Utf8Locale locale;
    int width = 0;
    while (!text.empty()) {
        Character decoded = decode(text);
        int columns = decoded.m_code < 0x80 ? 1 : wcwidth(static_cast<wchar_t>(decoded.m_code));
        width += columns < 0 ? 1 : columns;
        text.remove_prefix(decoded.m_length == 0 ? 1 : decoded.m_length);
    }
    return width;
}
