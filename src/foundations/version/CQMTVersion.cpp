#include "foundations/version/CQMTVersion.h"

namespace {

std::string textOf(int major, int minor, int patch) {
    if (major < 0)
        return "unknown";
    return std::to_string(major) + '.' + std::to_string(minor) + '.' + std::to_string(patch);
}

}  // namespace

std::string SQMTSystemVersion::AsString() const {
    return textOf(m_Major, m_Minor, m_Patch);
}

std::string SQMTSubSystemVersion::AsString() const {
    return textOf(m_Major, m_Minor, m_Patch);
}

// The numbers come from the build.
CQMTVersion::CQMTVersion() : m_system{QUINTOR_VERSION_MAJOR, QUINTOR_VERSION_MINOR, QUINTOR_VERSION_PATCH, {}} {}

CQMTVersion &CQMTVersion::Instance() {
    static CQMTVersion s_instance;
    return s_instance;
}
