#include "norvik/private/FileBlock.h"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace quillon {

namespace {

/// Part of a piece that one stretch of the quick scan takes: 32 KiB.
constexpr std::int32_t kStretchesPerPiece = 32;
/// The samples that provisional scales have room for, as a multiple of what was seen.
constexpr double kHeadroom = 2.0;

}  // namespace

FileBlock::FileBlock(BlockDescription description) : m_description(std::move(description)) {}

const ChannelDescription& FileBlock::Channel(std::int16_t channel) const {
    if (channel < 1 || static_cast<std::size_t>(channel) > Channels()) {
        throw std::out_of_range("a channel outside the block");
    }
    return (*m_description.channels)[static_cast<std::size_t>(channel) - 1];
}

const MarkDescription& FileBlock::Mark(std::int32_t mark) const {
    if (mark < 1 || mark > MarkCount()) {
        throw std::out_of_range("a mark outside the block");
    }
    return (*m_description.marks)[static_cast<std::size_t>(mark) - 1];
}

void FileBlock::CheckRange(std::int32_t first, std::int32_t count) const {
    if (first < 0 || count < 0 || first > m_description.sampleCount || count > m_description.sampleCount - first) {
        throw std::out_of_range("samples outside the block");
    }
}

void FileBlock::RequirePrepared() const {
    if (m_scales == Scales::None) throw std::logic_error("the block is not prepared");
}

void FileBlock::Prepare() {
    while (PrepareMore()) {
    }
}

void FileBlock::PrepareQuickly() {
    if (m_scales != Scales::None) return;
    const std::int64_t samples = m_description.sampleCount;
    const std::int64_t stretch = std::max(SamplesPerPiece() / kStretchesPerPiece, 1);
    const std::int64_t stretches = QuickStretches();
    if (!HasWideSamples() || samples <= stretch * stretches) return Prepare();
    try {
        // A pass that was begun has seen enough, and must not lose its account.
        for (std::int64_t at = 0; at < stretches && m_scanned == 0; ++at) {
            Scan(static_cast<std::int32_t>((samples - stretch) * at / (stretches - 1)),
                 static_cast<std::int32_t>(stretch));
        }
    } catch (const ReadError&) {
        // As in the pass.
    }
    ChooseScales(kHeadroom);
    m_scales = Scales::Provisional;
}

bool FileBlock::PrepareMore() {
    if (m_scales == Scales::Final) return false;
    const std::int32_t left = HasWideSamples() ? m_description.sampleCount - m_scanned : 0;
    if (left > 0) {
        const std::int32_t count = std::min(SamplesPerPiece(), left);
        try {
            Scan(m_scanned, count);
        } catch (const ReadError&) {
            // Use the samples scanned so far, so that the rest of a damaged file can be shown.
            EndPass();
            return false;
        }
        m_scanned += count;
        if (count < left) return true;
    }
    EndPass();
    return false;
}

void FileBlock::EndPass() {
    if (HasWideSamples()) ChooseScales(1.0);
    m_scales = Scales::Final;
}

double FileBlock::PreparedShare() const {
    if (m_scales == Scales::Final || !HasWideSamples() || m_description.sampleCount == 0) return 1.0;
    return static_cast<double>(m_scanned) / static_cast<double>(m_description.sampleCount);
}

void FileBlock::SetScale(std::size_t channel, const WideScale& scale) {
    m_wideScales.resize(Channels());
    m_wideScales[channel] = {scale.scale, scale.offset, scale.fills};
}

FileBlock::ValueScale FileBlock::Scale(std::int16_t channel) const {
    const ChannelDescription& description = Channel(channel);
    RequirePrepared();
    if (m_wideScales.empty()) return {description.scale, description.offset, false};
    return m_wideScales[static_cast<std::size_t>(channel) - 1];
}

std::int16_t FileBlock::ChannelCount() const {
    return static_cast<std::int16_t>(Channels());
}

std::int16_t FileBlock::ChannelNumber(std::int16_t channel) const {
    return Channel(channel).number;
}

std::u16string FileBlock::ChannelTitle(std::int16_t channel) const {
    return Channel(channel).title;
}

std::u16string FileBlock::ChannelUnit(std::int16_t channel) const {
    return Channel(channel).unit;
}

float FileBlock::ChannelScale(std::int16_t channel) const {
    return Scale(channel).scale;
}

float FileBlock::ChannelOffset(std::int16_t channel) const {
    return Scale(channel).offset;
}

bool FileBlock::FillsCodes(std::int16_t channel) const {
    return Scale(channel).fills;
}

std::int32_t FileBlock::ReadCodes(std::int16_t channel, std::int32_t first, std::int32_t count, std::int16_t* buffer) {
    static_cast<void>(Channel(channel));
    CheckRange(first, count);
    RequirePrepared();
    if (count > 0) FetchCodes(static_cast<std::size_t>(channel) - 1, first, count, buffer);
    return 0;
}

std::int32_t FileBlock::ReadValues(std::int16_t channel, std::int32_t first, std::int32_t count, float* buffer) {
    static_cast<void>(Channel(channel));
    CheckRange(first, count);
    const ValueScale scale = Scale(channel);
    std::array<std::int16_t, 8192> codes;
    const auto piece = static_cast<std::int32_t>(codes.size());
    for (std::int32_t done = 0; done < count;) {
        const std::int32_t size = std::min(piece, count - done);
        FetchCodes(static_cast<std::size_t>(channel) - 1, first + done, size, codes.data());
        for (std::int32_t at = 0; at < size; ++at) {
            buffer[done + at] = static_cast<float>(codes[static_cast<std::size_t>(at)]) * scale.scale + scale.offset;
        }
        done += size;
    }
    return 0;
}

std::int32_t FileBlock::MarkCount() const {
    return m_description.marks ? static_cast<std::int32_t>(m_description.marks->size()) : 0;
}

std::int32_t FileBlock::MarkPosition(std::int32_t mark) const {
    return Mark(mark).position;
}

std::u16string FileBlock::MarkText(std::int32_t mark) const {
    return Mark(mark).text;
}

std::int16_t FileBlock::InputNumber(std::int16_t channel) const {
    return Channel(channel).inputNumber;
}

std::int32_t FileBlock::ReadFrames(std::int32_t first, std::int32_t count, std::int16_t* buffer) {
    CheckRange(first, count);
    RequirePrepared();
    if (count > 0 && Channels() > 0) FetchFrames(first, count, buffer);
    return 0;
}

std::int32_t FileBlock::ReadRows(std::int32_t first, std::int32_t count, std::int16_t* buffer) {
    CheckRange(first, count);
    RequirePrepared();
    if (count > 0 && Channels() > 0) FetchRows(first, count, buffer);
    return 0;
}

bool FileBlock::ColumnExtremes(std::span<const std::int16_t> channels, std::int32_t first, std::int32_t count,
                               std::int32_t run, std::span<RunExtremes* const> out) {
    CheckRange(first, count);
    if (run < 1 || channels.size() != out.size()) throw std::invalid_argument("runs of extremes");
    if (channels.empty() || count == 0) return true;
    RequirePrepared();
    std::vector<std::size_t> indexes;
    indexes.reserve(channels.size());
    for (const std::int16_t channel : channels) {
        static_cast<void>(Channel(channel));
        indexes.push_back(static_cast<std::size_t>(channel) - 1);
    }
    return FetchExtremes(indexes, first, count, run, out);
}

}  // namespace quillon
