#include "data/ShownBlock.h"

#include <algorithm>
#include <array>
#include <map>
#include <stdexcept>
#include <utility>

#include "data/QL_Types.h"
#include "nsp/RunReducer.h"

namespace quillon {

namespace {

constexpr std::int32_t kPageSamples = 1024;
constexpr std::size_t kMostPageBytes = std::size_t{24} << 20U;
constexpr std::size_t kNone = ShownChannel::kNone;

}  // namespace

/// Codes of the channels of a group in kPageSamples samples, channel after channel.
struct ShownBlock::Page {
    std::size_t group = 0;
    std::int32_t number = 0;  ///< from 0
    std::int32_t samples = 0;
    std::vector<std::int16_t> codes;
    [[nodiscard]] const std::int16_t* Row(std::size_t row) const {
        return codes.data() + row * static_cast<std::size_t>(samples);
    }
};

/// Channels with equal filters. Two streams: one goes on to the right while others begin anew elsewhere.
struct ShownBlock::Group {
    std::vector<const ShownChannel*> channels;
    std::optional<ShownStream::Filter> filter;
    std::array<std::unique_ptr<ShownStream>, 2> streams;  ///< the one used last is the first
};

ShownBlock::ShownBlock(std::shared_ptr<RecordingBlock> stored, ShownChannelSet shown)
    : m_stored(std::move(stored)), m_shown(std::move(shown)) {
    MakeGroups();
}

ShownBlock::~ShownBlock() = default;

void ShownBlock::MakeGroups() {
    for (const ShownChannel& channel : m_shown.channels) {
        if (channel.IsStored()) {
            m_groupOf.push_back(kNone);
            m_rowOf.push_back(0);
            continue;
        }
        const auto found = std::find_if(m_groups.begin(), m_groups.end(), [&](const auto& group) {
            return group->channels.front()->filter == channel.filter;
        });
        const auto at = static_cast<std::size_t>(found - m_groups.begin());
        if (at == m_groups.size()) m_groups.push_back(std::make_unique<Group>());
        m_groupOf.push_back(at);
        m_rowOf.push_back(m_groups[at]->channels.size());
        m_groups[at]->channels.push_back(&channel);
    }
    for (const auto& group : m_groups) {
        const nsp::FilterSettings& filter = group->channels.front()->filter;
        if (filter.IsOff()) continue;
        const nsp::FilterDesign design(filter, m_stored->SampleRate());
        group->filter = ShownStream::Filter{design, FilterCheckpoints(design, group->channels.size())};
    }
}

const ShownChannel& ShownBlock::Of(std::int16_t channel) const {
    return m_shown.channels.at(static_cast<std::size_t>(channel) - 1);
}

std::int16_t ShownBlock::ChannelCount() const {
    return static_cast<std::int16_t>(m_shown.channels.size());
}

std::int16_t ShownBlock::ChannelNumber(std::int16_t channel) const {
    return m_shown.arePairs ? static_cast<std::int16_t>(channel - 1) : m_stored->ChannelNumber(channel);
}

std::u16string ShownBlock::ChannelUnit(std::int16_t channel) const {
    return m_stored->ChannelUnit(Of(channel).channel);
}

float ShownBlock::ChannelScale(std::int16_t channel) const {
    return m_stored->ChannelScale(Of(channel).channel) * Of(channel).coarser;
}

std::int16_t ShownBlock::InputNumber(std::int16_t channel) const {
    return m_shown.arePairs ? channel : m_stored->InputNumber(channel);
}

std::int32_t ShownBlock::SamplesPerPiece() const {
    constexpr std::int32_t mostCodes = 1 << 21;
    std::int32_t samples = m_stored->SamplesPerPiece();
    for (const auto& group : m_groups) {
        const std::int32_t most = mostCodes / static_cast<std::int32_t>(group->channels.size());
        if (group->filter)
            samples = std::max(samples, static_cast<std::int32_t>(std::min<std::int64_t>(
                                            std::int64_t{4} * group->filter->design.CellLength(), most)));
    }
    return samples;
}

ShownStream& ShownBlock::StreamAt(Group& group, std::int32_t first) {
    if (group.streams[1] && group.streams[1]->Position() == first) std::swap(group.streams[0], group.streams[1]);
    if (group.streams[0] && group.streams[0]->Position() == first) return *group.streams[0];
    std::swap(group.streams[0], group.streams[1]);
    group.streams[0] = std::make_unique<ShownStream>(*m_stored, group.channels, m_shown.commons,
                                                     group.filter ? &*group.filter : nullptr, first);
    return *group.streams[0];
}

std::int32_t ShownBlock::PlacesPerPiece() const {
    constexpr std::int64_t most = 1 << 22;  // samples times sections: some milliseconds
    std::int64_t work = 1;
    for (const auto& group : m_groups) {
        if (!group->filter) continue;
        const nsp::FilterDesign& design = group->filter->design;
        const std::int64_t cell = design.CellLength();
        const std::int64_t way =
            design.BothWays() ? 2 * cell : std::min<std::int64_t>(group->filter->checkpoints.Spacing(), cell) / 2;
        work += (way + kPageSamples) * static_cast<std::int64_t>(group->channels.size() * design.Sections().size());
    }
    return static_cast<std::int32_t>(std::max<std::int64_t>(most / work, 1));
}

bool ShownBlock::Approach(std::int32_t first) {
    for (std::size_t at = 0; at < m_groups.size(); ++at) {
        std::int32_t page = first / kPageSamples;
        while (m_pageOf.contains({at, page})) ++page;
        if (!ApproachPage(at, page)) return false;
        const Group& group = *m_groups[at];
        if (!group.filter || !nsp::FilterStream::HasLongCells(group.filter->design, group.channels.size())) continue;
        // A piece that is read from there may go on into the next cell, to which the way is as long again.
        const std::int64_t end = nsp::CellFilter::CellEndBehind(group.filter->design.CellLength(), first);
        if (end - first <= SamplesPerPiece() && !ApproachPage(at, static_cast<std::int32_t>(end / kPageSamples)))
            return false;
    }
    return true;
}

bool ShownBlock::ApproachPage(std::size_t group, std::int32_t page) {
    constexpr std::int32_t most = 1 << 20;  // codes: some milliseconds
    if (page > (SampleCount() - 1) / kPageSamples || m_pageOf.contains({group, page})) return true;
    Group& of = *m_groups[group];
    ShownStream& stream = StreamAt(of, page * kPageSamples);
    try {
        return stream.Approach(most / static_cast<std::int32_t>(of.channels.size()));
    } catch (...) {
        // Reading finds the same place.
        of.streams[0].reset();
        return true;
    }
}

void ShownBlock::MakePage(Group& group, Page& page) {
    const std::int32_t first = page.number * kPageSamples;
    page.samples = std::min(kPageSamples, SampleCount() - first);
    page.codes.resize(group.channels.size() * static_cast<std::size_t>(page.samples));
    std::vector<std::int16_t*> rows;
    for (std::size_t row = 0; row < group.channels.size(); ++row)
        rows.push_back(page.codes.data() + row * static_cast<std::size_t>(page.samples));
    ShownStream& stream = StreamAt(group, first);
    try {
        stream.Read(page.samples, rows);
    } catch (...) {
        group.streams[0].reset();
        throw;
    }
}

ShownBlock::Page& ShownBlock::PageAt(std::size_t group, std::int32_t number) {
    if (const auto found = m_pageOf.find({group, number}); found != m_pageOf.end()) {
        m_pages.splice(m_pages.begin(), m_pages, found->second);
        return m_pages.front();
    }
    Page page;
    page.group = group;
    page.number = number;
    MakePage(*m_groups[group], page);
    m_pageBytes += page.codes.size() * sizeof(std::int16_t);
    m_pages.push_front(std::move(page));
    m_pageOf[{group, number}] = m_pages.begin();
    while (m_pageBytes > kMostPageBytes && m_pages.size() > 1) {
        m_pageBytes -= m_pages.back().codes.size() * sizeof(std::int16_t);
        m_pageOf.erase({m_pages.back().group, m_pages.back().number});
        m_pages.pop_back();
    }
    return m_pages.front();
}

template <typename Use>
void ShownBlock::ForPages(std::size_t group, const SampleSpan& span, const Use& use) {
    for (std::int32_t at = span.first; at < span.End();) {
        const Page& page = PageAt(group, at / kPageSamples);
        const std::int32_t from = at % kPageSamples;
        const std::int32_t count = std::min(page.samples - from, span.End() - at);
        use(page, from, count, at - span.first);
        at += count;
    }
}

std::int32_t ShownBlock::ReadCodes(std::int16_t channel, std::int32_t first, std::int32_t count, std::int16_t* buffer) {
    const ShownChannel& shown = Of(channel);
    const auto at = static_cast<std::size_t>(channel) - 1;
    if (m_groupOf[at] == kNone) return m_stored->ReadCodes(shown.channel, first, count, buffer);
    if (first < 0 || count < 0 || count > SampleCount() - first) throw std::out_of_range("samples of a block");
    ForPages(m_groupOf[at], {first, count},
             [&](const Page& page, std::int32_t from, std::int32_t part, std::int32_t done) {
                 std::copy_n(page.Row(m_rowOf[at]) + from, part, buffer + done);
             });
    return 0;
}

std::int32_t ShownBlock::ReadValues(std::int16_t channel, std::int32_t first, std::int32_t count, float* buffer) {
    std::vector<std::int16_t> codes(static_cast<std::size_t>(std::max(count, 0)));
    ReadCodes(channel, first, count, codes.data());
    const float scale = ChannelScale(channel);
    const float offset = ChannelOffset(channel);
    std::transform(codes.begin(), codes.end(), buffer,
                   [&](std::int16_t code) { return static_cast<float>(code) * scale + offset; });
    return 0;
}

std::int32_t ShownBlock::ReadFrames(std::int32_t first, std::int32_t count, std::int16_t* buffer) {
    const std::size_t channels = m_shown.channels.size();
    std::vector<std::int16_t> row(static_cast<std::size_t>(std::max(count, 0)));
    for (std::size_t at = 0; at < channels; ++at) {
        ReadCodes(static_cast<std::int16_t>(at + 1), first, count, row.data());
        for (std::size_t sample = 0; sample < row.size(); ++sample) buffer[sample * channels + at] = row[sample];
    }
    return 0;
}

void ShownBlock::ReduceGroup(std::size_t group, std::span<const std::int16_t> channels, const SampleSpan& span,
                             std::int32_t run, std::span<RunExtremes* const> out) {
    nsp::PlanarSetReducer reducer(run, out);
    std::vector<const std::int16_t*> rows(channels.size());
    ForPages(group, span, [&](const Page& page, std::int32_t from, std::int32_t count, std::int32_t) {
        for (std::size_t at = 0; at < channels.size(); ++at)
            rows[at] = page.Row(m_rowOf[static_cast<std::size_t>(channels[at] - 1)]) + from;
        reducer.Feed(rows, static_cast<std::size_t>(count));
    });
    reducer.Finish();
}

bool ShownBlock::ColumnExtremes(std::span<const std::int16_t> channels, std::int32_t first, std::int32_t count,
                                std::int32_t run, std::span<RunExtremes* const> out) {
    struct Part {
        std::vector<std::int16_t> channels;
        std::vector<RunExtremes*> out;
    };
    std::map<std::size_t, Part> parts;
    for (std::size_t at = 0; at < channels.size(); ++at) {
        const std::size_t group = m_groupOf.at(static_cast<std::size_t>(channels[at]) - 1);
        Part& part = parts[group];
        part.channels.push_back(group == kNone ? Of(channels[at]).channel : channels[at]);
        part.out.push_back(out[at]);
    }
    // What the stored block does not reduce is left to the caller, before anything is written.
    if (const auto stored = parts.find(kNone); stored != parts.end()) {
        if (!m_stored->ColumnExtremes(stored->second.channels, first, count, run, stored->second.out)) return false;
        parts.erase(stored);
    }
    for (const auto& [group, part] : parts) ReduceGroup(group, part.channels, {first, count}, run, part.out);
    return true;
}

std::shared_ptr<RecordingBlock> MakeShownBlock(std::shared_ptr<RecordingBlock> stored, const ShownSettings& settings,
                                               const std::vector<bool>& shown) {
    ShownChannelSet channels = ChannelsShown(*stored, settings, shown);
    if (channels.AreStored()) return stored;
    return std::make_shared<ShownBlock>(std::move(stored), std::move(channels));
}

std::shared_ptr<RecordingBlock> MakeMontageBlock(std::shared_ptr<RecordingBlock> stored,
                                                 const ShownSettings& settings) {
    ShownChannelSet pairs = PairsShown(*stored, settings);
    if (pairs.channels.empty()) return nullptr;
    return std::make_shared<ShownBlock>(std::move(stored), std::move(pairs));
}

}  // namespace quillon
