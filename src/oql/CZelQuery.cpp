#include "oql/CZelQuery.h"

#include "foundations/base/CZelBag.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelExpr.h"
#include "oql/CZelOrder.h"
#include "store/CZelFilter.h"

namespace {

template <class T>
CZelBag *deepCopy(const CZelBag *bag) {
    if (bag == nullptr)
        return nullptr;
    auto *copy = new CZelBag();
    for (CZelPointer *node = bag->RBFirst(); node != nullptr; node = CZelBag::RBNext(node))
        copy->RBAdd(static_cast<void *>(new T(*static_cast<const T *>(node->RPData()))));
    return copy;
}

CZelFilter *deepCopy(const CZelFilter *filter) {
    return filter != nullptr ? new CZelFilter(*filter) : nullptr;
}

template <class T>
void deleteAll(CZelBag *bag) {
    const CZelBagGuard<T> owner(bag);
}

CZelBag *bagOf(CZelDbEntity *entity) {
    auto *bag = new CZelBag();
    bag->RBAdd(static_cast<void *>(entity));
    return bag;
}

void appendClauses(CZelBag &out, CZelBag *entities) {
    for (CZelPointer *node = entities != nullptr ? entities->RBFirst() : nullptr; node != nullptr;
         node = CZelBag::RBNext(node))
        out.RBAppend(static_cast<CZelDbEntity *>(node->RPData())->RDEClauses());
}

}  // namespace

CZelQuery::CZelQuery(CZelBag *source, CZelFilter *where, CZelBag *groups, CZelFilter *having, CZelBag *order)
    : CZelDbObject(E_DOQuery), m_filter(where), m_having(having), m_source(source), m_groups(groups), m_order(order) {}

CZelQuery::CZelQuery(CZelDbEntity *source, CZelFilter *where, CZelBag *groups, CZelFilter *having, CZelBag *order)
    : CZelQuery(bagOf(source), where, groups, having, order) {}

CZelQuery::CZelQuery(const char *column, const char *database, const char *table)
    : CZelQuery(bagOf(new CZelDbEntity(database, table, nullptr)), nullptr, nullptr, nullptr, nullptr) {
    const char *none = nullptr;
    m_selection = new CZelBag();
    m_selection->RBAdd(static_cast<void *>(new CZelExpr(new CZelDbEntity(none, none, column))));
}

CZelQuery::CZelQuery(const CZelQuery &other)
    : CZelDbObject(other),
      m_returnAll(other.m_returnAll),
      m_countStar(other.m_countStar),
      m_selectStar(other.m_selectStar),
      m_filter(deepCopy(other.m_filter)),
      m_having(deepCopy(other.m_having)),
      m_selection(deepCopy<CZelExpr>(other.m_selection)),
      m_source(deepCopy<CZelDbEntity>(other.m_source)),
      m_groups(deepCopy<CZelDbEntity>(other.m_groups)),
      m_order(deepCopy<CZelOrder>(other.m_order)) {}

CZelQuery::~CZelQuery() {
    delete m_compilables;
    delete m_filter;
    delete m_having;
    deleteAll<CZelExpr>(m_selection);
    deleteAll<CZelDbEntity>(m_source);
    deleteAll<CZelDbEntity>(m_groups);
    deleteAll<CZelOrder>(m_order);
}

int CZelQuery::RDODestroy() {
    return 1;
}

int CZelQuery::RDOInitialise(CZelStore * /*store*/) {
    return 1;
}

CZelBag *CZelQuery::RDOCompilables() {
    if (m_compilables == nullptr)
        RQResetClauses();
    return m_compilables;
}

void CZelQuery::RQResetClauses() {
    delete m_compilables;
    m_compilables = new CZelBag();
    if (m_filter != nullptr)
        m_filter->RFEvalClauses(m_compilables);
    if (m_having != nullptr)
        m_having->RFEvalClauses(m_compilables);
    m_compilables->RBAppend(m_selection);
    appendClauses(*m_compilables, m_source);
    appendClauses(*m_compilables, m_groups);
    for (CZelPointer *node = m_order != nullptr ? m_order->RBFirst() : nullptr; node != nullptr;
         node = CZelBag::RBNext(node))
        m_compilables->RBAppend(static_cast<CZelOrder *>(node->RPData())->ROColumn()->RDEClauses());
}

void CZelQuery::RQSetSelection(CZelBag *selection) {
    deleteAll<CZelExpr>(m_selection);
    m_selection = selection;
    m_selectStar = ZelBool(selection == nullptr);
    delete m_compilables;  // built again when asked for
    m_compilables = nullptr;
}

void CZelQuery::RQSetCountStar(__boolean count) {
    m_countStar = count;
    if (count == E_RBTrue)
        m_selectStar = E_RBTrue;
}
