// The texts of queries, and the pieces that a query insert shares with them.
#include <cstdio>

#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelString.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelOrder.h"
#include "oql/CZelQuery.h"
#include "oql/ZelStatementTextImpl.h"
#include "store/CZelFilter.h"

namespace {

bool isEmpty(const CZelBag *bag) {
    return bag == nullptr || bag->RBLength() == 0;
}

bool missing(const char *text) {
    ZEL_REPORT(E_RCNoText, text);
    return false;
}

bool appendCondition(CZelString &text, const char *before, CZelFilter *filter, bool resolved, const char *after) {
    if (filter == nullptr)
        return true;
    text.RSStrCat(before);
    if (!ZelAppendFilter(text, *filter, resolved))
        return false;
    text.RSStrCat(after);
    return true;
}

bool appendGroups(CZelString &text, const CZelBag *groups) {
    if (isEmpty(groups))
        return true;
    text.RSStrCat("Group by \n");
    if (!ZelAppendEntities(text, *groups, "\t", " , \n"))
        return false;
    text.RSStrCat('\n');
    return true;
}

bool appendOrders(CZelString &text, const CZelBag *orders) {
    if (isEmpty(orders))
        return true;
    text.RSStrCat("order by \n");
    for (const CZelPointer *node = orders->RBFirst(); node != nullptr; node = CZelBag::RBNext(node)) {
        text.RSStrCat(node == orders->RBFirst() ? "\t" : " , \n\t");
        if (!static_cast<const CZelOrder *>(node->RPData())->ROAppendPrint(text))
            return false;
    }
    text.RSStrCat('\n');
    return true;
}

}  // namespace

bool ZelAppendSource(CZelString &text, const CZelBag &source) {
    text.RSStrCat(" from ");
    if (!ZelAppendEntities(text, source, "", " , \n"))
        return false;
    text.RSStrCat('\n');
    return true;
}

bool ZelAppendConditions(CZelString &text, const CZelQuery &query, bool resolved) {
    return appendCondition(text, "where \n( \n", query.RQFilter(), resolved, "\n) \n") &&
           appendGroups(text, query.RQGroups()) &&
           appendCondition(text, "having \n(\n", query.RQHaving(), false, "\n)\n") &&
           appendOrders(text, query.RQOrder());
}

bool ZelAppendQuery(CZelString &text, const CZelQuery &query) {
    const bool isStar = query.RQSelectStar() == E_RBTrue;
    if (!isStar && query.RQSelection() == nullptr)
        return missing("CZelQuery::RDOAsString: nothing is selected");
    if (isEmpty(query.RQSource()))
        return missing("CZelQuery::RDOAsString: no source");
    text.RSStrCat(isStar ? "select  * " : "select ");
    return (isStar || ZelAppendExpressions(text, *query.RQSelection(), " , ")) &&
           ZelAppendSource(text, *query.RQSource()) && ZelAppendConditions(text, query, true);
}

char *CZelQuery::RDOAsString() {
    CZelString text;
    if (!ZelAppendQuery(text, *this))
        return nullptr;
    text.RSStrCat(" ;\n");
    return text.RSTakeString();
}

char *CZelQuery::RQPrint() {
    CZelString text("(");
    if (!ZelAppendQuery(text, *this))
        return nullptr;
    text.RSStrCat(')');
    return text.RSTakeString();
}

void CZelQuery::RQDump() {
    const CZelMallocText text(RQPrint());
    std::printf("%s\n", text != nullptr ? text.get() : "NULL");
}
