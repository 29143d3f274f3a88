// Rows as sets. Small bags are sorted by address and walked in step, larger ones looked up in a set of
// addresses. Which bag becomes the result decides the order of its rows, and with it what a query shows.
#include <algorithm>
#include <functional>
#include <utility>
#include <vector>

#include "foundations/base/CZelBag.h"
#include "store/CZelAddressSet.h"
#include "store/CZelTable.h"

namespace {

constexpr int FEW = 11;  // from this length on a bag is looked up instead of sorted

int orderByAddress(CZelListable *left, CZelListable *right) {
    const void *mine = static_cast<CZelPointer *>(left)->RPData();
    const void *theirs = static_cast<CZelPointer *>(right)->RPData();
    return static_cast<int>(std::less<>()(theirs, mine)) - static_cast<int>(std::less<>()(mine, theirs));
}

void sortByAddress(CZelBag &bag) {
    bag.RBIterator()->RDLSortList(orderByAddress);
}

// Goes to the first node whose address is not below the given one.
CZelPointer *advance(CZelPointer *node, const void *address) {
    while (node != nullptr && std::less<>()(node->RPData(), address))
        node = CZelBag::RBNext(node);
    return node;
}

bool stands(const CZelPointer *node, const void *address) {
    return node != nullptr && node->RPData() == address;
}

void keepBySorting(CZelBag &kept, CZelBag &other) {
    sortByAddress(kept);
    sortByAddress(other);
    CZelPointer *match = other.RBFirst();
    for (CZelPointer *node = kept.RBFirst(), *next = nullptr; node != nullptr; node = next) {
        next = CZelBag::RBNext(node);
        match = advance(match, node->RPData());
        if (!stands(match, node->RPData()))
            kept.RBFastDelete(node);
    }
}

// Deletes the nodes of the bag whose address is in the set, or, for E_RBFalse, is not.
void removeWhere(CZelBag &bag, const CZelAddressSet &set, bool inSet) {
    for (CZelPointer *node = bag.RBFirst(), *next = nullptr; node != nullptr; node = next) {
        next = CZelBag::RBNext(node);
        if (set.holds(node->RPData()) == inSet)
            bag.RBFastDelete(node);
    }
}

void mergeBySorting(CZelBag &target, CZelBag &added) {
    sortByAddress(target);
    sortByAddress(added);
    CZelPointer *place = target.RBFirst();
    for (CZelPointer *node = added.RBFirst(); node != nullptr; node = CZelBag::RBNext(node)) {
        place = advance(place, node->RPData());
        if (!stands(place, node->RPData()))
            target.RBIterator()->RDLInsertBefore(new CZelPointer(node->RPData()), place);
    }
}

CZelBag *takeOver(CZelBag *&bag) {
    return std::exchange(bag, nullptr);
}

std::vector<void *> sortedAddresses(const CZelBag &bag) {
    std::vector<void *> addresses;
    addresses.reserve(static_cast<std::size_t>(bag.RBLength()));
    for (const CZelPointer *node = bag.RBFirst(); node != nullptr; node = CZelBag::RBNext(node))
        addresses.push_back(node->RPData());
    if (!std::is_sorted(addresses.begin(), addresses.end(), std::less<>()))
        std::sort(addresses.begin(), addresses.end(), std::less<>());
    return addresses;
}

bool isEmpty(const CZelBag *bag) {
    return bag == nullptr || bag->RBLength() == 0;
}

}  // namespace

CZelBag *CZelTable::RTAndBags(CZelBag *&a, CZelBag *&b) {
    if (isEmpty(a) || isEmpty(b))
        return takeOver(isEmpty(a) ? a : b);
    CZelBag *&shorter = b->RBLength() < a->RBLength() ? b : a;
    CZelBag *&longer = &shorter == &a ? b : a;
    if (longer->RBLength() < FEW) {
        keepBySorting(*shorter, *longer);
        return takeOver(shorter);
    }
    removeWhere(*longer, CZelAddressSet(*shorter), false);
    return takeOver(longer);
}

CZelBag *CZelTable::RTOrBags(CZelBag *&a, CZelBag *&b) {
    if (isEmpty(a) || isEmpty(b))
        return takeOver(isEmpty(a) ? b : a);
    CZelBag *&shorter = b->RBLength() < a->RBLength() ? b : a;
    CZelBag *&longer = &shorter == &a ? b : a;
    if (longer->RBLength() < FEW) {
        mergeBySorting(*longer, *shorter);
        return takeOver(longer);
    }
    removeWhere(*longer, CZelAddressSet(*shorter), true);
    shorter->RBIterator()->RDLTakeFrom(*longer->RBIterator());
    return takeOver(shorter);
}

CZelBag *CZelTable::RTNotBags(CZelBag *all, CZelBag *minus) {
    if (isEmpty(all))
        return new CZelBag;
    if (isEmpty(minus))
        return new CZelBag(*all);
    auto *result = new CZelBag;
    const std::vector<void *> excluded = sortedAddresses(*minus);
    auto next = excluded.begin();
    for (void *address : sortedAddresses(*all)) {
        next = std::find_if_not(next, excluded.end(), [&](void *other) { return std::less<>()(other, address); });
        if (next == excluded.end() || *next != address)
            result->RBAdd(address);
    }
    return result;
}
