// Which version of the system this is, and of the program that is built on it.
//
// Threads: the program stamps its own version at its start; afterwards any may read.
#pragma once

#include <string>

#include "foundations/port/ZelExport.h"

// The version of the library.
struct QUINTOR_API SQMTSystemVersion {
    int m_Major = -1;  // -1: not known
    int m_Minor = 0;
    int m_Patch = 0;
    std::string m_Extra;  // a line more to print, such as a build's name; may be empty

    std::string AsString() const;  // "1.0.0", or "unknown"
};

// The version of a program that links it.
struct QUINTOR_API SQMTSubSystemVersion {
    int m_Major = -1;
    int m_Minor = 0;
    int m_Patch = 0;
    std::string m_Extra;

    std::string AsString() const;
};

class QUINTOR_API CQMTVersion {
public:
    static CQMTVersion &Instance();

    const SQMTSystemVersion &System() const { return m_system; }
    const SQMTSubSystemVersion &SubSystem() const { return m_subSystem; }

    // For the program's start; until then its version is not known.
    void SetSubSystem(const SQMTSubSystemVersion &version) { m_subSystem = version; }

private:
    CQMTVersion();

    SQMTSystemVersion m_system;
    SQMTSubSystemVersion m_subSystem;
};
