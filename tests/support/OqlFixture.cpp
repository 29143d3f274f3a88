#include "tests/support/OqlFixture.h"

#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/base/ZelMalloc.h"

std::string OqlFixture::textOf(const CZelRecord &record) {
    std::string text;
    const CZelVBList *values = record.RRVbIterator();
    for (const CZelVarBind *pair = values->RVBLHead(); pair != nullptr; pair = values->RVBLGetNext(pair)) {
        const CZelMallocText one(pair->RVBVbAsString());
        text += text.empty() ? one.get() : std::string(" ") + one.get();
    }
    return text;
}

EZelStoreErrorStatus OqlFixture::run(const char *oql, CZelRecord *current) {
    reports.Clear();
    EZelStoreErrorStatus status = E_RSEOk;
    EXPECT_EQ(1, manager.RSMProcessOQL(oql, nullptr, &status, current));
    return status;
}

std::vector<std::string> OqlFixture::rows(const char *oql, CZelRecord *current) {
    reports.Clear();
    CZelBag *bag = nullptr;
    manager.RSMProcessOQLGetRecs(oql, &bag, nullptr, current);
    const CZelBagGuard<CZelRecord> owner(bag);
    std::vector<std::string> texts;
    for (CZelPointer *node = bag != nullptr ? bag->RBFirst() : nullptr; node != nullptr; node = CZelBag::RBNext(node))
        texts.push_back(textOf(*static_cast<const CZelRecord *>(node->RPData())));
    return texts;
}

std::string OqlFixture::value(const char *oql) {
    const std::vector<std::string> all = rows(oql);
    EXPECT_EQ(1U, all.size()) << oql;
    const std::string text = all.empty() ? "" : all.front();
    return text.substr(text.find('=') + 1);
}
