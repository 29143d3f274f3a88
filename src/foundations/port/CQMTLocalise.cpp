#include "foundations/port/CQMTLocalise.h"

#include <charconv>
#include <cstring>

#include "foundations/port/CZelConfigLinesImpl.h"
#include "foundations/port/ZelCodes.h"
#include "foundations/port/ZelInstallPathImpl.h"

namespace {

bool takeNumber(const char *&place, const char *end, int &number) {
    const auto [stop, error] = std::from_chars(place, end, number);
    if (error != std::errc() || stop == end || *stop != ' ')
        return false;
    place = stop + 1;
    return true;
}

std::string unescaped(const char *place, const char *end) {
    std::string text;
    for (; place != end; ++place) {
        if (*place == '\\' && place + 1 != end && (place[1] == 'n' || place[1] == '\\')) {
            ++place;
            text += *place == 'n' ? '\n' : '\\';
        } else {
            text += *place;
        }
    }
    return text;
}

// The largest length up to `limit` that does not cut a character of several bytes.
std::size_t wholeCharacters(const char *text, std::size_t limit) {
    while (limit > 0 && (static_cast<unsigned char>(text[limit]) & 0xc0U) == 0x80U)
        --limit;
    return limit;
}

}  // namespace

CQMTLocalise &CQMTLocalise::Instance() {
    static CQMTLocalise s_instance = [] {
        CQMTLocalise catalogue;
        const std::string path = ZelInstallPath("QMT_CATALOGUE", "etc/messages.txt");
        if (!path.empty())
            catalogue.Load(path.c_str());
        return catalogue;
    }();
    return s_instance;
}

int CQMTLocalise::Load(const char *path) {
    CZelConfigLines lines(path, "#");
    if (!lines.IsOpen())
        return E_RCOpenFailed;
    int status = E_RCOk;
    std::string line;
    while (lines.Next(line)) {
        if (addLine(line))
            continue;
        lines.ReportLine("a message is a set, a number and a text, parted by blanks");
        status = E_RCBadValue;
    }
    return status;
}

bool CQMTLocalise::addLine(const std::string &line) {
    const char *place = line.data();
    const char *const end = place + line.size();
    int set = 0;
    int message = 0;
    if (!takeNumber(place, end, set) || !takeNumber(place, end, message))
        return false;
    m_messages[{set, message}] = unescaped(place, end);
    return true;
}

char *CQMTLocalise::Get(int set, int message, const char *defaultText, char *buffer, unsigned int size) const {
    if (buffer == nullptr || size == 0)
        return buffer;
    const auto found = m_messages.find({set, message});
    const char *text = found != m_messages.end() ? found->second.c_str() : defaultText;
    if (text == nullptr)
        text = "";
    std::size_t length = std::strlen(text);
    if (length >= size)
        length = wholeCharacters(text, size - 1);
    std::memcpy(buffer, text, length);
    buffer[length] = '\0';
    return buffer;
}
