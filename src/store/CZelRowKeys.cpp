#include "store/CZelRowKeys.h"

#include <algorithm>

void CZelRowKeys::reserve(std::size_t rows) {
    for (Column &column : m_columns)
        column.m_pairs.reserve(rows);
}

std::vector<SZelKeyedObject> *CZelRowKeys::find(const CZelAtom &name) {
    const auto found = std::find_if(m_columns.begin(), m_columns.end(),
                                    [&name](const Column &column) { return column.m_name->RASameText(name); });
    return found != m_columns.end() ? &found->m_pairs : nullptr;
}
