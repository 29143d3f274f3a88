// Any bytes as a literal: parsed, printed as a list, and what is printed parsed again, to the same text.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/CZelErrorCapture.h"
#include "oql/CZelAtomParser.h"

namespace {

std::string literalOf(const CZelAtom &list) {
    const CZelMallocText text(list.RAListAsString(E_RBTrue));
    return text != nullptr ? text.get() : "";
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const CZelErrorCapture quiet;
    CZelAtomParser parser;
    int status = 0;
    const std::unique_ptr<CZelAtom> atom(
        parser.RAPParse(std::string(reinterpret_cast<const char *>(data), size).c_str(), &status));
    if (atom == nullptr || atom->RAType() != E_RDTList)
        return 0;
    const std::string first = literalOf(*atom);
    const std::unique_ptr<CZelAtom> again(parser.RAPParse(first.c_str(), &status));
    if (again == nullptr || literalOf(*again) == first)
        return 0;
    std::fprintf(stderr, "%s\nbecame\n%s\n", first.c_str(), literalOf(*again).c_str());
    std::abort();
}
