#include <cstdio>
#include <memory>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/base/CZelString.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelExpr.h"
#include "oql/CZelExprComplex.h"
#include "oql/CZelInsert.h"
#include "oql/ZelStatementTextImpl.h"

namespace {

// Calls `visit(atom)` for each atom of a bag until it gives false. Owns the bag.
template <class Visit>
bool visitAtoms(CZelBag *bag, Visit visit) {
    const std::unique_ptr<CZelBag> owner(bag);
    for (const CZelPointer *node = bag->RBFirst(); node != nullptr; node = CZelBag::RBNext(node))
        if (!visit(static_cast<const CZelAtom *>(node->RPData())))
            return false;
    return true;
}

// Puts the separator ahead of every piece but the first.
class Row {
public:
    explicit Row(CZelString &text) : m_text(text) {}
    CZelString &next() {
        m_text.RSStrCat(m_isFirst ? "" : ", ");
        m_isFirst = false;
        return m_text;
    }

private:
    CZelString &m_text;
    bool m_isFirst = true;
};

// A computed name that is not known yet stands as its clause.
bool appendColumn(Row &row, CZelExpr &column) {
    CZelBag *names = column.REBagVal();
    if (names == nullptr)
        return column.REAppendPrint(row.next());
    return visitAtoms(names, [&](const CZelAtom *name) { return name != nullptr && ZelAppendName(row.next(), *name); });
}

bool appendColumns(CZelString &text, const CZelBag &columns) {
    Row row(text);
    for (const CZelPointer *node = columns.RBFirst(); node != nullptr; node = CZelBag::RBNext(node))
        if (!appendColumn(row, *static_cast<CZelExpr *>(node->RPData())))
            return false;
    return true;
}

void appendValueOf(CZelString &text, const CZelRecord &record, const CZelAtom *name) {
    const CZelAtom *value = name != nullptr ? record.RRValueOf(name) : nullptr;
    if (CZelAtom::RAIsNull(value))
        text.RSStrCat(" NULL ");
    else
        text.RSStrCatDoubleQuoted(value);
}

// The values of one expression; a clause that has no result yet stands as it was written.
bool appendValues(Row &row, CZelBag *values, const CZelExpr *expression) {
    if (values == nullptr)
        return expression == nullptr || expression->REAppendPrint(row.next());
    if (values->RBLength() == 0)
        values->RBAdd(static_cast<void *>(nullptr));
    return visitAtoms(values, [&](const CZelAtom *value) {
        row.next().RSStrCatDoubleQuoted(value);
        return true;
    });
}

}  // namespace

char *CZelInsert::RDOAsString() {
    CZelString text("insert into ");
    if (!ZelAppendEntity(text, m_target) || !appendNames(text) || !appendUniques(text))
        return nullptr;
    const bool isWritten =
        m_labels != nullptr || m_columnEvals != nullptr ? appendNamedValues(text) : appendPlainValues(text);
    text.RSStrCat(';');
    return isWritten ? text.RSTakeString() : nullptr;
}

bool CZelInsert::appendNames(CZelString &text) const {
    if (m_labels == nullptr && m_columnEvals == nullptr)
        return true;
    text.RSStrCat(" ( ");
    if (m_labels != nullptr ? !ZelAppendNames(text, *m_labels, ", ") : !appendColumns(text, *m_columnEvals))
        return false;
    text.RSStrCat(" ) ");
    return true;
}

bool CZelInsert::appendUniques(CZelString &text) const {
    if (m_uniques == nullptr)
        return true;
    text.RSStrCat(" unique ( ");
    if (!ZelAppendNames(text, *m_uniques, ", "))
        return false;
    text.RSStrCat(" ) ");
    return true;
}

// A statement without a record has no values to write; its text then ends behind the names.
bool CZelInsert::appendNamedValues(CZelString &text) {
    const std::unique_ptr<CZelRecord> record(RICreateRecord(nullptr));
    if (record == nullptr) {
        ZEL_REPORT(E_RCNull, "The insert was unable to produce a record");
        return true;
    }
    text.RSStrCat(" values ( ");
    Row row(text);
    for (unsigned int i = 0; m_labels != nullptr && i < m_labels->RAVSize(); ++i)
        appendValueOf(row.next(), *record, m_labels->RAVGetValue(i));
    if (m_labels == nullptr)
        appendColumnValues(text, *record);
    text.RSStrCat(" ) ");
    return true;
}

void CZelInsert::appendColumnValues(CZelString &text, const CZelRecord &record) const {
    Row row(text);
    for (const CZelPointer *node = m_columnEvals->RBFirst(); node != nullptr; node = CZelBag::RBNext(node)) {
        CZelBag *names = static_cast<CZelExpr *>(node->RPData())->REBagVal();
        if (names == nullptr)
            continue;
        visitAtoms(names, [&](const CZelAtom *name) {
            appendValueOf(row.next(), record, name);
            return true;
        });
    }
}

bool CZelInsert::appendPlainValues(CZelString &text) const {
    text.RSStrCat(" values ( ");
    Row row(text);
    for (unsigned int i = 0; m_values != nullptr && i < m_values->RAVSize(); ++i)
        row.next().RSStrCatDoubleQuoted(m_values->RAVGetValue(i));
    const CZelBag *expressions = m_clauses != nullptr ? m_clauses : m_valueEvals;
    const CZelPointer *node = m_values == nullptr && expressions != nullptr ? expressions->RBFirst() : nullptr;
    for (; node != nullptr; node = CZelBag::RBNext(node)) {
        auto *clause = m_clauses != nullptr ? static_cast<CZelExpr *>(node->RPData()) : nullptr;
        auto *value = m_clauses == nullptr ? static_cast<CZelExprComplex *>(node->RPData()) : nullptr;
        const bool isWritten = value != nullptr ? appendValues(row, value->RECBagVal(), value->RECExpr())
                                                : appendValues(row, clause->REBagVal(), clause);
        if (!isWritten)
            return false;
    }
    text.RSStrCat(" ) ");
    return true;
}

void CZelInsert::RIDump() {
    const CZelMallocText text(RDOAsString());
    std::printf("%s\n", text != nullptr ? text.get() : "NULL");
}
