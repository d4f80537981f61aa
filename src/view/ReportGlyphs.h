#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

namespace quillon {

/// Rows of a line of the small font: three for accents, eight of capitals, of which six are those of most small
/// letters, and two below the base line.
inline constexpr std::int32_t kGlyphRows = 13;

/// Some letters side by side with a blank between them; '#' is ink, '.' is none.
struct GlyphBand {
    std::u16string_view letters;
    std::array<std::string_view, kGlyphRows> rows;
};

/// What is drawn of the small font; ReportFont tells which letters look like others.
[[nodiscard]] std::span<const GlyphBand> GlyphBands();

}  // namespace quillon
