#include "foundations/base/ZelShortBytes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace {

constexpr std::size_t LONGEST = 70;  // beyond all sizes that have a road of their own

// Exactly as long, so that a sanitizer sees a step past either end.
std::vector<char> run(std::size_t length) {
    std::vector<char> bytes(length);
    for (std::size_t i = 0; i < length; ++i)
        bytes[i] = static_cast<char>(0x80 + i);
    return bytes;
}

}  // namespace

TEST(ShortBytes, CopiesAnyLengthAndNothingBehindIt) {
    for (std::size_t length = 0; length <= LONGEST; ++length) {
        std::vector<char> source = run(length), copy(length + 2, '!'), expected(length + 2, '!');
        std::copy(source.begin(), source.end(), expected.begin() + 1);
        ZelCopyBytes(copy.data() + 1, source.data(), length);
        EXPECT_EQ(expected, copy) << length;
    }
}

TEST(ShortBytes, SeesADifferenceAndANulAtAnyPlace) {
    for (std::size_t length = 0; length <= LONGEST; ++length) {
        std::vector<char> left = run(length), right = run(length);
        EXPECT_TRUE(ZelSameBytes(left.data(), right.data(), length)) << length;
        EXPECT_FALSE(ZelHoldsNul(left.data(), length)) << length;
        for (std::size_t place = 0; place < length; ++place) {
            right[place] = 0;
            EXPECT_FALSE(ZelSameBytes(left.data(), right.data(), length)) << length << " " << place;
            EXPECT_TRUE(ZelHoldsNul(right.data(), length)) << length << " " << place;
            right[place] = left[place];
        }
    }
}
