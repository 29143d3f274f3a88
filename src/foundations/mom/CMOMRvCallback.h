// The base of what the message bus calls back.
#pragma once

#include "foundations/port/ZelExport.h"

class QUINTOR_API CMOMRvCallback {
public:
    CMOMRvCallback() = default;
    virtual ~CMOMRvCallback() = default;
};
