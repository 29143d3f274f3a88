#include "programs/oqlcheck/CZelPageReport.h"

#include <cstdio>
#include <filesystem>

#include "foundations/base/CZelROMPWrapper.h"
#include "foundations/port/CZelError.h"
#include "store/CZelPageFile.h"
#include "store/CZelPageMap.h"

namespace {

constexpr int MOST_SHOWN = 20;  // positions of damaged pages

long chainsOf(const CZelPageMap &map) {
    return static_cast<long>(map.starts().size());
}

// A pipe would be waited for without end.
bool isPlainFile(const std::string &path) {
    std::error_code failure;
    const std::filesystem::file_status status = std::filesystem::status(path, failure);
    return !std::filesystem::exists(status) || std::filesystem::is_regular_file(status);
}

}  // namespace

CZelPageReport::Outcome CZelPageReport::check(const std::string &path) {
    CZelPageMap map;
    long owner = 0;
    m_text.clear();
    if (!isPlainFile(path)) {
        ZEL_REPORT(E_RCOpenFailed, (path + " is no plain file").c_str());
        return UNREADABLE;
    }
    const int status = CZelPageFile::inspect(path.c_str(), map, &owner);
    if (status != 1)
        return UNREADABLE;
    m_text = path + "\n";
    if (owner != 0)
        m_text += "  in use by process " + std::to_string(owner) + ": what is told may be half of a change\n";
    tell(map);
    const bool isDamaged = map.count(CZelPageMap::DAMAGED) + map.count(CZelPageMap::OUT_OF_USE) > 0;
    m_text += isDamaged ? "  damage: the rows of pages out of use are lost, all others are whole\n" : "  sound\n";
    return isDamaged ? DAMAGE : SOUND;
}

void CZelPageReport::tell(const CZelPageMap &map) {
    line("pages", map.length(), " of 512 bytes");
    line("rows", chainsOf(map));
    line("used", map.count(CZelPageMap::CHAIN_START) + map.count(CZelPageMap::CHAIN_PAGE));
    line("free", map.count(CZelPageMap::FREE));
    line("replaced", map.count(CZelPageMap::REPLACED), " (former rows; freed at the next start)");
    line("out of use", map.count(CZelPageMap::OUT_OF_USE), " (of rows that are not whole)");
    line("damaged", map.count(CZelPageMap::DAMAGED), " (checksum or fields are wrong)");
    tellDamaged(map);
}

void CZelPageReport::tellDamaged(const CZelPageMap &map) {
    int shown = 0;
    for (long page = 0; page < map.length(); ++page) {
        if (map.use(page) != CZelPageMap::DAMAGED)
            continue;
        if (++shown > MOST_SHOWN) {
            m_text += "    and more\n";
            return;
        }
        m_text += "    at byte " + std::to_string(page * CZelROMPWrapper::PAGE_BYTES) + "\n";
    }
}

void CZelPageReport::line(const char *what, long count, const char *more) {
    char text[96];
    std::snprintf(text, sizeof text, "  %-11s%10ld%s\n", what, count, more);
    m_text += text;
}
