// Any bytes as a schema text: parsed, consumed, dumped; the dump of the outcome reads back.
#include <cstdint>
#include <string>

#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/base/ZelEscape.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/CZelErrorCapture.h"
#include "oql/CZelOQLDumper.h"
#include "oql/CZelSchema.h"
#include "storemgr/CZelStoreMgr.h"

namespace {

void dumpAndForget(CZelStore *store) {
    CZelBag records;
    CZelOQLDumper(store).WriteSchema(records);
    for (CZelPointer *node = records.RBFirst(); node != nullptr; node = CZelBag::RBNext(node)) {
        auto *record = static_cast<CZelRecord *>(node->RPData());
        const CZelMallocText text(CZelOQLDumper::ExtractOQLString(*record));
        delete record;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const CZelErrorCapture quiet;
    ZelSetEscape(false);
    const std::string text(reinterpret_cast<const char *>(data), size);
    CZelStoreMgr manager(static_cast<CZelEngine *>(nullptr), nullptr);
    CZelSchema schema;
    if (schema.RSParseSchemaString(text.c_str()) == 1) {
        manager.RSMConsumeSchema(schema);
        dumpAndForget(manager.RSMGetStore());
    }
    return 0;
}
