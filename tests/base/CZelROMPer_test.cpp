#include "foundations/base/CZelROMPer.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "base/RandomValues.h"
#include "foundations/base/CZelROMPer_format.h"
#include "foundations/base/ZelCrc32c.h"
#include "foundations/port/ZelCodes.h"

namespace {

using Bytes = std::vector<unsigned char>;

Bytes packed(CZelROMPer &builder) {
    return {builder.RRPacket(), builder.RRPacket() + builder.RRCreatedLength()};
}

Bytes packed(const char *name, const CZelAtom *value) {
    CZelROMPer builder(CZelROMPer::INITIAL_SIZE);
    CZelAtom atom(name);
    EXPECT_EQ(E_RCOk, builder.RRAddAttrVal(&atom, value));
    return packed(builder);
}

// One entry with a body of our own making, its checks in order.
Bytes entry(const Bytes &body) {
    Bytes bytes(ROMP_HEAD_SIZE);
    RompStoreHead(bytes.data(), static_cast<std::uint32_t>(body.size()), RompCheck(body.data(), body.size()));
    bytes.insert(bytes.end(), body.begin(), body.end());
    return bytes;
}

Bytes operator+(Bytes left, const Bytes &right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

// One head or body a line.
constexpr const char *GOLDEN =
    "0000000E71601DAFCF18ABBC"
    "0000000577686F6C6500FFFFFFFE"
    "0000000E97541EE7E5CEF9CE"
    "000000016C01FFFFFFFFFFFFFFFF"
    "0000000DD6BB9313C8BEC6F4"
    "00000000020000000474657874"
    "000000335797C68E09B4CE74"
    "000000096C6F6E67207465787402000000216120746578742074686174206C696573206F757473696465206974732061"
    "746F6D"
    "0000000D376508098B60CAFE"
    "000000047265616C0340200000"
    "00000011997CABEB63B83ED0"
    "0000000477696465040000010000000000"
    "000000117607B55F8129C918"
    "00000005626C6F636B05000000030001FF"
    "0000003481FBB4124058973B"
    "000000066F626A6563740800000002000000047369746502000000046F736C6F00000004726573740700000003000000"
    "01020F09"
    "0000000ED1562E26AF5BE8F2"
    "00000009756E646566696E656409"
    "0000000C324C1F0569DC22E9"
    "000000076E6F7468696E670F";

std::string inHex(const Bytes &bytes) {
    std::string text;
    for (unsigned char byte : bytes) {
        text += "0123456789ABCDEF"[byte >> 4];
        text += "0123456789ABCDEF"[byte & 15U];
    }
    return text;
}

struct Walk {
    std::string m_names;  // "a!b" for a, a damaged pair, b
    int m_bad = 0;
};

// Reads from a copy that is exactly as long, so that a sanitizer sees a step past the end.
Walk walk(const Bytes &bytes) {
    Bytes exact(bytes);
    CZelROMPer reader(exact.data(), static_cast<int>(exact.size()), E_RBTrue);
    Walk result;
    int status = 0;
    while (CZelVarBind *pair = reader.RRGetNextAttrVal(&status, nullptr)) {
        result.m_names += status == E_RCOk ? pair->RVBName().RAString() : "!";
        result.m_bad += status == E_RCOk ? 0 : 1;
        delete pair;
    }
    EXPECT_EQ(E_RCOk, status);
    EXPECT_EQ(exact.data(), reader.RRTakePacket());
    return result;
}

CZelAtom *nest(int depth) {
    CZelAtom *value = new CZelAtom(7);
    for (int i = 0; i < depth; ++i) {
        CZelAtomVector *list = new CZelAtomVector(1);
        list->RAVAddToEnd(value);
        value = new CZelAtom(list);
    }
    return value;
}

}  // namespace

// The bytes are a format: packets lie in files and travel between machines.
TEST(ROMPer, LayoutStaysAsItIs) {
    auto *list = new CZelAtomVector;
    for (CZelAtom *element : {new CZelAtom(258), static_cast<CZelAtom *>(nullptr), new CZelAtom})
        list->RAVAddToEnd(element);
    auto *object = new CZelVBList;
    object->RVBLAddToListEnd(new CZelVarBind("site", "oslo"));
    object->RVBLAddToListEnd(new CZelVarBind(CZelAtom("rest"), CZelAtom(list)));
    const unsigned char BLOCK[] = {0, 1, 0xFF};
    CZelRecord record;
    auto add = [&record](const char *name, CZelAtom &&value) {
        record.RRAddValue(new CZelVarBind(CZelAtom(name), std::move(value)));
    };
    add("whole", -2);
    add("l", -1L);
    add("", "text");
    add("long text", "a text that lies outside its atom");
    add("real", 2.5F);
    add("wide", 1LL << 40);
    add("block", CZelAtom(BLOCK, 3));
    add("object", object);
    add("undefined", {});
    record.RRAddValue(new CZelVarBind("nothing", static_cast<const char *>(nullptr)));
    CZelROMPer builder(CZelROMPer::INITIAL_SIZE);
    ASSERT_EQ(E_RCOk, record.ROMEncode(builder));
    EXPECT_EQ(GOLDEN, inHex(packed(builder)));
    CZelRecord read;
    ASSERT_EQ(E_RCOk, read.ROMDecode(builder.RRPacket(), builder.RRCreatedLength()));
    EXPECT_TRUE(IsSame(*record.RRVbIterator(), *read.RRVbIterator()));
}

TEST(ROMPer, CheckIsTheSameWithAndWithoutTheProcessorsInstruction) {
    const unsigned char *digits = reinterpret_cast<const unsigned char *>("123456789");
    EXPECT_EQ(0xE3069283U, RompCheck(digits, 9));
    for (std::size_t length = 0; length <= 67; ++length) {
        Bytes bytes(ROMP_HEAD_SIZE + length);
        for (std::size_t i = 0; i < length; ++i)
            bytes[ROMP_HEAD_SIZE + i] = static_cast<unsigned char>(i * 37 + 11);
        RompStore(bytes.data(), static_cast<std::uint32_t>(length));
        RompSeal(bytes.data(), bytes.size());
        const std::uint32_t check = ZelCrc32cByTable(bytes.data() + ROMP_HEAD_SIZE, length);
        EXPECT_EQ(check, RompLoad<std::uint32_t>(bytes.data() + 4)) << length;
        EXPECT_EQ(entry(Bytes(bytes.begin() + ROMP_HEAD_SIZE, bytes.end())), bytes);
        EXPECT_EQ(bytes.size(), RompIntact(bytes.data(), bytes.size()));
        EXPECT_EQ(0U, RompIntact(bytes.data(), bytes.size() - 1));
    }
}

TEST(ROMPer, EmptyRecordIsAPadThatReadersSkip) {
    CZelRecord empty;
    unsigned char *data = nullptr;
    int length = 0;
    empty.ROMEncode(&data, &length);
    ASSERT_EQ(static_cast<int>(ROMP_HEAD_SIZE), length);
    Bytes pad(data, data + length);
    std::free(data);
    CZelAtom one(1);
    EXPECT_EQ("", walk(pad).m_names);
    EXPECT_EQ("ab", walk(pad + packed("a", &one) + pad + pad + packed("b", nullptr)).m_names);
}

TEST(ROMPer, BlocksEndToEndAreOneBlock) {
    CZelAtom one(1), name("x");
    Bytes first = packed("a", &one), second = packed("b", &one);
    CZelROMPer builder(1);
    EXPECT_EQ(E_RCOk, builder.RRAddAttrVal(&name, &one));
    EXPECT_EQ(E_RCOk, builder.RRAppendFrom(first.data(), static_cast<int>(first.size())));
    EXPECT_EQ(E_RCOk, builder.RRAppendFrom(second.data(), static_cast<int>(second.size())));
    EXPECT_EQ(E_RCOk, builder.RRAddAttrVal(&name, &one));
    EXPECT_EQ(static_cast<int>(first.size() + second.size()), builder.RRCopiedLength());
    EXPECT_EQ("xabx", walk(packed(builder)).m_names);
    int length = builder.RRCreatedLength();
    unsigned char *taken = builder.RRTakePacket();
    EXPECT_EQ("xabx", walk(Bytes(taken, taken + length)).m_names);
    std::free(taken);
    EXPECT_EQ(0, builder.RRCreatedLength());
}

TEST(ROMPer, PacketsOutgrowTheirFirstSize) {
    CZelROMPer builder(CZelROMPer::INITIAL_SIZE);
    std::string names;
    CZelAtom name("n"), value(std::string(1000, 'x').c_str());
    for (int i = 0; i < 100; ++i) {
        ASSERT_EQ(E_RCOk, builder.RRAddAttrVal(&name, &value));
        names += "n";
    }
    EXPECT_EQ(names, walk(packed(builder)).m_names);
}

// The place where a packet outgrows its first size moves over every part of a pair.
TEST(ROMPer, OutgrowsItsFirstSizeAnywhereInAPair) {
    RandomValues values;
    CZelAtom name("n"), nested = values.List(3);
    Bytes second = packed("n", &nested);
    for (std::size_t fill = CZelROMPer::INITIAL_SIZE - second.size() - 40; fill < CZelROMPer::INITIAL_SIZE; ++fill) {
        CZelAtom text(std::string(fill, 'x').c_str());
        CZelROMPer builder(CZelROMPer::INITIAL_SIZE);
        ASSERT_EQ(E_RCOk, builder.RRAddAttrVal(&name, &text));
        ASSERT_EQ(E_RCOk, builder.RRAddAttrVal(&name, &nested));
        ASSERT_EQ(packed("n", &text) + second, packed(builder)) << fill;
    }
}

TEST(ROMPer, ReusesABinding) {
    CZelAtom text("a text that is longer than an atom");
    Bytes bytes = packed("first", &text) + packed("second", nullptr);
    CZelROMPer reader(bytes.data(), static_cast<int>(bytes.size()), E_RBTrue);
    CZelVarBind reuse(std::string(300, 'x').c_str(), &text);
    EXPECT_EQ(&reuse, reader.RRGetNextAttrVal(nullptr, &reuse));
    EXPECT_STREQ("first", reuse.RVBName().RAString());
    EXPECT_TRUE(reuse.RVBValue()->RASameText(text));
    EXPECT_EQ(&reuse, reader.RRGetNextAttrVal(nullptr, &reuse));
    EXPECT_EQ(nullptr, reuse.RVBValue());
    EXPECT_EQ(nullptr, reader.RRGetNextAttrVal(nullptr, &reuse));
}

TEST(ROMPer, AnyDamagedByteCostsOnePairAndNoOther) {
    RandomValues values;
    CZelAtom number(5), nested = values.List(2);
    Bytes good = packed("a", &number) + packed("b", &nested) + packed("c", &number);
    std::size_t first = packed("a", &number).size(), last = good.size() - first;
    for (std::size_t place = 0; place < good.size(); ++place) {
        for (unsigned int damage : {1U, 0x80U, 0xFFU, static_cast<unsigned int>(1 + values.Below(255))}) {
            Bytes bad(good);
            bad[place] = static_cast<unsigned char>(bad[place] ^ damage);
            const char *expected = place < first ? "!bc" : place < last ? "a!c" : "ab!";
            ASSERT_EQ(expected, walk(bad).m_names) << "byte " << place << " damage " << damage;
        }
    }
}

TEST(ROMPer, TruncatedPacketsEndInOneBadPair) {
    CZelAtom number(5);
    Bytes good = packed("a", &number) + packed("b", &number);
    for (std::size_t length = 0; length < good.size(); ++length) {
        Walk result = walk(Bytes(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(length)));
        EXPECT_EQ(length == 0 || length == good.size() / 2 ? 0 : 1, result.m_bad);
    }
    EXPECT_EQ(1, walk(Bytes(1000, 0)).m_bad);
}

// Bodies whose checks are in order but that no writer of ours makes.
TEST(ROMPer, MadeUpBodiesAreRefused) {
    const Bytes NAME = {0, 0, 0, 1, 'x'};
    const Bytes TABLE[] = {
        {0},
        {0xFF, 0xFF, 0xFF, 0xFF},
        NAME,
        {0, 0, 0, 2, 'x', 0, E_RDTUndefined},
        NAME + Bytes{E_RDTInt, 0, 0, 0},
        NAME + Bytes{E_RDTInt, 0, 0, 0, 0, 0},
        NAME + Bytes{E_RDTLong64, 0, 0, 0, 0, 0, 0, 0},
        NAME + Bytes{E_RDTText, 0, 0, 0, 2, 'a'},
        NAME + Bytes{E_RDTText, 0, 0, 0, 2, 'a', 0},
        NAME + Bytes{E_RDTData, 0xFF, 0xFF, 0xFF, 0xFF, 1},
        NAME + Bytes{E_RDTLocator},
        NAME + Bytes{E_RDTList, 0xFF, 0xFF, 0xFF, 0xFF, E_RDTUndefined},
        NAME + Bytes{E_RDTList, 0, 0, 0, 2, E_RDTUndefined},
        NAME + Bytes{E_RDTList, 0, 0, 0, 2, E_RDTUndefined, 77},
        NAME + Bytes{E_RDTObject, 0, 0, 0, 1, 0, 0, 0, 0},
        NAME + Bytes{99},
    };
    for (const Bytes &body : TABLE)
        EXPECT_EQ("!x", walk(entry(body) + entry(NAME + Bytes{E_RDTUndefined})).m_names)
            << testing::PrintToString(body);
}

TEST(ROMPer, NestsToTheBoundAndNoDeeper) {
    CZelAtom *allowed = nest(CZelROMPer::MAX_DEPTH), *deep = nest(CZelROMPer::MAX_DEPTH + 1), name("n");
    Bytes good = packed("n", allowed);
    EXPECT_EQ("n", walk(good).m_names);
    CZelROMPer builder(0);
    EXPECT_EQ(E_RCBadValue, builder.RRAddAttrVal(&name, deep));
    EXPECT_EQ(0, builder.RRCreatedLength());
    Bytes body = {0, 0, 0, 1, 'x'};
    for (int i = 0; i <= CZelROMPer::MAX_DEPTH; ++i)
        body = body + Bytes{E_RDTList, 0, 0, 0, 1};
    EXPECT_EQ("!", walk(entry(body + Bytes{E_RDTUndefined})).m_names);
    delete allowed;
    delete deep;
}

TEST(ROMPer, RefusesWhatItCantPack) {
    CZelAtom name("n"), number(1);
    CZelROMPer builder(-5);
    EXPECT_EQ(E_RCBadArgument, builder.RRAddAttrVal(nullptr, &number));
    EXPECT_EQ(E_RCBadArgument, builder.RRAddAttrVal(&number, &number));
    EXPECT_EQ(E_RCBadArgument, builder.RRAppendFrom(nullptr, 4));
    Bytes bytes = packed("a", &number);
    EXPECT_EQ(E_RCBadArgument, builder.RRAppendFrom(bytes.data(), -1));
    CZelROMPer reader(bytes.data(), static_cast<int>(bytes.size()), E_RBTrue);
    EXPECT_EQ(E_RCBadArgument, reader.RRAddAttrVal(&name, &number));
    EXPECT_EQ(E_RCBadArgument, reader.RRAddPad());
}
