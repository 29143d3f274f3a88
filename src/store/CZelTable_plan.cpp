#include "store/CZelTable_plan.h"

#include <algorithm>

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

CZelTablePlan::CZelTablePlan(const CZelTreeList &columns, const CZelTreeList &indexed, const CZelTreeList &keys,
                             CZelObjectStore &store)
    : m_store(store) {
    for (CZelColDef *column : columnsOf(columns))
        m_columns.push_back({column, fastName(*column)});
    for (const CZelColDef *column : columnsOf(indexed))
        addIndex(*column);
    for (const CZelColDef *column : columnsOf(keys))
        addKey(*column);
    m_isKeyLeftToTree = isLeftToTree(indexed);
    m_generation = store.ROSGeneration();  // after the trees that were missing have been made
}

void CZelTablePlan::addIndex(const CZelColDef &column) {
    if (column.RCDIndexable())
        m_indexes.push_back({m_store.ROSTreeFor(*column.RCDName()), nullptr, fastName(column)});
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
