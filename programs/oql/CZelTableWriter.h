// Columns as wide as their widest value, numbers to the right, and the number of rows. Nothing is cut.
#pragma once

#include "programs/oql/CZelResultWriter.h"

class CZelTableWriter : public CZelResultWriter {
public:
    explicit CZelTableWriter(CZelShellOutput &output) : CZelResultWriter(output) {}
    void Write(CZelResult &result, const char *statement, const CZelStore &store) override;
};
