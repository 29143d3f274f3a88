// What the bus calls with a message. Both operations run on the bus's dispatch thread and must not block.
#pragma once

#include "foundations/mom/CMOMRvCallback.h"

class CMOMRvDatum;
class CMOMRvListener;
class CMOMRvSender;

class QUINTOR_API CMOMRvDataCallback : public CMOMRvCallback {
public:
    // A message for a subject. `sender` is where a reply goes; `datum` lives for the call.
    virtual void OnData(const char *subject, CMOMRvSender *sender, const CMOMRvDatum &datum,
                        CMOMRvListener *listener) = 0;

    // No reply came in time. Does nothing unless overridden.
    virtual void OnTimeOut(CMOMRvListener *listener);
};
