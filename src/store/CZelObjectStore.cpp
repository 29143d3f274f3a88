#include "store/CZelObjectStore.h"

#include <algorithm>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelBPlusTree.h"
#include "foundations/base/CZelBTreeNode.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelDoubleList.h"
#include "foundations/base/CZelName.h"
#include "foundations/base/CZelPointer.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/base/CZelString.h"
#include "foundations/base/CZelTreeList.h"
#include "foundations/base/CZelVarBind.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelAssign.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelExpr.h"

namespace {

using Values = std::vector<SZelIndexValue>;

CZelAtom *nameIn(const CZelPointer *node) {
    return static_cast<CZelAtom *>(node->RPData());
}

CZelBPlusTree *treeIn(const CZelPointer *node) {
    return static_cast<CZelBPlusTree *>(node->RPData());
}

CZelAssign *assignIn(const CZelListable *node) {
    return static_cast<CZelAssign *>(static_cast<const CZelPointer *>(node)->RPData());
}

CZelPointer *first(const CZelTreeList *dictionary) {
    return static_cast<CZelPointer *>(dictionary->RTLIterator()->RDLHead());
}

const CZelAtom *columnOf(const CZelAssign &change) {
    return change.RATarget() != nullptr ? change.RATarget()->RDEColNameAtom() : nullptr;
}

const CZelAtom *valueOf(const CZelAssign &change) {
    return change.RAValue() != nullptr ? change.RAValue()->REHeadAtomVal() : nullptr;
}

// The first change that assigns to a column, or null.
const CZelAssign *changeOf(const CZelAtom &column, const CZelDoubleList &changes) {
    for (CZelListable *node = changes.RDLHead(); node != nullptr; node = changes.RDLGetNext(node)) {
        const CZelAtom *target = columnOf(*assignIn(node));
        if (target != nullptr && CZelName::RNSame(*target, column))
            return assignIn(node);
    }
    return nullptr;
}

void reportNoTree(const char *operation, const CZelAtom *column) {
    CZelString text(operation);
    text.RSStrCat(column);
    ZEL_REPORT(E_RCBadArgument, text.RSString());
}

}  // namespace

CZelObjectStore::CZelObjectStore(CZelBag *names) : m_indexes(new CZelTreeList(E_RBFalse)) {
    if (names == nullptr)
        return;
    for (CZelPointer *node = names->RBFirst(); node != nullptr; node = CZelBag::RBNext(node)) {
        const CZelAtom *name = nameIn(node);
        if (name == nullptr)
            ZEL_REPORT(E_RCBadArgument, "CZelObjectStore::CZelObjectStore: no column name");
        else
            addTree(*name, new CZelBPlusTree(true));
    }
}

CZelObjectStore::~CZelObjectStore() {
    for (CZelPointer *node = first(m_indexes); node != nullptr; node = CZelBag::RBNext(node))
        delete treeIn(node);
    delete m_indexes;
    if (m_keyNames == nullptr)
        return;
    for (CZelPointer *node = first(m_keyNames); node != nullptr; node = CZelBag::RBNext(node))
        delete nameIn(node);
    delete m_keyNames;
}

int CZelObjectStore::ROSSetUniques(CZelBag *names) {
    if (names == nullptr)
        return 1;
    for (CZelPointer *node = names->RBFirst(); node != nullptr; node = CZelBag::RBNext(node))
        ROSCreateIndex(nameIn(node), E_RBFalse);
    return 1;
}

int CZelObjectStore::ROSSetKeys(CZelBag *names) {
    if (names == nullptr || names->RBLength() == 0)
        return 1;
    if (names->RBLength() == 1)
        ROSCreateIndex(nameIn(names->RBFirst()), E_RBFalse);
    if (m_keyNames == nullptr)
        m_keyNames = new CZelTreeList(E_RBFalse);
    for (CZelPointer *node = names->RBFirst(); node != nullptr; node = CZelBag::RBNext(node)) {
        auto *name = new CZelAtom(*nameIn(node));
        if (m_keyNames->RTLAdd(name, static_cast<void *>(name), true) != 1)
            delete name;
    }
    ++m_generation;
    return 1;
}

int CZelObjectStore::ROSAdd(void *object, CZelBag *bindings, CZelBag *nulls, bool) {
    Values values;
    for (CZelPointer *node = bindings != nullptr ? bindings->RBFirst() : nullptr; node != nullptr;
         node = CZelBag::RBNext(node)) {
        const auto *binding = static_cast<const CZelVarBind *>(node->RPData());
        values.push_back({ROSTreeFor(binding->RVBName()), binding->RVBValue(), &binding->RVBName()});
    }
    for (CZelPointer *node = nulls != nullptr ? nulls->RBFirst() : nullptr; node != nullptr;
         node = CZelBag::RBNext(node))
        values.push_back({ROSTreeFor(*nameIn(node)), nullptr, nameIn(node)});
    return ROSAdd(object, values.data(), values.size());
}

int CZelObjectStore::ROSAdd(void *object, const SZelIndexValue *values, std::size_t count) {
    constexpr std::size_t PART = 8;
    CZelBPlusTree::SAddition part[PART];
    for (std::size_t from = 0; from < count; from += PART) {
        const std::size_t length = std::min(PART, count - from);
        std::transform(values + from, values + from + length, part, [](const SZelIndexValue &value) {
            return CZelBPlusTree::SAddition{value.m_tree, value.m_value};
        });
        std::size_t added = 0;
        const int status = CZelBPlusTree::RBPTAddToEach(part, length, object, &added);
        if (status == 1)
            continue;
        ROSRollback(object, values, from + added);
        return status;
    }
    return 1;
}

// Takes the object out of the trees again that it has entered. A tree that held nothing else goes with it; the
// next value of its column makes a new one.
void CZelObjectStore::ROSRollback(void *object, const SZelIndexValue *values, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        const SZelIndexValue &value = values[i];
        const int status = value.m_tree->RBPTLiteralDeleteObjectInTree(value.m_value, object);
        if (status != 1)
            ZEL_REPORT(status, "CZelObjectStore::ROSRollback");
    }
    for (std::size_t i = 0; i < count; ++i) {
        const CZelBPlusTree *tree = ROSTree(*values[i].m_column);
        if (values[i].m_value != nullptr && tree != nullptr && tree->RBPTIsEmpty() == E_RBTrue)
            removeTree(values[i].m_column);
    }
}

int CZelObjectStore::ROSDelete(void *object, CZelBag *bindings, CZelBag *nulls) {
    Values values;
    for (CZelPointer *node = bindings != nullptr ? bindings->RBFirst() : nullptr; node != nullptr;
         node = CZelBag::RBNext(node)) {
        const auto *binding = static_cast<const CZelVarBind *>(node->RPData());
        values.push_back({ROSTree(binding->RVBName()), binding->RVBValue(), &binding->RVBName()});
    }
    for (CZelPointer *node = nulls != nullptr ? nulls->RBFirst() : nullptr; node != nullptr;
         node = CZelBag::RBNext(node))
        values.push_back({ROSTree(*nameIn(node)), nullptr, nameIn(node)});
    return ROSDelete(object, values.data(), values.size());
}

int CZelObjectStore::ROSDelete(void *object, const SZelIndexValue *values, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        if (values[i].m_tree == nullptr)
            continue;
        const int status = values[i].m_tree->RBPTLiteralDeleteObjectInTree(values[i].m_value, object);
        if (status == 1)
            continue;
        CZelString text("CZelObjectStore::ROSDelete: the row does not stand in the index of ");
        text.RSStrCat(values[i].m_column);
        ZEL_REPORT(status, text.RSString());
    }
    return 1;
}

CZelBag *CZelObjectStore::ROSQuery(const char *column, const CZelAtom *value, EZelOper op) {
    const auto *tree = static_cast<const CZelBPlusTree *>(m_indexes->RTLData(column));
    CZelBag *objects = tree != nullptr ? tree->RBPTComputeQueryOp(value, op) : nullptr;
    return objects != nullptr ? objects : new CZelBag();
}

CZelBag *CZelObjectStore::ROSQuery(const CZelAtom &column, const CZelAtom *value, EZelOper op) {
    const CZelBPlusTree *tree = ROSTree(column);
    CZelBag *objects = tree != nullptr ? tree->RBPTComputeQueryOp(value, op) : nullptr;
    return objects != nullptr ? objects : new CZelBag();
}

int CZelObjectStore::ROSCheckPrimaryKey(CZelBag *bindings) {
    if (m_keyNames == nullptr)
        return 1;
    Values keys;
    for (CZelPointer *node = bindings != nullptr ? bindings->RBFirst() : nullptr; node != nullptr;
         node = CZelBag::RBNext(node)) {
        const auto *binding = static_cast<const CZelVarBind *>(node->RPData());
        if (ROSIsKey(binding->RVBName()))
            keys.push_back({ROSTree(binding->RVBName()), binding->RVBValue(), &binding->RVBName()});
    }
    return ROSCheckPrimaryKey(keys.data(), keys.size());
}

// A composite key exists when one object stands under the new value in the tree of every key column.
int CZelObjectStore::ROSCheckPrimaryKey(const SZelIndexValue *keys, std::size_t count) {
    if (m_keyNames == nullptr)
        return 1;
    m_found.clear();
    bool isMatching = true;
    for (std::size_t i = 0; i < count; ++i) {
        const CZelBPlusTree *tree = keys[i].m_tree;
        if (tree == nullptr)
            reportNoTree("CZelObjectStore::ROSCheckPrimaryKey: no index of ", keys[i].m_column);
        const CZelBTreeNode *entry = tree != nullptr ? tree->RBPTGetNodeForKey(keys[i].m_value) : nullptr;
        isMatching = isMatching && entry != nullptr;
        if (!isMatching)
            continue;
        if (tree->RBPTIsDegenerate() != E_RBTrue && isOneUnderAllFound())
            return E_RCKeyExists;
        m_found.push_back(entry);
    }
    if (static_cast<int>(count) != ROSKeyCount())
        return E_RCKeyMissing;
    return isMatching && isOneUnderAllFound() ? E_RCKeyExists : 1;
}

// Is there an object that stands in all entries found so far? It is looked for among those of the least crowded
// entry. Without entries the answer is yes.
bool CZelObjectStore::isOneUnderAllFound() const {
    if (m_found.size() < 2)
        return true;
    const CZelBTreeNode *least = *std::min_element(
        m_found.begin(), m_found.end(),
        [](const CZelBTreeNode *a, const CZelBTreeNode *b) { return a->RBTNCount() < b->RBTNCount(); });
    CZelBag candidates;
    least->RBTNAppendTo(candidates);
    for (CZelPointer *node = candidates.RBFirst(); node != nullptr; node = CZelBag::RBNext(node))
        if (std::all_of(m_found.begin(), m_found.end(),
                        [node](const CZelBTreeNode *entry) { return entry->RBTNHolds(node->RPData()); }))
            return true;
    return false;
}

int CZelObjectStore::ROSCheckUpdateKey(CZelRecord *record, CZelDoubleList *changes) {
    if (record == nullptr || changes == nullptr)
        return 1;
    for (CZelListable *node = changes->RDLHead(); node != nullptr; node = changes->RDLGetNext(node)) {
        const CZelAtom *column = columnOf(*assignIn(node));
        const CZelAtom *value = valueOf(*assignIn(node));
        const CZelBPlusTree *tree = column != nullptr ? ROSTree(*column) : nullptr;
        if (tree == nullptr || tree->RBPTGetNodeForKey(value) == nullptr)
            continue;
        const CZelAtom *present = record->RRValueOf(column);
        if (present == nullptr || present->RAEvalRelop(E_RONotEqual, value) != E_RBTrue)
            continue;
        if (tree->RBPTIsDegenerate() != E_RBTrue)
            return ZEL_FAIL(E_RCBadColumnValue, "Update conflicts with existing unique.");
        if (ROSIsKey(*column) && ROSCheckUniqueKey(record, changes) == E_RBTrue)
            return ZEL_FAIL(E_RCBadColumnValue, "Update conflicts with existing key.");
    }
    return 1;
}

__boolean CZelObjectStore::ROSCheckUniqueKey(CZelRecord *record, CZelDoubleList *changes) {
    if (m_keyNames == nullptr || record == nullptr || changes == nullptr)
        return E_RBFalse;
    m_found.clear();
    for (CZelPointer *node = first(m_keyNames); node != nullptr; node = CZelBag::RBNext(node))
        if (!findKeyColumn(*nameIn(node), *record, *changes))
            return E_RBFalse;
    return ZelBool(isOneUnderAllFound());
}

// Adds the entry of one key column's value after the changes to those found. A column that is not assigned and
// has no value, or one that nobody has, does not narrow; false when the assigned value is free.
bool CZelObjectStore::findKeyColumn(const CZelAtom &key, const CZelRecord &record, const CZelDoubleList &changes) {
    const CZelBPlusTree *tree = ROSTree(key);
    if (tree == nullptr)
        return true;
    const CZelAssign *change = changeOf(key, changes);
    const CZelAtom *value = change != nullptr ? valueOf(*change) : record.RRValueOf(&key);
    if (change == nullptr && value == nullptr)
        return true;
    const CZelBTreeNode *entry = tree->RBPTGetNodeForKey(value);
    if (entry != nullptr)
        m_found.push_back(entry);
    return entry != nullptr || change == nullptr;
}

CZelBTreeNode *CZelObjectStore::ROSCheckIndex(CZelAtom *column, CZelAtom *value) {
    const CZelBPlusTree *tree = column != nullptr ? ROSTree(*column) : nullptr;
    return tree != nullptr ? tree->RBPTGetNodeForKey(value) : nullptr;
}

__boolean CZelObjectStore::ROSMatchObject(CZelBag *candidates, CZelDoubleList *objects) {
    if (candidates == nullptr || objects == nullptr)
        return E_RBFalse;
    std::vector<const void *> wanted;
    for (CZelListable *node = objects->RDLHead(); node != nullptr; node = objects->RDLGetNext(node))
        wanted.push_back(static_cast<CZelPointer *>(node)->RPData());
    std::sort(wanted.begin(), wanted.end());
    CZelPointer *node = candidates->RBFirst();
    while (node != nullptr) {
        CZelPointer *next = CZelBag::RBNext(node);
        if (!std::binary_search(wanted.begin(), wanted.end(), node->RPData()))
            candidates->RBFastDelete(node);
        node = next;
    }
    return ZelBool(candidates->RBLength() > 0);
}

CZelBPlusTree *CZelObjectStore::ROSTree(const CZelAtom &column) const {
    return static_cast<CZelBPlusTree *>(m_indexes->RTLData(&column));
}

CZelBPlusTree *CZelObjectStore::ROSTreeFor(const CZelAtom &column) {
    CZelBPlusTree *tree = ROSTree(column);
    if (tree != nullptr)
        return tree;
    addTree(column, new CZelBPlusTree(true));
    return ROSTree(column);
}

bool CZelObjectStore::ROSIsKey(const CZelAtom &column) const {
    return m_keyNames != nullptr && m_keyNames->RTLGet(&column) != nullptr;
}

int CZelObjectStore::ROSKeyCount() const {
    return m_keyNames != nullptr ? m_keyNames->RTLLength() : 0;
}

int CZelObjectStore::ROSCreateIndex(const CZelAtom *column, __boolean degenerate) {
    if (column == nullptr)
        return 1;
    const bool wanted = degenerate == E_RBTrue;
    CZelPointer *entry = m_indexes->RTLGet(column);
    if (entry == nullptr)
        return addTree(*column, new CZelBPlusTree(wanted));
    const CZelBPlusTree *tree = treeIn(entry);
    if (tree->RBPTIsDegenerate() == degenerate)
        return 1;
    if (tree->RBPTIsEmpty() != E_RBTrue) {
        CZelString text("CZelObjectStore::ROSCreateIndex index: ");
        text.RSStrCat(column);
        text.RSStrCat(" exists with different degeneracy");
        return ZEL_FAIL(E_RCBadValue, text.RSString());
    }
    delete tree;
    entry->RPSetData(new CZelBPlusTree(wanted));
    ++m_generation;
    return 1;
}

int CZelObjectStore::addTree(const CZelAtom &column, CZelBPlusTree *tree) {
    ++m_generation;
    const int status = m_indexes->RTLAdd(&column, static_cast<void *>(tree), true);
    if (status == 1)
        return 1;
    delete tree;
    CZelString text("CZelObjectStore: no index could be added for ");
    text.RSStrCat(&column);
    return ZEL_FAIL(status, text.RSString());
}

void CZelObjectStore::removeTree(const CZelAtom *column) {
    ++m_generation;
    delete ROSTree(*column);
    m_indexes->RTLDelete(column);
}
