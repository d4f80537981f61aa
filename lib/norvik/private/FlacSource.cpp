#include "norvik/private/FlacSource.h"

#include <algorithm>

#include "base/LittleEndian.h"

namespace quillon {

namespace {

std::size_t WidthOf(unsigned depth) {
    return depth <= 16 ? 2 : 4;
}

}  // namespace

FlacSource::FlacSource(std::shared_ptr<ByteSource> stored, std::size_t channels, const FlacFrames& frames)
    : UnitSource(frames.Samples() * channels * WidthOf(frames.Depth()), channels * WidthOf(frames.Depth())),
      m_stored(std::move(stored)),
      m_channels(channels),
      m_depth(frames.Depth()) {
    SetErrorLanguage(m_stored->ErrorLanguage());
}

std::shared_ptr<FlacSource> FlacSource::Open(const std::shared_ptr<ByteSource>& stored) {
    FlacMetadata metadata = ReadFlacMetadata(*stored);
    const std::size_t channels = metadata.channels;
    const FlacFrames frames(stored, std::move(metadata));
    return std::shared_ptr<FlacSource>(new FlacSource(stored, channels, frames));
}

void FlacSource::ReadUnits(std::uint64_t first, std::size_t count, std::uint8_t* out) {
    if (!m_frames) {
        try {
            m_frames = std::make_unique<FlacFrames>(m_stored, ReadFlacMetadata(*m_stored));
        } catch (const ReadError&) {
            throw;
        } catch (const FormatError& error) {
            // It was read before: the file was written to.
            throw ReadError(error.Reason(), ErrorLanguage());
        }
    }
    const std::size_t width = Width();
    for (const std::uint64_t end = first + count; first < end;) {
        const FlacFrames::Stretch stretch = m_frames->Samples() > first ? m_frames->Find(first) : FlacFrames::Stretch{};
        if (stretch.samples == nullptr) m_frames->Refuse(stretch);
        const auto from = static_cast<std::size_t>(first - stretch.first);
        const auto part = static_cast<std::size_t>(std::min(stretch.end, end) - first);
        for (std::size_t channel = 0; channel < m_channels; ++channel) {
            const std::int32_t* const samples = stretch.samples->Channel(channel) + from;
            std::uint8_t* to = out + channel * width;
            for (std::size_t at = 0; at < part; ++at, to += UnitBytes()) {
                const auto sample = static_cast<std::uint32_t>(samples[at]);
                width == 2 ? PutLe16(to, static_cast<std::uint16_t>(sample)) : PutLe32(to, sample);
            }
        }
        first += part;
        out += part * UnitBytes();
    }
}

}  // namespace quillon
