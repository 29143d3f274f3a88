// Reads one column of a condition from any number of records: the name, its keys and its selector are
// resolved once, so that reading a record is a walk of its bindings that compares addresses.
//
// It refers to the entity's atoms, which outlive it.
#pragma once

#include <vector>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelBaseRecord.h"
#include "foundations/base/CZelName.h"

class CZelAtomVector;
class CZelDbEntity;
class CZelDoubleList;

class CZelColumnReader {
public:
    // What a column gives to a comparison: a value, or the list that its selector all or any goes over.
    struct Side {
        const CZelAtom *value;
        const CZelAtomVector *list;
    };

    CZelColumnReader(const CZelAtom *column, const CZelDoubleList *colSpec);
    explicit CZelColumnReader(const CZelDbEntity &entity);

    bool hasName() const { return m_name != nullptr; }
    const CZelAtom *name() const { return m_name; }
    bool isPlain() const { return m_keys.empty() && !isWild(); }  // the column itself, without keys
    bool isWild() const { return m_kind == E_RLUAny || m_kind == E_RLUAll; }
    EZelListUpdateType kind() const { return m_kind; }

    // The value of the whole specification, or null.
    const CZelAtom *value(const CZelBaseRecord &record) const {
        const CZelAtom *found = column(record);
        return m_keys.empty() ? found : below(found, m_keys.size());
    }

    // The column without its keys; the first of two equal names.
    const CZelAtom *column(const CZelBaseRecord &record) const {
        const CZelVBList *values = record.RRVbIterator();
        const CZelVarBind *binding = values->RVBLHead();
        while (binding != nullptr && !isNamed(*binding))
            binding = values->RVBLGetNext(binding);
        return binding != nullptr ? binding->RVBValue() : nullptr;
    }

    Side side(const CZelBaseRecord &record) const;

private:
    // An interned name is one atom: a binding of that name refers to it.
    bool isNamed(const CZelVarBind &binding) const {
        return m_isInterned ? &binding.RVBName() == m_name : m_name != nullptr && binding.RVBNamed(*m_name);
    }
    const CZelAtom *below(const CZelAtom *value, std::size_t steps) const;

    const CZelAtom *m_name = nullptr;
    bool m_isInterned = false;
    std::vector<const CZelAtom *> m_keys;
    EZelListUpdateType m_kind = static_cast<EZelListUpdateType>(0);  // 0: no selector
};
