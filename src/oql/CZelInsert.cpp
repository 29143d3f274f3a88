#include "oql/CZelInsert.h"

#include <cstdio>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/base/CZelString.h"
#include "foundations/base/CZelTreeList.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelExpr.h"
#include "oql/CZelExprComplex.h"
#include "store/CZelColDef.h"

namespace {

CZelColDef *columnOf(const CZelListable *node) {
    return static_cast<CZelColDef *>(static_cast<const CZelPointer *>(node)->RPData());
}

void addAtom(CZelBag &bag, const CZelAtom *atom) {
    bag.RBAdd(const_cast<void *>(static_cast<const void *>(atom)));
}

void addColumnNames(CZelBag &names, CZelTreeList &columns) {
    CZelDoubleList *list = columns.RTLIterator();
    for (CZelListable *node = list->RDLHead(); node != nullptr; node = list->RDLGetNext(node))
        addAtom(names, columnOf(node)->RCDName());
}

// All values of an expression; one null where it has none, so that it still takes its place in the row.
void addValues(CZelBag &values, CZelExpr &expression) {
    CZelBag *own = expression.REBagVal();
    if (own == nullptr) {
        ZEL_REPORT(E_RCBadArgument, "CZelInsert::RICreateRecord");
        return;
    }
    if (own->RBLength() == 0)
        own->RBAdd(static_cast<void *>(nullptr));
    values.RBAdd(own);
}

// The only value of an expression, if it is a plain constant.
bool isConstant(const CZelExprComplex *value) {
    return value->RECType() == E_RECTSimple && value->RECExpr() != nullptr && value->RECExpr()->REType() == E_RETAtom;
}

// Adds a pair unless it has no name or no value, in which case the column keeps its default.
void addPair(CZelVBList &pairs, const CZelAtom *name, const CZelAtom *value) {
    if (!CZelAtom::RAIsNull(name) && !CZelAtom::RAIsNull(value))
        pairs.RVBLAddToListEnd(new CZelVarBind(*name, value));
}

CZelRecord *recordOf(CZelVBList *pairs) {
    if (pairs->RVBLLength() > 0)
        return new CZelRecord(pairs);
    delete pairs;
    return nullptr;
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
    auto *pairs = new CZelVBList();
    for (unsigned int i = 0; i < m_labels->RAVSize(); ++i)
        pairs->RVBLAddToListEnd(new CZelVarBind(*m_labels->RAVGetValue(i), m_values->RAVGetValue(i)));
    return new CZelRecord(pairs);
}

CZelRecord *CZelInsert::positionalRecord(CZelTreeList *columns) const {
    if (columns == nullptr)
        return nullptr;
    auto *pairs = new CZelVBList();
    CZelDoubleList *list = columns->RTLIterator();
    unsigned int i = 0;
    for (CZelListable *node = list->RDLHead(); node != nullptr; node = list->RDLGetNext(node), ++i)
        if (const CZelAtom *value = m_values->RAVGetValue(i))
            pairs->RVBLAddToListEnd(new CZelVarBind(*columnOf(node)->RCDName(), value));
    return new CZelRecord(pairs);
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
    for (CZelPointer *node = m_clauses->RBFirst(); node != nullptr; node = CZelBag::RBNext(node))
        addValues(values, *static_cast<CZelExpr *>(node->RPData()));
    return RILinkBagVal(&names, &values);
}

CZelRecord *CZelInsert::RICreateEvalBagRecord(CZelTreeList *columns) {
    if (m_valueEvals == nullptr || (m_columnEvals == nullptr && columns == nullptr))
        return nullptr;
    if (CZelVBList *pairs = constantPairs())
        return recordOf(pairs);
    CZelBag names;
    CZelBag values;
    if (m_columnEvals == nullptr)
        addColumnNames(names, *columns);
    for (CZelPointer *node = m_columnEvals != nullptr ? m_columnEvals->RBFirst() : nullptr; node != nullptr;
         node = CZelBag::RBNext(node))
        addValues(names, *static_cast<CZelExpr *>(node->RPData()));
    for (CZelPointer *node = m_valueEvals->RBFirst(); node != nullptr; node = CZelBag::RBNext(node))
        static_cast<CZelExprComplex *>(node->RPData())->RECAppendValues(values);
    return RILinkBagVal(&names, &values);
}

// The usual insert, of named columns and as many constants: paired as they stand, without lists of names and
// values. Null when the statement is of another kind.
CZelVBList *CZelInsert::constantPairs() {
    if (m_columnEvals == nullptr || m_columnEvals->RBLength() != m_valueEvals->RBLength())
        return nullptr;
    auto *pairs = new CZelVBList();
    CZelPointer *name = m_columnEvals->RBFirst();
    for (CZelPointer *node = m_valueEvals->RBFirst(); node != nullptr;
         node = CZelBag::RBNext(node), name = CZelBag::RBNext(name)) {
        const auto *column = static_cast<const CZelExpr *>(name->RPData());
        const auto *value = static_cast<const CZelExprComplex *>(node->RPData());
        if (column->REType() != E_RETAtom || !isConstant(value)) {
            delete pairs;
            return nullptr;
        }
        addPair(*pairs, column->REHeadAtomVal(), value->RECExpr()->REHeadAtomVal());
    }
    return pairs;
}

CZelRecord *CZelInsert::RILinkBagVal(CZelBag *names, CZelBag *values) {
    if (names == nullptr || values == nullptr)
        return nullptr;
    if (names->RBLength() != values->RBLength()) {
        CZelString text(
            "Column and values lists different lengths, can not construct record from insert. Column list length: ");
        text.RSStrCat(names->RBLength());
        text.RSStrCat(" value list length: ");
        text.RSStrCat(values->RBLength());
        ZEL_REPORT(E_RCBadColumnValue, text.RSString());
        return nullptr;
    }
    auto *pairs = new CZelVBList();
    CZelPointer *value = values->RBFirst();
    for (CZelPointer *name = names->RBFirst(); name != nullptr;
         name = CZelBag::RBNext(name), value = CZelBag::RBNext(value))
        addPair(*pairs, static_cast<const CZelAtom *>(name->RPData()), static_cast<const CZelAtom *>(value->RPData()));
    return recordOf(pairs);
}

void CZelInsert::RIDump() {
    const CZelMallocText text(RDOAsString());
    std::printf("%s\n", text != nullptr ? text.get() : "NULL");
}
