#include "foundations/base/CZelAtom.h"

#include <gtest/gtest.h>

#include <random>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "base/RandomValues.h"
#include "foundations/base/CZelUChar.h"
#include "foundations/base/ZelEscape.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/CZelErrorCapture.h"
#include "foundations/port/ZelCodes.h"

namespace {

std::string printed(const CZelAtom &atom) {
    return CZelMallocText(atom.RAStrRep()).get();
}

CZelAtom listOf(std::initializer_list<CZelAtom> elements) {
    CZelAtomVector *list = new CZelAtomVector;
    for (const CZelAtom &element : elements)
        list->RAVAddToEnd(new CZelAtom(element));
    return list;
}

CZelAtom objectOf(std::initializer_list<std::pair<const char *, CZelAtom>> members) {
    CZelVBList *object = new CZelVBList;
    for (const auto &[name, value] : members)
        object->RVBLAddToListEnd(new CZelVarBind(name, &value));
    return object;
}

// Lists in objects in lists, `depth` of them.
CZelAtom *nest(int depth) {
    CZelAtom *value = new CZelAtom(7);
    for (int i = 0; i < depth; ++i) {
        if (i % 2 == 0) {
            CZelAtomVector *list = new CZelAtomVector(1);
            list->RAVAddToEnd(value);
            value = new CZelAtom(list);
        } else {
            CZelVBList *object = new CZelVBList;
            object->RVBLAddToListEnd(new CZelVarBind("in", &value));
            value = new CZelAtom(object);
        }
    }
    return value;
}

int depthOf(const CZelAtom *value) {
    int depth = 0;
    for (; value != nullptr; ++depth) {
        if (value->RAList() != nullptr)
            value = value->RAList()->RAVGetValue(0);
        else if (value->RAObject() != nullptr)
            value = value->RASubVal("in");
        else
            break;
    }
    return depth;
}

}  // namespace

TEST(Atom, TextsOfAllLengthsKeepTheirBytes) {
    for (std::size_t length = 0; length < 40; ++length) {
        std::string text;
        for (std::size_t i = 0; i < length; ++i)
            text += static_cast<char>(255 - i);
        CZelAtom atom(text.c_str());
        EXPECT_EQ(text, atom.RAString());
        EXPECT_EQ(length, atom.RATextLength());
        CZelAtom taken(ZelStrDup(text.c_str()));
        EXPECT_TRUE(atom.RASameText(taken));
        EXPECT_TRUE(atom.RASameText(CZelAtom::RAName(text.c_str())));
        EXPECT_FALSE(atom.RASameText(CZelAtom((text + 'x').c_str())));
    }
}

TEST(Atom, CopiesAndMovesOwnWhatTheyHold) {
    RandomValues values;
    for (int i = 0; i < 2000; ++i) {
        CZelAtom original = values.Atom();
        CZelAtom copy(original);
        EXPECT_TRUE(IsSame(&original, &copy));
        CZelAtom moved(std::move(copy));
        EXPECT_TRUE(copy.RAIsUndefined());
        copy.RASet(&moved);
        EXPECT_TRUE(moved.RAIsUndefined());
        moved = copy;
        original.RASet();
        EXPECT_TRUE(IsSame(&moved, &copy));
    }
}

TEST(Atom, LentTextIsNeverCarriedOn) {
    std::string text("a text that is longer than an atom");
    CZelAtom lent(true, text.c_str());
    EXPECT_EQ(text.c_str(), lent.RAString());
    CZelAtom copy(lent);
    CZelAtom moved(std::move(lent));
    text[0] = 'X';
    EXPECT_STREQ("a text that is longer than an atom", copy.RAString());
    EXPECT_STREQ("a text that is longer than an atom", moved.RAString());
}

// From texts in the atom to texts in blocks of all sizes and behind them, each over each.
TEST(Atom, TextsAreCopiedOverTextsOfAnyLength) {
    for (std::size_t former = 0; former < 150; ++former) {
        for (std::size_t length = 0; length < 150; length += former % 7 + 1) {
            CZelAtom atom(std::string(former, 'a').c_str());
            const CZelAtom other(std::string(length, 'b').c_str());
            atom = other;
            ASSERT_EQ(std::string(length, 'b'), atom.RAString()) << former;
            ASSERT_EQ(length, atom.RATextLength());
            ASSERT_NE(other.RAString(), atom.RAString());
            const CZelAtom &same = atom;
            atom = same;
            ASSERT_EQ(std::string(length, 'b'), atom.RAString());
        }
    }
}

TEST(Atom, CanBeSetToAPartOfItself) {
    CZelAtom atom = listOf({1, listOf({2, "three"})});
    atom.RASet(atom.RAList()->RAVGetValue(1));
    EXPECT_EQ("[2,'three']", printed(atom));
    const CZelAtom &constant = atom;
    atom.RASet(constant.RAList()->RAVGetValue(1));
    EXPECT_EQ("three", printed(atom));
    atom.RASet(atom.RAString() + 2);
    EXPECT_EQ("ree", printed(atom));
}

TEST(Atom, GivesItsPartsAway) {
    CZelAtom list = listOf({1, 2});
    CZelAtomVector *taken = list.RATakeList();
    EXPECT_EQ(2U, taken->RAVSize());
    delete taken;
    EXPECT_EQ(nullptr, list.RATakeList());
    EXPECT_EQ("[]", printed(CZelAtom(list)));
    EXPECT_EQ(nullptr, CZelAtom(1).RATakeList());

    CZelAtom data(reinterpret_cast<const unsigned char *>("abc"), 3);
    int length = 0;
    unsigned char *block = data.RAUChar()->RUCTakeData(&length);
    EXPECT_EQ(3, length);
    EXPECT_EQ(0, std::memcmp(block, "abc", 3));
    std::free(block);
    EXPECT_EQ("", printed(CZelAtom(data)));
}

TEST(Atom, FindsMembersByName) {
    CZelAtom object = objectOf({{"a", 1}, {"b", CZelAtom()}, {"a", 3}});
    EXPECT_EQ(1, object.RASubVal("a")->RAInt());
    EXPECT_TRUE(object.RASubVal("b")->RAIsUndefined());
    EXPECT_EQ(nullptr, object.RASubVal("c"));
    EXPECT_EQ(nullptr, object.RASubVarBind(nullptr));
    EXPECT_EQ(nullptr, CZelAtom("a").RASubVal("a"));
}

TEST(Atom, PrintsWhatReadsBack) {
    const std::pair<CZelAtom, const char *> TABLE[] = {
        {{}, "undefined"},
        {-2147483647 - 1, "-2147483648"},
        {INT64_MIN, "-9223372036854775808"},
        {1.0F, "1.0"},
        {16777216.0F, "16777216.0"},
        {0.1F, "0.1"},
        {-2.5F, "-2.5"},
        {1e30F, "1e+30"},
        {HUGE_VALF, "1e999"},
        {-HUGE_VALF, "-1e999"},
        {NAN, "nan"},
        {"it's", "it's"},
        {CZelAtom(reinterpret_cast<const unsigned char *>("\x00\xFFz"), 3), "00ff7a"},
        {listOf({}), "[]"},
        {objectOf({}), "{}"},
        {listOf({1, 2.0F, "x", "it's", CZelAtom(), NAN}), "[1,2.0,'x',\"it's\",NULL,NULL]"},
        {objectOf({{"a", 1}, {"b", listOf({objectOf({{"c", "d"}})})}}), "{a=1,b=[{c='d'}]}"},
        {listOf({CZelAtom(reinterpret_cast<const unsigned char *>("\x01"), 1)}), "['01']"},
    };
    for (const auto &[atom, text] : TABLE) {
        EXPECT_EQ(text, printed(atom));
        std::ostringstream out;
        out << &atom;
        EXPECT_EQ(text, out.str());
    }
    EXPECT_EQ("['a']", std::string(CZelMallocText(listOf({"a"}).RAListAsString(E_RBTrue)).get()));
    EXPECT_EQ(nullptr, CZelAtom(1).RAListAsString(E_RBTrue));
}

TEST(Atom, TextsInsideListsFollowTheEscapeSwitch) {
    CZelAtom list = listOf({"it's \"it\" \\ x"});
    ZelSetEscape(true);
    EXPECT_EQ("['it\\'s \"it\" \\\\ x']", printed(list));
    ZelSetEscape(false);
    CZelErrorCapture reports;
    EXPECT_EQ("['it\"s \"it\" \\ x']", printed(list));
    EXPECT_TRUE(reports.Holds(E_RCBadValue));
}

// Else the rest of the name would be read as whatever it spells.
TEST(Atom, MemberNamesThatAreNoIdentifiersAreDisarmed) {
    CZelErrorCapture reports;
    EXPECT_EQ("{a_1___drop=1}", printed(objectOf({{"a=1} ;drop", 1}})));
    EXPECT_EQ("{x=1,x1=2}", printed(objectOf({{"", 1}, {"1", 2}})));
    EXPECT_EQ(3U, reports.Count());
}

TEST(Atom, NestsOfAnyDepthAreFreed) {
    CZelAtom *deep = nest(1000000);
    EXPECT_EQ(1000000, depthOf(deep));
    delete deep;

    CZelAtomVector *wide = new CZelAtomVector;
    for (int i = 0; i < 200; ++i)
        wide->RAVAddToEnd(nest(i));
    delete wide;
}

TEST(Atom, WorkOnNestsStopsAtTheBoundAndSaysSo) {
    CZelAtom *allowed = nest(CZelAtom::MAX_NESTING);
    CZelAtom *deep = nest(CZelAtom::MAX_NESTING + 5);
    CZelErrorCapture reports;
    CZelAtom copy(*allowed);
    EXPECT_TRUE(IsSame(&copy, allowed));
    EXPECT_EQ(0, copy.RALex(allowed, nullptr));
    EXPECT_EQ(0U, reports.Count());

    CZelAtom cut(*deep);
    EXPECT_EQ(CZelAtom::MAX_NESTING, depthOf(&cut));
    EXPECT_EQ(1U, reports.Count());
    EXPECT_NE(std::string::npos, printed(*deep).find("NULL"));
    EXPECT_EQ(2U, reports.Count());
    EXPECT_EQ(0, deep->RALex(deep, nullptr));
    EXPECT_EQ(3U, reports.Count());
    EXPECT_EQ(E_RCBadValue, reports.LastCode());
    delete allowed;
    delete deep;
}

// A block that went to another list than it came from brings the pool down when its thread ends.
TEST(Atom, KeysGoBackWhereTheyCameFrom) {
    constexpr std::size_t VALUES = 500;
    const unsigned seed = std::random_device{}();
    const auto work = [seed] {
        std::mt19937 random(seed);
        std::vector<CZelAtom> atoms(VALUES);
        std::vector<std::string> texts(VALUES);
        for (int step = 0; step < 20000; ++step) {
            const std::size_t to = random() % VALUES, from = random() % VALUES;
            const std::string text(random() % 150, static_cast<char>('a' + step % 26));
            const int way = static_cast<int>(random() % 5);
            if (way < 2)
                atoms[to] = way == 0 ? CZelAtom::RAKey(text.data(), text.size()) : CZelAtom(text.c_str());
            else if (way < 4)
                atoms[to] = way == 2 ? CZelAtom::RAKey(atoms[from]) : atoms[from];
            else
                std::swap(atoms[to], atoms[from]);
            if (way < 4)
                texts[to] = way < 2 ? text : texts[from];
            else
                std::swap(texts[to], texts[from]);
        }
        for (std::size_t i = 0; i < VALUES; ++i)
            EXPECT_EQ(std::string(atoms[i].RATextView()), texts[i]) << "seed " << seed;
    };
    std::thread(work).join();
}
