#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstring>

#include "base/RandomValues.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/ZelCodes.h"

namespace {

struct Conversion {
    CZelAtom m_from;
    EZelDataType m_type;
    CZelAtom m_to;  // undefined: refused
};

const CZelAtom REFUSED;

void expectConversion(const Conversion &conversion) {
    CZelAtom atom(conversion.m_from);
    int status = atom.RACoerce(conversion.m_type);
    bool refused = conversion.m_to.RAIsUndefined();
    EXPECT_EQ(refused ? E_RCBadType : E_RCOk, status);
    EXPECT_TRUE(IsSame(&atom, refused ? &conversion.m_from : &conversion.m_to));
}

}  // namespace

TEST(AtomConvert, FromText) {
    const Conversion TABLE[] = {
        {"12", E_RDTInt, 12},
        {"+12", E_RDTInt, 12},
        {"-0012", E_RDTInt, -12},
        {"2147483647", E_RDTInt, INT_MAX},
        {"-2147483648", E_RDTLong, static_cast<long>(INT_MIN)},
        {"9223372036854775807", E_RDTLong64, LLONG_MAX},
        {"-9223372036854775808", E_RDTLong64, LLONG_MIN},
        {"1.5", E_RDTFloat, 1.5F},
        {"+.5", E_RDTFloat, 0.5F},
        {"-1e3", E_RDTFloat, -1000.0F},
        {"16777217", E_RDTFloat, 16777216.0F},
        // Halfway between two floats, and a little above: reading by way of a double would give the same for both.
        {"1.00000005960464477539062500", E_RDTFloat, 1.0F},
        {"1.00000005960464477539062501", E_RDTFloat, std::nextafter(1.0F, 2.0F)},
    };
    for (const Conversion &conversion : TABLE) {
        SCOPED_TRACE(conversion.m_from.RAString());
        expectConversion(conversion);
    }
}

TEST(AtomConvert, RefusesTextThatDoesNotWhollySpellTheNumber) {
    const char *const NO_INTEGERS[] = {"",  " ",   "1 ",  " 1",         "1.0",         "1e3", "0x10", "+",
                                       "-", "+-1", "--1", "2147483648", "-2147483649", "1a",  "one",  "\xC2\xB2"};
    for (const char *text : NO_INTEGERS) {
        SCOPED_TRACE(text);
        expectConversion({text, E_RDTInt, REFUSED});
        expectConversion({text, E_RDTLong, REFUSED});
    }
    expectConversion({"9223372036854775808", E_RDTLong64, REFUSED});
    for (const char *text : {"", ".", "-.", "1.5 ", "inf", "-inf", "nan", "infinity", "1e", "1e999", "1,5", "+-1"}) {
        SCOPED_TRACE(text);
        expectConversion({text, E_RDTFloat, REFUSED});
    }
}

TEST(AtomConvert, BetweenNumbers) {
    const long HIGH_LONG = 1L << 40;
    const Conversion TABLE[] = {
        {5, E_RDTLong, 5L},
        {5, E_RDTLong64, 5LL},
        {HIGH_LONG, E_RDTLong64, static_cast<long long>(HIGH_LONG)},
        {HIGH_LONG, E_RDTLong, HIGH_LONG},
        {HIGH_LONG, E_RDTInt, REFUSED},
        {static_cast<long long>(HIGH_LONG), E_RDTLong, REFUSED},
        {-7LL, E_RDTLong, -7L},
        {2147483648LL, E_RDTInt, REFUSED},
        {2.9F, E_RDTInt, 2},
        {-2.9F, E_RDTLong64, -2LL},
        {-2147483648.0F, E_RDTInt, INT_MIN},
        {2147483648.0F, E_RDTInt, REFUSED},
        {9223372036854775808.0F, E_RDTLong64, REFUSED},
        {-9223372036854775808.0F, E_RDTLong64, LLONG_MIN},
        {NAN, E_RDTInt, REFUSED},
        {HUGE_VALF, E_RDTLong64, REFUSED},
        {16777217, E_RDTFloat, 16777216.0F},
        {7, E_RDTText, "7"},
        {LLONG_MIN, E_RDTText, "-9223372036854775808"},
        {3.0F, E_RDTText, "3.0"},
    };
    for (const Conversion &conversion : TABLE) {
        SCOPED_TRACE(CZelMallocText(conversion.m_from.RAStrRep()).get());
        expectConversion(conversion);
    }
}

TEST(AtomConvert, LeavesOtherTypesAlone) {
    const CZelAtom list(new CZelAtomVector), object(new CZelVBList);
    const CZelAtom data(reinterpret_cast<const unsigned char *>("1"), 1);
    for (const CZelAtom *atom : {&list, &object, &data}) {
        expectConversion({*atom, E_RDTInt, REFUSED});
        expectConversion({*atom, E_RDTText, REFUSED});
        EXPECT_EQ(E_RCOk, CZelAtom(*atom).RACoerce(atom->RAType()));
    }
    for (EZelDataType type : {E_RDTData, E_RDTLocator, E_RDTList, E_RDTObject, E_RDTUndefined})
        expectConversion({5, type, REFUSED});
    CZelAtom undefined;
    EXPECT_EQ(E_RCOk, undefined.RACoerce(E_RDTInt));
    EXPECT_TRUE(undefined.RAIsUndefined());
}

TEST(AtomConvert, EveryFloatReadsBackFromItsText) {
    RandomValues values;
    for (int i = 0; i < 100000; ++i) {
        std::uint32_t bits = static_cast<std::uint32_t>(values.Below(INT_MAX)) << 1 | static_cast<std::uint32_t>(i & 1);
        float number = 0;
        std::memcpy(&number, &bits, sizeof(number));
        if (!std::isfinite(number))
            continue;
        CZelAtom atom(number);
        ASSERT_EQ(E_RCOk, atom.RACoerce(E_RDTText));
        EXPECT_NE(std::string::npos, std::string(atom.RAString()).find_first_of(".e"));
        ASSERT_EQ(E_RCOk, atom.RACoerce(E_RDTFloat)) << atom.RAString();
        ASSERT_EQ(number, atom.RAFloat());
    }
}

TEST(AtomConvert, AccessorsConvertAndClamp) {
    EXPECT_EQ(INT_MAX, CZelAtom(1e20F).RAInt());
    EXPECT_EQ(LLONG_MIN, CZelAtom(-1e20F).RALongLong());
    EXPECT_EQ(0, CZelAtom(NAN).RALongLong());
    EXPECT_EQ(2, CZelAtom(2.9F).RAInt());
    EXPECT_EQ(1, CZelAtom((1LL << 32) + 1).RAInt());
    EXPECT_EQ(5.0F, CZelAtom(5L).RAFloat());
    EXPECT_EQ(0.1F, CZelAtom(0.1F).RADouble());
    EXPECT_EQ(0, CZelAtom("5").RAInt());
    EXPECT_EQ(nullptr, CZelAtom(5).RAString());
}
