#include <memory>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelDoubleList.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/base/CZelString.h"
#include "foundations/base/CZelTreeList.h"
#include "foundations/base/CZelVarBind.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelDropIndex.h"
#include "oql/CZelIndex.h"
#include "store/CZelCacheWalk.h"
#include "store/CZelColDef.h"
#include "store/CZelLateIndexes.h"
#include "store/CZelObjectStore.h"
#include "store/CZelStoreGuard.h"
#include "store/CZelTable.h"
#include "store/CZelTable_plan.h"

namespace {

CZelColDef *columnIn(const CZelPointer *node) {
    return static_cast<CZelColDef *>(node->RPData());
}

void reportIndex(const char *what, const CZelAtom *name) {
    CZelString text(what);
    text.RSStrCat(name);
    ZEL_REPORT(E_RCBadArgument, text.RSString());
}

}  // namespace

int CZelTable::RTAddIndex(const CZelIndex *index) {
    if (index == nullptr || index->RIName() == nullptr)
        return 1;
    if (m_indices == nullptr)
        return E_RCNoText;
    std::unique_ptr<CZelIndex> copy(new CZelIndex(*index));
    const CZelAtom *name = copy->RIName();
    const bool isTaken = m_indices->RTLGet(name) != nullptr;
    if (isTaken)
        reportIndex("CZelTable::RTAddIndex: the table has an index ", name);
    if (isTaken || !areColumns(copy->RIColNameList()))
        return E_RCNoText;
    CZelBag added;
    const CZelAtomVector *columns = copy->RIColNameList();
    for (unsigned int i = 0; i < columns->RAVSize(); ++i)
        countIndex(*columns->RAVGetValue(i), added);
    m_indices->RTLAdd(name, static_cast<void *>(copy.release()), true);
    forgetPlan();
    RTAddDelObjStoreIndex(&added, E_RBTrue);
    return 1;
}

bool CZelTable::areColumns(const CZelAtomVector *names) const {
    if (names == nullptr)
        return false;
    for (unsigned int i = 0; i < names->RAVSize(); ++i)
        if (columnNamed(names->RAVGetValue(i)) == nullptr)
            return false;
    return true;
}

// One index more on a column. Its rows enter a tree with the first one; a column that the system sets by itself
// is counted only.
void CZelTable::countIndex(const CZelAtom &name, CZelBag &added) {
    CZelColDef *column = columnNamed(&name);
    if (auto *count = static_cast<CZelVarBind *>(m_indexCounts->RTLData(&name))) {
        count->RVBSetValue(count->RVBValue()->RAInt() + 1);
        return;
    }
    m_indexCounts->RTLAdd(&name, static_cast<void *>(new CZelVarBind(name, 1)), true);
    if (isSetBySystem(name))
        return;
    m_indexedColumns->RTLAdd(&name, static_cast<void *>(column), true);
    added.RBAdd(static_cast<void *>(column));
}

int CZelTable::RTDropIndex(CZelDropIndex *statement) {
    const CZelAtom *name = statement != nullptr ? statement->RDIName() : nullptr;
    if (name == nullptr || m_indices == nullptr)
        return 1;
    const std::unique_ptr<CZelIndex> index(static_cast<CZelIndex *>(m_indices->RTLData(name)));
    if (index == nullptr)
        return 1;
    CZelBag removed;
    const CZelAtomVector *columns = index->RIColNameList();
    for (unsigned int i = 0; i < columns->RAVSize(); ++i)
        uncountIndex(*columns->RAVGetValue(i), removed);
    m_indices->RTLDelete(name);
    forgetPlan();
    RTAddDelObjStoreIndex(&removed, E_RBFalse);
    return 1;
}

// One index fewer on a column. With the last one its rows leave the tree, unless a key or unique needs it.
void CZelTable::uncountIndex(const CZelAtom &name, CZelBag &removed) {
    auto *count = static_cast<CZelVarBind *>(m_indexCounts->RTLData(&name));
    if (count == nullptr) {
        reportIndex("CZelTable::RTDropIndex: no index is counted on ", &name);
        return;
    }
    const int left = count->RVBValue()->RAInt() - 1;
    if (left >= 1) {
        count->RVBSetValue(left);
        return;
    }
    m_indexCounts->RTLDelete(&name);
    delete count;
    if (m_primaryKeys->RTLGet(&name) != nullptr || m_uniques->RTLGet(&name) != nullptr)
        return;
    if (m_indexedColumns->RTLDelete(&name) == 1)
        removed.RBAdd(static_cast<void *>(columnNamed(&name)));
}

// Column by column, so that a row which one tree refuses still enters the others.
void CZelTable::RTAddDelObjStoreIndex(CZelBag *columns, __boolean add) {
    if (columns == nullptr || !isLive())
        return;
    for (CZelPointer *node = columns->RBFirst(); node != nullptr; node = CZelBag::RBNext(node))
        if (columnIn(node)->RCDIndexable())
            moveRows(*columnIn(node), add == E_RBTrue);
}

void CZelTable::moveRows(const CZelColDef &column, bool add) {
    const CZelAtom *name = column.RCDName();
    SZelIndexValue place{m_objectStore->ROSTreeFor(*name), nullptr, name};
    if (m_cache != nullptr) {
        moveCachedRows(place, add);
        return;
    }
    for (CZelListable *node = m_rows->RDLHead(); node != nullptr; node = m_rows->RDLGetNext(node)) {
        auto *row = static_cast<CZelRecord *>(node);
        moveRow(*row, row, place, add);
    }
}

// Only the tree of a key or unique column can have rows before.
void CZelTable::moveCachedRows(SZelIndexValue &place, bool add) {
    const CZelStoreGuard guard(*m_lock, CZelStoreGuard::WRITER);
    if (!add) {
        place.m_tree->RBPTEmpty();
        return;
    }
    if (place.m_tree->RBPTLength() == m_cache->RRCLength())
        return;
    if (place.m_tree->RBPTIsEmpty() == E_RBTrue && place.m_tree->RBPTIsDegenerate() == E_RBTrue) {
        if (m_lateIndexes == nullptr)
            m_lateIndexes = new CZelLateIndexes(*m_cache, *m_lock);
        m_lateIndexes->add(*place.m_tree, *place.m_column);
        return;
    }
    for (CZelCacheWalk walk(*m_cache, nullptr); walk.hasRow(); walk.advance())
        moveRow(walk.record(), walk.handle(), place, true);
}

// Before the first row changes.
void CZelTable::fillLateIndexes() {
    if (m_lateIndexes != nullptr)
        m_lateIndexes->fillAll();
}

void CZelTable::moveRow(const CZelRecord &row, void *identity, SZelIndexValue &place, bool add) {
    place.m_value = row.RRValueOf(place.m_column);
    const int status = add ? m_objectStore->ROSAdd(identity, &place, 1) : m_objectStore->ROSDelete(identity, &place, 1);
    if (status != 1)
        ZEL_REPORT(status, "CZelTable::RTAddDelObjStoreIndex");
}
