#include <algorithm>
#include <array>
#include <functional>
#include <vector>

#include "data/QL_Types.h"
#include "export/EdfPlusWriter.h"
#include "export/KV_Export.h"
#include "fuzz/Checks.h"
#include "fuzz/FuzzedRecording.h"
#include "norvik/OutputFile.h"
#include "spectrum/QL_FFT.h"
#include "view/DataRange.h"
#include "view/QL_ChUtils.h"
#include "view/Readout.h"
#include "view/Statistics.h"

namespace quillon::fuzz {

namespace {

/// The block as the viewer keeps it.
ViewBlock Loaded(const std::shared_ptr<FileBlock>& block) {
    ViewBlock loaded;
    loaded.block = block;
    block->Prepare();
    loaded.sampleCount = block->SampleCount();
    loaded.sampleRate = block->SampleRate();
    loaded.startTime = block->StartTime();
    loaded.channelCount = block->ChannelCount();
    for (std::int16_t channel = 1; channel <= loaded.channelCount; ++channel) {
        const float scale = block->ChannelScale(channel);
        loaded.channelNumbers.push_back(block->ChannelNumber(channel));
        loaded.invScale.push_back(scale == 0.0F ? 0.0F : 1.0F / scale);
        loaded.offsets.push_back(block->ChannelOffset(channel));
    }
    return loaded;
}

/// Keeps what is written.
class FileInMemory final : public OutputFile {
  public:
    explicit FileInMemory(std::vector<std::uint8_t>& bytes) : m_bytes(bytes) {}
    bool Create(const std::u16string&) override { return m_bytes.clear(), true; }
    bool Write(std::span<const std::byte> bytes) override {
        const auto* from = reinterpret_cast<const std::uint8_t*>(bytes.data());
        m_bytes.insert(m_bytes.end(), from, from + bytes.size());
        return true;
    }
    bool Close() override { return true; }
    [[nodiscard]] Bilingual ErrorText() const override { return {}; }

  private:
    std::vector<std::uint8_t>& m_bytes;
};

/// What is exported comes back with the same codes, or is refused with a reason.
void CheckExports(RecordingBlock& block, std::uint32_t choice) {
    const std::int32_t first = static_cast<std::int32_t>(choice % 7) * block.SampleCount() / 14 + 1;
    const std::int32_t count = std::min(block.SampleCount() - first + 1, 5000 / block.ChannelCount());
    std::vector<std::uint8_t> bytes;
    KV_Export writers({[&] { return std::make_unique<FileInMemory>(bytes); }});
    const auto as = [&](bool (KV_Export::*write)(RecordingBlock*, const std::u16string&, std::int32_t, std::int32_t)) {
        return [&, write](const std::u16string& name) { return (writers.*write)(&block, name, first, count); };
    };
    const auto asEdfPlus = [&](const std::u16string& name) {
        return EdfPlusWriter(writers).Write(&block, name, {first, count, AllChannels(block)});
    };
    const std::pair<std::function<bool(const std::u16string&)>, std::u16string_view> formats[] = {
        {as(&KV_Export::WriteBinFile), u"a.bin"},
        {as(&KV_Export::WriteWavFile), u"a.wav"},
        {as(&KV_Export::WriteEdfFile), u"a.edf"},
        {asEdfPlus, u"plus.edf"}};
    for (const auto& [write, name] : formats) {
        try {
            if (!write(std::u16string(name))) {
                Require(!writers.LastFailure().empty(), "a refused export has a reason");
                continue;
            }
        } catch (const ReadError&) {
            throw;
        } catch (const FormatError& error) {
            Require(!error.Reason().english.empty(), "a format that cannot hold the block says why");
            continue;
        }
        const RecordingContent read = ReadRecording({std::make_shared<MemorySource>(bytes), std::u16string(name)});
        RecordingBlock& copy = *read.blocks.front();
        copy.Prepare();
        Require(copy.ChannelCount() == block.ChannelCount(), "an export keeps the channels");
        Require(copy.SampleCount() == writers.Outcome().written, "an export keeps the samples that it tells");
        std::vector<std::int16_t> codes(static_cast<std::size_t>(copy.SampleCount()));
        std::vector<std::int16_t> written(codes.size());
        for (std::int16_t channel = 1; channel <= block.ChannelCount(); ++channel) {
            block.ReadCodes(channel, first - 1, copy.SampleCount(), codes.data());
            copy.ReadCodes(channel, 0, copy.SampleCount(), written.data());
            Require(codes == written, "an export keeps the codes");
        }
    }
}

/// Traces of cached extremes are those of reading every sample, whatever is seen first.
void CheckTraces(RecordingBlock& block, std::uint32_t choice) {
    TraceReader cached;
    ExtremesCache extremes;
    std::vector<std::int16_t> work;
    std::vector<TracePoint> points;
    const std::vector<std::int16_t> channels{1, block.ChannelCount()};
    for (const std::int32_t samplesPerPixel : {1, 2, 5, 500, 100}) {
        const std::int32_t first =
            block.SampleCount() > 0 ? static_cast<std::int32_t>(choice) % block.SampleCount() / 2 : 0;
        const std::int32_t aligned = first / samplesPerPixel * samplesPerPixel;
        const std::int32_t count = std::min(block.SampleCount() - aligned, samplesPerPixel * 60 + 3);
        cached.Read(block, extremes, channels, {{aligned, count}, samplesPerPixel});
        // What could not be read ends the trace early.
        if (!cached.Failure().empty()) return;
        for (std::size_t at = 0; at < channels.size(); ++at) {
            DrawChannelTrace(block, channels[at], aligned, count, samplesPerPixel, work, points);
            Require(cached.points()[at] == points, "a cached trace is the trace");
        }
    }
}

/// Any way of scrolling shows the spectra of their columns.
void CheckSpectra(const ViewBlock& block, std::uint32_t choice, bool shrinks) {
    SpectrumSettings settings;
    settings.order = 5 + static_cast<std::int32_t>(choice % 4);
    settings.window = static_cast<std::int16_t>(choice / 4 % 4);
    settings.type = static_cast<std::int16_t>(choice / 16 % 2);
    SpectrumSettings same = settings;
    QL_FFT scrolled(settings);
    QL_FFT direct(same);
    ExtremesCache extremes;
    RangeRecords ranges(extremes);
    const std::array<std::int16_t, 1> channel{1};
    const ValueRange limits = ranges.Of(block, channel).value_or(ValueRange{});
    constexpr std::int32_t columns = 40;
    const std::int32_t hop = 1 + static_cast<std::int32_t>(choice / 32 % 50);
    for (QL_FFT* spectrum : {&scrolled, &direct}) {
        spectrum->FFT_Init(columns);
        spectrum->FFT_SetChannel(block.block.get(), 0, 0, limits);
    }
    for (const std::int32_t first : {0, 13, 5}) scrolled.FFT_Update(first, columns, hop, false);
    direct.FFT_Update(5, columns, hop, true);
    // What was read before the file became shorter stays in the image.
    Require(shrinks || std::ranges::equal(scrolled.Image(), direct.Image()),
            "a scrolled spectrogram is the spectrogram");
}

void CheckReadouts(const ViewBlock& block, std::uint32_t choice) {
    const ChannelSlots slots;
    FormatOptions format;
    format.timeOfDay = choice % 2 == 1;
    format.sampleIndexes = choice % 3 == 1;
    const ReadoutSource source{block, slots, format, choice % 5 == 1};
    const std::int32_t last = block.sampleCount;
    const std::int32_t first = std::max(last - 2000, 1);
    Require(HoverReadout(source, last).starts_with(u"X:\t"), "a readout begins with the position");
    Require(RangeReadout(source, {true, 1, last, first}).starts_with(u"dX:\t"), "a range begins with its length");
    for (const ChannelStatistics& channel : StatisticsOf(source, {first - 1, last - first + 1})) {
        Require(!(channel.minimum > channel.maximum), "the minimum is not above the maximum");
        Require(!(channel.deviation < 0.0), "no negative deviation");
    }
    TraceReader reader;
    ExtremesCache extremes;
    const std::vector<std::int16_t> one{1};
    reader.Read(*block.block, extremes, one, {{first - 1, last - first + 1}, 1});
    const std::optional<ValueRange> range = CentralRange(block, one, reader.points(), choice % 5 == 1);
    Require(!range || !(range->minimum > range->maximum), "the lower end of a range is not above the upper one");
}

}  // namespace

void CheckUses(std::span<const std::uint8_t> bytes) {
    const std::optional<FuzzedRecording> recording = OpenFuzzed(bytes);
    if (!recording) return;
    const std::uint32_t choice = bytes.size() < 2 ? 0U : bytes[0] * 256U + bytes[bytes.size() / 2];
    std::size_t left = 4;
    for (const std::size_t at : BlocksToCheck(recording->content)) {
        if (left-- == 0) return;
        try {
            const ViewBlock block = Loaded(recording->content.blocks[at]);
            if (block.sampleCount == 0) continue;
            CheckExports(*block.block, choice);
            CheckTraces(*block.block, choice);
            CheckSpectra(block, choice, recording->shrinks);
            CheckReadouts(block, choice);
        } catch (const ReadError&) {
            // The file has become shorter.
        }
    }
}

}  // namespace quillon::fuzz
