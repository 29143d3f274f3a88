#include "store/CZelTable_plan.h"

#include <algorithm>
#include <bit>
#include <cstdint>

#include "foundations/base/CZelBPlusTree.h"
#include "foundations/base/CZelDoubleList.h"
#include "foundations/base/CZelName.h"
#include "foundations/base/CZelPointer.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/base/CZelTreeList.h"
#include "foundations/base/CZelVarBind.h"
#include "foundations/port/ZelCodes.h"
#include "store/CZelColDef.h"

namespace {

constexpr std::uintptr_t ALIGNMENT = 16;  // of names

std::vector<CZelColDef *> columnsOf(const CZelTreeList &dictionary) {
    std::vector<CZelColDef *> columns;
    const CZelDoubleList *list = dictionary.RTLIterator();
    for (CZelListable *node = list->RDLHead(); node != nullptr; node = list->RDLGetNext(node))
        columns.push_back(static_cast<CZelColDef *>(static_cast<CZelPointer *>(node)->RPData()));
    return columns;
}

// The interned name finds a binding by address. A name that can't be interned is the column's own.
const CZelAtom *fastName(const CZelColDef &column) {
    const CZelAtom *name = column.RCDName();
    const CZelAtom *interned = CZelName::RNIntern(name->RAString(), name->RATextLength());
    return interned != nullptr ? interned : name;
}

}  // namespace

CZelTablePlan::CZelTablePlan(const CZelTreeList &columns, const CZelTreeList &indexed, const CZelTreeList &uniques,
                             const CZelTreeList &keys, CZelObjectStore &store)
    : m_store(store) {
    for (CZelColDef *column : columnsOf(columns))
        m_columns.push_back({column, fastName(*column)});
    placeColumns();
    markKeys(uniques);
    markKeys(keys);
    for (const CZelColDef *column : columnsOf(indexed))
        addIndex(*column);
    for (const CZelColDef *column : columnsOf(keys))
        addKey(*column);
    m_isKeyLeftToTree = isLeftToTree(indexed);
    m_generation = store.ROSGeneration();  // after the trees that were missing have been made
}

void CZelTablePlan::markKeys(const CZelTreeList &role) {
    for (const CZelColDef *definition : columnsOf(role))
        if (Column *column = columnNamed(*definition->RCDName()))
            column->m_isKey = true;
}

void CZelTablePlan::addIndex(const CZelColDef &column) {
    CZelBPlusTree *tree = column.RCDIndexable() ? m_store.ROSTreeFor(*column.RCDName()) : nullptr;
    if (Column *place = columnNamed(*column.RCDName())) {
        place->m_isIndexed = true;
        place->m_tree = tree;
    }
    if (tree != nullptr)
        m_indexes.push_back({tree, nullptr, fastName(column)});
}

void CZelTablePlan::addKey(const CZelColDef &column) {
    if (column.RCDIndexable())
        m_keys.push_back({m_store.ROSTree(*column.RCDName()), nullptr, fastName(column)});
}

bool CZelTablePlan::isLeftToTree(const CZelTreeList &indexed) const {
    return m_keys.size() == 1 && m_store.ROSKeyCount() == 1 && m_store.ROSIsKey(*m_keys[0].m_column) &&
           m_keys[0].m_tree != nullptr && m_keys[0].m_tree->RBPTIsDegenerate() != E_RBTrue &&
           indexed.RTLGet(m_keys[0].m_column) != nullptr;
}

// A name that is interned is that of a column by its address or of none: columns' names are interned too then.
const CZelTablePlan::Column *CZelTablePlan::column(const CZelAtom &name) const {
    const CZelAtom *interned = CZelName::RNAtomOf(name);
    if (name.RAString() == nullptr)
        return nullptr;
    if (interned == nullptr)
        interned = CZelName::RNFind(name.RAString(), name.RATextLength());
    if (interned == nullptr)
        return columnOfText(name);
    return m_places[placeOf(interned)];
}

// At most half of the places are taken, so that a search ends soon.
void CZelTablePlan::placeColumns() {
    m_places.resize(std::bit_ceil(2 * m_columns.size() + 1));
    for (const Column &column : m_columns)
        m_places[placeOf(column.m_name)] = &column;
}

// The column's place, or the free one where it would be put.
std::size_t CZelTablePlan::placeOf(const CZelAtom *name) const {
    const std::size_t last = m_places.size() - 1;
    std::size_t place = reinterpret_cast<std::uintptr_t>(name) / ALIGNMENT & last;
    while (m_places[place] != nullptr && m_places[place]->m_name != name)
        place = (place + 1) & last;
    return place;
}

const CZelTablePlan::Column *CZelTablePlan::columnOfText(const CZelAtom &name) const {
    const auto place = std::find_if(m_columns.begin(), m_columns.end(),
                                    [&name](const Column &column) { return column.m_name->RASameText(name); });
    return place != m_columns.end() ? &*place : nullptr;
}

int CZelTablePlan::checkKey(const CZelRecord &row) {
    for (SZelIndexValue &key : m_keys) {
        const CZelVarBind *binding = row.RRValuePairOf(key.m_column);
        if (binding == nullptr)
            return E_RCKeyMissing;
        key.m_value = binding->RVBValue();
    }
    if (!m_isKeyLeftToTree)
        return m_store.ROSCheckPrimaryKey(m_keys.data(), m_keys.size());
    // A tree takes any number of rows without a value; as a key it may stand once.
    const bool isTaken =
        CZelAtom::RAIsNull(m_keys[0].m_value) && m_keys[0].m_tree->RBPTGetNodeForKey(nullptr) != nullptr;
    return isTaken ? E_RCKeyExists : 1;
}

// As in checkKey, a single key column may be without a value in one row.
bool CZelTablePlan::isKeyInTrees() const {
    if (!m_isKeyLeftToTree)
        return m_keys.empty() && m_store.ROSKeyCount() == 0;
    const CZelBTreeNode *nulls = m_keys[0].m_tree->RBPTGetNodeForKey(nullptr);
    return nulls == nullptr || nulls->RBTNCount() == 1;
}

int CZelTablePlan::checkUniques(const CZelRecord &row) const {
    const bool isTaken = std::any_of(m_indexes.begin(), m_indexes.end(), [&row](const SZelIndexValue &index) {
        if (index.m_tree->RBPTIsDegenerate() == E_RBTrue)
            return false;
        const CZelAtom *value = row.RRValueOf(index.m_column);
        return !CZelAtom::RAIsNull(value) && index.m_tree->RBPTHasKey(value);
    });
    return isTaken ? E_RCKeyExists : 1;
}

int CZelTablePlan::enter(const CZelRecord &row, void *identity) {
    readIndexed(row);
    return m_store.ROSAdd(identity, m_indexes.data(), m_indexes.size());
}

void CZelTablePlan::leave(const CZelRecord &row, void *identity) {
    readIndexed(row);
    m_store.ROSDelete(identity, m_indexes.data(), m_indexes.size());
}

void CZelTablePlan::readIndexed(const CZelRecord &row) {
    for (SZelIndexValue &index : m_indexes)
        index.m_value = row.RRValueOf(index.m_column);
}
