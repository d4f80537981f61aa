#include "nsp/SplitFrames.h"

#include <emmintrin.h>

#include <cstring>

namespace quillon::nsp {

namespace {

struct Lines {
    __m128i line[8];
};

/// Eight lines of eight samples become their columns.
Lines Transpose(const Lines& in) {
    Lines pairs;
    Lines fours;
    Lines out;
    for (std::size_t i = 0; i < 4; ++i) {
        pairs.line[2 * i] = _mm_unpacklo_epi16(in.line[2 * i], in.line[2 * i + 1]);
        pairs.line[2 * i + 1] = _mm_unpackhi_epi16(in.line[2 * i], in.line[2 * i + 1]);
    }
    for (std::size_t i = 0; i < 2; ++i) {
        for (std::size_t half = 0; half < 2; ++half) {
            fours.line[4 * i + 2 * half] = _mm_unpacklo_epi32(pairs.line[4 * i + half], pairs.line[4 * i + half + 2]);
            fours.line[4 * i + 2 * half + 1] =
                _mm_unpackhi_epi32(pairs.line[4 * i + half], pairs.line[4 * i + half + 2]);
        }
    }
    for (std::size_t i = 0; i < 4; ++i) {
        out.line[2 * i] = _mm_unpacklo_epi64(fours.line[i], fours.line[i + 4]);
        out.line[2 * i + 1] = _mm_unpackhi_epi64(fours.line[i], fours.line[i + 4]);
    }
    return out;
}

}  // namespace

void SplitFrames(const std::uint8_t* frames, std::size_t frameBytes, std::size_t channels, std::size_t count,
                 std::int16_t* rows, std::size_t rowLength) {
    const std::size_t wholeChannels = channels / 8 * 8;
    const std::size_t wholeCount = count / 8 * 8;
    for (std::size_t frame = 0; frame < wholeCount; frame += 8) {
        for (std::size_t channel = 0; channel < wholeChannels; channel += 8) {
            Lines lines;
            for (std::size_t i = 0; i < 8; ++i) {
                const std::uint8_t* line = frames + (frame + i) * frameBytes + channel * 2;
                lines.line[i] = _mm_loadu_si128(reinterpret_cast<const __m128i*>(line));
            }
            const Lines columns = Transpose(lines);
            for (std::size_t i = 0; i < 8; ++i)
                _mm_storeu_si128(reinterpret_cast<__m128i*>(rows + (channel + i) * rowLength + frame), columns.line[i]);
        }
    }
    // What is left over in both directions.
    for (std::size_t channel = 0; channel < channels; ++channel) {
        for (std::size_t frame = channel < wholeChannels ? wholeCount : 0; frame < count; ++frame)
            std::memcpy(rows + channel * rowLength + frame, frames + frame * frameBytes + channel * 2, 2);
    }
}

void JoinRows(std::span<const std::int16_t* const> rows, std::size_t count, std::int16_t* frames,
              std::size_t frameLength) {
    const std::size_t wholeRows = rows.size() / 8 * 8;
    const std::size_t wholeCount = count / 8 * 8;
    for (std::size_t frame = 0; frame < wholeCount; frame += 8) {
        for (std::size_t row = 0; row < wholeRows; row += 8) {
            Lines lines;
            for (std::size_t i = 0; i < 8; ++i)
                lines.line[i] = _mm_loadu_si128(reinterpret_cast<const __m128i*>(rows[row + i] + frame));
            const Lines columns = Transpose(lines);
            for (std::size_t i = 0; i < 8; ++i)
                _mm_storeu_si128(reinterpret_cast<__m128i*>(frames + (frame + i) * frameLength + row), columns.line[i]);
        }
    }
    // What is left over in both directions.
    for (std::size_t row = 0; row < rows.size(); ++row) {
        for (std::size_t frame = row < wholeRows ? wholeCount : 0; frame < count; ++frame)
            frames[frame * frameLength + row] = rows[row][frame];
    }
}

}  // namespace quillon::nsp
