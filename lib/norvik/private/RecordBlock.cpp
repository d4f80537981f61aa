#include "norvik/private/RecordBlock.h"

#include <algorithm>
#include <numeric>

#include "base/LittleEndian.h"
#include "norvik/private/WideSamples.h"
#include "nsp/SplitFrames.h"

namespace quillon {

namespace {

constexpr std::uint64_t kStepBytes = 4 * kPieceBytes;
/// Larger records are read in parts, with a seek for each.
constexpr std::uint64_t kLargeRecord = 32768;

}  // namespace

RecordBlock::RecordBlock(BlockDescription description, const std::shared_ptr<ByteSource>& source, std::uint64_t start,
                         std::shared_ptr<const RecordLayout> layout, std::uint64_t skipped)
    : FileBlock(std::move(description)),
      m_layout(std::move(layout)),
      m_records(source, start, m_layout->recordBytes),
      m_skipped(skipped) {
    const auto isEven = [](std::uint64_t number) { return number % 2 == 0; };
    m_inPlace = m_layout->kind == SampleKind::Int16 && isEven(start) && isEven(m_layout->recordBytes) &&
                std::all_of(m_layout->offsets.begin(), m_layout->offsets.end(), isEven);
}

std::int32_t RecordBlock::SamplesPerPiece() const {
    const std::uint64_t record = std::max<std::uint64_t>(m_layout->recordBytes, 1);
    // The samples of a record take at least a byte each, so that no product overflows.
    const std::uint64_t samples =
        record <= kStepBytes
            ? kStepBytes / record * m_layout->samplesPerRecord
            : static_cast<std::uint64_t>(static_cast<double>(m_layout->samplesPerRecord) *
                                         (static_cast<double>(kStepBytes) / static_cast<double>(record)));
    return static_cast<std::int32_t>(std::max<std::uint64_t>(samples, 1));
}

std::int32_t RecordBlock::QuickStretches() const {
    return m_layout->recordBytes <= kLargeRecord ? 64 : 16;
}

void RecordBlock::Scan(std::int32_t first, std::int32_t count) {
    if (first == 0) m_seen.clear();
    m_seen.resize(Channels());
    const std::size_t width = SampleBytes(m_layout->kind);
    const auto visit = [&](std::uint64_t, std::span<const std::uint8_t* const> channels, std::size_t bytes) {
        for (std::size_t channel = 0; channel < channels.size(); ++channel) {
            m_seen[channel].Add({m_layout->kind, channels[channel], width, bytes / width});
        }
    };
    m_records.Visit(m_layout->offsets, m_layout->samplesPerRecord * width,
                    (m_skipped + static_cast<std::uint64_t>(first)) * width, static_cast<std::uint64_t>(count) * width,
                    visit);
}

void RecordBlock::ChooseScales(double headroom) {
    m_seen.resize(Channels());
    m_coding.clear();
    for (std::size_t channel = 0; channel < m_seen.size(); ++channel) {
        const LinearUnits& units = m_layout->units[channel];
        m_coding.push_back(ChooseCoding(m_layout->kind, m_seen[channel], units.perSample, units.offset, headroom));
        SetScale(channel, m_coding.back().scale);
    }
}

void RecordBlock::VisitCodes(std::span<const std::size_t> channels, std::int32_t first, std::int32_t count,
                             const CodeVisitor& visitor) {
    std::vector<std::uint64_t> offsets;
    offsets.reserve(channels.size());
    for (const std::size_t channel : channels) offsets.push_back(m_layout->offsets[channel]);
    const std::size_t width = SampleBytes(m_layout->kind);
    std::vector<const std::int16_t*> codes(channels.size());
    const auto visit = [&](std::uint64_t position, std::span<const std::uint8_t* const> streams, std::size_t bytes) {
        const std::size_t samples = bytes / width;
        if (!m_inPlace) m_codes.resize(std::max(m_codes.size(), samples * channels.size()));
        for (std::size_t which = 0; which < channels.size(); ++which) {
            codes[which] = m_inPlace ? reinterpret_cast<const std::int16_t*>(streams[which])
                                     : Decode(channels[which], streams[which], samples, which * samples);
        }
        visitor(static_cast<std::size_t>(position / width), codes, samples);
    };
    m_records.Visit(offsets, m_layout->samplesPerRecord * width,
                    (m_skipped + static_cast<std::uint64_t>(first)) * width, static_cast<std::uint64_t>(count) * width,
                    visit);
}

const std::int16_t* RecordBlock::Decode(std::size_t channel, const std::uint8_t* bytes, std::size_t samples,
                                        std::size_t place) {
    std::int16_t* const codes = m_codes.data() + place;
    if (m_layout->kind == SampleKind::Int16) {
        for (std::size_t at = 0; at < samples; ++at) codes[at] = LeSigned16(bytes + 2 * at);
        return codes;
    }
    const WideCoding& coding = m_coding[channel];
    CodeSamples({m_layout->kind, bytes, SampleBytes(m_layout->kind), samples}, coding.factor, coding.scale, codes);
    return codes;
}

void RecordBlock::FetchCodes(std::size_t channel, std::int32_t first, std::int32_t count, std::int16_t* buffer) {
    VisitCodes({&channel, 1}, first, count,
               [&](std::size_t position, std::span<const std::int16_t* const> codes, std::size_t samples) {
                   std::copy_n(codes[0], samples, buffer + position);
               });
}

void RecordBlock::FetchFrames(std::int32_t first, std::int32_t count, std::int16_t* buffer) {
    const std::size_t width = m_layout->offsets.size();
    std::vector<std::size_t> channels(width);
    std::iota(channels.begin(), channels.end(), std::size_t{0});
    VisitCodes(channels, first, count,
               [&](std::size_t position, std::span<const std::int16_t* const> codes, std::size_t samples) {
                   nsp::JoinRows(codes, samples, buffer + position * width, width);
               });
}

void RecordBlock::FetchRows(std::int32_t first, std::int32_t count, std::int16_t* buffer) {
    std::vector<std::size_t> channels(m_layout->offsets.size());
    std::iota(channels.begin(), channels.end(), std::size_t{0});
    VisitCodes(channels, first, count,
               [&](std::size_t position, std::span<const std::int16_t* const> codes, std::size_t samples) {
                   for (std::size_t channel = 0; channel < codes.size(); ++channel)
                       std::copy_n(codes[channel], samples,
                                   buffer + channel * static_cast<std::size_t>(count) + position);
               });
}

bool RecordBlock::FetchExtremes(std::span<const std::size_t> channels, std::int32_t first, std::int32_t count,
                                std::int32_t run, std::span<RunExtremes* const> out) {
    nsp::PlanarSetReducer reducer(run, out);
    // Many runs are reduced at a time, so parts that hold few of them are joined.
    constexpr std::size_t joined = 16384;
    const auto length = static_cast<std::uint64_t>(run);
    const std::uint64_t record = m_layout->samplesPerRecord;
    const bool fewRuns = record < 8 * length && record * channels.size() < 32 * length;
    const bool join = run < 1000 && fewRuns && m_layout->recordBytes != record * SampleBytes(m_layout->kind);
    const std::size_t rowLength = join ? joined / channels.size() : 0;
    std::vector<std::int16_t> rows(rowLength * channels.size());
    std::vector<const std::int16_t*> rowStarts;
    for (std::size_t at = 0; at < channels.size(); ++at) rowStarts.push_back(rows.data() + at * rowLength);
    std::size_t filled = 0;
    VisitCodes(channels, first, count,
               [&](std::size_t, std::span<const std::int16_t* const> codes, std::size_t samples) {
                   if (!join) return reducer.Feed(codes, samples);
                   if (filled + samples > rowLength) {
                       reducer.Feed(rowStarts, filled);
                       filled = 0;
                   }
                   for (std::size_t at = 0; at < codes.size(); ++at)
                       std::copy_n(codes[at], samples, rows.data() + at * rowLength + filled);
                   filled += samples;
               });
    reducer.Feed(rowStarts, filled);
    reducer.Finish();
    return true;
}

}  // namespace quillon
