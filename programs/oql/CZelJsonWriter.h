// One JSON object per statement, on one line.
#pragma once

#include "programs/oql/CZelResultWriter.h"

class CZelJsonWriter : public CZelResultWriter {
public:
    explicit CZelJsonWriter(CZelShellOutput &output) : CZelResultWriter(output) {}
    void Write(CZelResult &result, const char *statement, const CZelStore &store) override;
};
