#include "oql/CZelFilterParser.h"

#include <cstdio>
#include <cstring>

#include "foundations/port/CZelError.h"
#include "foundations/port/ZelDebug.h"
#include "oql/CZelFilterActionsImpl.h"
#include "oql/CZelFilterScanner.h"
#include "oql/ZelFilter.tab.h"
#include "oql/ZelSyntaxErrorImpl.h"

namespace {

constexpr const char *OPERATORS[] = {
    " = ",    " <> ",       " < ",      " <= ",      " > ",           " >= ",      " In ",          " Not In ",
    " Like ", " Not Like ", " Exists ", " Between ", " Not Between ", " Is Null ", " Is Not Null ", " None "};
constexpr const char *ALGEBRAICS[] = {" And ", " Or ", " Not ", " NoOp "};

CZelFilter *parse(const char *text, std::size_t length, int *status) {
    CZelFilterScanner scanner(text, static_cast<unsigned int>(length));
    ZelFilterFlexLexer::ResetLineCount();
    CZelFilterActions actions(scanner);
    if (ZelFilterparse(scanner, actions) == 0)
        return actions.TakeResult();
    *status = ZelReportSyntaxError(scanner.Line(), {text, length});
    return nullptr;
}

// Requires: a text that is not empty.
CZelFilter *parseChecked(const char *text, int *status) {
    const std::size_t length = std::strlen(text);
    if (length >= CZelFilterScanner::MAX_LENGTH) {
        *status = ZEL_FAIL(E_RCUnsupported, "CZelFilterParser::RFPParse: a text of 2 GiB or more");
        return nullptr;
    }
    if (__Zeltronix_Debug_Level >= 4)
        std::printf("Parsing '%s' as filter expression\n", text);
    return parse(text, length, status);
}

}  // namespace

CZelFilter *CZelFilterParser::RFPParse(const char *text, int *status) {
    int result = 1;
    CZelFilter *filter = nullptr;
    if (text == nullptr)
        result = ZEL_FAIL(E_RCNull, "CZelFilterParser::RFPParse: no text");
    else if (*text != '\0')
        filter = parseChecked(text, &result);
    if (status != nullptr)
        *status = result;
    return filter;
}

const char *CZelFilterParser::RFPOperatorToString(EZelOper op) {
    return op >= E_ROEqual && op <= E_RONone ? OPERATORS[op] : " UNKNOWN OPERATOR! ";
}

const char *CZelFilterParser::RFPAlgebraicToString(EZelAlgebraic joiner) {
    return joiner >= E_RAAnd && joiner <= E_RANoOp ? ALGEBRAICS[joiner] : " UNKNOWN ALGEBRAIC! ";
}
