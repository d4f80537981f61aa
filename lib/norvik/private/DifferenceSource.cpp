#include "norvik/private/DifferenceSource.h"

#include <algorithm>

#include "base/LittleEndian.h"
#include "norvik/private/FileBlock.h"

namespace quillon {

namespace {

/// Frames from one place where sums are kept to the next.
constexpr std::uint64_t kKeptEvery = 65536;
constexpr std::size_t kNumberBytes = 4;

}  // namespace

DifferenceSource::DifferenceSource(std::shared_ptr<ByteSource> stored, std::vector<std::size_t> signals,
                                   std::vector<std::int32_t> initial)
    : UnitSource(stored->Size() * kNumberBytes, signals.size() * kNumberBytes),
      m_stored(std::move(stored)),
      m_signals(std::move(signals)),
      m_sums(initial.begin(), initial.end()),
      m_kept{m_sums} {
    SetErrorLanguage(m_stored->ErrorLanguage());
}

void DifferenceSource::ReadUnits(std::uint64_t first, std::size_t count, std::uint8_t* out) {
    Seek(first);
    while (count > 0) {
        const std::size_t frames = Advance(count, out);
        count -= frames;
        out += frames * UnitBytes();
    }
}

void DifferenceSource::Seek(std::uint64_t frame) {
    const std::uint64_t kept = std::min<std::uint64_t>(frame / kKeptEvery, m_kept.size() - 1);
    if (m_frame > frame || m_frame < kept * kKeptEvery) {
        m_frame = kept * kKeptEvery;
        m_sums = m_kept[static_cast<std::size_t>(kept)];
    }
    while (m_frame < frame)
        Advance(static_cast<std::size_t>(std::min<std::uint64_t>(frame - m_frame, kKeptEvery)), nullptr);
}

std::size_t DifferenceSource::Advance(std::size_t count, std::uint8_t* out) {
    const std::size_t frameBytes = m_signals.size();
    const auto toKept = static_cast<std::size_t>(kKeptEvery - m_frame % kKeptEvery);
    count = std::min({count, toKept, std::max<std::size_t>(kPieceBytes / frameBytes, 1)});
    // Only the last frame of all may be cut.
    const std::uint64_t offset = m_frame * frameBytes;
    const auto there = static_cast<std::size_t>(std::min<std::uint64_t>(count * frameBytes, m_stored->Size() - offset));
    const std::uint8_t* const bytes = m_piece.Read(*m_stored, offset, there);
    for (std::size_t at = 0, place = 0; at < there; ++at, ++place) {
        if (place == frameBytes) place = 0;
        std::uint32_t& sum = m_sums[m_signals[place]];
        sum += static_cast<std::uint32_t>(static_cast<std::int8_t>(bytes[at]));
        if (out != nullptr) PutLe32(out + at * kNumberBytes, sum);
    }
    m_frame += count;
    if (m_frame / kKeptEvery == m_kept.size() && m_frame % kKeptEvery == 0) m_kept.push_back(m_sums);
    return count;
}

}  // namespace quillon
