// Any bytes as a clause: parsed, evaluated against a fixed record, copied, and evaluated again to the same value.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <sstream>
#include <string>

#include "clause/CZelCmdCmplr.h"
#include "clause/CZelEvalClause.h"
#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/base/CZelVarBind.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/CZelErrorCapture.h"
#include "oql/CZelAtomParser.h"
#include "store/CZelColDef.h"

namespace {

constexpr const char *RECORD =
    "{ab=1,Name='eth0',Speed=100,Load=0.5,List=[1,2,'x',[3]],Empty=[],Addr='1.2.3.4',"
    "Sub={ab=7,Deep=[{No=5},{No=6}]},Nested={eval='eval(int,\\'1\\')'}}";

std::unique_ptr<CZelRecord> fixedRecord() {
    const std::unique_ptr<CZelAtom> value(CZelAtomParser().RAPParse(RECORD, nullptr));
    return std::make_unique<CZelRecord>(static_cast<const CZelAtom &>(*value).RAObject());
}

std::string evaluate(CZelEvalClause &clause, CZelCmdCmplr &compiler) {
    const std::unique_ptr<CZelVarBind> result(clause.RECEvaluateClause(compiler));
    return result != nullptr ? CZelMallocText(result->RVBVbAsString()).get() : "null";
}

// Times and readings of the process change between two evaluations.
bool isLasting(const std::string &text) {
    return text.find('$') == std::string::npos;
}

}  // namespace

// What clauses print is of no interest here.
extern "C" int LLVMFuzzerInitialize(int *, char ***) {
    return std::freopen("/dev/null", "w", stdout) != nullptr ? 0 : 1;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const std::unique_ptr<CZelRecord> record = fixedRecord();
    if (size == 0)
        return 0;
    const CZelErrorCapture quiet;
    const std::string text(reinterpret_cast<const char *>(data + 1), size - 1);
    constexpr EZelDataType TYPES[] = {E_RDTInt, E_RDTText, E_RDTFloat, E_RDTLong64, E_RDTList, E_RDTObject};
    const EZelDataType type = TYPES[data[0] % std::size(TYPES)];
    CZelCmdCmplr compiler;
    compiler.RCCSetCurrentRec(record.get(), 0);
    CZelEvalClause clause(new CZelColDef(nullptr, type, nullptr, -1), ZelStrDup(text.c_str()));
    const std::string value = evaluate(clause, compiler);
    CZelEvalClause copy(clause);
    if (isLasting(text) && evaluate(copy, compiler) != value)
        std::abort();
    return 0;
}
