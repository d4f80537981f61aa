#include "data/ShownStream.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "nsp/RoundCodes.h"

namespace quillon {

namespace {

/// Samples of every channel that are worked on at once: their codes and values fit the processor's second cache.
constexpr std::int32_t kPiece = 2048;

}  // namespace

ShownStream::ShownStream(RecordingBlock& stored, std::vector<const ShownChannel*> channels,
                         const std::vector<CommonSignal>& commons, Filter* filter, std::int32_t first)
    : m_stored(stored),
      m_channels(std::move(channels)),
      m_commons(commons),
      m_next(first),
      m_end(stored.SampleCount()),
      m_starts(static_cast<std::size_t>(stored.ChannelCount())),
      m_sums(m_channels.size()),
      m_commonRows(commons.size()),
      m_ready{first, 0},
      m_rows(m_channels.size()) {
    if (filter != nullptr) {
        m_checkpoints = &filter->checkpoints;
        m_filter = std::make_unique<nsp::FilterStream>(filter->design, m_channels.size(),
                                                       SampleSpan{first, m_end - first}, m_end);
        const nsp::CellFilter* const kept = m_checkpoints->Before(first);
        if (kept != nullptr && kept->Position() > m_filter->Next().first) m_filter->GoOnFrom(*kept);
        m_next = m_filter->Next().first;
    }
    std::vector<bool> needed(m_starts.size());
    const auto need = [&](std::int16_t channel) { needed[static_cast<std::size_t>(channel - 1)] = true; };
    for (const ShownChannel* channel : m_channels) {
        need(channel->channel);
        if (channel->common == ShownChannel::kNone) continue;
        m_usesCommons = true;
        for (const CommonSignal::Term& term : m_commons[channel->common].terms) need(term.channel);
    }
    for (std::size_t at = 0; at < needed.size(); ++at)
        if (needed[at]) m_needed.push_back(static_cast<std::int16_t>(at + 1));
}

void ShownStream::Read(std::int32_t count, std::span<std::int16_t* const> rows) {
    while (m_ready.count < count) FeedPiece(m_ready.first + count);
    for (std::size_t at = 0; at < rows.size(); ++at)
        std::copy_n(m_rows[at].data() + m_given, static_cast<std::size_t>(count), rows[at]);
    m_given += static_cast<std::size_t>(count);
    m_ready = {m_ready.first + count, m_ready.count - count};
}

bool ShownStream::Approach(std::int32_t most) {
    for (std::int32_t fed = 0; m_ready.count == 0 && fed < most;) fed += FeedPiece(m_ready.first + 1);
    return m_ready.count > 0;
}

std::int32_t ShownStream::FeedPiece(std::int32_t end) {
    // What was given makes room.
    for (auto& row : m_rows) row.erase(row.begin(), row.begin() + static_cast<std::ptrdiff_t>(m_given));
    m_given = 0;
    const SampleSpan next = m_filter ? m_filter->Next() : SampleSpan{m_next, m_end - m_next};
    m_next = next.first;
    // Both ways, samples beyond the end are needed.
    const std::int32_t count = std::min({kPiece, next.count, m_next < end ? end - m_next : next.count});
    ReadStored({m_next, count});
    Feed(static_cast<std::size_t>(count));
    m_next += count;
    return count;
}

void ShownStream::ReadStored(const SampleSpan& piece) {
    const std::size_t all = m_starts.size();
    const auto count = static_cast<std::size_t>(piece.count);
    const bool frames = m_stored.FramesAreCheap();
    const bool most = frames || 2 * m_needed.size() >= all;
    m_codes.resize(count * (most ? all : m_needed.size()));
    if (frames) {
        m_stored.ReadFrames(piece.first, piece.count, m_codes.data());
        m_step = static_cast<std::ptrdiff_t>(all);
    } else if (most) {
        m_stored.ReadRows(piece.first, piece.count, m_codes.data());
    }
    for (std::size_t at = 0; at < m_needed.size(); ++at) {
        const auto channel = static_cast<std::size_t>(m_needed[at] - 1);
        std::int16_t* const row = m_codes.data() + (frames ? channel : count * (most ? channel : at));
        if (!most) m_stored.ReadCodes(m_needed[at], piece.first, piece.count, row);
        m_starts[channel] = row;
    }
}

void ShownStream::Feed(std::size_t count) {
    std::vector<const std::int16_t*> codes;
    std::vector<const float*> sums;
    if (m_usesCommons) AddCommons(count);
    for (std::size_t at = 0; at < m_channels.size(); ++at) {
        codes.push_back(StoredAt(m_channels[at]->channel));
        sums.push_back(m_sums[at].data());
    }
    if (!m_filter) return Append({m_next, static_cast<std::int32_t>(count)}, sums);
    if (m_usesCommons) {
        m_filter->Feed(nsp::FloatSamples{sums}, count);
    } else {
        m_filter->Feed(nsp::CodeSamples{codes, m_step}, count);
    }
    m_checkpoints->Pass(m_filter->Checkpoint());
    const SampleSpan ready = m_filter->Ready();
    if (ready.count == 0) return;
    std::vector<const float*> values;
    for (std::size_t at = 0; at < m_channels.size(); ++at) values.push_back(m_filter->Row(at));
    Append(ready, values);
}

void ShownStream::AddCommons(std::size_t count) {
    for (std::size_t at = 0; at < m_commons.size(); ++at) {
        std::vector<float>& row = m_commonRows[at];
        row.assign(count, 0.0F);
        for (const CommonSignal::Term& term : m_commons[at].terms) {
            const std::int16_t* code = StoredAt(term.channel);
            // Common signals of other channels than these.
            if (code == nullptr) break;
            for (std::size_t sample = 0; sample < count; ++sample, code += m_step)
                row[sample] += term.weight * static_cast<float>(*code);
        }
    }
    for (std::size_t at = 0; at < m_channels.size(); ++at) {
        const ShownChannel& channel = *m_channels[at];
        std::vector<float>& row = m_sums[at];
        row.resize(count);
        const std::int16_t* code = StoredAt(channel.channel);
        for (std::size_t sample = 0; sample < count; ++sample, code += m_step) row[sample] = static_cast<float>(*code);
        if (channel.common == ShownChannel::kNone) continue;
        const std::vector<float>& common = m_commonRows[channel.common];
        for (std::size_t sample = 0; sample < count; ++sample) row[sample] -= channel.factor * common[sample];
    }
}

void ShownStream::Append(const SampleSpan& ready, const std::vector<const float*>& values) {
    for (std::size_t at = 0; at < m_rows.size(); ++at) {
        std::vector<std::int16_t>& row = m_rows[at];
        const std::size_t before = row.size();
        row.resize(before + static_cast<std::size_t>(ready.count));
        const float* from = values[at];
        if (const float coarser = m_channels[at]->coarser; coarser != 1.0F) {
            m_scaled.resize(static_cast<std::size_t>(ready.count));
            std::transform(from, from + ready.count, m_scaled.begin(), [=](float value) { return value / coarser; });
            from = m_scaled.data();
        }
        nsp::RoundToCodes(from, static_cast<std::size_t>(ready.count), row.data() + before);
    }
    m_ready.count += ready.count;
}

}  // namespace quillon
