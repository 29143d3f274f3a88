// The values on the stacks of the parsers: 8 bytes. A member's type says who frees what a syntax error leaves
// behind; of bags and stacks it is the member's name that tells what they hold, and own while they are here.
#pragma once

#include "foundations/base/ZelEnums.h"
#include "oql/UZelScanValue.h"

class CZelAssign;
class CZelAtom;
class CZelAtomVector;
class CZelBag;
class CZelBoolean;
class CZelColDef;
class CZelCompiledClause;
class CZelDbEntity;
class CZelDoubleList;
class CZelEvalClause;
class CZelExpr;
class CZelExprComplex;
class CZelExprComplexVarBind;
class CZelFilter;
class CZelOrder;
class CZelQuery;
class CZelStack;
class CZelTblAttr;
class CZelVBList;
class CZelVarBind;

union UZelGrammarValue {
    UZelScanValue m_token;
    int m_int;
    __boolean m_boolean;
    EZelOper m_oper;
    EZelOrderDirection m_direction;

    CZelAtom *m_atom;  // null is the literal NULL
    CZelAtomVector *m_atoms;
    CZelVBList *m_bindings;
    CZelVarBind *m_binding;

    CZelExpr *m_expr;
    CZelDbEntity *m_entity;
    CZelEvalClause *m_clause;
    CZelColDef *m_column;
    CZelTblAttr *m_attribute;
    CZelDoubleList *m_list;
    CZelExprComplex *m_value;
    CZelExprComplexVarBind *m_member;

    CZelFilter *m_filter;
    CZelBoolean *m_comparison;
    CZelQuery *m_query;
    CZelOrder *m_order;
    CZelAssign *m_assign;

    CZelCompiledClause *m_node;
    CZelBag *m_nodeBag;

    CZelBag *m_exprBag;
    CZelBag *m_entityBag;
    CZelBag *m_orderBag;
    CZelBag *m_assignBag;
    CZelBag *m_valueBag;
    CZelStack *m_attributeStack;
    CZelStack *m_optionStack;  // of CZelColDef
    CZelStack *m_entityStack;
};
static_assert(sizeof(UZelGrammarValue) == 8);
