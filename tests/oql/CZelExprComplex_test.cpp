#include "oql/CZelExprComplex.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include "foundations/port/CZelErrorCapture.h"
#include "foundations/port/ZelCodes.h"
#include "support/ExprBuild.h"

namespace {

std::string valueText(const CZelExprComplex &value) {
    CZelAtom atom;
    return value.RECCopyValue(atom) ? shown(&atom) : "none";
}

// Runs on a thread whose stack is as small as those of a server's threads.
void onSmallStack(void (*run)()) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, 1 << 20);
    pthread_t thread;
    const auto start = [](void *argument) -> void * {
        reinterpret_cast<void (*)()>(argument)();
        return nullptr;
    };
    ASSERT_EQ(0, pthread_create(&thread, &attributes, start, reinterpret_cast<void *>(run)));
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

TEST(ExprComplexTest, ListsAndObjectsAreBuiltOfTheirMembers) {
    const std::unique_ptr<CZelExprComplex> value(
        listValue({valueOf(constant(CZelAtom(1))), valueOf(noValue()), valueOf(clause("&x")), valueOf(evaluated({})),
                   objectValue("a", listValue({valueOf(evaluated({CZelAtom("x")}))})),
                   objectValue("b", valueOf(noValue())), listValue({})}));
    const std::string expected = "list [1,NULL,NULL,NULL,{a=['x']},{b=NULL},[]]";
    EXPECT_EQ(expected, shown(value->RECAtomValue()));
    EXPECT_EQ(expected, valueText(*value));
    const std::unique_ptr<CZelListable> copy(value->RLTargetDeepCopy(value.get()));
    EXPECT_EQ("list [1,NULL,NULL,NULL,{a=[NULL]},{b=NULL},[]]", valueText(static_cast<const CZelExprComplex &>(*copy)))
        << "a copy of a clause has no result yet";
}

TEST(ExprComplexTest, TheBuiltValueIsReplacedByTheNextOne) {
    CZelExpr *inner = evaluated({CZelAtom(1)});
    const std::unique_ptr<CZelExprComplex> value(listValue({valueOf(inner)}));
    EXPECT_EQ("list [1]", shown(value->RECAtomValue()));
    const CZelAtom next = listOf({CZelAtom(2)});
    inner->RESetClauseVal(new CZelVarBind("", &next));
    const std::unique_ptr<CZelBag> bag(value->RECBagVal());
    ASSERT_EQ(1, bag->RBLength());
    EXPECT_EQ("list [2]", shown(static_cast<CZelAtom *>(bag->RBFirst()->RPData())));
}

TEST(ExprComplexTest, OfSeveralValuesInsideANestTheFirstCounts) {
    const CZelErrorCapture reports;
    const std::unique_ptr<CZelExprComplex> value(listValue({valueOf(evaluated({CZelAtom(1), CZelAtom(2)}))}));
    EXPECT_EQ("list [1]", shown(value->RECAtomValue()));
    EXPECT_TRUE(reports.Holds(E_RCBadState, "Multiple return nested evals not supported"));
}

TEST(ExprComplexTest, ABadConstructionIsReportedAndHasNoValue) {
    const CZelErrorCapture reports;
    CZelExprComplex odd(new CZelDoubleList, E_RECTSimple);
    EXPECT_TRUE(reports.Holds(E_RCBadState, "Attempt to construct CZelExprComplex of incorrect type"));
    CZelExprComplex none(nullptr, E_RECTObject);
    EXPECT_EQ(E_RCNullList, reports.LastCode());
    for (CZelExprComplex *value : {&odd, &none}) {
        EXPECT_EQ(E_RECTSimple, value->RECType());
        EXPECT_EQ(nullptr, value->RECBagVal());
        EXPECT_EQ(nullptr, value->RECAtomValue());
        const std::unique_ptr<CZelBag> compilables(value->RECCompilables());
        EXPECT_EQ(0, compilables->RBLength());
    }
}

TEST(ExprComplexTest, CompilablesComeInTheOrderOfTheText) {
    CZelExpr *expressions[] = {constant(CZelAtom(1)), clause("&x"), constant(CZelAtom(2)), clause("&y")};
    const std::unique_ptr<CZelExprComplex> value(listValue(
        {valueOf(expressions[0]), objectValue("a", listValue({valueOf(expressions[1]), valueOf(expressions[2])})),
         valueOf(expressions[3])}));
    const std::unique_ptr<CZelBag> bag(value->RECCompilables());
    ASSERT_EQ(4, bag->RBLength());
    const CZelPointer *node = bag->RBFirst();
    for (CZelExpr *expression : expressions) {
        EXPECT_EQ(expression, node->RPData());
        node = CZelBag::RBNext(node);
    }
}

TEST(ExprComplexTest, ADeepNestNeedsNoDeepStack) {
    onSmallStack([] {
        constexpr int LEVELS = 100000;
        CZelExprComplex *value = valueOf(constant(CZelAtom(1)));
        for (int i = 0; i < LEVELS; ++i)
            value = i % 2 == 0 ? listValue({value}) : objectValue("a", value);
        const CZelExprComplex copy(*value);
        CZelAtom built;
        EXPECT_TRUE(copy.RECCopyValue(built));
        const CZelAtom *inside = &built;
        for (int i = 0; i < LEVELS; ++i)
            inside = inside->RAList() != nullptr ? inside->RAList()->RAVGetValue(0) : inside->RASubVal("a");
        EXPECT_EQ(1, inside->RAInt());
        const std::unique_ptr<CZelBag> compilables(value->RECCompilables());
        EXPECT_EQ(1, compilables->RBLength());
        delete value;
    });
}

}  // namespace
