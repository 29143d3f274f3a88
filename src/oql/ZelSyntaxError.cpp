#include "oql/ZelSyntaxErrorImpl.h"

#include "foundations/base/CZelString.h"
#include "foundations/port/CZelError.h"

int ZelReportSyntaxError(int line, std::string_view text) {
    CZelString message("\nSyntax error at line ");
    message.RSStrCat(line);
    message.RSStrCat(" of: ");
    message.RSStrCat(text);
    return ZEL_FAIL(E_RCSyntax, message.RSString());
}
