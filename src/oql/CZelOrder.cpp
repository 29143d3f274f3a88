#include "oql/CZelOrder.h"

#include "foundations/base/CZelString.h"
#include "oql/CZelDbEntity.h"

CZelOrder::CZelOrder(CZelDbEntity *column, EZelOrderDirection direction) : m_column(column), m_direction(direction) {}

CZelOrder::CZelOrder(const CZelOrder &other)
    : m_column(other.m_column != nullptr ? new CZelDbEntity(*other.m_column) : nullptr),
      m_direction(other.m_direction) {}

CZelOrder::~CZelOrder() {
    delete m_column;
}

char *CZelOrder::ROPrint() {
    CZelString out;
    return ROAppendPrint(out) ? out.RSTakeString() : nullptr;
}

bool CZelOrder::ROAppendPrint(CZelString &out) const {
    if (m_column != nullptr && !m_column->RDEAppendPrint(out))
        return false;
    out.RSStrCat(m_direction == E_RODDescending ? " DESC " : " ASC ");
    return true;
}
