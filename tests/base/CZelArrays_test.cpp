#include "foundations/base/CZelArrays.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

// As it grows out of malloc's memory, and from one number of huge pages to the next; beside another that stays.
TEST(Arrays, KeepWhatIsInThemAsTheyGrowAndGo) {
    constexpr std::size_t STEP = 65536, END = 5 * CZelArrays::HUGE_PAGE / sizeof(std::uint32_t) + 1;
    CZelArray<std::uint32_t> beside(CZelArrays::HUGE_PAGE / sizeof(std::uint32_t), 7);
    CZelArray<std::uint32_t> array;
    for (std::size_t size = 1; size < END; size += STEP) {
        const std::size_t former = array.size();
        array.reserve(size);
        for (std::size_t i = former; i < size; ++i)
            array.push_back(static_cast<std::uint32_t>(i));
        if (size * sizeof(std::uint32_t) >= CZelArrays::HUGE_PAGE) {
            EXPECT_EQ(0U, reinterpret_cast<std::uintptr_t>(array.data()) % CZelArrays::HUGE_PAGE) << size;
        }
        for (std::size_t i = 0; i < size; ++i)
            ASSERT_EQ(i, array[i]);
    }
    array = {};
    for (const std::uint32_t value : beside)
        ASSERT_EQ(7U, value);
}

}  // namespace
