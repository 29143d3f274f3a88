#include "foundations/base/CZelVarBind.h"

#include <gtest/gtest.h>

#include <string>

#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelVBList.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/ZelCodes.h"

namespace {

const CZelAtom *const NOTHING = nullptr;

std::string printed(const CZelVarBind &binding) {
    return CZelMallocText(binding.RVBVbAsString()).get();
}

std::string printed(const CZelVBList &list) {
    std::string text;
    for (const CZelVarBind *binding = list.RVBLHead(); binding != nullptr; binding = list.RVBLGetNext(binding))
        text += printed(*binding) + ";";
    return text;
}

int compareValues(const void *left, const void *right) {
    const CZelVarBind *mine = *static_cast<CZelVarBind *const *>(left);
    const CZelVarBind *theirs = *static_cast<CZelVarBind *const *>(right);
    return CZelAtom::RACompare(mine->RVBValue(), theirs->RVBValue());
}

}  // namespace

TEST(VarBind, NoValueIsNotAnUndefinedValue) {
    CZelAtom undefined;
    CZelVarBind with("a", &undefined), without("a", NOTHING);
    ASSERT_NE(nullptr, with.RVBValue());
    EXPECT_EQ(nullptr, without.RVBValue());
    EXPECT_EQ(nullptr, CZelVarBind(without).RVBValue());
    EXPECT_NE(nullptr, CZelVarBind(with).RVBValue());
    EXPECT_EQ(nullptr, CZelVarBind("a", static_cast<const char *>(nullptr)).RVBValue());
    EXPECT_EQ("a=NULL", printed(with));
    EXPECT_EQ("a=NULL", printed(without));
    EXPECT_EQ(E_RCOk, without.RVBSetValue(3));
    EXPECT_EQ("a=3", printed(without));
    EXPECT_EQ(E_RCOk, without.RVBSetValue(NOTHING));
    EXPECT_EQ(nullptr, without.RVBValue());
}

TEST(VarBind, TakesAtomsOver) {
    CZelAtom *value = new CZelAtom("a text that is longer than an atom");
    const char *text = value->RAString();
    CZelVarBind binding(CZelAtom("name"), &value);
    EXPECT_EQ(nullptr, value);
    EXPECT_EQ(text, binding.RVBValue()->RAString());
    EXPECT_TRUE(binding.RVBName().RAIsInterned());
    EXPECT_TRUE(binding.RVBNamed("name"));
    EXPECT_FALSE(binding.RVBNamed(CZelAtom("names")));
}

TEST(VarBind, GrowsListsAndRefusesOtherValues) {
    CZelVarBind list("l", NOTHING);
    EXPECT_EQ(E_RCOk, list.RVBAppendToListVal(1));
    EXPECT_EQ(E_RCOk, list.RVBAddOrSetListVal("x", 9));
    EXPECT_EQ(E_RCOk, list.RVBAddOrSetListVal(2, 0));
    EXPECT_EQ("l=[2,'x']", printed(list));
    CZelVarBind number("n", 5);
    EXPECT_EQ(E_RCBadType, number.RVBAppendToListVal(1));
    EXPECT_EQ(E_RCBadType, number.RVBAddOrSetListVal(1, 0));
    EXPECT_EQ("n=5", printed(number));
}

TEST(VBList, KeepsItsEndsThroughChanges) {
    CZelVBList list;
    EXPECT_EQ(E_RCBadArgument, list.RVBLAddToListEnd(nullptr));
    EXPECT_EQ(E_RCNotFound, list.RVBLRemove(nullptr));
    for (int i = 0; i < 4; ++i)
        list.RVBLAddToListEnd(new CZelVarBind(i % 2 == 0 ? "even" : "odd", i));
    EXPECT_EQ(0, list.RVBLFind("even")->RVBValue()->RAInt());
    EXPECT_EQ(1, list.RVBLFind(CZelAtom("odd"))->RVBValue()->RAInt());
    EXPECT_EQ(nullptr, list.RVBLFind("never a name"));
    EXPECT_EQ(nullptr, list.RVBLFind(CZelAtom(1)));
    EXPECT_EQ(E_RCOk, list.RVBLRemove(list.RVBLTail()));
    EXPECT_EQ(E_RCOk, list.RVBLRemove(list.RVBLHead()));
    list.RVBLAddToListEnd(new CZelVarBind("new", 9));
    EXPECT_EQ("odd=1;even=2;new=9;", printed(list));
    EXPECT_EQ(3, list.RVBLLength());

    CZelVBList copy(list);
    copy.RVBLMoveFrom(list);
    copy.RVBLMoveFrom(list);
    copy.RVBLMoveFrom(copy);
    EXPECT_EQ("odd=1;even=2;new=9;odd=1;even=2;new=9;", printed(copy));
    EXPECT_EQ("", printed(list));
    EXPECT_EQ(nullptr, list.RVBLTail());
}

TEST(VBList, SortsStably) {
    CZelVBList list;
    for (int i = 0; i < 12; ++i)
        list.RVBLAddToListEnd(new CZelVarBind(("n" + std::to_string(i)).c_str(), i % 3));
    list.RVBLSortList(compareValues);
    EXPECT_EQ("n0=0;n3=0;n6=0;n9=0;n1=1;n4=1;n7=1;n10=1;n2=2;n5=2;n8=2;n11=2;", printed(list));
    EXPECT_STREQ("n11", list.RVBLTail()->RVBName().RAString());
}
