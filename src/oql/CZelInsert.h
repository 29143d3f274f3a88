// insert into. Values come in exactly one of three ways: labels with values (made by code), clauses (made by
// code), or column expressions with value expressions (from the parser).
#pragma once

#include "oql/CZelDbObject.h"

class CZelAtomVector;
class CZelDbEntity;
class CZelRecord;
class CZelString;
class CZelTreeList;

class QUINTOR_API CZelInsert : public CZelDbObject {
public:
    // Both take over all they are given; each argument but the target may be null.
    CZelInsert(CZelDbEntity *target, CZelAtomVector *uniques, CZelBag *columnEvals, CZelBag *valueEvals);
    CZelInsert(CZelDbEntity *target, CZelAtomVector *uniques, CZelAtomVector *labels, CZelAtomVector *values,
               CZelBag *clauses);
    CZelInsert(const CZelInsert &) = delete;
    CZelInsert &operator=(const CZelInsert &) = delete;
    ~CZelInsert() override;

    int RDODestroy() override;
    int RDOInitialise(CZelStore *store) override;
    CZelBag *RDOCompilables() override;
    char *RDOAsString() override;

    CZelDbEntity *RITarget() const { return m_target; }
    CZelAtomVector *RIUniques() const { return m_uniques; }
    CZelAtomVector *RILabels() const { return m_labels; }
    CZelAtomVector *RIValues() const { return m_values; }
    CZelBag *RIClauses() const { return m_clauses; }
    CZelBag *RIColEvalBag() const { return m_columnEvals; }
    CZelBag *RIValueEvalBag() const { return m_valueEvals; }
    void RISetTarget(CZelDbEntity *target);
    void RIResetExprPtrs();

    // A new record of the statement's values, the caller's, or null: nothing to make one of, or names and
    // values that don't match (reported). `columns` is the table's column dictionary (data: CZelColDef*), or
    // null; it gives the names, in tree order, where the statement has none. Values that are null are left out,
    // except of labels, whose names then stand without a value.
    CZelRecord *RICreateRecord(CZelTreeList *columns);
    CZelRecord *RICreateClauseRecord(CZelTreeList *columns);
    CZelRecord *RICreateEvalBagRecord(CZelTreeList *columns);

    void RIDump();

private:
    CZelRecord *labelledRecord() const;
    CZelRecord *positionalRecord(const CZelTreeList *columns) const;
    bool pairsInStep(const CZelTreeList *columns) const;
    CZelRecord *recordInStep(const CZelTreeList *columns) const;
    bool appendNames(CZelString &text) const;
    bool appendUniques(CZelString &text) const;
    bool appendNamedValues(CZelString &text);
    void appendColumnValues(CZelString &text, const CZelRecord &record) const;
    bool appendPlainValues(CZelString &text) const;
    CZelRecord *RILinkBagVal(CZelBag *names, CZelBag *values);

    CZelDbEntity *m_target;
    CZelAtomVector *m_uniques;
    CZelAtomVector *m_labels = nullptr;
    CZelAtomVector *m_values = nullptr;
    CZelBag *m_clauses = nullptr;      // of CZelExpr
    CZelBag *m_columnEvals = nullptr;  // of CZelExpr
    CZelBag *m_valueEvals = nullptr;   // of CZelExprComplex
    CZelBag *m_compilables = nullptr;  // elements not owned
};
