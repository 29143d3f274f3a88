#include "programs/oql/CZelNewFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr std::size_t BUFFER_SIZE = 256 * 1024;

// As the file that is replaced, else as any new file.
mode_t modeFor(const std::string &path) {
    struct stat former = {};
    if (stat(path.c_str(), &former) == 0)
        return former.st_mode & 07777;
    mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

std::string folderOf(const std::string &path) {
    std::size_t slash = path.rfind('/');
    if (slash == std::string::npos)
        return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

}  // namespace

CZelNewFile::~CZelNewFile() {
    giveUp();
}

bool CZelNewFile::Open(const std::string &path) {
    m_path = path;
    m_temporary = path + ".XXXXXX";
    m_file = mkostemp(m_temporary.data(), O_CLOEXEC);
    return m_file >= 0 && fchmod(m_file, modeFor(path)) == 0;
}

bool CZelNewFile::Write(std::string_view text) {
    m_buffer += text;
    return m_buffer.size() < BUFFER_SIZE || flush();
}

bool CZelNewFile::flush() {
    std::string_view rest = m_buffer;
    while (!rest.empty()) {
        ssize_t written = write(m_file, rest.data(), rest.size());
        if (written < 0 && errno != EINTR)
            return false;
        rest.remove_prefix(written < 0 ? 0 : static_cast<std::size_t>(written));
    }
    m_buffer.clear();
    return true;
}

bool CZelNewFile::Commit() {
    if (!flush() || fsync(m_file) != 0)
        return false;
    int file = m_file;
    m_file = -1;
    if (close(file) != 0 || rename(m_temporary.c_str(), m_path.c_str()) != 0) {
        int reason = errno;
        unlink(m_temporary.c_str());
        errno = reason;
        return false;
    }
    return syncFolder();
}

bool CZelNewFile::syncFolder() const {
    int folder = open(folderOf(m_path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0)
        return false;
    bool synced = fsync(folder) == 0;
    close(folder);
    return synced;
}

void CZelNewFile::giveUp() {
    if (m_file < 0)
        return;
    close(m_file);
    unlink(m_temporary.c_str());
    m_file = -1;
}
