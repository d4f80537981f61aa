#include "norvik/private/FlacBlock.h"

#include <algorithm>
#include <cmath>

#include "nsp/SplitFrames.h"

namespace quillon {

namespace {

constexpr unsigned kCodeBits = 16;
/// Codes of all channels that are reduced at a time; a frame may be as short as 16 samples.
constexpr std::size_t kReducedCodes = 32768;

}  // namespace

FlacBlock::FlacBlock(std::shared_ptr<FlacFrames> frames, std::uint64_t first, BlockDescription description)
    : FileBlock(std::move(description)), m_frames(std::move(frames)), m_first(first) {}

bool FlacBlock::HasWideSamples() const {
    return m_frames->Depth() > kCodeBits;
}

void FlacBlock::ForEachPart(std::int32_t first, std::int32_t count, const UsePart& use) {
    std::uint64_t at = m_first + static_cast<std::uint64_t>(first);
    for (const std::uint64_t end = at + static_cast<std::uint64_t>(count); at < end;) {
        const FlacFrames::Stretch stretch = m_frames->Find(at);
        const std::uint64_t partEnd = std::min(stretch.end, end);
        use({stretch.samples, static_cast<std::size_t>(at - stretch.first), static_cast<std::size_t>(partEnd - at),
             stretch});
        at = partEnd;
    }
}

void FlacBlock::ForEachWholePart(std::int32_t first, std::int32_t count, const UsePart& use) {
    ForEachPart(first, count, [&](const Part& part) {
        if (part.samples == nullptr) m_frames->Refuse(part.stretch);
        use(part);
    });
}

void FlacBlock::Decode(const Part& part, std::size_t channel, std::int16_t* codes) const {
    const std::int32_t* const samples = part.samples->Channel(channel) + part.from;
    if (HasWideSamples()) {
        const auto* const bytes = reinterpret_cast<const std::uint8_t*>(samples);
        return CodeSamples({SampleKind::Int32, bytes, sizeof *samples, part.count}, 1.0, m_wide[channel], codes);
    }
    for (std::size_t at = 0; at < part.count; ++at) codes[at] = static_cast<std::int16_t>(samples[at]);
}

void FlacBlock::FetchCodes(std::size_t channel, std::int32_t first, std::int32_t count, std::int16_t* buffer) {
    ForEachWholePart(first, count, [&](const Part& part) {
        Decode(part, channel, buffer);
        buffer += part.count;
    });
}

void FlacBlock::FetchFrames(std::int32_t first, std::int32_t count, std::int16_t* buffer) {
    const std::size_t channels = Channels();
    std::vector<const std::int16_t*> rows(channels);
    ForEachWholePart(first, count, [&](const Part& part) {
        m_codes.resize(std::max(m_codes.size(), channels * part.count));
        for (std::size_t channel = 0; channel < channels; ++channel) {
            Decode(part, channel, m_codes.data() + channel * part.count);
            rows[channel] = m_codes.data() + channel * part.count;
        }
        nsp::JoinRows(rows, part.count, buffer, channels);
        buffer += channels * part.count;
    });
}

void FlacBlock::FetchRows(std::int32_t first, std::int32_t count, std::int16_t* buffer) {
    const auto rowLength = static_cast<std::size_t>(count);
    ForEachWholePart(first, count, [&](const Part& part) {
        for (std::size_t channel = 0; channel < Channels(); ++channel)
            Decode(part, channel, buffer + channel * rowLength);
        buffer += part.count;
    });
}

bool FlacBlock::FetchExtremes(std::span<const std::size_t> channels, std::int32_t first, std::int32_t count,
                              std::int32_t run, std::span<RunExtremes* const> out) {
    nsp::PlanarSetReducer reducer(run, out);
    const std::size_t rowLength = kReducedCodes / channels.size();
    std::vector<std::int16_t> codes(rowLength * channels.size());
    std::vector<const std::int16_t*> rows(channels.size());
    for (std::size_t row = 0; row < rows.size(); ++row) rows[row] = codes.data() + row * rowLength;
    std::size_t filled = 0;
    ForEachWholePart(first, count, [&](Part part) {
        for (std::size_t left = part.count; left > 0; left -= part.count) {
            part.count = std::min(left, rowLength - filled);
            for (std::size_t row = 0; row < rows.size(); ++row)
                Decode(part, channels[row], codes.data() + row * rowLength + filled);
            filled += part.count;
            part.from += part.count;
            if (filled < rowLength) continue;
            reducer.Feed(rows, filled);
            filled = 0;
        }
    });
    reducer.Feed(rows, filled);
    reducer.Finish();
    return true;
}

void FlacBlock::Scan(std::int32_t first, std::int32_t count) {
    if (first == 0) m_seen.clear();
    m_seen.resize(Channels());
    ForEachPart(first, count, [&](const Part& part) {
        for (std::size_t channel = 0; part.samples != nullptr && channel < m_seen.size(); ++channel) {
            const std::int32_t* const samples = part.samples->Channel(channel) + part.from;
            m_seen[channel].Add(
                {SampleKind::Int32, reinterpret_cast<const std::uint8_t*>(samples), sizeof *samples, part.count});
        }
    });
}

void FlacBlock::ChooseScales(double headroom) {
    m_seen.resize(Channels());
    m_wide.clear();
    const double unit = std::ldexp(1.0, 1 - static_cast<int>(m_frames->Depth()));
    for (std::size_t channel = 0; channel < m_seen.size(); ++channel) {
        const SeenSamples& seen = m_seen[channel];
        m_wide.push_back(ChooseWideScale(seen.minimum, seen.maximum, true, unit, 0.0, headroom));
        SetScale(channel, m_wide.back());
    }
}

}  // namespace quillon
