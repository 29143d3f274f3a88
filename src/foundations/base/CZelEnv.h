// What the process learns from its environment and start: install roots and domain.
//
// Atoms and texts handed out live until the process ends, also when a variable or the domain has another
// value by then.
//
// Threads: any, as long as nobody changes the environment at the same time.
#pragma once

#include "foundations/port/ZelExport.h"

class CZelAtom;

class QUINTOR_API CZelEnv {
public:
    CZelEnv() = default;

    // $QMTHOME, the install root, and $SOLVANTIS_HOME, the product root: a text atom, or null when unset or
    // empty.
    static const CZelAtom *REQMTHome();
    static const CZelAtom *REZelHome();

    // With a name sets the process's domain. Gives the domain: a text atom, null until one is set.
    static const CZelAtom *REDomain(const char *name);

    // The install root as text; null when unset.
    const char *REHome() const;
};
