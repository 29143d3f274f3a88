// shutdown.
#pragma once

#include "oql/CZelDbObject.h"

class QUINTOR_API CZelExit : public CZelDbObject {
public:
    CZelExit();

    int RDODestroy() override;
    int RDOInitialise(CZelStore *store) override;
    CZelBag *RDOCompilables() override;
    char *RDOAsString() override;

    static void REExit();  // sends signal 15 to the own process
};
