// What stands between the brackets of a create table: a column or a constraint.
#pragma once

#include "foundations/base/CZelPool.h"
#include "foundations/base/ZelEnums.h"
#include "foundations/port/ZelExport.h"

class QUINTOR_API CZelTblAttr {
public:
    ZEL_POOLED

    CZelTblAttr() = default;
    explicit CZelTblAttr(EZelTblAttrType type) : m_type(type) {}
    virtual ~CZelTblAttr();

    EZelTblAttrType RTAType() const { return m_type; }

private:
    EZelTblAttrType m_type = E_RTAColumn;
};
