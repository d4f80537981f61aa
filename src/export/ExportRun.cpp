#include "export/ExportRun.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <numeric>
#include <optional>

#include "base/Bilingual.h"

namespace quillon {

void RefuseExportRate(double rate) {
    throw FormatError(Say(u"the format cannot hold the sampling rate of %1 Hz",
                          u"формат не вмещает частоту дискретизации %1 Гц", {ShortestDecimal(rate)}));
}

std::vector<std::int16_t> AllChannels(const RecordingBlock& block) {
    std::vector<std::int16_t> channels(static_cast<std::size_t>(block.ChannelCount()));
    std::iota(channels.begin(), channels.end(), std::int16_t{1});
    return channels;
}

void ExportRun::Clear() {
    m_lastFailure.clear();
    m_writeFailure.clear();
    m_reading = false;
    m_stopped = false;
    m_outcome = {};
}

bool ExportRun::FindRange(const RecordingBlock* block, std::int32_t firstSample, std::int32_t sampleCount,
                          SampleSpan& range) {
    if (block == nullptr) {
        m_lastFailure = u"Block is nothing!";
        return false;
    }
    const std::int32_t samples = block->SampleCount();
    if (firstSample > samples) {
        m_lastFailure = u"Data start is out!";
        return false;
    }
    range.first = std::max(firstSample, 1) - 1;
    const std::int32_t rest = samples - range.first;
    range.count = sampleCount >= 1 && sampleCount <= rest ? sampleCount : rest;
    m_outcome = {
        .asked = range.count, .written = range.count, .rate = block->SampleRate(), .ratedAs = block->SampleRate()};
    return true;
}

bool ExportRun::WriteFile(const std::u16string& fileName, const ByteWriter& header,
                          const std::function<bool(OutputFile&)>& writeSamples) {
    const std::unique_ptr<OutputFile> file = m_system.makeFile();
    if (!file->Create(fileName)) {
        m_lastFailure = file->ErrorText().In(m_system.language);
        return false;
    }
    if (file->Write(header.Bytes()) && writeSamples(*file) && file->Close()) return true;
    // A large file takes long to go.
    while (file->AbandonPart()) static_cast<void>(m_system.progress && m_system.progress(m_reported, m_reportedOf));
    if (m_stopped) return false;
    m_writeFailure = file->ErrorText().In(m_system.language);
    return false;
}

bool ExportRun::Report(std::int64_t done, std::int32_t total) {
    m_reported = static_cast<std::int32_t>(done);
    m_reportedOf = total;
    m_stopped = m_system.progress && !m_system.progress(m_reported, total);
    return !m_stopped;
}

std::vector<EdfLimits> ExportRun::FindLimits(const RecordingBlock& block, std::span<const std::int16_t> channels,
                                             std::int32_t total, EdfLimitsFinder find) {
    std::vector<EdfLimits> limits;
    float lastScale = 0.0F;
    float lastOffset = 0.0F;
    for (const std::int16_t channel : channels) {
        const float scale = block.ChannelScale(channel);
        const float offset = block.ChannelOffset(channel);
        // The search takes long where the scale is fine, and channels are mostly alike.
        const bool alike = !limits.empty() && scale == lastScale && offset == lastOffset;
        if (!alike && !Report(0, total)) return {};
        lastScale = scale;
        lastOffset = offset;
        std::optional<EdfLimits> found = alike ? limits.back() : find(scale, offset);
        if (!found) {
            // Readers keep the limits in single precision.
            const bool tooLarge = !std::isfinite(scale * 32000.0F + offset);
            const std::u16string title = block.ChannelTitle(channel);
            m_lastFailure =
                Say(tooLarge ? u"The channel's scale is too large for EDF: %1"
                             : u"The channel's scale is too fine for EDF: %1",
                    tooLarge ? u"Шаг канала слишком велик для EDF: %1" : u"Шаг канала слишком мал для EDF: %1",
                    {title.empty() ? Decimal(channel) : title})
                    .In(m_system.language);
            return {};
        }
        limits.push_back(std::move(*found));
    }
    return limits;
}

}  // namespace quillon
