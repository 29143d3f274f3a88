// select. Of a query the store acts on sources, filter, selection and count; groups, having, order and
// distinct are kept and printed.
#pragma once

#include "oql/CZelDbObject.h"

class CZelDbEntity;
class CZelFilter;

class QUINTOR_API CZelQuery : public CZelDbObject {
public:
    // Take over all they are given; where, groups, having and order may be null. Select star is set.
    CZelQuery(CZelBag *source, CZelFilter *where, CZelBag *groups, CZelFilter *having, CZelBag *order);
    CZelQuery(CZelDbEntity *source, CZelFilter *where, CZelBag *groups, CZelFilter *having, CZelBag *order);
    // One column of one table; select star stays set.
    CZelQuery(const char *column, const char *database, const char *table);
    CZelQuery(const CZelQuery &other);  // deep
    CZelQuery &operator=(const CZelQuery &) = delete;
    ~CZelQuery() override;

    int RDODestroy() override;
    int RDOInitialise(CZelStore *store) override;
    CZelBag *RDOCompilables() override;
    char *RDOAsString() override;

    void RQSetSelection(CZelBag *selection);  // takes over; null is select *
    void RQSetReturnAll(__boolean all) { m_returnAll = all; }
    void RQSetCountStar(__boolean count);
    __boolean RQReturnAll() const { return m_returnAll; }
    __boolean RQCountStar() const { return m_countStar; }
    __boolean RQSelectStar() const { return m_selectStar; }
    CZelBag *RQSelection() const { return m_selection; }  // of CZelExpr
    CZelBag *RQSource() const { return m_source; }        // of CZelDbEntity
    CZelBag *RQGroups() const { return m_groups; }        // of CZelDbEntity
    CZelBag *RQOrder() const { return m_order; }          // of CZelOrder
    CZelFilter *RQFilter() const { return m_filter; }
    CZelFilter *RQHaving() const { return m_having; }
    void RQResetClauses();

    char *RQPrint();  // the query as a subquery stands in a condition, "(select ...)" without ";"; from malloc
    void RQDump();

private:
    __boolean m_returnAll = E_RBTrue;
    __boolean m_countStar = E_RBFalse;
    __boolean m_selectStar = E_RBTrue;
    CZelFilter *m_filter = nullptr;
    CZelFilter *m_having = nullptr;
    CZelBag *m_selection = nullptr;
    CZelBag *m_source = nullptr;
    CZelBag *m_groups = nullptr;
    CZelBag *m_order = nullptr;
    CZelBag *m_compilables = nullptr;  // elements not owned
};
