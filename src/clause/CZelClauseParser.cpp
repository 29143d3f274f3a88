#include "clause/CZelClauseParser.h"

#include <cstring>
#include <memory>

#include "clause/CZelClauseActionsImpl.h"
#include "clause/CZelEvalClause.h"
#include "foundations/base/CZelString.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelClauseScanner.h"
#include "oql/CZelExpr.h"
#include "oql/CZelFilterParser.h"
#include "oql/ZelClause.tab.h"
#include "store/CZelBoolean.h"
#include "store/CZelFilter.h"

namespace {

// Is the condition one comparison, a name = a clause?
bool isComparisonWithClause(const CZelFilter &filter) {
    CZelBoolean *kernel = filter.RFKernel();
    if (filter.RFLeft() != nullptr || filter.RFRight() != nullptr || filter.RFOperator() != E_RANoOp ||
        kernel == nullptr)
        return false;
    if (kernel->RBOperand() != E_ROEqual || kernel->RBRvalType() != E_RBRExpr)
        return false;
    return kernel->RBLeft()->REType() == E_RETEntity && kernel->RBRight()->REType() == E_RETClause;
}

}  // namespace

int CZelClauseParser::RCPParse(const char *text, CZelBag *out) {
    if (text == nullptr || out == nullptr)
        return ZEL_FAIL(E_RCBadArgument, "CZelClauseParser::RCPParse: no text, or no bag for its nodes");
    const std::size_t length = std::strlen(text);
    if (length >= CZelClauseScanner::MAX_LENGTH)
        return ZEL_FAIL(E_RCUnsupported, "CZelClauseParser::RCPParse: a text of 2 GiB or more");
    CZelClauseScanner scanner(text, static_cast<unsigned int>(length));
    CZelClauseActions actions(scanner, *out);
    if (ZelClauseparse(scanner, actions) != 0)
        ZEL_REPORT(E_RCNoMemory, "CZelClauseParser::ROPParse");
    return 1;
}

CZelEvalClause *CZelClauseParser::ParseToClause(const char *text) {
    CZelString condition("a = ");
    condition.RSStrCat(text);
    const std::unique_ptr<CZelFilter> filter(CZelFilterParser().RFPParse(condition.RSString(), nullptr));
    return filter != nullptr && isComparisonWithClause(*filter) ? filter->RFKernel()->RBRight()->RETakeEvalClause()
                                                                : nullptr;
}
