#include "norvik/private/GatheredSource.h"

#include <algorithm>

#include "base/LittleEndian.h"
#include "norvik/private/FileBlock.h"

namespace quillon {

namespace {

/// Samples of one signal in some frames, and where they go.
struct Copy {
    const std::uint8_t* from;  ///< the signal's first number in the first of the frames
    std::size_t frameBytes;
    std::size_t runNumbers;
    std::size_t skipped;  ///< numbers of the first frame that are not wanted
    std::size_t count;
    std::uint8_t* to;
    std::size_t step;  ///< bytes from one sample to the next there
};

template <std::size_t Width, bool Wide, typename Load>
void CopyNumbers(const Copy& copy, const Load& load) {
    const std::uint8_t* from = copy.from;
    std::uint8_t* to = copy.to;
    for (std::size_t done = 0, at = copy.skipped; done < copy.count; at = 0, from += copy.frameBytes) {
        const std::size_t end = std::min(copy.runNumbers, at + (copy.count - done));
        done += end - at;
        for (; at < end; ++at, to += copy.step) {
            const auto number = static_cast<std::uint32_t>(load(from + at * Width));
            if constexpr (Wide) {
                PutLe32(to, number);
            } else {
                PutLe16(to, static_cast<std::uint16_t>(number));
            }
        }
    }
}

template <bool Wide>
void CopyKind(SampleKind kind, const Copy& copy) {
    switch (kind) {
        case SampleKind::Unsigned8: return CopyNumbers<1, Wide>(copy, [](const std::uint8_t* at) { return *at - 128; });
        case SampleKind::Int24: return CopyNumbers<3, Wide>(copy, LeSigned24);
        case SampleKind::Int32:
            return CopyNumbers<4, Wide>(copy,
                                        [](const std::uint8_t* at) { return static_cast<std::int32_t>(Le32(at)); });
        default: return CopyNumbers<2, Wide>(copy, LeSigned16);
    }
}

}  // namespace

bool GatheredSource::IsWideSet(const std::vector<NumberFile>& files) {
    return std::any_of(files.begin(), files.end(), [](const NumberFile& file) { return IsWide(file.kind); });
}

GatheredSource::GatheredSource(std::vector<NumberFile> files, std::vector<GatheredSignal> signals,
                               std::uint64_t samples)
    : UnitSource(samples * signals.size() * (IsWideSet(files) ? 4 : 2), signals.size() * (IsWideSet(files) ? 4 : 2)),
      m_files(std::move(files)),
      m_signals(std::move(signals)) {
    SetErrorLanguage(m_files.front().source->ErrorLanguage());
}

void GatheredSource::ReadUnits(std::uint64_t first, std::size_t count, std::uint8_t* out) {
    for (std::size_t file = 0; file < m_files.size(); ++file) ReadFile(file, first, count, out);
}

void GatheredSource::ReadFile(std::size_t file, std::uint64_t first, std::size_t count, std::uint8_t* out) {
    const NumberFile& of = m_files[file];
    const std::size_t frameBytes = of.FrameBytes();
    const std::uint64_t mostFrames = std::max<std::size_t>(kPieceBytes / frameBytes, 1);
    while (count > 0) {
        const std::uint64_t frame = first / of.runNumbers;
        const auto skipped = static_cast<std::size_t>(first % of.runNumbers);
        const auto part =
            static_cast<std::size_t>(std::min<std::uint64_t>(count, mostFrames * of.runNumbers - skipped));
        const std::size_t frames = (skipped + part + of.runNumbers - 1) / of.runNumbers;
        const std::uint8_t* const piece = m_piece.Read(*of.source, frame * frameBytes, frames * frameBytes);
        const std::size_t tile = std::max<std::size_t>(kTileBytes / frameBytes, 1);
        for (std::size_t at = 0; at < frames; at += tile) {
            const std::size_t from = std::max(at * of.runNumbers, skipped);
            const std::size_t end = std::min((at + tile) * of.runNumbers, skipped + part);
            CopyTile(file, piece + at * frameBytes, {from - at * of.runNumbers, end - from},
                     out + (from - skipped) * UnitBytes());
        }
        first += part;
        count -= part;
        out += part * UnitBytes();
    }
}

void GatheredSource::CopyTile(std::size_t file, const std::uint8_t* frames, const Range& samples, std::uint8_t* out) {
    const NumberFile& of = m_files[file];
    const std::size_t width = UnitBytes() / m_signals.size();
    for (std::size_t at = 0; at < m_signals.size(); ++at, out += width) {
        if (m_signals[at].file != file) continue;
        const std::uint8_t* const from = frames + m_signals[at].place * SampleBytes(of.kind);
        const Copy copy{from, of.FrameBytes(), of.runNumbers, samples.skipped, samples.count, out, UnitBytes()};
        width == 4 ? CopyKind<true>(of.kind, copy) : CopyKind<false>(of.kind, copy);
    }
}

}  // namespace quillon
