#include <cstdio>

#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelString.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelOrder.h"
#include "oql/CZelQuery.h"
#include "oql/ZelStatementTextImpl.h"
#include "store/CZelFilter.h"

void ZelAppendSource(CZelString &text, CZelBag &source) {
    text.RSStrCat(" from ");
    ZelAppendEntities(text, source, "", " , \n");
    text.RSStrCat("\n");
}

void ZelAppendConditions(CZelString &text, const CZelQuery &query, bool resolved) {
    if (query.RQFilter() != nullptr) {
        text.RSStrCat("where \n( \n");
        ZelAppendFilter(text, *query.RQFilter(), resolved);
        text.RSStrCat("\n) \n");
    }
    if (query.RQGroups() != nullptr) {
        text.RSStrCat("Group by \n");
        ZelAppendEntities(text, *query.RQGroups(), "\t", " , \n");
        text.RSStrCat("\n");
    }
    if (query.RQHaving() != nullptr) {
        text.RSStrCat("having \n(\n");
        ZelAppendFilter(text, *query.RQHaving(), false);
        text.RSStrCat("\n)\n");
    }
    ZelAppendOrders(text, query.RQOrder());
}

void ZelAppendOrders(CZelString &text, CZelBag *orders) {
    if (orders == nullptr || orders->RBLength() == 0)
        return;
    text.RSStrCat("order by \n");
    for (CZelPointer *node = orders->RBFirst(); node != nullptr; node = CZelBag::RBNext(node)) {
        if (node != orders->RBFirst())
            text.RSStrCat(" , \n");
        text.RSStrCat("\t");
        text.RSStrCat(CZelMallocText(static_cast<CZelOrder *>(node->RPData())->ROPrint()).get());
    }
    text.RSStrCat("\n");
}

// The text from "select" to the last condition; false, reported, when a part is missing.
bool ZelAppendQuery(CZelString &text, const CZelQuery &query) {
    text.RSStrCat("select ");
    if (query.RQSelectStar() == E_RBTrue) {
        text.RSStrCat(" * ");
    } else if (query.RQSelection() != nullptr) {
        ZelAppendExpressions(text, *query.RQSelection(), " , ");
    } else {
        ZEL_REPORT(E_RCNoText, "CZelQuery::RDOAsString: nothing is selected");
        return false;
    }
    if (query.RQSource() == nullptr || query.RQSource()->RBLength() == 0) {
        ZEL_REPORT(E_RCNoText, "CZelQuery::RDOAsString: no source");
        return false;
    }
    ZelAppendSource(text, *query.RQSource());
    ZelAppendConditions(text, query, true);
    return true;
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
    text.RSStrCat(")");
    return text.RSTakeString();
}

void CZelQuery::RQDump() {
    const CZelMallocText text(RQPrint());
    std::printf("%s\n", text != nullptr ? text.get() : "NULL");
}
