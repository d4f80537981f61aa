#pragma once

#include <cstdint>

namespace quillon {

/// Contrast of two colours (0xRRGGBB) as the Web Content Accessibility Guidelines 2.1 define it: 1 for equal colours,
/// 21 for black and white. They ask for 4.5 between a text and what is behind it and 3 for parts of pictures.
[[nodiscard]] double Contrast(std::uint32_t first, std::uint32_t second);

/// The colour where `share` 0 is the first and 1 the second.
[[nodiscard]] std::uint32_t Mixed(std::uint32_t first, std::uint32_t second, double share);

/// Whether white is read better on this colour than black.
[[nodiscard]] bool IsDark(std::uint32_t background);

/// The colour itself where it has that contrast to the background, else the nearest mixture with white (before a dark
/// background) or black that has it. `contrast` is 1 to 4.5, which every background allows.
[[nodiscard]] std::uint32_t Readable(std::uint32_t color, std::uint32_t background, double contrast);

}  // namespace quillon
