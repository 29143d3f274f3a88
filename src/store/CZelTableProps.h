// A constraint written at table level: the column names of unique, primary key, counter or timestamp.
#pragma once

#include "store/CZelTblAttr.h"

class CZelAtomVector;

class QUINTOR_API CZelTableProps : public CZelTblAttr {
public:
    CZelTableProps();
    CZelTableProps(const CZelTableProps &) = delete;
    CZelTableProps &operator=(const CZelTableProps &) = delete;
    ~CZelTableProps() override;

    void RTPSetUniques(CZelAtomVector *names);  // all take over
    void RTPSetIndices(CZelAtomVector *names);
    void RTPSetCounters(CZelAtomVector *names);
    void RTPSetTimestamps(CZelAtomVector *names);
    const CZelAtomVector *RTPUniques() const { return m_uniques; }
    const CZelAtomVector *RTPIndices() const { return m_indices; }
    const CZelAtomVector *RTPCounters() const { return m_counters; }
    const CZelAtomVector *RTPTimestamps() const { return m_timestamps; }

private:
    CZelAtomVector *m_uniques = nullptr;
    CZelAtomVector *m_indices = nullptr;
    CZelAtomVector *m_counters = nullptr;
    CZelAtomVector *m_timestamps = nullptr;
};
