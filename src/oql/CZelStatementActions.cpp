#include "oql/CZelStatementActionsImpl.h"

#include <memory>

#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelDoubleList.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelDbObject.h"
#include "oql/CZelExpr.h"
#include "oql/CZelExprComplex.h"
#include "oql/CZelExprComplexVarBind.h"
#include "oql/CZelShow.h"
#include "store/CZelColDef.h"
#include "store/CZelDatabase.h"
#include "store/CZelTable.h"
#include "store/CZelTableProps.h"

namespace {

void check(int status) {
    if (status != 1)
        ZEL_REPORT(status, "ZelOQLParse()");
}

void applyOption(CZelColDef &column, const CZelColDef &option) {
    if (option.RCDNullable() == E_RBFalse)
        check(column.RCDSetNullable(E_RBFalse));
    if (option.RCDUnique() == E_RBTrue)
        check(column.RCDSetUnique(E_RBTrue));
    if (option.RCDIndex() == E_RBTrue)
        check(column.RCDSetIndex(E_RBTrue));
    if (option.RCDDefault() != nullptr)
        check(column.RCDSetDefault(option.RCDDefault()));
}

CZelDoubleList *addTo(CZelDoubleList *list, CZelListable *element) {
    if (list == nullptr)
        list = new CZelDoubleList();
    list->RDLAddToListEnd(element);
    return list;
}

CZelExprComplex *nested(CZelDoubleList *members, EZelExprComplexType type) {
    return new CZelExprComplex(members != nullptr ? members : new CZelDoubleList(), type);
}

}  // namespace

void CZelStatementActions::Push(CZelDbObject *statement) const {
    m_results.RSPush(statement);
}

void CZelStatementActions::PushTable(CZelDbEntity *table, CZelStack *attributes) const {
    Push(new CZelTable(table, attributes));
    delete attributes;
}

CZelStack *CZelStatementActions::AddAttribute(CZelStack *attributes, CZelTblAttr *attribute) {
    if (attributes == nullptr)
        attributes = new CZelStack(-1);
    attributes->RSPush(attribute);
    return attributes;
}

CZelTblAttr *CZelStatementActions::Column(SZelSlice name, CZelColDef *type, CZelStack *options) const {
    check(type->RCDSetName(m_scanner.SliceName(name)));
    while (options->RSLength() > 0) {
        const std::unique_ptr<CZelColDef> option(static_cast<CZelColDef *>(options->RSPop()));
        applyOption(*type, *option);
    }
    delete options;
    return type;
}

CZelStack *CZelStatementActions::AddOption(CZelStack *options, CZelColDef *option) {
    check(options->RSPush(option));
    return options;
}

CZelColDef *CZelStatementActions::NotNullOption(int (CZelColDef::*also)(__boolean)) {
    CZelColDef *option = Type(E_RDTUndefined);
    check(option->RCDSetNullable(E_RBFalse));
    if (also != nullptr)
        check((option->*also)(E_RBTrue));
    return option;
}

CZelColDef *CZelStatementActions::DefaultOption(CZelAtom *value) {
    const std::unique_ptr<CZelAtom> guard(value);
    CZelColDef *option = Type(E_RDTUndefined);
    check(option->RCDSetDefault(value));
    return option;
}

CZelTblAttr *CZelStatementActions::Constraint(void (CZelTableProps::*setter)(CZelAtomVector *), CZelAtomVector *names) {
    CZelTableProps *constraint = new CZelTableProps();
    (constraint->*setter)(names);
    return constraint;
}

// The word volatile is taken and changes nothing.
CZelTblAttr *CZelStatementActions::NoConstraint() {
    return new CZelTableProps();
}

CZelAtomVector *CZelStatementActions::AddName(CZelAtomVector *names, SZelSlice name) const {
    return AddAtom(names, new CZelAtom(m_scanner.SliceName(name)));
}

void CZelStatementActions::PushDatabase(SZelSlice name) const {
    Push(new CZelDatabase(m_scanner.SliceCopy(name)));
}

void CZelStatementActions::PushShow(const SZelSlice *database, const SZelSlice *table) const {
    Push(new CZelShow(database != nullptr ? m_scanner.SliceCopy(*database) : nullptr,
                      table != nullptr ? m_scanner.SliceCopy(*table) : nullptr));
}

void CZelStatementActions::PushBareShow() const {
    Push(new CZelShow(nullptr, ZelStrDup("")));
}

CZelExprComplex *CZelStatementActions::ListValue(CZelDoubleList *members) {
    return nested(members, E_RECTList);
}

CZelExprComplex *CZelStatementActions::ObjectValue(CZelDoubleList *members) {
    return nested(members, E_RECTObject);
}

CZelExprComplexVarBind *CZelStatementActions::Member(SZelSlice name, CZelExprComplex *value) const {
    return new CZelExprComplexVarBind(m_scanner.SliceName(name), value);
}

CZelDoubleList *CZelStatementActions::AddValue(CZelDoubleList *values, CZelExprComplex *value) {
    return addTo(values, value);
}

CZelDoubleList *CZelStatementActions::AddMember(CZelDoubleList *members, CZelExprComplexVarBind *member) {
    return addTo(members, member);
}
