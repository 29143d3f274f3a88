// Comma separated values as RFC 4180 has them.
#pragma once

#include "programs/oql/CZelResultWriter.h"

class CZelCsvWriter : public CZelResultWriter {
public:
    explicit CZelCsvWriter(CZelShellOutput &output) : CZelResultWriter(output) {}
    void Write(CZelResult &result, const char *statement, const CZelStore &store) override;
};
