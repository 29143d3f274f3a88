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

bool namesColumn(const CZelExpr &expression) {
    return expression.REType() == E_RETEntity || expression.REType() == E_RETAtom;
}

// Where selected values go: copies into a vector, or into a record under the names of a list of columns in their order.
class AddTo {
public:
    explicit AddTo(CZelAtomVector &values) : m_values(values) {}
    void operator()(const CZelAtom &value) { m_values.RAVAddToEnd(new CZelAtom(value)); }

private:
    CZelAtomVector &m_values;
};

class Fill {
public:
    Fill(CZelRecord &record, const CZelDoubleList &columns)
        : m_record(record), m_columns(columns), m_next(columns.RDLHead()) {}
    void operator()(const CZelAtom &value) {
        if (m_next == nullptr)
            return;
        m_record.RRAddValue(new CZelVarBind(*columnName(m_next), CZelAtom(value)));
        m_next = m_columns.RDLGetNext(m_next);
    }

private:
    CZelRecord &m_record;
    const CZelDoubleList &m_columns;
    const CZelListable *m_next;
};

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
    if (m_query->RQSelection() != nullptr) {
        auto values = std::make_unique<CZelAtomVector>(0);
        return selectValues(*row, AddTo(*values)) ? makeInsert(nullptr, values.release()) : nullptr;
    }
    auto *labels = new CZelAtomVector(0);
    auto *values = new CZelAtomVector(0);
    pairValues(*row, *sourceColumns, *targetColumns, [labels, values](const CZelAtom &name, const CZelAtom &value) {
        values->RAVAddToEnd(new CZelAtom(value));
        labels->RAVAddToEnd(new CZelAtom(name));
    });
    return makeInsert(labels, values);
}

CZelInsert *CZelQryInsert::RQICreateRecord(CZelTuple *row) {
    if (m_query->RQSelection() == nullptr)
        return nullptr;
    auto values = std::make_unique<CZelAtomVector>(0);
    return selectValues(*row, AddTo(*values)) ? makeInsert(nullptr, values.release()) : nullptr;
}

CZelRecord *CZelQryInsert::RQICreateRow(const CZelRecord &row, const CZelDoubleList &sourceColumns,
                                        const CZelDoubleList &targetColumns) {
    auto record = std::make_unique<CZelRecord>();
    if (m_query->RQSelection() != nullptr)
        return selectValues(row, Fill(*record, targetColumns)) ? record.release() : nullptr;
    pairValues(row, sourceColumns, targetColumns, [&record](const CZelAtom &name, const CZelAtom &value) {
        record->RRAddValue(new CZelVarBind(name, CZelAtom(value)));
    });
    return record.release();
}

CZelRecord *CZelQryInsert::RQICreateRow(const CZelTuple &row, const CZelDoubleList &targetColumns) {
    if (m_query->RQSelection() == nullptr)
        return nullptr;
    auto record = std::make_unique<CZelRecord>();
    return selectValues(row, Fill(*record, targetColumns)) ? record.release() : nullptr;
}

std::vector<const CZelAtom *> CZelQryInsert::RQISelectedColumns() const {
    std::vector<const CZelAtom *> columns;
    const CZelBag *selection = m_query->RQSelection();
    for (const CZelPointer *node = selection != nullptr ? selection->RBFirst() : nullptr; node != nullptr;
         node = CZelBag::RBNext(node)) {
        const auto &expression = *static_cast<const CZelExpr *>(node->RPData());
        const CZelAtom *column = namesColumn(expression) ? selectedColumn(expression) : nullptr;
        if (column != nullptr)
            columns.push_back(column);
    }
    return columns;
}

// Values of all columns, each with the target's column of the same place; those that the row has.
template <class Take>
void CZelQryInsert::pairValues(const CZelRecord &row, const CZelDoubleList &sourceColumns,
                               const CZelDoubleList &targetColumns, Take take) {
    const CZelListable *source = sourceColumns.RDLHead();
    const CZelListable *target = targetColumns.RDLHead();
    for (; source != nullptr && target != nullptr;
         source = sourceColumns.RDLGetNext(source), target = targetColumns.RDLGetNext(target)) {
        const CZelAtom *value = columnName(source) != nullptr ? row.RRValueOf(columnName(source)) : nullptr;
        if (value != nullptr && columnName(target) != nullptr)
            take(*columnName(target), *value);
    }
}

// Values by the selection, in its order; false when the row lacks one.
template <class Take>
bool CZelQryInsert::selectValues(const CZelRecord &row, Take take) const {
    for (CZelPointer *node = m_query->RQSelection()->RBFirst(); node != nullptr; node = CZelBag::RBNext(node)) {
        const auto &expression = *static_cast<const CZelExpr *>(node->RPData());
        const CZelAtom *column = selectedColumn(expression);
        if (!namesColumn(expression))
            continue;
        const CZelAtom *value = column != nullptr ? row.RRValueOf(column) : nullptr;
        if (value == nullptr)
            return false;
        take(*value);
    }
    return true;
}

template <class Take>
bool CZelQryInsert::selectValues(const CZelTuple &row, Take take) const {
    for (CZelPointer *node = m_query->RQSelection()->RBFirst(); node != nullptr; node = CZelBag::RBNext(node)) {
        CZelDbEntity *column = static_cast<const CZelExpr *>(node->RPData())->REEntityVal();
        if (column == nullptr) {
            ZEL_REPORT(E_RCBadArgument, "CZelQryInsert::RQICreateRecord");
            continue;
        }
        const CZelAtom *value = row.RTValueOf(column->RDEIdent(), column->RDEColNameAtom());
        if (value == nullptr)
            return false;
        take(*value);
    }
    return true;
}

CZelInsert *CZelQryInsert::makeInsert(CZelAtomVector *labels, CZelAtomVector *values) const {
    CZelAtomVector *uniques = m_uniques != nullptr ? new CZelAtomVector(*m_uniques) : nullptr;
    return new CZelInsert(new CZelDbEntity(*m_target), uniques, labels, values, nullptr);
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
