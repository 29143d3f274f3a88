#include <algorithm>
#include <string_view>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelString.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelExpr.h"
#include "oql/ZelStatementTextImpl.h"
#include "store/CZelFilter.h"

namespace {

bool isLetter(char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

bool fitsName(char character) {
    return isLetter(character) || (character >= '0' && character <= '9') || character == '_' || character == '&';
}

// Calls `append(element)` for each element of a bag, with a separator between them, until one fails.
template <class T, class Append>
bool appendAll(CZelString &text, const CZelBag &bag, const char *separator, Append append) {
    for (const CZelPointer *node = bag.RBFirst(); node != nullptr; node = CZelBag::RBNext(node)) {
        if (node != bag.RBFirst())
            text.RSStrCat(separator);
        if (!append(static_cast<const T *>(node->RPData())))
            return false;
    }
    return true;
}

}  // namespace

bool ZelIsName(const CZelAtom &name) {
    const std::string_view text = name.RATextView();
    return !text.empty() && isLetter(text.front()) && std::all_of(text.begin(), text.end(), fitsName);
}

bool ZelAppendName(CZelString &text, const CZelAtom &name) {
    if (ZelIsName(name)) {
        text.RSStrCat(name.RATextView());
        return true;
    }
    CZelString report("A statement can't be written with the name ");
    report.RSStrCat(&name);
    ZEL_REPORT(E_RCBadValue, report.RSString());
    return false;
}

bool ZelAppendNames(CZelString &text, const CZelAtomVector &names, const char *separator) {
    for (unsigned int i = 0; i < names.RAVSize(); ++i) {
        if (i > 0)
            text.RSStrCat(separator);
        if (names.RAVGetValue(i) == nullptr || !ZelAppendName(text, *names.RAVGetValue(i)))
            return false;
    }
    return true;
}

bool ZelAppendEntity(CZelString &text, const CZelDbEntity *entity) {
    if (entity != nullptr)
        return entity->RDEAppendPrint(text);
    ZEL_REPORT(E_RCNoText, "A statement can't be written without the name of its object");
    return false;
}

bool ZelAppendEntities(CZelString &text, const CZelBag &entities, const char *before, const char *separator) {
    return appendAll<CZelDbEntity>(text, entities, separator, [&](const CZelDbEntity *entity) {
        text.RSStrCat(before);
        return ZelAppendEntity(text, entity);
    });
}

bool ZelAppendExpressions(CZelString &text, const CZelBag &expressions, const char *separator) {
    return appendAll<CZelExpr>(text, expressions, separator, [&](const CZelExpr *expression) {
        return expression != nullptr && expression->REAppendPrint(text);
    });
}

bool ZelAppendFilter(CZelString &text, CZelFilter &filter, bool resolved) {
    const CZelMallocText condition(resolved ? filter.RFPrintResolved() : filter.RFPrint());
    text.RSStrCat(condition.get());
    return condition != nullptr;
}
