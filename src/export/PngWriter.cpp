#include "export/PngWriter.h"

#include <array>
#include <cmath>
#include <map>
#include <optional>
#include <stdexcept>
#include <string_view>

#include "export/PngDeflate.h"

namespace quillon {

namespace {

using Bytes = std::vector<std::byte>;

constexpr std::size_t kMostColors = 256;
constexpr std::byte kPaletteKind{3};
constexpr std::byte kColorKind{2};

/// Remainders of one byte, for the checksum over a chunk.
constexpr std::array<std::uint32_t, 256> kRemainders = [] {
    constexpr std::uint32_t polynomial = 0xEDB88320;
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t byte = 0; byte < table.size(); ++byte) {
        std::uint32_t rest = byte;
        for (int bit = 0; bit < 8; ++bit) rest = (rest & 1U) != 0 ? rest >> 1 ^ polynomial : rest >> 1;
        table[byte] = rest;
    }
    return table;
}();

void PutByte(Bytes& bytes, std::uint32_t byte) {
    bytes.push_back(static_cast<std::byte>(byte & 0xFFU));
}

void PutNumber(Bytes& bytes, std::uint32_t number) {
    for (const unsigned shift : {24U, 16U, 8U, 0U}) PutByte(bytes, number >> shift);
}

void PutColor(Bytes& bytes, std::uint32_t color) {
    for (const unsigned shift : {16U, 8U, 0U}) PutByte(bytes, color >> shift);
}

void PutChunk(Bytes& file, std::string_view name, const Bytes& content) {
    PutNumber(file, static_cast<std::uint32_t>(content.size()));
    const std::size_t start = file.size();
    for (const char letter : name) PutByte(file, static_cast<unsigned char>(letter));
    file.insert(file.end(), content.begin(), content.end());
    std::uint32_t sum = 0xFFFFFFFF;
    for (std::size_t at = start; at < file.size(); ++at)
        sum = sum >> 8 ^ kRemainders[(sum ^ std::to_integer<std::uint32_t>(file[at])) & 0xFFU];
    PutNumber(file, ~sum);
}

/// The colours that occur and their numbers.
class Colors {
  public:
    /// None where there are too many for a palette.
    [[nodiscard]] static std::optional<Colors> Of(const PngPicture& picture) {
        Colors colors;
        for (const std::uint32_t pixel : picture.pixels) {
            static_cast<void>(colors.NumberOf(pixel & 0xFFFFFFU));
            if (colors.m_list.size() > kMostColors) return std::nullopt;
        }
        return colors;
    }
    [[nodiscard]] std::uint32_t NumberOf(std::uint32_t color) {
        // Pixels beside each other are mostly alike.
        if (m_list.empty() || color != m_last) {
            const auto [found, isNew] = m_numbers.emplace(color, static_cast<std::uint32_t>(m_list.size()));
            if (isNew) m_list.push_back(color);
            m_last = color;
            m_lastNumber = found->second;
        }
        return m_lastNumber;
    }
    [[nodiscard]] const std::vector<std::uint32_t>& List() const { return m_list; }

  private:
    std::map<std::uint32_t, std::uint32_t> m_numbers;
    std::vector<std::uint32_t> m_list;
    std::uint32_t m_last = 0;
    std::uint32_t m_lastNumber = 0;
};

/// Rows of unfiltered pixels, each behind the number of its filter, 0.
Bytes RowBytes(const PngPicture& picture, std::optional<Colors>& colors) {
    Bytes rows;
    const auto width = static_cast<std::size_t>(picture.width);
    rows.reserve((width * (colors ? 1 : 3) + 1) * static_cast<std::size_t>(picture.height));
    for (std::size_t at = 0; at < picture.pixels.size(); ++at) {
        if (at % width == 0) PutByte(rows, 0);
        const std::uint32_t color = picture.pixels[at] & 0xFFFFFFU;
        if (colors) {
            PutByte(rows, colors->NumberOf(color));
        } else {
            PutColor(rows, color);
        }
    }
    return rows;
}

void Check(const PngPicture& picture) {
    const auto fits = [](std::int32_t side) { return side >= 1 && side <= kMostPngSide; };
    if (!fits(picture.width) || !fits(picture.height))
        throw std::invalid_argument("a picture is of 1 to 8192 pixels in width and height");
    if (picture.pixels.size() != static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height))
        throw std::invalid_argument("a picture has as many pixels as its width and height tell");
}

}  // namespace

std::vector<std::byte> PngBytes(const PngPicture& picture) {
    Check(picture);
    std::optional<Colors> colors = Colors::Of(picture);
    Bytes file;
    for (const unsigned byte : {0x89U, 0x50U, 0x4EU, 0x47U, 0x0DU, 0x0AU, 0x1AU, 0x0AU}) PutByte(file, byte);
    Bytes header;
    PutNumber(header, static_cast<std::uint32_t>(picture.width));
    PutNumber(header, static_cast<std::uint32_t>(picture.height));
    // 8 bits; the only compression and set of filters there are; not interlaced.
    header.insert(header.end(), {std::byte{8}, colors ? kPaletteKind : kColorKind, {}, {}, {}});
    PutChunk(file, "IHDR", header);
    if (picture.dpi > 0) {
        constexpr double inchesPerMetre = 1.0 / 0.0254;
        const auto density = static_cast<std::uint32_t>(std::nearbyint(picture.dpi * inchesPerMetre));
        Bytes size;
        PutNumber(size, density);
        PutNumber(size, density);
        PutByte(size, 1);  // per metre
        PutChunk(file, "pHYs", size);
    }
    if (colors) {
        Bytes palette;
        for (const std::uint32_t color : colors->List()) PutColor(palette, color);
        PutChunk(file, "PLTE", palette);
    }
    const Bytes rows = RowBytes(picture, colors);
    PutChunk(file, "IDAT", DeflatePicture(rows, rows.size() / static_cast<std::size_t>(picture.height)));
    PutChunk(file, "IEND", {});
    return file;
}

}  // namespace quillon
