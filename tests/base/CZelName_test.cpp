#include "foundations/base/CZelName.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "foundations/base/CZelVBList.h"

namespace {

const CZelAtom *intern(const std::string &name) {
    return CZelName::RNIntern(name.data(), name.size());
}

}  // namespace

TEST(Name, ExistsOnceWhateverRoadItComes) {
    const CZelAtom *site = intern("name_test_site");
    ASSERT_NE(nullptr, site);
    EXPECT_STREQ("name_test_site", site->RAString());
    EXPECT_EQ(site, intern("name_test_site"));
    EXPECT_EQ(site, CZelName::RNAtomOf(CZelAtom::RAName("name_test_site")));
    EXPECT_EQ(site, CZelName::RNFind("name_test_site", 14));
    EXPECT_EQ(nullptr, CZelName::RNFind("name_test_sit", 13));
    EXPECT_EQ(nullptr, CZelName::RNAtomOf(CZelAtom("name_test_site")));
    EXPECT_TRUE(CZelName::RNSame(*site, CZelAtom("name_test_site")));
    EXPECT_FALSE(CZelName::RNSame(*site, *intern("name_test_SITE")));
}

TEST(Name, OneThatIsTooLongIsComparedByItsBytes) {
    std::string longest(CZelName::MAX_LENGTH, 'x');
    EXPECT_NE(nullptr, intern(longest));
    EXPECT_EQ(nullptr, intern(longest + 'x'));
    CZelVBList list;
    list.RVBLAddToListEnd(new CZelVarBind(longest.c_str(), 1));
    list.RVBLAddToListEnd(new CZelVarBind((longest + 'x').c_str(), 2));
    EXPECT_EQ(list.RVBLTail(), list.RVBLFind((longest + 'x').c_str()));
    EXPECT_EQ(list.RVBLTail(), list.RVBLFind(CZelAtom((longest + 'x').c_str())));
    EXPECT_EQ(list.RVBLHead(), list.RVBLFind(longest.c_str()));
}

TEST(Name, GuessIsTheOneThatCameBehindTheLastTime) {
    const CZelAtom *first = intern("name_test_first");
    EXPECT_EQ(nullptr, CZelName::RNSuccessor(first));
    const CZelAtom *left = CZelName::RNInternBehind(first, "left", 4);
    EXPECT_EQ(intern("left"), left);
    EXPECT_EQ(left, CZelName::RNSuccessor(first));
    EXPECT_TRUE(CZelName::RNIsText(*left, "left"));
    EXPECT_FALSE(CZelName::RNIsText(*left, "lefty"));
    EXPECT_FALSE(CZelName::RNIsText(*left, "lift"));
    EXPECT_EQ(intern("lefty"), CZelName::RNInternBehind(first, "lefty", 5));
    EXPECT_EQ(intern("lefty"), CZelName::RNSuccessor(first));
    EXPECT_EQ(left, CZelName::RNInternBehind(nullptr, "left", 4));
}

// Several growths of the table while all threads read and enter the same names.
TEST(Name, IsTheSameAtomInAllThreads) {
    constexpr int NAMES = 20000;
    std::vector<std::vector<const CZelAtom *>> seen(4);
    std::vector<std::thread> threads;
    for (std::vector<const CZelAtom *> &mine : seen) {
        threads.emplace_back([&mine] {
            for (int i = 0; i < NAMES; ++i)
                mine.push_back(intern("name_test_" + std::to_string(i)));
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    for (const std::vector<const CZelAtom *> &mine : seen)
        EXPECT_EQ(seen[0], mine);
    for (int i = 0; i < NAMES; ++i)
        EXPECT_EQ("name_test_" + std::to_string(i), seen[0][static_cast<std::size_t>(i)]->RAString());
}
