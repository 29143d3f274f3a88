// Queries of an index tree: each operator is at most two stretches of entries, found by descent.
//
// Only keys of one type are less or greater than each other, where all numbers are of one type. So a range ends
// where the keys of another type begin; null is less or greater than nothing.
#include "foundations/base/CZelBPlusTree.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelKeyTree_nodes.h"

using Place = CZelKeyTree::Place;

struct CZelBPlusTree::Stretch {
    Place from = CZelKeyTree::RKTEnd();
    Place to = CZelKeyTree::RKTEnd();
};

struct CZelBPlusTree::Answer {
    Stretch first;
    Stretch second;
};

CZelBPlusTree::Stretch CZelBPlusTree::range(const CZelAtom &key, EZelOper op) const {
    if (key.RAIsUndefined())
        return {};
    switch (op) {
        case E_ROLess:
            return {tree().RKTStartOfType(key), tree().RKTFrom(key)};
        case E_ROLessEqual:
            return {tree().RKTStartOfType(key), tree().RKTBehind(key)};
        case E_ROGreater:
            return {tree().RKTBehind(key), tree().RKTEndOfType(key)};
        case E_ROGreaterEqual:
            return {tree().RKTFrom(key), tree().RKTEndOfType(key)};
        default:
            return {};
    }
}

CZelBPlusTree::Answer CZelBPlusTree::answer(const CZelAtom *key, EZelOper op) const {
    static const CZelAtom null;
    const CZelAtom &value = key == nullptr ? null : *key;
    switch (op) {
        case E_ROEqual:
            return {{tree().RKTFrom(value), tree().RKTBehind(value)}, {}};
        case E_RONotEqual:
            return {{tree().RKTFirst(), tree().RKTFrom(value)}, {tree().RKTBehind(value), CZelKeyTree::RKTEnd()}};
        default:
            return {range(value, op), {}};
    }
}

int CZelBPlusTree::RBPTAppendQuery(const CZelAtom *key, EZelOper op, CZelBag &bag) const {
    int before = bag.RBLength();
    if (op == E_ROEqual) {
        const CZelBTreeNode *entry = RBPTGetNodeForKey(key);
        if (entry != nullptr)
            entry->RBTNAppendTo(bag);
    } else {
        Answer found = answer(key, op);
        CZelKeyTree::RKTAppend(found.first.from, found.first.to, bag);
        CZelKeyTree::RKTAppend(found.second.from, found.second.to, bag);
    }
    return bag.RBLength() - before;
}

CZelBag *CZelBPlusTree::RBPTComputeQueryOp(const CZelAtom *key, EZelOper op) const {
    CZelBag *bag = new CZelBag;
    if (RBPTAppendQuery(key, op, *bag) != 0)
        return bag;
    delete bag;
    return nullptr;
}

int CZelBPlusTree::RBPTCountQuery(const CZelAtom *key, EZelOper op, int enough) const {
    const CZelBTreeNode *entry = op > E_RONotEqual ? nullptr : RBPTGetNodeForKey(key);
    int equal = entry == nullptr ? 0 : static_cast<int>(entry->RBTNCount());
    if (op == E_ROEqual)
        return equal;
    if (op == E_RONotEqual)
        return RBPTLength() - equal;
    Stretch stretch = answer(key, op).first;
    return static_cast<int>(CZelKeyTree::RKTCount(stretch.from, stretch.to, static_cast<std::size_t>(enough)));
}

bool CZelBPlusTree::RBPTIsWhole(const CZelAtom *key, EZelOper op) const {
    if (op == E_ROEqual || op == E_RONotEqual)
        return RBPTCountQuery(key, op) == RBPTLength();
    const Stretch stretch = answer(key, op).first;
    return stretch.from == tree().RKTFirst() && stretch.to == CZelKeyTree::RKTEnd();
}

int CZelBPlusTree::RBPTAppendBetween(const CZelAtom &low, bool withLow, const CZelAtom &high, bool withHigh,
                                     CZelBag &bag) const {
    int status = 1;
    const int order = low.RALex(&high, &status);
    const bool isRange = status == 1 && !low.RAIsUndefined() && (order < 0 || (order == 0 && withLow && withHigh));
    if (!isRange)
        return 0;
    const int before = bag.RBLength();
    CZelKeyTree::RKTAppend(withLow ? tree().RKTFrom(low) : tree().RKTBehind(low),
                           withHigh ? tree().RKTBehind(high) : tree().RKTFrom(high), bag);
    return bag.RBLength() - before;
}
