// The text of a comparison. It reads back through the parsers as the same comparison.
#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelString.h"
#include "foundations/base/ZelMalloc.h"
#include "oql/CZelExpr.h"
#include "oql/CZelFilterParser.h"
#include "oql/CZelQuery.h"
#include "store/CZelBoolean.h"

namespace {

bool isMembership(EZelOper op) {
    return op == E_ROIn || op == E_RONotIn;
}

bool takesNoRight(EZelOper op) {
    return op == E_ROIsNull || op == E_ROIsNotNull;
}

void appendBracketed(CZelString &out, const char *text) {
    out.RSStrCat('(');
    out.RSStrCat(text);
    out.RSStrCat(')');
}

void appendValue(CZelString &out, const CZelAtom *value) {
    if (CZelAtom::RAIsNull(value))
        out.RSStrCat("NULL");
    else
        out.RSStrCatQuoted(value);
}

bool printsNull(const CZelExpr *expression) {
    if (expression == nullptr || expression->REType() == E_RETFunction)
        return true;
    return expression->REType() == E_RETAtom && CZelAtom::RAIsNull(expression->REHeadAtomVal());
}

bool isClause(const CZelExpr *expression) {
    return expression != nullptr && expression->REType() == E_RETClause;
}

void appendExpression(CZelString &out, CZelExpr *expression, bool resolved) {
    if (printsNull(expression)) {
        out.RSStrCat("NULL");
    } else if (resolved && isClause(expression)) {
        appendValue(out, expression->REHeadAtomVal());
    } else {
        const CZelMallocText text(expression->REPrint());
        out.RSStrCat(text.get());
    }
}

// The values behind In. An empty list keeps its own brackets: "()" is in no grammar.
void appendElements(CZelString &out, const CZelAtomVector *list) {
    if (list == nullptr || list->RAVSize() == 0) {
        out.RSStrCat("[]");
        return;
    }
    for (unsigned int i = 0; i < list->RAVSize(); ++i) {
        out.RSStrCat(i == 0 ? '(' : ',');
        appendValue(out, list->RAVGetValue(i));
    }
    out.RSStrCat(')');
}

// Requires: not null.
void appendSetValue(CZelString &out, const CZelAtom *value) {
    if (value->RAType() == E_RDTList) {
        appendElements(out, value->RAList());
        return;
    }
    out.RSStrCat('(');
    out.RSStrCatQuoted(value);
    out.RSStrCat(')');
}

void appendClauseSet(CZelString &out, CZelExpr *clause, bool resolved) {
    const CZelAtom *value = clause->REHeadAtomVal();
    if (!resolved) {
        const CZelMallocText text(clause->REPrint());
        appendBracketed(out, text.get());
    } else if (CZelAtom::RAIsNull(value)) {
        out.RSStrCat("('')");
    } else {
        appendSetValue(out, value);
    }
}

void appendSet(CZelString &out, CZelExpr *expression, bool resolved) {
    const CZelAtom *value = expression != nullptr ? expression->REHeadAtomVal() : nullptr;
    if (isClause(expression)) {
        appendClauseSet(out, expression, resolved);
    } else if (expression != nullptr && expression->REType() == E_RETEntity) {
        const CZelMallocText text(expression->REPrint());
        appendBracketed(out, text.get());
    } else if (value != nullptr && value->RAType() == E_RDTList) {
        appendElements(out, value->RAList());
    } else {
        appendExpression(out, expression, resolved);
    }
}

// A subquery brings its own brackets.
void appendQuery(CZelString &out, CZelQuery *query, bool inSecondPair) {
    const CZelMallocText text(query != nullptr ? query->RQPrint() : nullptr);
    if (inSecondPair)
        appendBracketed(out, text.get());
    else
        out.RSStrCat(text.get());
}

}  // namespace

char *CZelBoolean::RBPrint() {
    CZelString out;
    RBAppendPrint(out, false);
    return out.RSTakeString();
}

char *CZelBoolean::RBPrintResolved() {
    CZelString out;
    RBAppendPrint(out, true);
    return out.RSTakeString();
}

void CZelBoolean::RBAppendPrint(CZelString &out, bool resolved) {
    if (m_operand != E_ROExists)
        appendExpression(out, RBLeft(), resolved);
    out.RSStrCat(CZelFilterParser::RFPOperatorToString(m_operand));
    if (takesNoRight(m_operand))
        return;
    if (m_rvalType == E_RBRQuery)
        appendQuery(out, m_rightQuery, isMembership(m_operand));
    else if (isMembership(m_operand))
        appendSet(out, rightExpression(), resolved);
    else
        appendExpression(out, rightExpression(), resolved);
}
