// select ... into: the rows of a query become rows of a table.
#pragma once

#include <vector>

#include "oql/CZelDbObject.h"

class CZelAtom;
class CZelAtomVector;
class CZelDbEntity;
class CZelDoubleList;
class CZelInsert;
class CZelQuery;
class CZelRecord;
class CZelString;
class CZelTuple;

class QUINTOR_API CZelQryInsert : public CZelDbObject {
public:
    CZelQryInsert(CZelDbEntity *target, CZelAtomVector *uniques, CZelQuery *query);  // takes all over
    CZelQryInsert(const CZelQryInsert &) = delete;
    CZelQryInsert &operator=(const CZelQryInsert &) = delete;
    ~CZelQryInsert() override;

    int RDODestroy() override;
    int RDOInitialise(CZelStore *store) override;
    CZelBag *RDOCompilables() override;
    char *RDOAsString() override;

    CZelDbEntity *RQITarget() const { return m_target; }
    CZelAtomVector *RQIUniques() const { return m_uniques; }
    CZelQuery *RQIQuery() const { return m_query; }
    void RQIResetClauses();

    // The insert for one source row, new; null when the row lacks a selected value. The lists are those of
    // the column dictionaries of source and target.
    CZelInsert *RQICreateRecord(CZelRecord *row, CZelDoubleList *sourceColumns, CZelDoubleList *targetColumns);
    CZelInsert *RQICreateRecord(CZelTuple *row);  // for a joined row

    // The record that such an insert makes, without the way through a statement; null likewise.
    CZelRecord *RQICreateRow(const CZelRecord &row, const CZelDoubleList &sourceColumns,
                             const CZelDoubleList &targetColumns);
    CZelRecord *RQICreateRow(const CZelTuple &row, const CZelDoubleList &targetColumns);
    // The columns of a source row that are read for this, where a selection names them; else none.
    std::vector<const CZelAtom *> RQISelectedColumns() const;

private:
    bool appendHead(CZelString &text) const;
    bool appendUniques(CZelString &text) const;
    template <class Take>
    static void pairValues(const CZelRecord &row, const CZelDoubleList &sourceColumns,
                           const CZelDoubleList &targetColumns, Take take);
    template <class Take>
    bool selectValues(const CZelRecord &row, Take take) const;
    template <class Take>
    bool selectValues(const CZelTuple &row, Take take) const;
    CZelInsert *makeInsert(CZelAtomVector *labels, CZelAtomVector *values) const;

    CZelDbEntity *m_target;
    CZelAtomVector *m_uniques;
    CZelQuery *m_query;
    CZelBag *m_compilables = nullptr;  // elements not owned
};
