#include "store/CZelTupleProjection.h"

#include <algorithm>
#include <string>

#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelROMPer.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelDbEntity.h"
#include "store/CZelProjection.h"
#include "store/CZelTuple.h"

namespace {

void reportMissing(CZelDbEntity &entity) {
    const char *column = entity.RDEColName();
    ZEL_REPORT(E_RCNotFound, column != nullptr ? column : "CZelTuple::ROMEncode");
}

}  // namespace

CZelTupleProjection::CZelTupleProjection(const CZelBag *entities) {
    for (const CZelPointer *node = entities != nullptr ? entities->RBFirst() : nullptr; node != nullptr;
         node = CZelBag::RBNext(node)) {
        auto *entity = static_cast<CZelDbEntity *>(node->RPData());
        if (entity != nullptr)
            m_columns.push_back({entity, CZelProjection::nameOf(*entity),
                                 CZelColumnReader(entity->RDEColNameAtom(), entity->RDEColSpec())});
    }
}

// An entity whose names are constants makes its identifier once.
bool CZelTupleProjection::isShareable() const {
    return std::all_of(m_columns.begin(), m_columns.end(), [](const Column &column) {
        return column.m_entity->RDEEvalsInside() != E_RBTrue && column.m_entity->RDEIdent() != nullptr;
    });
}

const CZelRecord *CZelTupleProjection::recordOf(const CZelTuple &tuple, Column &column) {
    const SZelTupleEntry *entries = tuple.RTEntries();
    if (column.m_index < tuple.RTLength() && entries[column.m_index].m_table == column.m_table)
        return entries[column.m_index].m_record;
    const SZelTupleEntry *entry = tuple.RTEntryOf(column.m_entity->RDEIdent());
    if (entry == nullptr)
        return nullptr;
    column.m_table = entry->m_table;
    column.m_index = static_cast<std::size_t>(entry - entries);
    return entry->m_record;
}

void CZelTupleProjection::prefetch(const std::vector<CZelTuple> &tuples) {
    for (const CZelTuple &tuple : tuples) {
        for (Column &column : m_columns) {
            if (const CZelRecord *record = recordOf(tuple, column))
                record->RRVbIterator()->RVBLPrefetch();
        }
    }
    for (const CZelTuple &tuple : tuples) {
        for (Column &column : m_columns) {
            const CZelRecord *record = recordOf(tuple, column);
            const CZelAtom *value = record != nullptr ? column.m_reader.column(*record) : nullptr;
            if (value != nullptr)
                value->RAPrefetch();
        }
    }
}

template <class Visitor>
void CZelTupleProjection::visit(const CZelTuple &tuple, Visitor take) {
    for (Column &column : m_columns) {
        const CZelRecord *record = recordOf(tuple, column);
        if (record == nullptr) {
            reportMissing(*column.m_entity);
            continue;
        }
        const CZelAtom *value = column.m_reader.value(*record);
        if (value != nullptr && !CZelAtom::RAIsNull(&column.m_name))
            take(column.m_name, *value);
    }
}

CZelRecord *CZelTupleProjection::project(const CZelTuple &tuple) {
    auto *record = new CZelRecord;
    visit(tuple, [record](const CZelAtom &name, const CZelAtom &value) {
        record->RRAddValue(new CZelVarBind(name, CZelAtom(value)));
    });
    return record;
}

unsigned char *CZelTupleProjection::encode(const CZelTuple &tuple, int &length) {
    CZelROMPer packet(CZelROMPer::INITIAL_SIZE);
    visit(tuple, [&packet](const CZelAtom &name, const CZelAtom &value) {
        const int status = packet.RRAddAttrVal(&name, &value);
        if (status != 1)
            ZEL_REPORT(status, "CZelTuple::ROMEncode: a column can't be packed");
    });
    if (packet.RRCreatedLength() == 0)
        packet.RRAddPad();
    length = packet.RRCreatedLength();
    return packet.RRTakePacket();
}
