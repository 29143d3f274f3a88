#include "store/CZelColumnReader.h"

#include "foundations/base/CZelDoubleList.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelExpr.h"

CZelColumnReader::CZelColumnReader(const CZelAtom *column, const CZelDoubleList *colSpec) : m_name(column) {
    if (column == nullptr)
        return;
    const CZelAtom *interned =
        column->RAType() == E_RDTText ? CZelName::RNIntern(column->RAString(), column->RATextLength()) : nullptr;
    m_isInterned = interned != nullptr;
    m_name = m_isInterned ? interned : column;
    if (colSpec == nullptr)
        return;
    for (const CZelListable *node = colSpec->RDLHead(); node != nullptr; node = colSpec->RDLGetNext(node)) {
        const CZelAtom *key = static_cast<const CZelExpr *>(node)->REAtomVal();
        if (key != nullptr)
            m_keys.push_back(key);
    }
}

CZelColumnReader::CZelColumnReader(const CZelDbEntity &entity)
    : CZelColumnReader(entity.RDEColNameAtom(), entity.RDEColSpec()) {
    EZelListUpdateType kind = E_RLUNext;
    const bool selects = entity.RDEIsColSpecWild(&kind) == E_RBTrue && (kind == E_RLUAny || kind == E_RLUAll);
    if (selects && !m_keys.empty())
        m_kind = kind;
}

const CZelAtom *CZelColumnReader::below(const CZelAtom *value, std::size_t steps) const {
    for (std::size_t i = 0; i < steps && value != nullptr; ++i)
        value = CZelBaseRecord::RRStep(value, *m_keys[i]);
    return value;
}

CZelColumnReader::Side CZelColumnReader::side(const CZelBaseRecord &record) const {
    const CZelAtom *top = column(record);
    if (isWild()) {
        const CZelAtom *whole = below(top, m_keys.size() - 1);
        if (whole != nullptr && whole->RAList() != nullptr)
            return {nullptr, whole->RAList()};
    }
    return {below(top, m_keys.size()), nullptr};
}
