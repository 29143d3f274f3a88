#include "oql/CZelInsert.h"

#include <utility>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/base/CZelString.h"
#include "foundations/base/CZelTreeList.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelExpr.h"
#include "oql/CZelExprComplex.h"
#include "store/CZelColDef.h"

namespace {

const CZelColDef &columnOf(const CZelPointer *node) {
    return *static_cast<const CZelColDef *>(node->RPData());
}

const CZelExpr &expressionOf(const CZelPointer *node) {
    return *static_cast<const CZelExpr *>(node->RPData());
}

const CZelExprComplex &valueOf(const CZelPointer *node) {
    return *static_cast<const CZelExprComplex *>(node->RPData());
}

const CZelPointer *firstOf(const CZelTreeList &columns) {
    return static_cast<const CZelPointer *>(columns.RTLIterator()->RDLHead());
}

void addAtom(CZelBag &bag, const CZelAtom *atom) {
    bag.RBAdd(const_cast<void *>(static_cast<const void *>(atom)));
}

void addColumnNames(CZelBag &names, const CZelTreeList &columns) {
    for (const CZelPointer *node = firstOf(columns); node != nullptr; node = CZelBag::RBNext(node))
        addAtom(names, columnOf(node).RCDName());
}

// Moves the values of one expression in; one null where it has none, so that it still takes its place in the row.
void addValues(CZelBag &values, CZelBag *own) {
    if (own == nullptr) {
        ZEL_REPORT(E_RCBadArgument, "CZelInsert::RICreateRecord: an expression that is not evaluated");
        return;
    }
    if (own->RBLength() == 0)
        addAtom(*own, nullptr);
    values.RBAdd(own);
}

void addExpressions(CZelBag &values, const CZelBag &expressions) {
    for (const CZelPointer *node = expressions.RBFirst(); node != nullptr; node = CZelBag::RBNext(node))
        addValues(values, static_cast<CZelExpr *>(node->RPData())->REBagVal());
}

// Does the expression take exactly one place in the row?
bool takesOnePlace(int valueCount) {
    return valueCount == 0 || valueCount == 1;
}

bool allTakeOnePlace(const CZelBag &expressions, int (*count)(const CZelPointer *)) {
    for (const CZelPointer *node = expressions.RBFirst(); node != nullptr; node = CZelBag::RBNext(node))
        if (!takesOnePlace(count(node)))
            return false;
    return true;
}

int nameCount(const CZelPointer *node) {
    return expressionOf(node).REValueCount();
}

int valueCount(const CZelPointer *node) {
    return valueOf(node).RECValueCount();
}

// Requires: the expression takes one place.
const CZelAtom *onlyNameOf(const CZelPointer *node) {
    return nameCount(node) == 1 ? expressionOf(node).REHeadAtomVal() : nullptr;
}

// Adds a pair unless it has no name or no value, in which case the column keeps its default. The record is made
// at the first pair.
void addPair(CZelRecord *&record, const CZelAtom *name, CZelAtom &&value) {
    if (CZelAtom::RAIsNull(name) || value.RAIsUndefined())
        return;
    if (record == nullptr)
        record = new CZelRecord;
    record->RRAddValue(new CZelVarBind(*name, std::move(value)));
}

void reportLengths(int names, int values) {
    CZelString text(
        "Column and values lists different lengths, can not construct record from insert. Column list length: ");
    text.RSStrCat(names);
    text.RSStrCat(" value list length: ");
    text.RSStrCat(values);
    ZEL_REPORT(E_RCBadColumnValue, text.RSString());
}

}  // namespace

CZelInsert::CZelInsert(CZelDbEntity *target, CZelAtomVector *uniques, CZelBag *columnEvals, CZelBag *valueEvals)
    : CZelDbObject(E_DOInsert),
      m_target(target),
      m_uniques(uniques),
      m_columnEvals(columnEvals),
      m_valueEvals(valueEvals) {}

CZelInsert::CZelInsert(CZelDbEntity *target, CZelAtomVector *uniques, CZelAtomVector *labels, CZelAtomVector *values,
                       CZelBag *clauses)
    : CZelDbObject(E_DOInsert),
      m_target(target),
      m_uniques(uniques),
      m_labels(labels),
      m_values(values),
      m_clauses(clauses) {
    if (values != nullptr && clauses != nullptr)
        ZEL_REPORT(E_RCBadArgument, "Values in insert implies no clauses");
}

CZelInsert::~CZelInsert() {
    const CZelBagGuard<CZelExpr> clauses(m_clauses);
    const CZelBagGuard<CZelExpr> columnEvals(m_columnEvals);
    const CZelBagGuard<CZelExprComplex> valueEvals(m_valueEvals);
    delete m_compilables;
    delete m_values;
    delete m_labels;
    delete m_uniques;
    delete m_target;
}

int CZelInsert::RDODestroy() {
    return 1;
}

int CZelInsert::RDOInitialise(CZelStore * /*store*/) {
    return 1;
}

CZelBag *CZelInsert::RDOCompilables() {
    if (m_compilables == nullptr)
        RIResetExprPtrs();
    return m_compilables;
}

void CZelInsert::RIResetExprPtrs() {
    delete m_compilables;
    m_compilables = new CZelBag();
    if (m_target != nullptr)
        m_compilables->RBAppend(m_target->RDEClauses());
    if (m_clauses != nullptr) {
        m_compilables->RBAppend(m_clauses);
        return;
    }
    for (CZelPointer *node = m_valueEvals != nullptr ? m_valueEvals->RBFirst() : nullptr; node != nullptr;
         node = CZelBag::RBNext(node))
        static_cast<CZelExprComplex *>(node->RPData())->RECAppendCompilables(*m_compilables);
    m_compilables->RBAppend(m_columnEvals);
}

void CZelInsert::RISetTarget(CZelDbEntity *target) {
    delete m_target;
    m_target = target;
    if (m_compilables != nullptr)
        RIResetExprPtrs();
}

CZelRecord *CZelInsert::RICreateRecord(CZelTreeList *columns) {
    if (m_clauses != nullptr)
        return RICreateClauseRecord(columns);
    if (m_values == nullptr)
        return m_valueEvals != nullptr ? RICreateEvalBagRecord(columns) : nullptr;
    return m_labels != nullptr ? labelledRecord() : positionalRecord(columns);
}

CZelRecord *CZelInsert::labelledRecord() const {
    auto *record = new CZelRecord;
    for (unsigned int i = 0; i < m_labels->RAVSize(); ++i)
        if (const CZelAtom *label = m_labels->RAVGetValue(i))
            record->RRAddValue(new CZelVarBind(*label, std::as_const(*m_values).RAVGetValue(i)));
    return record;
}

CZelRecord *CZelInsert::positionalRecord(const CZelTreeList *columns) const {
    if (columns == nullptr)
        return nullptr;
    auto *record = new CZelRecord;
    const CZelPointer *node = firstOf(*columns);
    for (unsigned int i = 0; node != nullptr && i < m_values->RAVSize(); node = CZelBag::RBNext(node), ++i)
        if (const CZelAtom *value = m_values->RAVGetValue(i))
            record->RRAddValue(new CZelVarBind(*columnOf(node).RCDName(), value));
    return record;
}

CZelRecord *CZelInsert::RICreateClauseRecord(CZelTreeList *columns) {
    if (m_clauses == nullptr || (m_labels == nullptr && columns == nullptr))
        return nullptr;
    CZelBag names;
    CZelBag values;
    if (m_labels == nullptr)
        addColumnNames(names, *columns);
    for (unsigned int i = 0; m_labels != nullptr && i < m_labels->RAVSize(); ++i)
        addAtom(names, m_labels->RAVGetValue(i));
    addExpressions(values, *m_clauses);
    return RILinkBagVal(&names, &values);
}

CZelRecord *CZelInsert::RICreateEvalBagRecord(CZelTreeList *columns) {
    if (m_valueEvals == nullptr || (m_columnEvals == nullptr && columns == nullptr))
        return nullptr;
    if (pairsInStep(columns))
        return recordInStep(columns);
    CZelBag names;
    CZelBag values;
    if (m_columnEvals != nullptr)
        addExpressions(names, *m_columnEvals);
    else
        addColumnNames(names, *columns);
    for (const CZelPointer *node = m_valueEvals->RBFirst(); node != nullptr; node = CZelBag::RBNext(node))
        addValues(values, static_cast<CZelExprComplex *>(node->RPData())->RECBagVal());
    return RILinkBagVal(&names, &values);
}

// The usual insert: each name and each value takes one place, and there are as many of them. Asked before anything
// is built, so that no report is made twice.
bool CZelInsert::pairsInStep(const CZelTreeList *columns) const {
    const int names = m_columnEvals != nullptr ? m_columnEvals->RBLength() : columns->RTLLength();
    return names == m_valueEvals->RBLength() && allTakeOnePlace(*m_valueEvals, valueCount) &&
           (m_columnEvals == nullptr || allTakeOnePlace(*m_columnEvals, nameCount));
}

// The values go straight into the record's bindings.
CZelRecord *CZelInsert::recordInStep(const CZelTreeList *columns) const {
    CZelRecord *record = nullptr;
    const CZelPointer *name = m_columnEvals != nullptr ? m_columnEvals->RBFirst() : firstOf(*columns);
    for (const CZelPointer *node = m_valueEvals->RBFirst(); node != nullptr; node = CZelBag::RBNext(node)) {
        CZelAtom value;
        if (valueOf(node).RECCopyValue(value))
            addPair(record, m_columnEvals != nullptr ? onlyNameOf(name) : columnOf(name).RCDName(), std::move(value));
        name = CZelBag::RBNext(name);
    }
    return record;
}

CZelRecord *CZelInsert::RILinkBagVal(CZelBag *names, CZelBag *values) {
    if (names == nullptr || values == nullptr)
        return nullptr;
    if (names->RBLength() != values->RBLength()) {
        reportLengths(names->RBLength(), values->RBLength());
        return nullptr;
    }
    CZelRecord *record = nullptr;
    const CZelPointer *value = values->RBFirst();
    for (const CZelPointer *name = names->RBFirst(); name != nullptr; name = CZelBag::RBNext(name)) {
        const auto *atom = static_cast<const CZelAtom *>(value->RPData());
        if (atom != nullptr)
            addPair(record, static_cast<const CZelAtom *>(name->RPData()), CZelAtom(*atom));
        value = CZelBag::RBNext(value);
    }
    return record;
}
