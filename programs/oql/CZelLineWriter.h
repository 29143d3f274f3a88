// A line per value, with the names lined up, and a blank line behind each row.
#pragma once

#include "programs/oql/CZelResultWriter.h"

class CZelLineWriter : public CZelResultWriter {
public:
    explicit CZelLineWriter(CZelShellOutput &output) : CZelResultWriter(output) {}
    void Write(CZelResult &result, const char *statement, const CZelStore &store) override;
};
