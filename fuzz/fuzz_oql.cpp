// Any bytes as OQL: parsed, printed, and what is printed parsed again. A printed statement that reads back is
// one statement and settles: a list of tables turns round at each reading, nothing else changes. But `like NULL` is no
// condition, while `like + NULL`, whose pattern is worked out, is one and prints as the former.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "foundations/base/CZelStack.h"
#include "foundations/base/ZelEscape.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/CZelErrorCapture.h"
#include "oql/CZelDbObject.h"
#include "oql/CZelOQLParser.h"

namespace {

// The text of the one statement in `text`, empty when it does not parse or has none.
std::string reprinted(const std::string &text) {
    CZelOQLParser parser;
    if (parser.ROPParse(text.c_str(), E_RBTrue) != 1)
        return "";
    if (parser.ROPResults()->RSLength() != 1)
        std::abort();
    const CZelMallocText form(static_cast<CZelDbObject *>(parser.ROPResults()->RSPeek(0))->RDOAsString());
    return form != nullptr ? form.get() : "";
}

void checkSettles(const std::string &first) {
    const std::string second = reprinted(first);
    const std::string third = second.empty() ? "" : reprinted(second);
    if (third.empty() || third == first || first.find(" Like NULL") != std::string::npos)
        return;
    std::fprintf(stderr, "%s\nbecame\n%s\nbecame\n%s\n", first.c_str(), second.c_str(), third.c_str());
    std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const CZelErrorCapture quiet;
    ZelSetEscape(false);
    const std::string text(reinterpret_cast<const char *>(data), size);
    CZelOQLParser parser;
    if (parser.ROPParse(text.c_str(), E_RBTrue) != 1)
        return 0;
    for (int i = 0; i < parser.ROPResults()->RSLength(); ++i) {
        auto *statement = static_cast<CZelDbObject *>(parser.ROPResults()->RSPeek(i));
        statement->RDOCompilables();
        const CZelMallocText form(statement->RDOAsString());
        if (form != nullptr)
            checkSettles(form.get());
    }
    return 0;
}
