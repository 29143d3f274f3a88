#include <memory>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/base/CZelString.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelExpr.h"
#include "oql/CZelExprComplex.h"
#include "oql/CZelInsert.h"
#include "oql/ZelStatementTextImpl.h"

namespace {

// The names of the columns, in the order of the statement; a computed name that is not known yet is null.
void addNames(CZelBag &names, CZelBag &columnEvals) {
    for (CZelPointer *node = columnEvals.RBFirst(); node != nullptr; node = CZelBag::RBNext(node))
        if (CZelBag *own = static_cast<CZelExpr *>(node->RPData())->REBagVal())
            names.RBAdd(own);
}

void appendColumnEvals(CZelString &text, CZelBag &columnEvals) {
    for (CZelPointer *node = columnEvals.RBFirst(); node != nullptr; node = CZelBag::RBNext(node)) {
        if (node != columnEvals.RBFirst())
            text.RSStrCat(", ");
        CZelBag names;
        if (CZelBag *own = static_cast<CZelExpr *>(node->RPData())->REBagVal())
            names.RBAdd(own);
        for (CZelPointer *name = names.RBFirst(); name != nullptr; name = CZelBag::RBNext(name)) {
            if (name != names.RBFirst())
                text.RSStrCat(", ");
            text.RSStrCat(static_cast<const CZelAtom *>(name->RPData()));
        }
    }
}

// A value as it stands in the brackets: absent or undefined as " NULL ".
void appendValue(CZelString &text, const CZelAtom *value) {
    if (CZelAtom::RAIsNull(value))
        text.RSStrCat(" NULL ");
    else
        text.RSStrCatDoubleQuoted(value);
}

void appendAtoms(CZelString &text, const CZelBag &atoms) {
    for (CZelPointer *node = atoms.RBFirst(); node != nullptr; node = CZelBag::RBNext(node)) {
        if (node != atoms.RBFirst())
            text.RSStrCat(", ");
        text.RSStrCatDoubleQuoted(static_cast<const CZelAtom *>(node->RPData()));
    }
}

}  // namespace

char *CZelInsert::RDOAsString() {
    CZelString text("insert into ");
    ZelAppendEntity(text, m_target);
    if (m_labels != nullptr || m_columnEvals != nullptr) {
        text.RSStrCat(" ( ");
        if (m_labels != nullptr)
            ZelAppendNames(text, *m_labels, ", ");
        else
            appendColumnEvals(text, *m_columnEvals);
        text.RSStrCat(" ) ");
    }
    if (m_uniques != nullptr) {
        text.RSStrCat(" unique ( ");
        ZelAppendNames(text, *m_uniques, ", ");
        text.RSStrCat(" ) ");
    }
    if (m_labels != nullptr || m_columnEvals != nullptr)
        appendNamedValues(text);
    else
        appendPlainValues(text);
    text.RSStrCat(";");
    return text.RSTakeString();
}

void CZelInsert::appendNamedValues(CZelString &text) {
    const std::unique_ptr<CZelRecord> record(RICreateRecord(nullptr));
    if (record == nullptr) {
        ZEL_REPORT(E_RCNull, "The insert was unable to produce a record");
        return;
    }
    CZelBag names;
    for (unsigned int i = 0; m_labels != nullptr && i < m_labels->RAVSize(); ++i)
        names.RBAdd(static_cast<void *>(m_labels->RAVGetValue(i)));
    if (m_labels == nullptr)
        addNames(names, *m_columnEvals);
    text.RSStrCat(" values ( ");
    for (CZelPointer *node = names.RBFirst(); node != nullptr; node = CZelBag::RBNext(node)) {
        if (node != names.RBFirst())
            text.RSStrCat(", ");
        const auto *name = static_cast<const CZelAtom *>(node->RPData());
        appendValue(text, name != nullptr ? record->RRValueOf(name) : nullptr);
    }
    text.RSStrCat(" ) ");
}

void CZelInsert::appendPlainValues(CZelString &text) {
    CZelBag atoms;
    for (unsigned int i = 0; m_values != nullptr && i < m_values->RAVSize(); ++i)
        atoms.RBAdd(static_cast<void *>(m_values->RAVGetValue(i)));
    if (m_values == nullptr && m_clauses != nullptr) {
        addNames(atoms, *m_clauses);
    } else if (m_values == nullptr && m_valueEvals != nullptr) {
        for (CZelPointer *node = m_valueEvals->RBFirst(); node != nullptr; node = CZelBag::RBNext(node))
            static_cast<CZelExprComplex *>(node->RPData())->RECAppendValues(atoms);
    }
    text.RSStrCat(" values ( ");
    appendAtoms(text, atoms);
    text.RSStrCat(" ) ");
}
