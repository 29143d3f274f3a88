#include "oql/CZelDropObject.h"

#include "foundations/base/CZelString.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelDbEntity.h"

CZelDropObject::CZelDropObject(CZelDbEntity *target, EZelDropObjectTarget type)
    : CZelDbObject(E_DODropObject), m_type(type), m_target(target) {}

CZelDropObject::~CZelDropObject() {
    delete m_target;
}

int CZelDropObject::RDODestroy() {
    return 1;
}

int CZelDropObject::RDOInitialise(CZelStore * /*store*/) {
    return 1;
}

CZelBag *CZelDropObject::RDOCompilables() {
    return m_target != nullptr ? m_target->RDEClauses() : nullptr;
}

char *CZelDropObject::RDOAsString() {
    if (m_type != E_RDODatabase && m_type != E_RDOTable) {
        ZEL_REPORT(E_RCNoText, "CZelDropObject::RDOAsString: neither a database nor a table");
        return nullptr;
    }
    const CZelMallocText target(m_target != nullptr ? m_target->RDEPrint() : nullptr);
    if (target == nullptr || *target == '\0') {
        ZEL_REPORT(E_RCNull, "CZelDropObject::RDOAsString: no target");
        return nullptr;
    }
    CZelString text(m_type == E_RDODatabase ? "drop database " : "drop table ");
    text.RSStrCat(target.get());
    text.RSStrCat(";\n");
    return text.RSTakeString();
}
