#include "foundations/base/CZelBaseRecord.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "base/RandomValues.h"
#include "foundations/base/CZelStack.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/ZelCodes.h"

namespace {

// A path of keys, the name first.
using Keys = std::vector<CZelAtom>;

class TestRecord : public CZelRecord {
public:
    int Write(const Keys &keys, const CZelAtom *value) {
        CZelStack stack(-1);
        push(keys, stack);
        int status = RRAddOrSetValueNested(keys[0], stack, value);
        EXPECT_EQ(static_cast<int>(keys.size()) - 1, stack.RSLength());
        return status;
    }
    int Write(const Keys &keys, const CZelAtom &value) { return Write(keys, &value); }

    // By all roads that lead to a nested value.
    const CZelAtom *Read(const Keys &keys) const {
        CZelStack stack(-1);
        push(keys, stack);
        const CZelAtom *leaf = &keys[0];
        const CZelAtom *value = RRValueOfNested(keys[0], stack, &leaf);
        EXPECT_EQ(value, leaf);
        CZelAtomVector path;
        for (const CZelAtom &key : keys)
            path.RAVAddToEnd(new CZelAtom(key));
        EXPECT_EQ(value, RRValueOf(path));
        delete path.RAVRemoveAtom(0);
        EXPECT_EQ(value, RRValueOf(keys[0].RAString(), path));
        return value;
    }

    std::string Text() const {
        std::ostringstream out;
        out << static_cast<const CZelBaseRecord *>(this);
        return out.str();
    }

private:
    static void push(const Keys &keys, CZelStack &stack) {
        for (std::size_t i = 1; i < keys.size(); ++i)
            stack.RSPush(const_cast<CZelAtom *>(&keys[i]));
    }
};

// What a path leads to, found by plain steps in a copy of the record. Null when a step is missing.
const CZelAtom *follow(const CZelAtom &record, const Keys &keys) {
    const CZelAtom *value = &record;
    for (const CZelAtom &key : keys) {
        if (value == nullptr)
            return nullptr;
        if (key.RAType() == E_RDTText)
            value = value->RASubVal(key.RAString());
        else if (value->RAList() == nullptr || key.RAInt() == E_RLUNext || key.RAInt() == -3)
            return nullptr;
        else
            value = value->RAList()->RAVGetValue(static_cast<unsigned int>(std::max(0, key.RAInt())));
    }
    return value;
}

Keys randomPath(RandomValues &values) {
    Keys keys{values.Name().c_str()};
    for (int length = values.Below(4); length > 0; --length) {
        if (values.Below(2) == 0)
            keys.emplace_back(values.Name().c_str());
        else
            keys.emplace_back(values.Below(7) == 0 ? -1 - values.Below(4) : values.Below(4));
    }
    return keys;
}

}  // namespace

TEST(BaseRecord, AddsSetsAndRemoves) {
    TestRecord record;
    CZelAtom name("a"), two(2);
    EXPECT_EQ(E_RCNotFound, record.RRSetValueOf(&name, &two));
    EXPECT_EQ(E_RCOk, record.RRAddValue("a", "x"));
    EXPECT_EQ(E_RCOk, record.RRAddValue("a", "y"));
    EXPECT_EQ(E_RCOk, record.RRAddOrSetValue("b", 1));
    EXPECT_EQ(E_RCOk, record.RRAddOrSetValue("b", 3));
    EXPECT_EQ(E_RCOk, record.RRSetValueOf(&name, &two));
    EXPECT_EQ("a=2\na=y\nb=3\n", record.Text());
    EXPECT_EQ(E_RCOk, record.RRDeleteValueOf(name));
    EXPECT_STREQ("y", record.RRValueOf(&name)->RAString());
    EXPECT_EQ(E_RCNotFound, record.RRDeleteValueOf(two));
}

TEST(BaseRecord, OwnsAtomsHandedOverAlsoOnFailure) {
    TestRecord record;
    CZelAtom name("a");
    CZelAtom *value = new CZelAtom(1);
    EXPECT_EQ(E_RCNotFound, record.RRSetValueOf(&name, &value));
    EXPECT_EQ(nullptr, value);
    value = new CZelAtom(1);
    EXPECT_EQ(E_RCBadArgument, record.RRAddValue(static_cast<const CZelAtom *>(nullptr), &value));
    EXPECT_EQ(nullptr, value);
    value = new CZelAtom(1);
    EXPECT_EQ(E_RCOk, record.RRAddValue("a", &value));
    EXPECT_EQ(nullptr, value);
    value = new CZelAtom(2);
    EXPECT_EQ(E_RCOk, record.RRSetValueOf(&name, &value));
    EXPECT_EQ("a=2\n", record.Text());
    EXPECT_EQ(E_RCBadArgument, record.RRAddValue(nullptr, "x"));
    EXPECT_EQ(E_RCBadArgument, record.RRAddValue(static_cast<CZelVarBind *>(nullptr)));
}

TEST(BaseRecord, AnAbsentNameIsNotANameWithoutValue) {
    TestRecord record;
    CZelAtom bound("bound"), absent("absent");
    record.RRAddOrSetValue(&bound, nullptr);
    EXPECT_EQ(nullptr, record.RRValueOf(&bound));
    EXPECT_NE(nullptr, record.RRValuePairOf(&bound));
    EXPECT_EQ(nullptr, record.RRValuePairOf(&absent));
    EXPECT_EQ(nullptr, record.RRValueOf(static_cast<const char *>(nullptr)));
    EXPECT_EQ(nullptr, record.RRValueOf(CZelAtomVector()));
}

TEST(BaseRecord, GivesItsValuesAwayAndTakesThem) {
    TestRecord record;
    record.RRAddOrSetValue("a", 1);
    CZelAtom *object = record.RRRecordAsAtom();
    EXPECT_EQ(1, object->RASubVal("a")->RAInt());
    delete object;
    CZelRecord other(record.RRTakeValues());
    EXPECT_EQ("", record.Text());
    EXPECT_EQ(1, other.RRValueOf("a")->RAInt());
    CZelBaseRecord copy(other.RRVbIterator());
    EXPECT_EQ(1, copy.RRValueOf("a")->RAInt());
}

TEST(BaseRecord, WritesMakeWhatIsMissing) {
    TestRecord record;
    EXPECT_EQ(E_RCOk, record.Write({"o", "m", 1, "k"}, 5));
    EXPECT_EQ("o={m=[NULL,{k=5}]}\n", record.Text());
    EXPECT_EQ(E_RCOk, record.Write({"o", "m", E_RLUNext}, "end"));
    EXPECT_EQ(E_RCOk, record.Write({"o", "m", E_RLUAny, "k"}, 1));
    EXPECT_EQ("o={m=[{k=1},{k=5},'end']}\n", record.Text());
    EXPECT_EQ(E_RCOk, record.Write({"o", "m", E_RLUAll}, CZelAtom(0)));
    EXPECT_EQ("o={m=[0,0,0]}\n", record.Text());
    EXPECT_EQ(E_RCOk, record.Write({"o", "m", 1}, nullptr));
    EXPECT_EQ("o={m=[0,NULL,0]}\n", record.Text());
    EXPECT_EQ(E_RCOk, record.Write({"p", E_RLUAll, "x"}, 1));
    EXPECT_EQ(E_RCOk, record.Write({"q"}, 1));
    EXPECT_EQ(1, record.Read({"p", E_RLUAll, "x"})->RAInt());
    EXPECT_EQ(1, record.Read({"q"})->RAInt());
}

TEST(BaseRecord, RefusedWritesLeaveTheRecordAsItWas) {
    TestRecord record;
    record.Write({"a", "b"}, 1);
    const std::pair<Keys, int> TABLE[] = {
        {{"a", "b", "c"}, E_RCBadType},
        {{"a", "b", 0}, E_RCBadType},
        {{"a", 0}, E_RCBadType},
        {{"a", "b", -1}, E_RCBadType},
        {{"n", 1000001}, E_RCBadValue},
        {{"n", "x", -3}, E_RCBadValue},
        {{"n", "x", 1LL << 32}, E_RCBadValue},
        {{"n", -5}, E_RCBadValue},
        {{"n", 1.0F}, E_RCBadType},
        {{"n", "x", CZelAtom()}, E_RCBadType},
        {Keys(1002, CZelAtom("n")), E_RCBadValue},
    };
    for (const auto &[keys, code] : TABLE) {
        EXPECT_EQ(code, record.Write(keys, 1));
        EXPECT_EQ("a={b=1}\n", record.Text());
    }
    EXPECT_EQ(E_RCOk, record.Write(Keys(1001, CZelAtom("n")), 1));
    EXPECT_EQ(1, record.Read(Keys(1001, CZelAtom("n")))->RAInt());
}

TEST(BaseRecord, AllGoesOnBehindAnElementThatCantBeWritten) {
    TestRecord record;
    record.Write({"l", 0, "m"}, 1);
    record.Write({"l", 1}, "no object");
    record.Write({"l", 2, "m"}, 3);
    EXPECT_EQ(E_RCBadType, record.Write({"l", E_RLUAll, "m"}, 9));
    EXPECT_EQ("l=[{m=9},'no object',{m=9}]\n", record.Text());
}

// Each write is checked by plain steps through the record as an object: the value stands where the path leads,
// and a refused write changes nothing. Reads agree with plain steps on every path.
TEST(BaseRecord, RandomNestedWritesAndReads) {
    RandomValues values;
    TestRecord record;
    for (int step = 0; step < 5000; ++step) {
        Keys path = randomPath(values);
        CZelAtom value = values.Atom(1);
        std::string before = record.Text();
        const CZelAtom *old = record.Read(path);
        bool wasThere = old != nullptr;
        int status = record.Write(path, value);
        bool selects = std::any_of(path.begin() + 1, path.end(),
                                   [](const CZelAtom &key) { return key.RAIsNumber() && key.RAInt() < 0; });
        EXPECT_TRUE(!wasThere || selects || status == E_RCOk);
        CZelAtom *object = record.RRRecordAsAtom();
        EXPECT_TRUE(status != E_RCOk || selects || IsSame(&value, follow(*object, path)));
        EXPECT_TRUE(status == E_RCOk || selects || before == record.Text());
        Keys other = randomPath(values);
        const CZelAtom *expected = follow(*object, other), *found = record.Read(other);
        EXPECT_TRUE(IsSame(expected, found));
        delete object;
        if (values.Below(50) == 0)
            record.RRDeleteValueOf(path[0]);
    }
}
