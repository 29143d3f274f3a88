#include "store/CZelCacheFiles.h"

#include <cerrno>
#include <cstring>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelEnv.h"
#include "foundations/port/CZelError.h"
#include "foundations/port/ZelFile.h"
#include "store/CZelRecordCache.h"

namespace {

constexpr std::string_view FOLDER = "/var/solvantis/";
constexpr std::string_view MARK = ".Cache.";
constexpr std::string_view DIGITS = "0123456789ABCDEF";
constexpr std::size_t ESCAPE_LENGTH = 4;  // of "..HH"

bool standsAsItIs(unsigned char byte) {
    constexpr unsigned char DELETE = 0x7F;
    return byte >= ' ' && byte != DELETE && byte != '.' && byte != '/';
}

std::string escaped(std::string_view name) {
    std::string text;
    for (const char character : name) {
        const auto byte = static_cast<unsigned char>(character);
        if (standsAsItIs(byte))
            text += character;
        else
            text.append("..").append(1, DIGITS[byte >> 4]).append(1, DIGITS[byte & 15U]);
    }
    return text;
}

bool isEscape(std::string_view text) {
    return text.size() >= ESCAPE_LENGTH && text.starts_with("..") && DIGITS.find(text[2]) != DIGITS.npos &&
           DIGITS.find(text[3]) != DIGITS.npos;
}

// One name as it stands in a file name: every dot in it begins an escape.
bool isOneName(std::string_view text) {
    for (std::size_t place = text.find('.'); place != text.npos; place = text.find('.', place + ESCAPE_LENGTH))
        if (!isEscape(text.substr(place)))
            return false;
    return !text.empty();
}

std::string endOfNames() {
    const CZelAtom *domain = CZelEnv::REDomain(nullptr);
    return "." + (domain != nullptr ? escaped(domain->RATextView()) : std::string());
}

std::string beginOfNames(std::string_view cache, std::string_view database) {
    return escaped(cache).append(MARK).append(escaped(database)).append(1, '.');
}

void reportKept(const std::string &path, const std::string &reason) {
    ZEL_REPORT(E_RCBadValue, ("A cache file is not removed: " + path + " " + reason).c_str());
}

std::string ownerText(long owner) {
    return owner != 0 ? "belongs to process " + std::to_string(owner) : "belongs to a live table";
}

}  // namespace

std::string CZelCacheFiles::folder() {
    const char *home = CZelEnv().REHome();
    return home != nullptr ? std::string(home).append(FOLDER) : std::string();
}

std::string CZelCacheFiles::nameOf(std::string_view cache, std::string_view database, std::string_view table) {
    return beginOfNames(cache, database) + escaped(table) + endOfNames();
}

bool CZelCacheFiles::isOfDatabase(std::string_view name, std::string_view cache, std::string_view database) {
    const std::string begin = beginOfNames(cache, database);
    const std::string end = endOfNames();
    return name.size() > begin.size() + end.size() && name.starts_with(begin) && name.ends_with(end) &&
           isOneName(name.substr(begin.size(), name.size() - begin.size() - end.size()));
}

// The lock is held until the file is gone, so that nobody opens it in between.
void CZelCacheFiles::remove(const std::string &path) {
    const ZelFileHandle file = ZelFileOpen(path.c_str(), ZEL_FILE_READ | ZEL_FILE_WRITE | ZEL_FILE_NO_LINK, 0);
    if (file == ZEL_NO_FILE) {
        if (errno != ENOENT && errno != ENAMETOOLONG)
            reportKept(path, std::strerror(errno));
        return;
    }
    long owner = 0;
    if (ZelFileLock(file, &owner) != 1)
        reportKept(path, errno == EAGAIN ? ownerText(owner) : std::strerror(errno));
    else if (ZelFileIsAt(file, path.c_str()))
        CZelRecordCache::RRCDeleteCacheFile(path.c_str());
    else
        reportKept(path, "was moved or removed by somebody else");
    ZelFileClose(file);
}
