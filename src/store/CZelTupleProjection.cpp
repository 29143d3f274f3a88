#include "store/CZelTupleProjection.h"

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

template <class Visitor>
void CZelTupleProjection::visit(const CZelTuple &tuple, Visitor take) const {
    for (const Column &column : m_columns) {
        const CZelRecord *record = tuple.RTRecordOf(column.m_entity->RDEIdent());
        if (record == nullptr) {
            reportMissing(*column.m_entity);
            continue;
        }
        const CZelAtom *value = column.m_reader.value(*record);
        if (value != nullptr && !CZelAtom::RAIsNull(&column.m_name))
            take(column.m_name, *value);
    }
}

CZelRecord *CZelTupleProjection::project(const CZelTuple &tuple) const {
    auto *record = new CZelRecord;
    visit(tuple, [record](const CZelAtom &name, const CZelAtom &value) {
        record->RRAddValue(new CZelVarBind(name, CZelAtom(value)));
    });
    return record;
}

unsigned char *CZelTupleProjection::encode(const CZelTuple &tuple, int &length) const {
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
