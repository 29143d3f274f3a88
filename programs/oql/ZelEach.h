// Walks over the lists of the store's dictionaries.
#pragma once

#include "foundations/base/CZelDoubleList.h"
#include "foundations/base/CZelPointer.h"

// Calls `visit` with each T that the list's CZelPointer nodes refer to.
template <class T, class Visit>
void ZelEach(const CZelDoubleList *nodes, Visit visit) {
    for (const CZelListable *node = nodes->RDLHead(); node != nullptr; node = nodes->RDLGetNext(node))
        visit(*static_cast<T *>(static_cast<const CZelPointer *>(node)->RPData()));
}
