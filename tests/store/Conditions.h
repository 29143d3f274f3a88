// Conditions and rows written down as code, for tests.
#pragma once

#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelDoubleList.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/ZelCodes.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelExpr.h"
#include "store/CZelBoolean.h"
#include "store/CZelFilter.h"

namespace conditions {

inline CZelDoubleList *keys(std::initializer_list<CZelAtom> chain) {
    auto *list = new CZelDoubleList;
    for (const CZelAtom &key : chain)
        list->RDLAddToListEnd(new CZelExpr(&key));
    return list;
}

inline CZelDbEntity *entity(const char *column, std::initializer_list<CZelAtom> chain = {}) {
    auto *made = new CZelDbEntity(static_cast<const char *>(nullptr), nullptr, column);
    if (chain.size() != 0)
        made->RDESetColSpec(keys(chain));
    return made;
}

inline CZelExpr *col(const char *column, std::initializer_list<CZelAtom> chain = {}) {
    return new CZelExpr(entity(column, chain));
}

// A column with its table.
inline CZelExpr *col(const char *database, const char *table, const char *column) {
    return new CZelExpr(new CZelDbEntity(database, table, column));
}

inline CZelExpr *val(const CZelAtom &value) {
    return new CZelExpr(&value);
}

inline CZelExpr *none() {
    return new CZelExpr(static_cast<const CZelAtom *>(nullptr));
}

inline CZelAtom list(std::initializer_list<CZelAtom> values) {
    auto *vector = new CZelAtomVector;
    for (const CZelAtom &value : values)
        vector->RAVAddToEnd(new CZelAtom(value));
    return CZelAtom(vector);
}

inline CZelFilter *leaf(CZelExpr *left, EZelOper op, CZelExpr *right) {
    return new CZelFilter(new CZelBoolean(left, right, op));
}

inline CZelFilter *node(CZelFilter *left, EZelAlgebraic op, CZelFilter *right) {
    auto *made = new CZelFilter;
    made->RFSetOp(op);
    made->RFAddLeft(left);
    made->RFAddRight(right);
    return made;
}

inline CZelFilter *both(CZelFilter *left, CZelFilter *right) {
    return node(left, E_RAAnd, right);
}

inline CZelFilter *either(CZelFilter *left, CZelFilter *right) {
    return node(left, E_RAOr, right);
}

inline CZelFilter *negated(CZelFilter *branch) {
    return node(nullptr, E_RANot, branch);
}

using Values = std::initializer_list<std::pair<const char *, CZelAtom>>;

inline CZelRecord *record(Values values) {
    auto *made = new CZelRecord;
    for (const auto &[name, value] : values)
        made->RRAddValue(new CZelVarBind(name, &value));
    return made;
}

// The text, freed.
inline std::string taken(char *text) {
    const CZelMallocText owner(text);
    return text != nullptr ? text : "(null)";
}

template <class T>
std::vector<T *> contents(const CZelBag *bag) {
    std::vector<T *> all;
    for (const CZelPointer *at = bag != nullptr ? bag->RBFirst() : nullptr; at != nullptr; at = CZelBag::RBNext(at))
        all.push_back(static_cast<T *>(at->RPData()));
    return all;
}

}  // namespace conditions
