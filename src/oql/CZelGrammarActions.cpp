#include "oql/CZelGrammarActionsImpl.h"

#include "clause/CZelEvalClause.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelDoubleList.h"
#include "foundations/base/CZelVBList.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelExpr.h"
#include "oql/CZelQuery.h"
#include "store/CZelColDef.h"

CZelAtom *CZelGrammarActions::Real(double number) {
    return new CZelAtom(static_cast<float>(number));
}

CZelAtomVector *CZelGrammarActions::AddAtom(CZelAtomVector *atoms, CZelAtom *atom) {
    if (atoms == nullptr)
        atoms = new CZelAtomVector(0);
    atoms->RAVAddToEnd(atom != nullptr ? atom : new CZelAtom());
    return atoms;
}

CZelAtom *CZelGrammarActions::ListAtom(CZelAtomVector *atoms) {
    return new CZelAtom(atoms != nullptr ? atoms : new CZelAtomVector(0));
}

CZelAtom *CZelGrammarActions::ObjectAtom(CZelVBList *bindings) {
    return new CZelAtom(bindings != nullptr ? bindings : new CZelVBList());
}

CZelVarBind *CZelGrammarActions::Binding(SZelSlice name, CZelAtom *value) const {
    return new CZelVarBind(m_scanner.SliceName(name), &value);
}

CZelVBList *CZelGrammarActions::AddBinding(CZelVBList *bindings, CZelVarBind *binding) {
    if (bindings == nullptr)
        bindings = new CZelVBList();
    bindings->RVBLAddToListEnd(binding);
    return bindings;
}

CZelExpr *CZelGrammarActions::Name(SZelSlice name) const {
    return new CZelExpr(m_scanner.SliceName(name));
}

CZelExpr *CZelGrammarActions::QuotedName(SZelSlice name) const {
    return new CZelExpr(m_scanner.SliceAtom(name));
}

CZelExpr *CZelGrammarActions::ClauseValue(CZelEvalClause *clause) {
    return new CZelExpr(clause);
}

CZelExpr *CZelGrammarActions::EntityValue(CZelDbEntity *entity) {
    return new CZelExpr(entity);
}

CZelEvalClause *CZelGrammarActions::Clause(CZelColDef *type, SZelSlice text) {
    m_hasClauses = true;
    return new CZelEvalClause(type, m_scanner.SliceCopy(text));
}

CZelDbEntity *CZelGrammarActions::WithKeys(CZelDbEntity *entity, CZelDoubleList *keys) {
    const int status = entity->RDESetColSpec(keys);
    if (status != 1)
        ZEL_REPORT(status, "ZelOQLParse()");
    return entity;
}

CZelExpr *CZelGrammarActions::Key(int key) {
    return new CZelExpr(CZelAtom(key));
}

CZelDoubleList *CZelGrammarActions::AddKey(CZelDoubleList *keys, CZelExpr *key) {
    if (keys == nullptr)
        keys = new CZelDoubleList();
    keys->RDLAddToListEnd(key);
    return keys;
}

CZelColDef *CZelGrammarActions::Type(EZelDataType type, CZelColDef *element) {
    return new CZelColDef(nullptr, type, element, -1);
}

CZelColDef *CZelGrammarActions::NamedType(SZelSlice name) const {
    CZelColDef *type = Type(E_RDTUndefined);
    const int status = type->RCDSetNamedTypeName(m_scanner.SliceName(name).RAString());
    if (status != 1)
        ZEL_REPORT(status, "ZelOQLParse()");
    return type;
}

CZelExpr *CZelGrammarActions::TextValue(SZelSlice text) const {
    return new CZelExpr(m_scanner.SliceAtom(text));
}

CZelExpr *CZelGrammarActions::RealValue(double number) {
    return new CZelExpr(CZelAtom(static_cast<float>(number)));
}

CZelBag *CZelGrammarActions::AddTo(CZelBag *bag, void *object) {
    if (bag == nullptr)
        bag = new CZelBag();
    if (object != nullptr)
        bag->RBAdd(object);
    return bag;
}

CZelStack *CZelGrammarActions::AddTable(CZelStack *tables, CZelDbEntity *table) {
    if (tables == nullptr)
        tables = new CZelStack(-1);
    tables->RSPush(table);
    return tables;
}

// The tables come off the stack, so that the query holds them from the last to the first.
CZelQuery *CZelGrammarActions::Query(CZelStack *tables, CZelFilter *where, CZelBag *groups, CZelFilter *having,
                                     CZelBag *order) {
    CZelBag *source = new CZelBag();
    while (tables->RSLength() > 0)
        source->RBAdd(tables->RSPop());
    delete tables;
    return new CZelQuery(source, where, groups, having, order);
}

CZelQuery *CZelGrammarActions::Select(CZelQuery *query, __boolean all, CZelBag *selection) {
    query->RQSetReturnAll(all);
    query->RQSetSelection(selection);
    return query;
}

CZelBag *CZelGrammarActions::OrderList(CZelBag *orders) {
    if (orders->RBLength() > 0)
        return orders;
    delete orders;
    return nullptr;
}
