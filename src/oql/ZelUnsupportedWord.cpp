#include "oql/ZelUnsupportedWordImpl.h"

#include <cctype>

#include "foundations/base/CZelString.h"
#include "foundations/port/CZelError.h"

void ZelReportUnsupportedWord(std::string_view name) {
    CZelString text("The OQL function ");
    for (const char letter : name)
        text.RSStrCat(static_cast<char>(std::toupper(static_cast<unsigned char>(letter))));
    text.RSStrCat(" is not currently supported\n");
    ZEL_REPORT(E_RCUnsupported, text.RSString());
}
