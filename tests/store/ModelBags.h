// The algebra of rows as sets, written down with std:: containers: what each operation leaves, in which order,
// and which of its two operands became the result.
#pragma once

#include <algorithm>
#include <iterator>
#include <vector>

namespace model {

template <class Row>
using Rows = std::vector<Row *>;

template <class Row>
struct Outcome {
    Rows<Row> rows;
    bool isFirst;
    bool operator==(const Outcome &other) const = default;
};

template <class Row>
Rows<Row> sorted(Rows<Row> rows) {
    std::sort(rows.begin(), rows.end());
    return rows;
}

template <class Row>
Rows<Row> keep(const Rows<Row> &rows, const Rows<Row> &other, bool present) {
    const Rows<Row> known = sorted(other);
    Rows<Row> kept;
    std::copy_if(rows.begin(), rows.end(), std::back_inserter(kept),
                 [&](Row *row) { return std::binary_search(known.begin(), known.end(), row) == present; });
    return kept;
}

template <class Row>
Outcome<Row> both(const Rows<Row> &a, const Rows<Row> &b) {
    if (a.empty() || b.empty())
        return {{}, a.empty()};
    const bool firstIsShort = a.size() <= b.size();
    const Rows<Row> &shorter = firstIsShort ? a : b, &longer = firstIsShort ? b : a;
    if (longer.size() < 11)
        return {sorted(keep(shorter, longer, true)), firstIsShort};
    return {keep(longer, shorter, true), !firstIsShort};
}

template <class Row>
Outcome<Row> either(const Rows<Row> &a, const Rows<Row> &b) {
    if (a.empty() || b.empty())
        return {a.empty() ? b : a, !a.empty()};
    const bool firstIsShort = a.size() <= b.size();
    const Rows<Row> &shorter = firstIsShort ? a : b, &longer = firstIsShort ? b : a;
    const bool isSorted = longer.size() < 11;
    Rows<Row> all = isSorted ? longer : shorter;
    const Rows<Row> added = isSorted ? keep(shorter, longer, false) : keep(longer, shorter, false);
    all.insert(all.end(), added.begin(), added.end());
    return {isSorted ? sorted(all) : all, isSorted != firstIsShort};
}

template <class Row>
Rows<Row> rest(const Rows<Row> &all, const Rows<Row> &minus) {
    return minus.empty() ? all : sorted(keep(all, minus, false));
}

}  // namespace model
