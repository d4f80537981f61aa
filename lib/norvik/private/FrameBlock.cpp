#include "norvik/private/FrameBlock.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

#include "base/LittleEndian.h"
#include "base/Text.h"
#include "nsp/RunReducer.h"
#include "nsp/SplitFrames.h"

namespace quillon {

namespace {

/// Calls use(bytes, frames) for a piece of frames in parts of about kTileBytes.
template <typename Use>
void ForEachTile(const std::uint8_t* bytes, std::size_t frames, std::size_t frameBytes, const Use& use) {
    const std::size_t tile = std::max<std::size_t>(kTileBytes / frameBytes, 8);
    for (std::size_t done = 0; done < frames; done += tile)
        use(bytes + done * frameBytes, std::min(tile, frames - done));
}

}  // namespace

double FullScaleUnit(SampleKind kind) {
    if (IsFloat(kind)) return 1.0;
    return std::ldexp(1.0, 1 - 8 * static_cast<int>(SampleBytes(kind)));
}

FrameBlock::FrameBlock(std::shared_ptr<ByteSource> source, const FrameLayout& layout, BlockDescription description)
    : FileBlock(std::move(description)), m_source(std::move(source)), m_layout(layout) {}

FrameBlock::FrameBlock(std::shared_ptr<ByteSource> source, const FrameLayout& layout, BlockDescription description,
                       std::vector<WideCoding> coding)
    : FileBlock(std::move(description)),
      m_source(std::move(source)),
      m_layout(layout),
      m_coding(std::move(coding)),
      m_known(true) {
    for (std::size_t channel = 0; channel < m_coding.size(); ++channel) SetScale(channel, m_coding[channel].scale);
}

std::int32_t FrameBlock::SamplesPerPiece() const {
    constexpr std::size_t piece = 4 * kPieceBytes;
    return static_cast<std::int32_t>(std::max<std::size_t>(piece / ReadBytes(), 1));
}

std::int32_t FrameBlock::QuickStretches() const {
    constexpr std::size_t bytes = 8 * kPieceBytes;
    return static_cast<std::int32_t>(std::clamp<std::size_t>(bytes / ReadBytes(), 8, 64));
}

std::size_t FrameBlock::Place(std::size_t channel) const {
    return (m_layout.firstChannel + channel) * SampleBytes(m_layout.kind);
}

void FrameBlock::ForEachPiece(std::int32_t first, std::int32_t count, const UsePiece& use) {
    const std::size_t frameBytes = m_layout.frameBytes;
    const auto wanted = static_cast<std::size_t>(count);
    const std::size_t pieceFrames = std::min(wanted, std::max<std::size_t>(kPieceBytes / frameBytes, 1));
    std::uint64_t offset = m_layout.dataOffset + static_cast<std::uint64_t>(first) * frameBytes;
    for (std::size_t done = 0; done < wanted;) {
        const std::size_t frames = std::min(pieceFrames, wanted - done);
        use(m_piece.Read(*m_source, offset, frames * frameBytes), frames);
        offset += frames * frameBytes;
        done += frames;
    }
}

void FrameBlock::Decode(std::size_t channel, const std::uint8_t* bytes, std::size_t frames, std::int16_t* out,
                        std::size_t step) const {
    const std::size_t frameBytes = m_layout.frameBytes;
    const std::uint8_t* at = bytes + Place(channel);
    if (IsWide(m_layout.kind)) {
        const WideCoding& coding = m_coding[channel];
        if (step == 1) return CodeSamples({m_layout.kind, at, frameBytes, frames}, coding.factor, coding.scale, out);
        std::array<std::int16_t, 512> codes;
        for (std::size_t done = 0; done < frames;) {
            const std::size_t part = std::min(codes.size(), frames - done);
            CodeSamples({m_layout.kind, at + done * frameBytes, frameBytes, part}, coding.factor, coding.scale,
                        codes.data());
            for (std::size_t i = 0; i < part; ++i, out += step) *out = codes[i];
            done += part;
        }
    } else if (m_layout.kind == SampleKind::Int16) {
        for (std::size_t i = 0; i < frames; ++i, at += frameBytes, out += step) *out = LeSigned16(at);
    } else {
        for (std::size_t i = 0; i < frames; ++i, at += frameBytes, out += step)
            *out = static_cast<std::int16_t>(*at - 128);
    }
}

void FrameBlock::FetchCodes(std::size_t channel, std::int32_t first, std::int32_t count, std::int16_t* buffer) {
    ForEachPiece(first, count, [&](const std::uint8_t* bytes, std::size_t frames) {
        Decode(channel, bytes, frames, buffer, 1);
        buffer += frames;
    });
}

void FrameBlock::FetchFrames(std::int32_t first, std::int32_t count, std::int16_t* buffer) {
    const std::size_t channels = Channels();
    if (m_layout.kind == SampleKind::Int16 && m_layout.frameBytes == 2 * channels) {
        const std::uint64_t offset = m_layout.dataOffset + static_cast<std::uint64_t>(first) * m_layout.frameBytes;
        return m_source->ReadExactly(offset, buffer, static_cast<std::size_t>(count) * m_layout.frameBytes);
    }
    ForEachPiece(first, count, [&](const std::uint8_t* bytes, std::size_t frames) {
        for (std::size_t channel = 0; channel < channels; ++channel) {
            Decode(channel, bytes, frames, buffer + channel, channels);
        }
        buffer += frames * channels;
    });
}

void FrameBlock::FetchRows(std::int32_t first, std::int32_t count, std::int16_t* buffer) {
    const std::size_t channels = Channels();
    const auto rowLength = static_cast<std::size_t>(count);
    ForEachPiece(first, count, [&](const std::uint8_t* bytes, std::size_t frames) {
        if (m_layout.kind == SampleKind::Int16) {
            nsp::SplitFrames(bytes + Place(0), m_layout.frameBytes, channels, frames, buffer, rowLength);
        } else {
            for (std::size_t channel = 0; channel < channels; ++channel)
                Decode(channel, bytes, frames, buffer + channel * rowLength, 1);
        }
        buffer += frames;
    });
}

bool FrameBlock::FetchExtremes(std::span<const std::size_t> channels, std::int32_t first, std::int32_t count,
                               std::int32_t run, std::span<RunExtremes* const> out) {
    std::vector<std::size_t> sorted(channels.begin(), channels.end());
    std::sort(sorted.begin(), sorted.end());
    const bool repeats = std::adjacent_find(sorted.begin(), sorted.end()) != sorted.end();
    const bool stored =
        m_layout.kind == SampleKind::Int16 && m_layout.frameBytes % 2 == 0 && m_layout.dataOffset % 2 == 0 && !repeats;
    if (stored) {
        ReduceStoredCodes(channels, first, count, run, out);
    } else {
        ReduceDecoded(channels, first, count, run, out);
    }
    return true;
}

void FrameBlock::ReduceStoredCodes(std::span<const std::size_t> channels, std::int32_t first, std::int32_t count,
                                   std::int32_t run, std::span<RunExtremes* const> out) {
    std::vector<std::size_t> places;
    for (const std::size_t channel : channels) places.push_back(m_layout.firstChannel + channel);
    nsp::FrameRunReducer reducer(m_layout.frameBytes / 2, places, run, out);
    ForEachPiece(first, count, [&](const std::uint8_t* bytes, std::size_t frames) {
        reducer.Feed(reinterpret_cast<const std::int16_t*>(bytes), frames);
    });
    reducer.Finish();
}

void FrameBlock::ReduceDecoded(std::span<const std::size_t> channels, std::int32_t first, std::int32_t count,
                               std::int32_t run, std::span<RunExtremes* const> out) {
    nsp::PlanarSetReducer reducer(run, out);
    std::vector<std::int16_t> codes;
    std::vector<const std::int16_t*> rows(channels.size());
    ForEachPiece(first, count, [&](const std::uint8_t* bytes, std::size_t frames) {
        codes.resize(frames * channels.size());
        std::size_t done = 0;
        ForEachTile(bytes, frames, m_layout.frameBytes, [&](const std::uint8_t* tile, std::size_t tileFrames) {
            for (std::size_t at = 0; at < channels.size(); ++at)
                Decode(channels[at], tile, tileFrames, codes.data() + at * frames + done, 1);
            done += tileFrames;
        });
        for (std::size_t at = 0; at < channels.size(); ++at) rows[at] = codes.data() + at * frames;
        reducer.Feed(rows, frames);
    });
    reducer.Finish();
}

void FrameBlock::Scan(std::int32_t first, std::int32_t count) {
    if (first == 0) m_seen.clear();
    m_seen.resize(Channels());
    ForEachPiece(first, count, [&](const std::uint8_t* bytes, std::size_t frames) {
        ForEachTile(bytes, frames, m_layout.frameBytes, [&](const std::uint8_t* tile, std::size_t tileFrames) {
            for (std::size_t channel = 0; channel < m_seen.size(); ++channel)
                m_seen[channel].Add({m_layout.kind, tile + Place(channel), m_layout.frameBytes, tileFrames});
        });
    });
}

void FrameBlock::ChooseScales(double headroom) {
    m_seen.resize(Channels());
    m_coding.resize(m_seen.size());
    for (std::size_t channel = 0; channel < m_seen.size(); ++channel) {
        const ChannelDescription& units = (*m_description.channels)[channel];
        m_coding[channel] = ChooseCoding(m_layout.kind, m_seen[channel], static_cast<double>(units.scale),
                                         static_cast<double>(units.offset), headroom);
        SetScale(channel, m_coding[channel].scale);
    }
}

namespace {

std::u16string BlockTitle(std::uint64_t stretch, std::uint64_t stretches, std::size_t firstChannel,
                          std::size_t lastChannel, std::size_t allChannels) {
    std::u16string title;
    if (stretches > 1) {
        title = Decimal(static_cast<std::int64_t>(stretch) + 1) + u"/" + Decimal(static_cast<std::int64_t>(stretches));
    }
    if (lastChannel - firstChannel == allChannels) return title;
    if (!title.empty()) title += u", ";
    return title + Decimal(static_cast<std::int64_t>(firstChannel) + 1) + u"-" +
           Decimal(static_cast<std::int64_t>(lastChannel));
}

/// Marks from `first` on that lie inside the block.
std::vector<MarkDescription> MarksWithin(const std::vector<FrameMark>& marks, std::uint64_t first, std::int32_t count) {
    std::vector<MarkDescription> within;
    const std::uint64_t end = first + static_cast<std::uint64_t>(count);
    auto mark = std::lower_bound(marks.begin(), marks.end(), first,
                                 [](const FrameMark& at, std::uint64_t position) { return at.position < position; });
    for (; mark != marks.end() && mark->position < end; ++mark)
        within.push_back({static_cast<std::int32_t>(mark->position - first), mark->text, mark->duration});
    return within;
}

/// The stretches, cut into as many frames as a block may have; `most` of them at most, and at least one.
std::vector<FrameRun> BlockStretches(const FrameRecording& recording, std::size_t most) {
    constexpr auto longest = static_cast<std::uint64_t>(kBlockSamples);
    std::vector<FrameRun> whole = recording.stretches;
    if (whole.empty()) whole.push_back({0, recording.frameCount, recording.startTime});
    std::vector<FrameRun> parts;
    for (const FrameRun& stretch : whole) {
        std::uint64_t done = 0;
        do {
            if (parts.size() == most) return parts;
            const std::uint64_t count = std::min(stretch.count - done, longest);
            const double seconds = static_cast<double>(done) / recording.sampleRate;
            parts.push_back({stretch.first + done, count, stretch.startTime + seconds / 86400.0});
            done += count;
        } while (done < stretch.count);
    }
    return parts;
}

}  // namespace

std::vector<std::shared_ptr<FileBlock>> MakeBlocks(const FrameRecording& recording, const MakeBlock& make) {
    const std::size_t channels = recording.channels.size();
    const std::size_t groups = (channels + kBlockChannels - 1) / kBlockChannels;
    std::vector<std::shared_ptr<const std::vector<ChannelDescription>>> channelsOfGroup;
    for (std::size_t channel = 0; channel < channels; channel += kBlockChannels) {
        const auto first = recording.channels.begin() + static_cast<std::ptrdiff_t>(channel);
        const auto size = static_cast<std::ptrdiff_t>(std::min(kBlockChannels, channels - channel));
        channelsOfGroup.push_back(std::make_shared<const std::vector<ChannelDescription>>(first, first + size));
    }
    const std::size_t most = std::max<std::size_t>(kMostBlocks / std::max<std::size_t>(groups, 1), 1);
    const std::vector<FrameRun> stretches = BlockStretches(recording, most);
    std::vector<std::shared_ptr<FileBlock>> blocks;
    for (std::size_t at = 0; at < stretches.size(); ++at) {
        BlockDescription description;
        description.deviceName = recording.deviceName;
        description.startTime = stretches[at].startTime;
        description.sampleRate = recording.sampleRate;
        description.sampleCount = static_cast<std::int32_t>(stretches[at].count);
        description.marks = std::make_shared<const std::vector<MarkDescription>>(
            MarksWithin(recording.marks, stretches[at].first, description.sampleCount));
        for (std::size_t channel = 0; channel < channels; channel += kBlockChannels) {
            const std::size_t end = std::min(channel + kBlockChannels, channels);
            description.title = BlockTitle(at, stretches.size(), channel, end, channels);
            description.channels = channelsOfGroup[channel / kBlockChannels];
            blocks.push_back(make(description, stretches[at].first, channel));
        }
    }
    return blocks;
}

std::vector<std::shared_ptr<FileBlock>> MakeFrameBlocks(const std::shared_ptr<ByteSource>& source,
                                                        const FrameRecording& recording) {
    return MakeBlocks(recording, [&](BlockDescription description, std::uint64_t firstFrame, std::size_t firstChannel) {
        FrameLayout layout = recording.layout;
        layout.dataOffset += firstFrame * layout.frameBytes;
        layout.firstChannel = firstChannel;
        return std::make_shared<FrameBlock>(source, layout, std::move(description));
    });
}

}  // namespace quillon
