#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "export/PngWriter.h"

namespace quillon::testing {

/// A picture to be written and read again.
struct PngCase {
    std::string name;
    std::int32_t width;
    std::int32_t height;
    std::vector<std::uint32_t> pixels;
    [[nodiscard]] PngPicture Picture(int dpi = 0) const { return {pixels, width, height, dpi}; }
};

/// Pictures that use a palette or none, repeat themselves near, far and not at all.
inline std::vector<PngCase> PngCases() {
    std::mt19937 random(5);
    std::vector<PngCase> cases;
    const auto add = [&](const char* name, std::int32_t width, std::int32_t height, const auto& colorAt) {
        PngCase made{name, width, height, {}};
        for (std::int32_t y = 0; y < height; ++y) {
            for (std::int32_t x = 0; x < width; ++x) made.pixels.push_back(colorAt(x, y));
        }
        cases.push_back(std::move(made));
    };
    const auto noise = [&](std::uint32_t colors) {
        return [&random, colors](int, int) { return static_cast<std::uint32_t>(random() % colors); };
    };
    add("one pixel", 1, 1, [](int, int) { return 0x123456U; });
    add("one colour", 700, 500, [](int, int) { return 0xFFFFFFU; });
    add("noise of 256 colours", 130, 90, noise(256));
    add("noise of 257 colours", 90, 130, noise(257));
    add("noise of all colours", 61, 47, noise(0x1000000));
    add("two colours by chance", 333, 77, [&](int, int) { return random() % 7 == 0 ? 0xFF0000U : 0xFFFFFFU; });
    add("equal rows as far apart as a repetition reaches", 8192, 5,
        [](int x, int) { return static_cast<std::uint32_t>(x) * 2654435761U >> 8; });
    std::vector<std::uint32_t> wave(2000);
    for (std::uint32_t& row : wave) row = static_cast<std::uint32_t>(random() % 20);
    add("traces", 2000, 200, [&](int x, int y) {
        const auto lane = static_cast<std::uint32_t>(y / 20);
        return wave[static_cast<std::size_t>(x)] == static_cast<std::uint32_t>(y % 20) ? lane * 0x102030U : 0xFFFFFFU;
    });
    return cases;
}

}  // namespace quillon::testing
