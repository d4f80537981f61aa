#include "view/ReportFont.h"

#include <algorithm>
#include <span>
#include <utility>

namespace quillon {

namespace {

/// Letters that look like others.
constexpr std::u16string_view kAlike = u"АВЕКМНОРСТХІЅЈаеорсухіѕјμ\u2126\u2206\u2212\u2010\u2011\u00A0\u202F\u2009";
constexpr std::u16string_view kDrawn = u"ABEKMHOPCTXISJaeopcyxisjµΩΔ–--   ";
static_assert(kAlike.size() == kDrawn.size());

/// What stands for a character that is not drawn.
constexpr char16_t kNoCharacter = 0;

/// An accent and the letters that have it.
struct Accent {
    std::array<std::string_view, 3> rows;  ///< the lowest leaves a gap to the letter, but for a ring
    std::u16string_view accented;
    std::u16string_view plain;
};

constexpr std::array kAccents{
    Accent{{"#.", ".#", ".."}, u"ÀÈÌÒÙàèìòù", u"AEIOUaeıou"},
    Accent{{".#", "#.", ".."}, u"ÁÉÍÓÚÝáéíóúýĆćŃńŚśŹź", u"AEIOUYaeıouyCcNnSsZz"},
    Accent{{".#.", "#.#", "..."}, u"ÂÊÎÔÛâêîôû", u"AEIOUaeıou"},
    Accent{{".#.#", "#.#.", "...."}, u"ÃÑÕãñõ", u"ANOano"},
    Accent{{"...", "#.#", "..."}, u"ÄËÏÖÜäëïöüÿЁёЇї", u"AEIOUaeıouyEeIı"},
    Accent{{".#.", "#.#", ".#."}, u"Åå", u"Aa"},
    Accent{{"#.#", ".#.", "..."}, u"ČčŠšŽžĚěŘř", u"CcSsZzEeRr"},
};
constexpr std::array<std::string_view, 2> kCedilla{".#", "#."};
constexpr std::int32_t kRowsOfAccent = 3;
constexpr std::int32_t kBaseLine = 11;  ///< the row below it

Glyph Box() {
    constexpr std::int32_t width = 5;
    constexpr std::int32_t top = 3;
    Glyph box{.width = width};
    for (std::int32_t row = top; row < kBaseLine; ++row)
        box.rows[static_cast<std::size_t>(row)] = row == top || row == kBaseLine - 1 ? 0x1F : 0x11;
    return box;
}

/// Lays a drawing over a glyph, in the middle.
void Overlay(Glyph& glyph, std::span<const std::string_view> drawing, std::int32_t top) {
    const auto width = static_cast<std::int32_t>(drawing.front().size());
    if (width > glyph.width) {
        const std::int32_t more = width - glyph.width;
        for (std::uint16_t& row : glyph.rows) row = static_cast<std::uint16_t>(row << (more - more / 2));
        glyph.width = width;
    }
    const std::int32_t left = (glyph.width - width) / 2;
    for (std::size_t row = 0; row < drawing.size(); ++row) {
        for (std::int32_t column = 0; column < width; ++column) {
            if (drawing[row][static_cast<std::size_t>(column)] != '#') continue;
            const int bit = glyph.width - 1 - left - column;
            std::uint16_t& bits = glyph.rows[static_cast<std::size_t>(top) + row];
            bits = static_cast<std::uint16_t>(bits | 1U << bit);
        }
    }
}

/// The first row with ink.
std::int32_t TopOf(const Glyph& glyph) {
    const auto* const found = std::find_if(glyph.rows.begin(), glyph.rows.end(), [](auto row) { return row != 0; });
    return static_cast<std::int32_t>(found - glyph.rows.begin());
}

}  // namespace

ReportFont::ReportFont(int scale) : m_scale(std::max(scale, 1)) {
    for (const GlyphBand& band : GlyphBands()) AddBand(band);
    for (std::size_t at = 0; at < kAlike.size(); ++at) m_glyphs[kAlike[at]] = m_glyphs.at(kDrawn[at]);
    AddAccented();
    m_glyphs[kNoCharacter] = Box();
}

void ReportFont::AddBand(const GlyphBand& band) {
    std::size_t from = 0;
    for (const char16_t letter : band.letters) {
        const std::size_t end = std::min(band.rows.front().find(' ', from), band.rows.front().size());
        Glyph glyph{.width = static_cast<std::int32_t>(end - from)};
        for (std::size_t row = 0; row < band.rows.size(); ++row) {
            std::uint32_t bits = 0;
            for (std::size_t at = from; at < end; ++at) bits = bits << 1 | (band.rows[row][at] == '#' ? 1U : 0U);
            glyph.rows[row] = static_cast<std::uint16_t>(bits);
        }
        m_glyphs[letter] = glyph;
        from = end + 1;
    }
}

void ReportFont::AddAccented() {
    for (const Accent& accent : kAccents) {
        for (std::size_t at = 0; at < accent.accented.size(); ++at) {
            Glyph glyph = m_glyphs.at(accent.plain[at]);
            const std::int32_t top = std::max(TopOf(glyph) - kRowsOfAccent, 0);
            Overlay(glyph, accent.rows, top);
            m_glyphs[accent.accented[at]] = glyph;
        }
    }
    for (const auto& [letter, plain] : {std::pair(u'Ç', u'C'), std::pair(u'ç', u'c')}) {
        Glyph glyph = m_glyphs.at(plain);
        Overlay(glyph, kCedilla, kBaseLine);
        m_glyphs[letter] = glyph;
    }
}

const Glyph& ReportFont::Of(char16_t letter) const {
    // Control characters, as line ends in texts of marks, separate words.
    const auto found = m_glyphs.find(letter > kNoCharacter && letter < u' ' ? u' ' : letter);
    return found != m_glyphs.end() ? found->second : m_glyphs.at(kNoCharacter);
}

TextSize ReportFont::SizeOf(std::u16string_view text) const {
    std::int32_t width = 0;
    ForGlyphs(text, [&](const Glyph& glyph, std::int32_t column) { width = column + glyph.width; });
    return {width * m_scale, kGlyphRows * m_scale};
}

}  // namespace quillon
