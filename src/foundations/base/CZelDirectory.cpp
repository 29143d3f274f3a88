#include "foundations/base/CZelDirectory.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <vector>

#include "foundations/base/CZelAtomVector.h"

namespace {

namespace fs = std::filesystem;

std::string_view viewOf(const char *text) {
    return text != nullptr ? text : std::string_view();
}

bool isFile(const fs::directory_entry &entry) {
    std::error_code error;
    return !entry.is_directory(error);
}

}  // namespace

CZelDirectory::CZelDirectory(const char *path) : m_path(path != nullptr ? path : "") {}

EZelDirResult CZelDirectory::RDCheckAccess() const {
    std::error_code error;
    if (!fs::is_directory(m_path, error))
        return E_DRNotFound;
    return access(m_path.c_str(), R_OK | X_OK) == 0 ? E_DROk : E_DRNoAccess;
}

CZelAtomVector *CZelDirectory::RDGetFileList(const char *prefix, const char *suffix, const char *infix) const {
    std::vector<std::string> names;
    std::error_code error;
    for (fs::directory_iterator entry(m_path, error), end; !error && entry != end; entry.increment(error)) {
        std::string name = entry->path().filename().string();
        if (name.starts_with(viewOf(prefix)) && name.ends_with(viewOf(suffix)) &&
            name.find(viewOf(infix)) != std::string::npos && isFile(*entry))
            names.push_back(std::move(name));
    }
    std::sort(names.begin(), names.end());
    auto *list = new CZelAtomVector(static_cast<unsigned int>(names.size()));
    for (const std::string &name : names)
        list->RAVAddToEnd(new CZelAtom(name.c_str()));
    return list;
}
