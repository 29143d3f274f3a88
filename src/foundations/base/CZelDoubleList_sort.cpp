// Sorting goes over an array of the elements: a merge along the links would wait for memory at each step.
#include <algorithm>
#include <memory>

#include "foundations/base/CZelDoubleList.h"
#include "foundations/base/ZelMalloc.h"

void CZelDoubleList::RDLSortList(ZelListCompare compare) {
    if (m_length < 2)
        return;
    auto count = static_cast<std::size_t>(m_length);
    std::unique_ptr<CZelListable *, SZelFree> items(static_cast<CZelListable **>(ZelMalloc(count * sizeof(void *))));
    CZelListable **end = items.get();
    for (CZelListable *item = m_head; item != nullptr; item = item->m_next)
        *end++ = item;
    std::stable_sort(items.get(), end,
                     [compare](CZelListable *left, CZelListable *right) { return compare(left, right) < 0; });
    RDLSetHead(nullptr);
    for (CZelListable **item = items.get(); item != end; ++item)
        linkAtEnd(*item);
}
