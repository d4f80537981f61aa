#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string_view>

#include "view/GraphPicture.h"
#include "view/ReportGlyphs.h"

namespace quillon {

/// A letter of the small font.
struct Glyph {
    std::int32_t width = 0;
    std::array<std::uint16_t, kGlyphRows> rows{};  ///< ink; the leftmost column is the highest of `width` bits
    friend bool operator==(const Glyph&, const Glyph&) = default;
};

/// A small proportional font of our own, for pictures that are drawn where there are no fonts of a system: ASCII, the
/// letters of Latin-1, Cyrillic, and signs that units and titles have. Any other character is a box.
class ReportFont {
  public:
    /// `scale`: pixels of the picture for one of the font, at least 1.
    explicit ReportFont(int scale);

    [[nodiscard]] int Scale() const { return m_scale; }
    /// The height is that of a line, whatever the text.
    [[nodiscard]] TextSize SizeOf(std::u16string_view text) const;
    /// Calls use(glyph, column) for every character of the text; columns of the font count from its left.
    template <typename Use>
    void ForGlyphs(std::u16string_view text, const Use& use) const {
        std::int32_t column = 0;
        for (const char16_t letter : text) {
            // The second half of a character of two units.
            if (letter >= 0xDC00 && letter < 0xE000) continue;
            const Glyph& glyph = Of(letter);
            use(glyph, column);
            column += glyph.width + kGap;
        }
    }
    [[nodiscard]] bool Has(char16_t letter) const { return m_glyphs.contains(letter); }

  private:
    static constexpr std::int32_t kGap = 1;  ///< columns between letters
    [[nodiscard]] const Glyph& Of(char16_t letter) const;
    void AddBand(const GlyphBand& band);
    void AddAccented();

    int m_scale;
    std::map<char16_t, Glyph> m_glyphs;
};

}  // namespace quillon
