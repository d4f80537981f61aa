#include <gtest/gtest.h>

#include "export/PngWriter.h"
#include "support/PngCases.h"
#include "support/PngReader.h"

namespace quillon {
namespace {

std::string Written(const PngPicture& picture) {
    const std::vector<std::byte> bytes = PngBytes(picture);
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

TEST(Png, AnyPictureIsReadAgainAsItWas) {
    for (const testing::PngCase& one : testing::PngCases()) {
        const std::string file = Written(one.Picture(one.width));
        const testing::ReadPicture read = testing::PngReader::Read(file);
        EXPECT_EQ(read.width, one.width) << one.name;
        EXPECT_EQ(read.height, one.height) << one.name;
        EXPECT_TRUE(read.pixels == one.pixels) << one.name;
        EXPECT_NEAR(read.perMetre * 0.0254, one.width, 0.02) << one.name;
        // A row that repeats the one before costs next to nothing; noise costs about what it is.
        const std::size_t most = one.name == "one colour"             ? 3000
                                 : one.name.starts_with("equal rows") ? std::size_t{8192 * 3 * 10 / 8}
                                                                      : one.pixels.size() * 7 / 2 + 1000;
        EXPECT_LT(file.size(), most) << one.name;
    }
    EXPECT_EQ(testing::PngReader::Read(Written(testing::PngCases().front().Picture())).perMetre, 0U);
}

TEST(Png, SizesThatCannotBeAreRefused) {
    const std::vector<std::uint32_t> pixels(8193);
    for (const auto& [width, height] : {std::pair(0, 1), {1, 0}, {-1, -1}, {8193, 1}, {1, 8193}, {8192, 1}, {2, 2}})
        EXPECT_THROW(static_cast<void>(PngBytes({pixels, width, height})), std::invalid_argument) << width << height;
}

}  // namespace
}  // namespace quillon
