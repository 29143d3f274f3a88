#include "store/CZelRowKeys.h"

#include <algorithm>
#include <iterator>
#include <utility>

std::size_t CZelRowKeys::count(const CZelAtom &name) const {
    const std::size_t column = find(name);
    std::size_t pairs = 0;
    if (column < columns())
        for (const Pairs &piece : m_columns[column].m_pieces)
            pairs += piece.size();
    return pairs;
}

CZelRowKeys::Pairs CZelRowKeys::take(const CZelAtom &name) {
    const std::size_t column = find(name);
    if (column == columns())
        return {};
    Pairs all;
    for (Pairs &piece : std::exchange(m_columns[column].m_pieces, {}))
        if (all.empty())
            all = std::move(piece);
        else
            all.insert(all.end(), std::move_iterator(piece.begin()), std::move_iterator(piece.end()));
    return all;
}

std::size_t CZelRowKeys::find(const CZelAtom &name) const {
    const auto found = std::find_if(m_columns.begin(), m_columns.end(),
                                    [&name](const Column &column) { return column.m_name->RASameText(name); });
    return static_cast<std::size_t>(found - m_columns.begin());
}
