#include "foundations/base/CZelReadOnlyFile.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelEnv.h"
#include "foundations/base/ZelMalloc.h"

namespace {

constexpr unsigned int BUFFER_SIZE = 65536;
constexpr std::size_t FIRST_TEXT = 65536;  // of a file whose size is not known
constexpr unsigned int LARGEST_READ = 1U << 30;

EZelFileResult resultOf(int errnoValue) {
    switch (errnoValue) {
        case ENOENT:
        case ENOTDIR:
            return E_FRNotFound;
        case EACCES:
        case EPERM:
        case EISDIR:
            return E_FRNoAccess;
        default:
            return E_FRFailed;
    }
}

EZelFileResult accessTo(const std::string &path) {
    struct stat details {};
    if (stat(path.c_str(), &details) != 0)
        return resultOf(errno);
    if (S_ISDIR(details.st_mode))
        return E_FRNoAccess;
    return access(path.c_str(), R_OK) == 0 ? E_FROk : resultOf(errno);
}

// A text from malloc that grows while a file is read into it.
class GrowingText {
public:
    explicit GrowingText(std::size_t size) : m_size(size), m_text(static_cast<char *>(ZelMalloc(size))) {}

    char *end() { return m_text.get() + m_length; }
    unsigned int room() {
        if (m_length + 1 == m_size)
            grow();
        return static_cast<unsigned int>(std::min<std::size_t>(m_size - m_length - 1, LARGEST_READ));
    }
    void added(std::size_t count) { m_length += count; }
    std::size_t length() const { return m_length; }
    char *take() {
        m_text.get()[m_length] = '\0';
        return m_text.release();
    }

private:
    void grow() {
        m_size *= 2;
        m_text.reset(static_cast<char *>(ZelRealloc(m_text.release(), m_size)));
    }

    std::size_t m_size;
    std::size_t m_length = 0;
    CZelMallocText m_text;
};

}  // namespace

CZelReadOnlyFile::CZelReadOnlyFile(const char *path, bool) : m_path(path != nullptr ? path : ""), m_opened(m_path) {}

CZelReadOnlyFile::~CZelReadOnlyFile() {
    ROFClose();
}

EZelFileResult CZelReadOnlyFile::ROFCheckAccess() const {
    return accessTo(m_path);
}

EZelFileResult CZelReadOnlyFile::ROFOpen() {
    return openPath(m_path);
}

EZelFileResult CZelReadOnlyFile::ROFOpenDomainSpecific() {
    const std::string own = domainPath();
    if (!own.empty() && accessTo(own) == E_FROk)
        return openPath(own);
    return openPath(m_path);
}

EZelFileResult CZelReadOnlyFile::openPath(const std::string &path) {
    ROFClose();
    const EZelFileResult accessible = accessTo(path);
    if (accessible != E_FROk)
        return accessible;
    m_handle = ZelFileOpen(path.c_str(), ZEL_FILE_READ, 0);
    if (m_handle == ZEL_NO_FILE)
        return resultOf(errno);
    m_opened = path;
    return E_FROk;
}

// Empty without a domain, and for one that would lead into another directory.
std::string CZelReadOnlyFile::domainPath() const {
    const CZelAtom *domain = CZelEnv::REDomain(nullptr);
    if (domain == nullptr || domain->RATextLength() == 0 || domain->RATextView().find('/') != std::string_view::npos)
        return {};
    const std::size_t slash = m_path.rfind('/');
    const std::size_t name = slash == std::string::npos ? 0 : slash + 1;
    std::size_t dot = m_path.rfind('.');
    if (dot == std::string::npos || dot <= name)
        dot = m_path.size();
    return m_path.substr(0, dot) + "." + std::string(domain->RATextView()) + m_path.substr(dot);
}

EZelFileResult CZelReadOnlyFile::ROFRead(char *buffer, unsigned int count) {
    if (m_handle == ZEL_NO_FILE)
        return E_FRNotOpen;
    unsigned int done = takeFromBuffer(buffer, count);
    while (done < count) {
        if (!fillBuffer())
            return E_FRFailed;
        if (m_filled == 0)
            return E_FREnd;
        done += takeFromBuffer(buffer + done, count - done);
    }
    return E_FROk;
}

unsigned int CZelReadOnlyFile::takeFromBuffer(char *buffer, unsigned int count) {
    const unsigned int part = std::min(count, m_filled - m_next);
    if (part > 0)
        std::memcpy(buffer, m_buffer.get() + m_next, part);
    m_next += part;
    return part;
}

// False when the system fails; a filled size of 0 is the end.
bool CZelReadOnlyFile::fillBuffer() {
    if (m_buffer == nullptr)
        m_buffer = std::make_unique<char[]>(BUFFER_SIZE);
    m_next = m_filled = 0;
    const long count = ZelFileRead(m_handle, m_buffer.get(), BUFFER_SIZE);
    if (count < 0)
        return false;
    m_filled = static_cast<unsigned int>(count);
    return true;
}

char *CZelReadOnlyFile::ROFReadAll(std::size_t *length) {
    if (m_handle == ZEL_NO_FILE) {
        errno = EBADF;
        return nullptr;
    }
    unsigned int size = 0;
    const bool sizeKnown = ZelGetOpenFileSize(m_handle, size) == 1 && size > 0;
    GrowingText text((sizeKnown ? size : FIRST_TEXT) + BUFFER_SIZE + 2);
    text.added(takeFromBuffer(text.end(), BUFFER_SIZE));
    for (;;) {
        const unsigned int room = text.room();
        const long count = ZelFileRead(m_handle, text.end(), room);
        if (count < 0)
            return nullptr;
        text.added(static_cast<std::size_t>(count));
        if (static_cast<unsigned int>(count) < room)
            break;
    }
    if (length != nullptr)
        *length = text.length();
    return text.take();
}

EZelFileResult CZelReadOnlyFile::ROFClose() {
    if (m_handle == ZEL_NO_FILE)
        return E_FROk;
    const int status = ZelFileClose(m_handle);
    m_handle = ZEL_NO_FILE;
    m_next = m_filled = 0;
    return status == 1 ? E_FROk : E_FRFailed;
}

EZelFileResult CZelReadOnlyFile::ROFGetFileDetails(struct stat &details) const {
    const int status = m_handle != ZEL_NO_FILE ? fstat(m_handle, &details) : stat(m_opened.c_str(), &details);
    return status == 0 ? E_FROk : resultOf(errno);
}
