// Rows as object literals of OQL.
#pragma once

#include "programs/oql/CZelResultWriter.h"

class CZelOqlWriter : public CZelResultWriter {
public:
    explicit CZelOqlWriter(CZelShellOutput &output) : CZelResultWriter(output) {}
    void Write(CZelResult &result, const char *statement, const CZelStore &store) override;
};
