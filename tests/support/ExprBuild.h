// Expressions, names and conditions for tests. All that is returned is new.
#pragma once

#include <initializer_list>

#include "clause/CZelEvalClause.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelDoubleList.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelExpr.h"
#include "oql/CZelExprComplex.h"
#include "oql/CZelExprComplexVarBind.h"
#include "store/CZelBoolean.h"
#include "store/CZelColDef.h"
#include "store/CZelFilter.h"
#include "support/AtomBuild.h"

inline CZelExpr *constant(const CZelAtom &value) {
    return new CZelExpr(&value);
}

inline CZelExpr *noValue() {
    return new CZelExpr(static_cast<const CZelAtom *>(nullptr));
}

inline CZelEvalClause *evalOf(EZelDataType type, const char *text) {
    return new CZelEvalClause(new CZelColDef(nullptr, type, nullptr, -1), ZelStrDup(text));
}

inline CZelExpr *clause(const char *text, EZelDataType type = E_RDTText) {
    return new CZelExpr(evalOf(type, text));
}

// A clause that has been evaluated to these values.
inline CZelExpr *evaluated(std::initializer_list<CZelAtom> values, EZelDataType type = E_RDTText) {
    CZelExpr *expression = clause("&x", type);
    const CZelAtom list = listOf(values);
    expression->RESetClauseVal(new CZelVarBind("", &list));
    return expression;
}

inline CZelDbEntity *entity(const char *database, const char *table, const char *column = nullptr) {
    return new CZelDbEntity(database, table, column);
}

inline CZelDbEntity *column(const char *name, std::initializer_list<CZelAtom> keys = {}) {
    CZelDbEntity *made = entity(nullptr, nullptr, name);
    if (keys.size() == 0)
        return made;
    auto *list = new CZelDoubleList;
    for (const CZelAtom &key : keys)
        list->RDLAddToListEnd(constant(key));
    made->RDESetColSpec(list);
    return made;
}

inline CZelExpr *columnExpr(const char *name) {
    return new CZelExpr(column(name));
}

inline CZelFilter *equals(const char *name, const CZelAtom &value) {
    return new CZelFilter(new CZelBoolean(columnExpr(name), constant(value), E_ROEqual));
}

template <class T>
CZelBag *bagOf(std::initializer_list<T *> objects) {
    auto *bag = new CZelBag;
    for (T *object : objects)
        bag->RBAdd(static_cast<void *>(object));
    return bag;
}

inline CZelExprComplex *valueOf(CZelExpr *expression) {
    return new CZelExprComplex(expression);
}

inline CZelExprComplex *listValue(std::initializer_list<CZelExprComplex *> members) {
    auto *list = new CZelDoubleList;
    for (CZelExprComplex *member : members)
        list->RDLAddToListEnd(member);
    return new CZelExprComplex(list, E_RECTList);
}

inline CZelExprComplex *objectValue(const char *name, CZelExprComplex *value) {
    auto *list = new CZelDoubleList;
    list->RDLAddToListEnd(new CZelExprComplexVarBind(ZelStrDup(name), value));
    return new CZelExprComplex(list, E_RECTObject);
}
