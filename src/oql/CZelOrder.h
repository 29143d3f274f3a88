// One entry of an order by: a column and a direction.
#pragma once

#include "foundations/base/CZelPool.h"
#include "foundations/base/ZelEnums.h"
#include "foundations/port/ZelExport.h"

class CZelDbEntity;
class CZelString;

class QUINTOR_API CZelOrder {
public:
    ZEL_POOLED

    CZelOrder(CZelDbEntity *column, EZelOrderDirection direction);  // takes over
    CZelOrder(const CZelOrder &other);                              // deep
    CZelOrder &operator=(const CZelOrder &) = delete;
    virtual ~CZelOrder();

    CZelDbEntity *ROColumn() const { return m_column; }
    EZelOrderDirection RODirection() const { return m_direction; }
    char *ROPrint();  // the column and " ASC " or " DESC ", new from malloc; null as RDEPrint
    bool ROAppendPrint(CZelString &out) const;

private:
    CZelDbEntity *m_column;
    EZelOrderDirection m_direction;
};
