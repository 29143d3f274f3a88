#include "oql/CZelQryInsert.h"

#include <memory>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelDoubleList.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/base/CZelString.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelExpr.h"
#include "oql/CZelInsert.h"
#include "oql/CZelQuery.h"
#include "oql/ZelStatementTextImpl.h"
#include "store/CZelColDef.h"
#include "store/CZelTuple.h"

namespace {

const CZelAtom *columnName(const CZelListable *node) {
    const auto *column = static_cast<const CZelColDef *>(static_cast<const CZelPointer *>(node)->RPData());
    return column != nullptr ? column->RCDName() : nullptr;
}

// The column that a selected expression names in a row; null, reported, for another kind.
const CZelAtom *selectedColumn(const CZelExpr &expression) {
    if (expression.REType() == E_RETEntity)
        return expression.REEntityVal()->RDEColNameAtom();
    if (expression.REType() == E_RETAtom)
        return expression.REAtomVal();
    ZEL_REPORT(E_RCBadArgument, "CZelQryInsert::RQICreateRecord");
    return nullptr;
}

}  // namespace

CZelQryInsert::CZelQryInsert(CZelDbEntity *target, CZelAtomVector *uniques, CZelQuery *query)
    : CZelDbObject(E_DOQryInsert), m_target(target), m_uniques(uniques), m_query(query) {}

CZelQryInsert::~CZelQryInsert() {
    delete m_compilables;
    delete m_query;
    delete m_uniques;
    delete m_target;
}

int CZelQryInsert::RDODestroy() {
    return 1;
}

int CZelQryInsert::RDOInitialise(CZelStore * /*store*/) {
    return 1;
}

CZelBag *CZelQryInsert::RDOCompilables() {
    if (m_compilables == nullptr)
        RQIResetClauses();
    return m_compilables;
}

void CZelQryInsert::RQIResetClauses() {
    delete m_compilables;
    m_compilables = new CZelBag();
    if (m_target != nullptr)
        m_compilables->RBAppend(m_target->RDEClauses());
    if (m_query != nullptr)
        m_compilables->RBAppend(m_query->RDOCompilables());
}

CZelInsert *CZelQryInsert::RQICreateRecord(CZelRecord *row, CZelDoubleList *sourceColumns,
                                           CZelDoubleList *targetColumns) {
    if (m_query->RQSelection() != nullptr)
        return selectedInsert(*row);
    auto *labels = new CZelAtomVector(0);
    auto *values = new CZelAtomVector(0);
    CZelListable *source = sourceColumns->RDLHead();
    CZelListable *target = targetColumns->RDLHead();
    for (; source != nullptr && target != nullptr;
         source = sourceColumns->RDLGetNext(source), target = targetColumns->RDLGetNext(target)) {
        const CZelAtom *value = columnName(source) != nullptr ? row->RRValueOf(columnName(source)) : nullptr;
        if (value == nullptr || columnName(target) == nullptr)
            continue;
        values->RAVAddToEnd(new CZelAtom(*value));
        labels->RAVAddToEnd(new CZelAtom(*columnName(target)));
    }
    return makeInsert(labels, values);
}

// Values by the selection, which takes the target's columns in their order; null when the row lacks one.
CZelInsert *CZelQryInsert::selectedInsert(const CZelRecord &row) {
    auto *values = new CZelAtomVector(0);
    for (CZelPointer *node = m_query->RQSelection()->RBFirst(); node != nullptr; node = CZelBag::RBNext(node)) {
        const auto &expression = *static_cast<const CZelExpr *>(node->RPData());
        if (expression.REType() != E_RETEntity && expression.REType() != E_RETAtom) {
            selectedColumn(expression);
            continue;
        }
        const CZelAtom *column = selectedColumn(expression);
        const CZelAtom *value = column != nullptr ? row.RRValueOf(column) : nullptr;
        if (value == nullptr) {
            delete values;
            return nullptr;
        }
        values->RAVAddToEnd(new CZelAtom(*value));
    }
    return makeInsert(nullptr, values);
}

CZelInsert *CZelQryInsert::makeInsert(CZelAtomVector *labels, CZelAtomVector *values) const {
    CZelAtomVector *uniques = m_uniques != nullptr ? new CZelAtomVector(*m_uniques) : nullptr;
    return new CZelInsert(new CZelDbEntity(*m_target), uniques, labels, values, nullptr);
}

CZelInsert *CZelQryInsert::RQICreateRecord(CZelTuple *row) {
    if (m_query->RQSelection() == nullptr)
        return nullptr;
    auto values = std::make_unique<CZelAtomVector>(0);
    for (CZelPointer *node = m_query->RQSelection()->RBFirst(); node != nullptr; node = CZelBag::RBNext(node)) {
        CZelDbEntity *column = static_cast<const CZelExpr *>(node->RPData())->REEntityVal();
        if (column == nullptr) {
            ZEL_REPORT(E_RCBadArgument, "CZelQryInsert::RQICreateRecord");
            continue;
        }
        const CZelAtom *value = row->RTValueOf(column->RDEIdent(), column->RDEColNameAtom());
        if (value == nullptr)
            return nullptr;
        values->RAVAddToEnd(new CZelAtom(*value));
    }
    return makeInsert(nullptr, values.release());
}

char *CZelQryInsert::RDOAsString() {
    if (m_query == nullptr || m_target == nullptr || m_query->RQSource() == nullptr ||
        (m_query->RQSelectStar() != E_RBTrue && m_query->RQSelection() == nullptr)) {
        ZEL_REPORT(E_RCNoText, "CZelQryInsert::RDOAsString: no target, source or selection");
        return nullptr;
    }
    CZelString text("select ");
    if (!appendHead(text)) {
        ZEL_REPORT(E_RCNull, "CZelQryInsert::RDOAsString: a part has no text");
        return nullptr;
    }
    if (!appendUniques(text) || !ZelAppendSource(text, *m_query->RQSource()) ||
        !ZelAppendConditions(text, *m_query, false))
        return nullptr;
    text.RSStrCat(" ;\n");
    return text.RSTakeString();
}

// What is selected, and into what.
bool CZelQryInsert::appendHead(CZelString &text) const {
    if (m_query->RQSelectStar() == E_RBTrue)
        text.RSStrCat(" * ");
    else if (!ZelAppendExpressions(text, *m_query->RQSelection(), " , "))
        return false;
    else
        text.RSStrCat('\n');
    text.RSStrCat(" into ");
    if (!ZelAppendEntity(text, m_target))
        return false;
    text.RSStrCat('\n');
    return true;
}

bool CZelQryInsert::appendUniques(CZelString &text) const {
    if (m_uniques == nullptr)
        return true;
    text.RSStrCat(" unique ( ");
    if (!ZelAppendNames(text, *m_uniques, " , "))
        return false;
    text.RSStrCat(" ) \n");
    return true;
}
