#include "programs/oql/CZelResultWriter.h"

#include "programs/oql/CZelCsvWriter.h"
#include "programs/oql/CZelJsonWriter.h"
#include "programs/oql/CZelLineWriter.h"
#include "programs/oql/CZelOqlWriter.h"
#include "programs/oql/CZelTableWriter.h"

bool ZelFormatNamed(std::string_view name, EZelFormat &format) {
    static constexpr std::string_view NAMES[] = {"table", "line", "csv", "json", "oql"};
    for (int i = 0; i < 5; ++i) {
        if (NAMES[i] != name)
            continue;
        format = static_cast<EZelFormat>(i);
        return true;
    }
    return false;
}

std::unique_ptr<CZelResultWriter> CZelResultWriter::Make(EZelFormat format, CZelShellOutput &output) {
    switch (format) {
        case EZelFormat::LINE:
            return std::make_unique<CZelLineWriter>(output);
        case EZelFormat::CSV:
            return std::make_unique<CZelCsvWriter>(output);
        case EZelFormat::JSON:
            return std::make_unique<CZelJsonWriter>(output);
        case EZelFormat::OQL:
            return std::make_unique<CZelOqlWriter>(output);
        default:
            return std::make_unique<CZelTableWriter>(output);
    }
}
