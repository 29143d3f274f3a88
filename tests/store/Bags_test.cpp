// The algebra of rows as sets against its model. Sizes lie around the length from which bags are looked up
// instead of sorted, since the order of a result hangs on it.
#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "store/CZelTable.h"
#include "tests/store/Conditions.h"
#include "tests/store/ModelBags.h"
#include "tests/support/TestRandom.h"

namespace {

using Rows = model::Rows<char>;
using Bag = std::unique_ptr<CZelBag>;

char places[64];

CZelBag *bagOf(const Rows &rows) {
    auto *bag = new CZelBag;
    for (char *row : rows)
        bag->RBAdd(static_cast<void *>(row));
    return bag;
}

Rows randomRows(TestRandom &random, unsigned most) {
    Rows rows;
    for (char &place : places)
        rows.push_back(&place);
    for (std::size_t i = rows.size(); i > 1; --i)
        std::swap(rows[i - 1], rows[random.below(static_cast<unsigned>(i))]);
    rows.resize(random.below(most + 1));
    return rows;
}

using Operation = CZelBag *(*)(CZelBag *&, CZelBag *&);

model::Outcome<char> outcome(Operation operation, const Rows &a, const Rows &b) {
    CZelBag *first = bagOf(a), *second = bagOf(b);
    const CZelBag *whole = first;
    const Bag result(operation(first, second));
    const bool isFirst = result.get() == whole;
    EXPECT_EQ(isFirst, first == nullptr);
    EXPECT_EQ(!isFirst, second == nullptr);
    const Bag left(first != nullptr ? first : second);
    const Rows rows = conditions::contents<char>(result.get());
    EXPECT_EQ(result->RBLength(), static_cast<int>(rows.size()));
    return {rows, isFirst};
}

void expectAsModel(Operation operation, model::Outcome<char> (*rule)(const Rows &, const Rows &)) {
    TestRandom random;
    for (int round = 0; round < 20000; ++round) {
        const Rows a = randomRows(random, 14), b = randomRows(random, random.oneIn(4) ? 60 : 14);
        ASSERT_EQ(rule(a, b), outcome(operation, a, b)) << a.size() << " and " << b.size();
    }
}

TEST(Bags, AndKeepsWhatBothHaveInTheOrderOfItsRule) {
    expectAsModel(CZelTable::RTAndBags, model::both<char>);
}

TEST(Bags, OrAddsWhatTheOtherLacksInTheOrderOfItsRule) {
    expectAsModel(CZelTable::RTOrBags, model::either<char>);
}

TEST(Bags, NotGivesTheRestInOrderOfAddressAndTakesNothingOver) {
    TestRandom random;
    for (int round = 0; round < 10000; ++round) {
        const Rows all = randomRows(random, 30), minus = randomRows(random, 30);
        const Bag base(bagOf(all)), excluded(bagOf(minus));
        const Bag result(CZelTable::RTNotBags(base.get(), excluded.get()));
        ASSERT_EQ(model::rest(all, minus), conditions::contents<char>(result.get()));
        ASSERT_EQ(static_cast<int>(all.size()), base->RBLength());
    }
    const Bag some(bagOf({&places[3], &places[1]}));
    EXPECT_EQ(0, Bag(CZelTable::RTNotBags(nullptr, some.get()))->RBLength());
    const Bag copy(CZelTable::RTNotBags(some.get(), nullptr));
    EXPECT_EQ((Rows{&places[3], &places[1]}), conditions::contents<char>(copy.get()));
}

}  // namespace
