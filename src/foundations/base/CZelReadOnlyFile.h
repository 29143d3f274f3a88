// A file that is read from its beginning on. Small reads are served from a buffer. Pipes will do.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "foundations/port/ZelExport.h"
#include "foundations/port/ZelFile.h"

struct stat;

enum EZelFileResult : int {
    E_FROk = 0,
    E_FRNotFound = 1,
    E_FRNoAccess = 2,  // not readable for us, or a directory
    E_FRNotOpen = 3,
    E_FREnd = 4,    // the file ended before all was read
    E_FRFailed = 5  // the system failed; errno tells how
};

class QUINTOR_API CZelReadOnlyFile {
public:
    // The flag has no effect. The path is copied.
    explicit CZelReadOnlyFile(const char *path, bool flag = false);
    CZelReadOnlyFile(const CZelReadOnlyFile &) = delete;
    CZelReadOnlyFile &operator=(const CZelReadOnlyFile &) = delete;
    ~CZelReadOnlyFile();  // closes

    EZelFileResult ROFCheckAccess() const;

    // Opening an open file closes it first.
    EZelFileResult ROFOpen();

    // Opens the file that belongs to the process's domain, name.DOMAIN.ext beside name.ext, or name.ext
    // itself if there is none or no domain is set.
    EZelFileResult ROFOpenDomainSpecific();

    // The next `count` bytes. E_FREnd when the file ended before: what was left is in the buffer, the rest
    // of which stays as it was.
    EZelFileResult ROFRead(char *buffer, unsigned int count);

    // All that has not been read yet, with a NUL behind it: new from malloc, an empty text for an empty
    // file. Null, with errno set, when the file is not open or can't be read. *length, if given, is the number
    // of bytes, NULs among them counted.
    char *ROFReadAll(std::size_t *length = nullptr);

    // E_FROk for a file that is not open.
    EZelFileResult ROFClose();

    // The name last opened; before that, the one given.
    const char *ROFFileName() const { return m_opened.c_str(); }

    EZelFileResult ROFGetFileDetails(struct stat &details) const;

private:
    EZelFileResult openPath(const std::string &path);
    std::string domainPath() const;
    unsigned int takeFromBuffer(char *buffer, unsigned int count);
    bool fillBuffer();

    std::string m_path;
    std::string m_opened;
    ZelFileHandle m_handle = ZEL_NO_FILE;
    std::unique_ptr<char[]> m_buffer;  // made at the first read
    unsigned int m_next = 0;           // the first byte of the buffer that nobody has had
    unsigned int m_filled = 0;
};
