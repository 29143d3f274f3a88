// Any bytes as a condition: parsed, copied, printed, and what is printed parsed again. What reads back settles.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "foundations/base/CZelRecord.h"
#include "foundations/base/ZelEscape.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/CZelErrorCapture.h"
#include "oql/CZelFilterParser.h"
#include "store/CZelFilter.h"

namespace {

std::unique_ptr<CZelFilter> parse(const std::string &text) {
    return std::unique_ptr<CZelFilter>(CZelFilterParser().RFPParse(text.c_str(), nullptr));
}

std::string printed(CZelFilter &filter) {
    const CZelMallocText form(filter.RFPrint());
    return form != nullptr ? form.get() : "";
}

std::string reprinted(const std::string &text) {
    const std::unique_ptr<CZelFilter> filter = parse(text);
    return filter != nullptr ? printed(*filter) : "";
}

void checkSettles(const std::string &first) {
    const std::string second = reprinted(first);
    const std::string third = second.empty() ? "" : reprinted(second);
    if (third.empty() || third == first)
        return;
    std::fprintf(stderr, "%s\nbecame\n%s\nbecame\n%s\n", first.c_str(), second.c_str(), third.c_str());
    std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const CZelErrorCapture quiet;
    const std::unique_ptr<CZelFilter> filter = parse(std::string(reinterpret_cast<const char *>(data), size));
    if (filter == nullptr)
        return 0;
    CZelFilter copy(*filter);
    const std::string first = printed(*filter);
    if (first != printed(copy))
        std::abort();
    const CZelRecord record;
    copy.RFFilterRecord(&record);
    checkSettles(first);
    return 0;
}
