#include "oql/CZelDropIndex.h"

#include <cstdio>
#include <cstdlib>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelString.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelExpr.h"
#include "oql/ZelStatementTextImpl.h"

CZelDropIndex::CZelDropIndex(char *name)
    : CZelDbObject(E_DODropIndex), m_name(name != nullptr ? new CZelExpr(CZelAtom(name)) : nullptr) {}

CZelDropIndex::CZelDropIndex(CZelExpr *name) : CZelDbObject(E_DODropIndex), m_name(name) {}

CZelDropIndex::~CZelDropIndex() {
    delete m_compilables;
    delete m_name;
}

int CZelDropIndex::RDODestroy() {
    return 1;
}

int CZelDropIndex::RDOInitialise(CZelStore * /*store*/) {
    return 1;
}

CZelBag *CZelDropIndex::RDOCompilables() {
    if (m_compilables == nullptr)
        RDIResetExprPtrs();
    return m_compilables;
}

void CZelDropIndex::RDIResetExprPtrs() {
    delete m_compilables;
    m_compilables = new CZelBag();
    if (m_name != nullptr)
        m_compilables->RBAdd(static_cast<void *>(m_name));
}

const CZelAtom *CZelDropIndex::RDIName() const {
    return m_name != nullptr ? m_name->REHeadAtomVal() : nullptr;
}

char *CZelDropIndex::RDOAsString() {
    if (RDIName() == nullptr) {
        ZEL_REPORT(E_RCNull, "CZelDropIndex::RDOAsString: no name");
        return nullptr;
    }
    CZelString text("drop index ");
    if (!ZelAppendName(text, *RDIName()))
        return nullptr;
    text.RSStrCat(" ;\n");
    return text.RSTakeString();
}

char *CZelDropIndex::RDIPrint() {
    return RDOAsString();
}

void CZelDropIndex::RDIDump() {
    const CZelMallocText text(RDIPrint());
    std::printf("%s", text != nullptr ? text.get() : "NULL\n");
}
