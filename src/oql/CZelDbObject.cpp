#include "oql/CZelDbObject.h"

#include <cstdio>

CZelDbObject::~CZelDbObject() = default;

char *CZelDbObject::RDOAsString() {
    std::printf("CZelDbObject::RDOAsString: %d\n", m_kind);
    return nullptr;
}
