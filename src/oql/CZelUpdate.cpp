#include "oql/CZelUpdate.h"

#include <cstring>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/base/CZelString.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelAssign.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelExpr.h"
#include "oql/ZelStatementTextImpl.h"
#include "store/CZelBoolean.h"
#include "store/CZelFilter.h"

namespace {

const CZelAssign *assignOf(const CZelPointer *node) {
    return static_cast<const CZelAssign *>(node->RPData());
}

bool isWhole(const CZelAssign *assign) {
    if (assign != nullptr && assign->RATarget() != nullptr && assign->RAValue() != nullptr)
        return true;
    ZEL_REPORT(E_RCBadValue, "CZelUpdate: an assignment without target or value");
    return false;
}

// Would this assignment leave the record as it is?
bool keeps(const CZelAssign &assign, const CZelRecord &record) {
    const CZelAtom *column = assign.RATarget()->RDEColNameAtom();
    const CZelAtom *old = column != nullptr ? record.RRValueOf(column) : nullptr;
    const CZelAtom *value = assign.RAValue()->REHeadAtomVal();
    return old != nullptr && value != nullptr && old->RAType() == value->RAType() && old->RALex(value, nullptr) == 0;
}

bool appendAssign(CZelString &text, const CZelAssign &assign) {
    if (!ZelAppendEntity(text, assign.RATarget()))
        return false;
    text.RSStrCat('=');
    text.RSStrCatQuoted(assign.RAValue()->REHeadAtomVal());
    return true;
}

bool appendChanges(CZelString &text, const CZelBag *changes) {
    const CZelPointer *node = changes != nullptr ? changes->RBFirst() : nullptr;
    for (; node != nullptr; node = CZelBag::RBNext(node)) {
        if (node != changes->RBFirst())
            text.RSStrCat(',');
        if (!isWhole(assignOf(node)) || !appendAssign(text, *assignOf(node)))
            return false;
    }
    return true;
}

}  // namespace

CZelUpdate::CZelUpdate() : CZelDbObject(E_DOUpdate) {}

CZelUpdate::CZelUpdate(CZelDbEntity *target, CZelBag *changes, CZelFilter *filter)
    : CZelDbObject(E_DOUpdate), m_target(target), m_changes(changes), m_filter(filter) {}

CZelUpdate::~CZelUpdate() {
    const CZelBagGuard<CZelAssign> changes(m_changes);
    delete m_compilables;
    delete m_filter;
    delete m_target;
}

int CZelUpdate::RDODestroy() {
    return 1;
}

int CZelUpdate::RDOInitialise(CZelStore * /*store*/) {
    return 1;
}

CZelBag *CZelUpdate::RDOCompilables() {
    if (m_compilables == nullptr)
        RUResetClauses();
    return m_compilables;
}

void CZelUpdate::RUResetClauses() {
    delete m_compilables;
    m_compilables = new CZelBag();
    if (m_target != nullptr)
        m_compilables->RBAppend(m_target->RDEClauses());
    if (m_filter != nullptr)
        m_filter->RFEvalClauses(m_compilables);
    for (CZelPointer *node = m_changes != nullptr ? m_changes->RBFirst() : nullptr; node != nullptr;
         node = CZelBag::RBNext(node))
        m_compilables->RBAppend(static_cast<CZelAssign *>(node->RPData())->RAClauses());
}

void CZelUpdate::RUSetTarget(CZelDbEntity *target) {
    delete m_target;
    m_target = target;
    if (m_compilables != nullptr)
        RUResetClauses();
}

void CZelUpdate::RUSetTarget(const char *database, const char *table, const char *column) {
    RUSetTarget(new CZelDbEntity(database, table, column));
}

void CZelUpdate::RUAddAssignment(const char *column, const CZelAtom *value) {
    if (m_changes == nullptr)
        m_changes = new CZelBag();
    if (m_target == nullptr || column == nullptr) {
        ZEL_REPORT(E_RCBadArgument, "CZelUpdate::RUAddAssignment: no target");
        return;
    }
    auto *target = new CZelDbEntity(*m_target);
    target->RDESetColName(CZelAtom(column));
    m_changes->RBAdd(static_cast<void *>(new CZelAssign(target, new CZelExpr(value))));
    if (m_compilables != nullptr)
        RUResetClauses();
}

void CZelUpdate::RUSetFilter(const char *column, const CZelAtom *value) {
    delete m_filter;
    m_filter = nullptr;
    if (column == nullptr) {
        ZEL_REPORT(E_RCBadArgument, "CZelUpdate::RUSetFilter: no column");
    } else {
        const char *none = nullptr;
        auto *left = new CZelExpr(new CZelDbEntity(none, none, column));
        m_filter = new CZelFilter(new CZelBoolean(left, new CZelExpr(value), E_ROEqual));
    }
    if (m_compilables != nullptr)
        RUResetClauses();
}

const CZelAtom *CZelUpdate::RUFindColAssignment(const char *column, __boolean *found) const {
    *found = E_RBFalse;
    for (CZelPointer *node = m_changes != nullptr && column != nullptr ? m_changes->RBFirst() : nullptr;
         node != nullptr; node = CZelBag::RBNext(node)) {
        const CZelAssign *assign = assignOf(node);
        if (!isWhole(assign))
            return nullptr;
        const char *name = assign->RATarget()->RDEColName();
        if (name == nullptr || std::strcmp(name, column) != 0)
            continue;
        *found = E_RBTrue;
        return assign->RAValue()->REHeadAtomVal();
    }
    return nullptr;
}

bool CZelUpdate::RUWillChangeRecord(CZelRecord *record) const {
    if (m_changes == nullptr || record == nullptr)
        return false;
    for (CZelPointer *node = m_changes->RBFirst(); node != nullptr; node = CZelBag::RBNext(node))
        if (isWhole(assignOf(node)) && !keeps(*assignOf(node), *record))
            return true;
    return false;
}

char *CZelUpdate::RDOAsString() {
    CZelString text("update ");
    if (!ZelAppendEntity(text, m_target))
        return nullptr;
    text.RSStrCat(" set ");
    if (!appendChanges(text, m_changes))
        return nullptr;
    if (m_filter != nullptr) {
        text.RSStrCat(" where ");
        if (!ZelAppendFilter(text, *m_filter, true))
            return nullptr;
    }
    text.RSStrCat(';');
    return text.RSTakeString();
}
