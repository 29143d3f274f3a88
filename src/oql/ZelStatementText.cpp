#include "oql/ZelStatementTextImpl.h"

#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelString.h"
#include "foundations/base/ZelMalloc.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelExpr.h"
#include "store/CZelFilter.h"

bool ZelAppendEntity(CZelString &text, CZelDbEntity *entity) {
    const CZelMallocText one(entity != nullptr ? entity->RDEPrint() : nullptr);
    text.RSStrCat(one.get());
    return one != nullptr;
}

void ZelAppendNames(CZelString &text, const CZelAtomVector &names, const char *separator) {
    for (unsigned int i = 0; i < names.RAVSize(); ++i) {
        if (i > 0)
            text.RSStrCat(separator);
        text.RSStrCat(names.RAVGetValue(i));
    }
}

void ZelAppendEntities(CZelString &text, CZelBag &entities, const char *before, const char *separator) {
    for (CZelPointer *node = entities.RBFirst(); node != nullptr; node = CZelBag::RBNext(node)) {
        if (node != entities.RBFirst())
            text.RSStrCat(separator);
        text.RSStrCat(before);
        ZelAppendEntity(text, static_cast<CZelDbEntity *>(node->RPData()));
    }
}

bool ZelAppendExpressions(CZelString &text, CZelBag &expressions, const char *separator) {
    bool complete = true;
    for (CZelPointer *node = expressions.RBFirst(); node != nullptr; node = CZelBag::RBNext(node)) {
        if (node != expressions.RBFirst())
            text.RSStrCat(separator);
        const CZelMallocText one(static_cast<CZelExpr *>(node->RPData())->REPrint());
        complete = complete && one != nullptr;
        text.RSStrCat(one.get());
    }
    return complete;
}

void ZelAppendFilter(CZelString &text, CZelFilter &filter, bool resolved) {
    const CZelMallocText condition(resolved ? filter.RFPrintResolved() : filter.RFPrint());
    text.RSStrCat(condition.get());
}
