#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace quillon::testing {

struct ReadPicture {
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::uint32_t perMetre = 0;
    std::vector<std::uint32_t> pixels;  ///< 0xRRGGBB
    [[nodiscard]] std::uint32_t At(std::int32_t x, std::int32_t y) const {
        return pixels.at(static_cast<std::size_t>(y * width + x));
    }
};

/// Reads the PNG files that are written here: zlib with one block of fixed codes, no filters. Checks every sum; throws
/// for anything else.
class PngReader {
  public:
    static ReadPicture Read(std::string_view file) {
        const auto require = [](bool holds, const char* what) {
            if (!holds) throw std::runtime_error(what);
        };
        require(file.substr(0, 8) == std::string_view("\x89PNG\r\n\x1A\n"), "signature");
        std::map<std::string, std::string> chunks;
        std::string order;
        for (std::size_t at = 8; at < file.size();) {
            const std::size_t size = Number(file, at);
            const std::string name(file.substr(at + 4, 4));
            require(Crc(file.substr(at + 4, size + 4)) == Number(file, at + 8 + size), "checksum of a chunk");
            chunks[name] = file.substr(at + 8, size);
            order += name;
            at += size + 12;
        }
        require(order.starts_with("IHDR") && order.ends_with("IDATIEND"), "order of chunks");
        const std::string& header = chunks.at("IHDR");
        const bool palette = header.at(9) == 3;
        require(header.substr(8) == std::string("\x8") + (palette ? '\3' : '\2') + std::string(3, '\0'), "header");
        ReadPicture picture;
        picture.width = static_cast<std::int32_t>(Number(header, 0));
        picture.height = static_cast<std::int32_t>(Number(header, 4));
        if (chunks.contains("pHYs")) picture.perMetre = Number(chunks["pHYs"], 0);
        const std::string rows = PngReader(chunks.at("IDAT")).Inflate();
        const std::size_t bytes = palette ? 1 : 3;
        const std::size_t rowBytes = static_cast<std::size_t>(picture.width) * bytes + 1;
        require(rows.size() == rowBytes * static_cast<std::size_t>(picture.height), "number of bytes");
        for (std::size_t at = 0; at < rows.size();) {
            if (at % rowBytes == 0) {
                require(rows[at++] == 0, "filter");
                continue;
            }
            const std::string_view rgb =
                palette ? std::string_view(chunks.at("PLTE")).substr(static_cast<unsigned char>(rows[at]) * 3U, 3)
                        : std::string_view(rows).substr(at, 3);
            picture.pixels.push_back(Byte(rgb.at(0)) << 16 | Byte(rgb.at(1)) << 8 | Byte(rgb.at(2)));
            at += bytes;
        }
        return picture;
    }

  private:
    explicit PngReader(std::string_view stream) : m_stream(stream) {}

    static std::uint32_t Byte(char byte) { return static_cast<unsigned char>(byte); }
    static std::uint32_t Number(std::string_view bytes, std::size_t at) {
        std::uint32_t number = 0;
        for (std::size_t i = 0; i < 4; ++i) number = number << 8 | Byte(bytes.at(at + i));
        return number;
    }
    static std::uint32_t Crc(std::string_view bytes) {
        std::uint32_t sum = 0xFFFFFFFF;
        for (const char byte : bytes) {
            sum ^= Byte(byte);
            for (int bit = 0; bit < 8; ++bit) sum = sum >> 1 ^ ((sum & 1U) * 0xEDB88320U);
        }
        return ~sum;
    }
    std::uint32_t Bits(unsigned count) {
        std::uint32_t bits = 0;
        for (unsigned at = 0; at < count; ++at, ++m_bit) bits |= (Byte(m_stream.at(m_bit / 8)) >> m_bit % 8 & 1U) << at;
        return bits;
    }
    std::uint32_t Code(unsigned count, std::uint32_t code = 0) {
        while (count-- > 0) code = code << 1 | Bits(1);
        return code;
    }
    std::uint32_t Symbol() {
        std::uint32_t code = Code(7);
        if (code < 0x18) return code + 256;
        code = Code(1, code);
        if (code < 0xC0) return code - 0x30;
        if (code < 0xC8) return code - 0xC0 + 280;
        return Code(1, code) - 0x190 + 144;
    }
    std::string Inflate() {
        if (Number(m_stream, 0) >> 16 != 0x7801) throw std::runtime_error("zlib header");
        m_bit = 16;
        if (Bits(3) != 3) throw std::runtime_error("one block of fixed codes");
        std::string out;
        for (std::uint32_t symbol = Symbol(); symbol != 256; symbol = Symbol()) {
            if (symbol < 256) {
                out += static_cast<char>(symbol);
                continue;
            }
            std::uint32_t length = symbol - 254;
            if (symbol == 285) {
                length = 258;
            } else if (symbol > 264) {
                const std::uint32_t extra = (symbol - 261) / 4;
                length = ((4 + (symbol - 265) % 4) << extra) + 3 + Bits(extra);
            }
            std::uint32_t distance = Code(5) + 1;
            if (distance > 4) {
                const std::uint32_t extra = (distance - 1) / 2 - 1;
                distance = ((2 + (distance - 1) % 2) << extra) + 1 + Bits(extra);
            }
            if (distance > out.size() || distance > 32768) throw std::runtime_error("distance");
            for (; length > 0; --length) out += out[out.size() - distance];
        }
        std::uint32_t low = 1;
        std::uint32_t high = 0;
        for (const char byte : out) {
            low = (low + Byte(byte)) % 65521;
            high = (high + low) % 65521;
        }
        if (Number(m_stream, (m_bit + 7) / 8) != (high << 16 | low)) throw std::runtime_error("checksum of the pixels");
        if (m_stream.size() != (m_bit + 7) / 8 + 4) throw std::runtime_error("end of the stream");
        return out;
    }

    std::string_view m_stream;
    std::size_t m_bit = 0;
};

}  // namespace quillon::testing
