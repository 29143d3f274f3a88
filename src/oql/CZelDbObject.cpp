#include "oql/CZelDbObject.h"

#include <cstdio>

#include "foundations/base/CZelPointer.h"

CZelDbObject::~CZelDbObject() = default;

char *CZelDbObject::RDOAsString() {
    std::printf("CZelDbObject::RDOAsString: %d\n", m_kind);
    return nullptr;
}

void CZelDbObject::RDOAdopted() {
    if (m_listing != nullptr)
        m_listing->RPSetData(nullptr);
    m_listing = nullptr;
}
