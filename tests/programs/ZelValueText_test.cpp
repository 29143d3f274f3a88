#include "programs/oql/ZelValueText.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelRecord.h"

namespace {

std::string json(const CZelAtom &value) {
    std::string text;
    ZelAppendJson(text, &value);
    return text;
}

std::string jsonString(std::string_view text) {
    std::string out;
    ZelAppendJsonString(out, text);
    return out;
}

CZelAtom listOf(std::initializer_list<CZelAtom> elements) {
    auto *list = new CZelAtomVector;
    for (const CZelAtom &element : elements)
        list->RAVAddToEnd(new CZelAtom(element));
    return CZelAtom(list);
}

CZelAtom objectOf(const char *name, const CZelAtom &value) {
    auto *object = new CZelVBList;
    object->RVBLAddToListEnd(new CZelVarBind(name, &value));
    return CZelAtom(object);
}

TEST(ValueTextTest, JsonHasAFormForEveryType) {
    EXPECT_EQ("null", json(CZelAtom()));
    EXPECT_EQ("-5", json(CZelAtom(-5)));
    EXPECT_EQ("9223372036854775807", json(CZelAtom(9223372036854775807LL)));
    EXPECT_EQ("\"a\\\"b\\\\\"", json(CZelAtom("a\"b\\")));
    EXPECT_EQ("[1,\"x\",null,[]]", json(listOf({CZelAtom(1), CZelAtom("x"), CZelAtom(), listOf({})})));
    EXPECT_EQ("{\"a\":{\"b\":[1]}}", json(objectOf("a", objectOf("b", listOf({CZelAtom(1)})))));
    const unsigned char bytes[] = {0x00, 0x7F, 0xFF};
    EXPECT_EQ("{\"data\":\"007fff\"}", json(CZelAtom(bytes, 3)));
}

TEST(ValueTextTest, JsonFloatsReadBackTheSame) {
    for (float value : {0.1F, 1.5F, -3.4028235e38F, 1e-45F, 16777216.0F})
        EXPECT_EQ(value, std::strtof(json(CZelAtom(value)).c_str(), nullptr));
    EXPECT_EQ("null", json(CZelAtom(std::nanf(""))));
    EXPECT_EQ("null", json(CZelAtom(std::numeric_limits<float>::infinity())));
}

TEST(ValueTextTest, JsonStringsAreValidWhateverTheBytes) {
    EXPECT_EQ("\"\\n\\r\\t\\u0001\\u007f\"", jsonString("\n\r\t\x01\x7f"));
    EXPECT_EQ("\"Zürich 東京 😀\"", jsonString("Zürich 東京 😀"));
    EXPECT_EQ("\"\\u00ff\\u00c3\"", jsonString("\xff\xc3"));                        // no lead byte; cut short
    EXPECT_EQ("\"\\u00c0\\u00af\"", jsonString("\xc0\xaf"));                        // longer than need be
    EXPECT_EQ("\"\\u00ed\\u00a0\\u0080\"", jsonString("\xed\xa0\x80"));             // half of a pair
    EXPECT_EQ("\"\\u00f4\\u0090\\u0080\\u0080\"", jsonString("\xf4\x90\x80\x80"));  // behind the last character
}

TEST(ValueTextTest, DeepValuesNeedNoStack) {
    CZelAtom value(1);
    for (int i = 0; i < 100000; ++i) {
        auto *list = new CZelAtomVector;
        list->RAVAddToEnd(new CZelAtom(std::move(value)));
        value = CZelAtom(list);
    }
    EXPECT_EQ(200001U, json(value).size());
}

TEST(ValueTextTest, OneLineStaysOneLine) {
    EXPECT_EQ("a\\nb\\tc\\x1b", ZelOneLine("a\nb\tc\x1b"));
    EXPECT_EQ("Zürich\\xff", ZelOneLine("Zürich\xff"));
    EXPECT_EQ("\\xc2\\x9b", ZelOneLine("\xc2\x9b"));  // a control character that terminals obey
}

TEST(ValueTextTest, WidthIsWhatATerminalTakes) {
    EXPECT_EQ(3, ZelDisplayWidth("abc"));
    EXPECT_EQ(6, ZelDisplayWidth("Zürich"));
    EXPECT_EQ(4, ZelDisplayWidth("東京"));
    EXPECT_EQ(1, ZelDisplayWidth("e\xcc\x81"));  // an accent over the letter before
}

TEST(ValueTextTest, RowsAreObjectLiterals) {
    CZelRecord row;
    row.RRAddValue("a", "it's");
    row.RRAddValue(new CZelVarBind("b", 1));
    EXPECT_EQ("{a=\"it's\", b=1}", ZelRowLiteral(row));
    EXPECT_EQ("it's", ZelPlainText(row.RRValueOf("a")));
    EXPECT_EQ("NULL", ZelPlainText(nullptr));
}

}  // namespace
