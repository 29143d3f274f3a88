#include "store/CZelTableProps.h"

#include "foundations/base/CZelAtomVector.h"

namespace {

void replace(CZelAtomVector *&names, CZelAtomVector *by) {
    delete names;
    names = by;
}

}  // namespace

CZelTableProps::CZelTableProps() : CZelTblAttr(E_RTAProperties) {}

CZelTableProps::~CZelTableProps() {
    delete m_uniques;
    delete m_indices;
    delete m_counters;
    delete m_timestamps;
}

void CZelTableProps::RTPSetUniques(CZelAtomVector *names) {
    replace(m_uniques, names);
}

void CZelTableProps::RTPSetIndices(CZelAtomVector *names) {
    replace(m_indices, names);
}

void CZelTableProps::RTPSetCounters(CZelAtomVector *names) {
    replace(m_counters, names);
}

void CZelTableProps::RTPSetTimestamps(CZelAtomVector *names) {
    replace(m_timestamps, names);
}
