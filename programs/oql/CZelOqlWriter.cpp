#include "programs/oql/CZelOqlWriter.h"

#include "programs/oql/CZelResult.h"
#include "programs/oql/CZelShellOutput.h"
#include "programs/oql/ZelValueText.h"

void CZelOqlWriter::Write(CZelResult &result, const char * /*statement*/, const CZelStore & /*store*/) {
    for (const std::unique_ptr<CZelRecord> &row : result.Rows())
        m_output.Write(ZelRowLiteral(*row) + "\n");
}
