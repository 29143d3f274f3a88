// The files of a directory.
#pragma once

#include <string>

#include "foundations/port/ZelExport.h"

class CZelAtomVector;

enum EZelDirResult : int {
    E_DROk = 0,
    E_DRNotFound = 1,  // no such directory, or it is none
    E_DRNoAccess = 2   // its names can't be read
};

class QUINTOR_API CZelDirectory {
public:
    explicit CZelDirectory(const char *path);

    EZelDirResult RDCheckAccess() const;

    // The names, without the path, of the files that begin with `prefix`, end with `suffix` and hold
    // `infix`, in order of their bytes; null asks for nothing. Directories are left out. New, the caller's,
    // never null: empty when the directory can't be read.
    CZelAtomVector *RDGetFileList(const char *prefix, const char *suffix, const char *infix) const;

    // Nothing stays open between calls; E_DROk.
    EZelDirResult RDClose() { return E_DROk; }

private:
    std::string m_path;
};
