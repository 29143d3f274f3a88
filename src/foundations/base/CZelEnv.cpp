#include "foundations/base/CZelEnv.h"

#include <cstdlib>
#include <list>

#include "foundations/base/CZelAtom.h"
#include "foundations/port/CZelMutex.h"

namespace {

// A setting of the process. Former values stay: somebody may hold them.
class Setting {
public:
    const CZelAtom *current() {
        const CZelAutoMutex guard(m_mutex);
        return m_values.empty() ? nullptr : &m_values.front();
    }

    const CZelAtom *change(const char *value) {
        const CZelAutoMutex guard(m_mutex);
        const CZelAtom wanted(value);
        for (auto known = m_values.begin(); known != m_values.end(); ++known)
            if (known->RASameText(wanted)) {
                m_values.splice(m_values.begin(), m_values, known);
                return &m_values.front();
            }
        return &m_values.emplace_front(wanted);
    }

private:
    CZelMutex m_mutex;
    std::list<CZelAtom> m_values;  // the current one first
};

// Never destroyed, so that what was handed out lives to the end.
struct Settings {
    Setting qmtHome;
    Setting zelHome;
    Setting domain;
};

Settings &settings() {
    static Settings *const s_settings = new Settings;
    return *s_settings;
}

const CZelAtom *variable(Setting &setting, const char *name) {
    const char *value = std::getenv(name);
    return value != nullptr && *value != '\0' ? setting.change(value) : nullptr;
}

}  // namespace

const CZelAtom *CZelEnv::REQMTHome() {
    return variable(settings().qmtHome, "QMTHOME");
}

const CZelAtom *CZelEnv::REZelHome() {
    return variable(settings().zelHome, "SOLVANTIS_HOME");
}

const CZelAtom *CZelEnv::REDomain(const char *name) {
    return name != nullptr ? settings().domain.change(name) : settings().domain.current();
}

const char *CZelEnv::REHome() const {
    const CZelAtom *home = REQMTHome();
    return home != nullptr ? home->RAString() : nullptr;
}
