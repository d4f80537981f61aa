#pragma once

#include <cmath>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "RecordingWriters.h"
#include "Signals.h"

/// Sound in W64, AIFF and AU files, field by field.
namespace quillon::samples {

/// A chunk of a W64 file: its name, the size with the name and itself, and the content, padded to 8 bytes.
inline Bytes W64Chunk(std::string_view id, const Bytes& content) {
    constexpr std::string_view rest("\xF3\xAC\xD3\x11\x8C\xD1\x00\xC0\x4F\x8E\xDB\x8A", 12);
    Bytes chunk;
    chunk.Text(id).Text(rest).U64(24 + content.Size()).Add(content);
    return chunk.Zeros((8 - chunk.Size() % 8) % 8);
}

/// `chunks` in a form.
inline Bytes W64File(const Bytes& chunks) {
    constexpr std::string_view riff("riff\x2E\x91\xCF\x11\xA5\xD6\x28\xDB\x04\xC1\x00\x00", 16);
    constexpr std::string_view wave("wave\xF3\xAC\xD3\x11\x8C\xD1\x00\xC0\x4F\x8E\xDB\x8A", 16);
    return Bytes().Text(riff).U64(40 + chunks.Size()).Text(wave).Add(chunks);
}

/// A chunk of the AIFF family, padded to an even size.
inline Bytes AiffChunk(std::string_view id, const Bytes& content) {
    const std::size_t size = content.Size();
    return Bytes().Text(id).Big(size, 4).Add(content).Zeros(size % 2);
}

/// The "COMM" chunk; with a `compression` that of AIFC.
inline Bytes AiffCommon(std::uint32_t channels, std::uint32_t frames, std::uint32_t bits, std::uint32_t rate,
                        std::string_view compression = {}) {
    // The rate is a float of 80 bits.
    int exponent = 0;
    const double mantissa = std::frexp(static_cast<double>(rate), &exponent);
    Bytes common;
    common.Big(channels, 2).Big(frames, 4).Big(bits, 2).Big(static_cast<std::uint64_t>(exponent + 16382), 2);
    common.Big(static_cast<std::uint64_t>(std::ldexp(mantissa, 32)), 4).Zeros(4);
    if (!compression.empty()) common.Text(compression).Big(4, 1).Text("none").Zeros(1);
    return AiffChunk("COMM", common);
}

struct AiffMarker {
    std::uint32_t position = 0;
    std::string_view text;
};

inline Bytes AiffMarkers(const std::vector<AiffMarker>& markers) {
    Bytes content;
    content.Big(markers.size(), 2);
    std::uint32_t number = 0;
    for (const AiffMarker& marker : markers) {
        content.Big(++number, 2).Big(marker.position, 4).Big(marker.text.size(), 1).Text(marker.text);
        content.Zeros((marker.text.size() + 1) % 2);
    }
    return AiffChunk("MARK", content);
}

/// `chunks` in a form of the type "AIFF" or "AIFC".
inline Bytes AiffFile(std::string_view type, const Bytes& chunks) {
    return Bytes().Text("FORM").Big(4 + chunks.Size(), 4).Text(type).Add(chunks);
}

/// The samples of a sound, behind an offset of 0.
inline Bytes AiffSound(const Bytes& data) {
    return AiffChunk("SSND", Bytes().Zeros(8).Add(data));
}

inline Bytes AuFile(std::uint32_t encoding, std::uint32_t rate, std::uint32_t channels, std::uint32_t stated,
                    const Bytes& data) {
    return Bytes()
        .Text(".snd")
        .Big(32, 4)
        .Big(stated, 4)
        .Big(encoding, 4)
        .Big(rate, 4)
        .Big(channels, 4)
        .Zeros(8)
        .Add(data);
}

/// A bell that is struck twice, in mono.
inline std::vector<std::int16_t> BellCodes() {
    constexpr double kPartials[] = {220.0, 441.0, 528.0, 662.0, 884.0};
    std::vector<std::int16_t> codes(3 * 8000);
    for (std::size_t i = 0; i < codes.size(); ++i) {
        const double since = std::fmod(static_cast<double>(i) / 8000.0, 1.5);
        double tone = 0.0;
        for (const double partial : kPartials)
            tone += std::exp(-since * partial / 200.0) * std::sin(kTurn * partial * since);
        codes[i] = Code(0.15 * tone, 1.0 / 32768.0);
    }
    return codes;
}

inline Bytes BigCodes(const std::vector<std::int16_t>& codes) {
    Bytes bytes;
    for (const std::int16_t code : codes) bytes.Big(static_cast<std::uint16_t>(code), 2);
    return bytes;
}

inline std::string BellW64() {
    const Bytes format = Bytes().U16(1).U16(1).U32(8000).U32(16000).U16(2).U16(16);
    return W64File(W64Chunk("fmt ", format).Add(W64Chunk("data", Bytes().Codes(BellCodes())))).Get();
}

inline std::string BellAiff() {
    const Bytes common = AiffCommon(1, 24000, 16, 8000);
    const Bytes markers = AiffMarkers({{0, "Strike"}, {12000, "Again"}});
    return AiffFile("AIFF", Bytes().Add(common).Add(markers).Add(AiffSound(BigCodes(BellCodes())))).Get();
}

inline std::string BellAu() {
    return AuFile(3, 8000, 1, 48000, BigCodes(BellCodes())).Get();
}

}  // namespace quillon::samples
