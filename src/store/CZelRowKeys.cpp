#include "store/CZelRowKeys.h"

#include <algorithm>

std::vector<SZelKeyedObject> *CZelRowKeys::find(const CZelAtom &name) {
    const auto found = std::find_if(m_columns.begin(), m_columns.end(),
                                    [&name](const Column &column) { return column.m_name->RASameText(name); });
    return found != m_columns.end() ? &found->m_pairs : nullptr;
}
