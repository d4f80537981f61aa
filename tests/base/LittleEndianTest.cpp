#include "base/LittleEndian.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

TEST(LittleEndian, SignsAndWidths) {
    const std::uint8_t bytes[]{0xFF, 0x00, 0x80, 0x7F, 0x01, 0x02, 0x03, 0x84};
    EXPECT_EQ(Le16(bytes), 0x00FF);
    EXPECT_EQ(LeSigned16(bytes + 1), -32768);
    EXPECT_EQ(LeSigned24(bytes), -8388353);
    EXPECT_EQ(LeSigned24(bytes + 1), 0x7F8000);
    EXPECT_EQ(Le32(bytes + 4), 0x84030201U);
    EXPECT_EQ(Le64(bytes), 0x840302017F8000FFULL);
    const std::uint8_t numbers[]{0x00, 0x00, 0x80, 0xBF, 0, 0, 0, 0, 0, 0, 0x04, 0x40};
    EXPECT_EQ(LeFloat(numbers), -1.0F);
    EXPECT_EQ(LeDouble(numbers + 4), 2.5);
}

}  // namespace
}  // namespace quillon
