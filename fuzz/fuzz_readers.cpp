// Opens any bytes as a recording and asks every block everything; what the calls promise is checked, not only that they
// survive. The seeds in corpus/ are tiny recordings of every format; further real ones may be named as further folders:
//     fuzz_readers -max_total_time=300 -max_len=8192 work_folder fuzz/corpus ../shared/recordings/wav
#include <algorithm>
#include <cstdlib>
#include <set>
#include <vector>

#include "norvik/RecordingLibrary.h"

namespace {

using namespace quillon;

// A few bytes can promise thousands of blocks; looking at some of them keeps one input below a second.
constexpr std::size_t kMostBlocks = 24;
constexpr std::int32_t kMostSamples = 3000;

void Require(bool condition) {
    if (!condition) std::abort();
}

RunExtremes PlainExtremes(const std::int16_t* from, const std::int16_t* to) {
    const auto* maximum = std::max_element(from, to);
    const auto* minimum = std::min_element(from, to);
    return minimum < maximum ? RunExtremes{*minimum, *maximum} : RunExtremes{*maximum, *minimum};
}

void CheckDescription(const RecordingBlock& block) {
    Require(block.ChannelCount() >= 1 && block.ChannelCount() <= 32);
    Require(block.SampleRate() > 0.0 && block.SampleCount() >= 0);
    std::set<std::int16_t> numbers;
    for (std::int16_t channel = 1; channel <= block.ChannelCount(); ++channel) {
        const std::int16_t number = block.ChannelNumber(channel);
        Require(number >= 0 && number < 32 && numbers.insert(number).second);
        Require(block.InputNumber(channel) >= 1);
        static_cast<void>(block.ChannelTitle(channel).size() + block.ChannelUnit(channel).size());
    }
    std::int32_t earlier = 0;
    for (std::int32_t mark = 1; mark <= std::min(block.MarkCount(), 1000); ++mark) {
        Require(block.MarkPosition(mark) >= earlier && block.MarkPosition(mark) < block.SampleCount());
        earlier = block.MarkPosition(mark);
        static_cast<void>(block.MarkText(mark).size());
    }
    static_cast<void>(block.Title().size() + block.DeviceName().size() + block.BlockName().size());
}

/// All ways of reading a range agree.
void CheckRange(RecordingBlock& block, std::int32_t first, std::int32_t count, std::int32_t run) {
    const auto channels = static_cast<std::size_t>(block.ChannelCount());
    const auto size = static_cast<std::size_t>(count);
    const std::size_t runs = (size + static_cast<std::size_t>(run) - 1) / static_cast<std::size_t>(run);
    std::vector<std::int16_t> frames(size * channels);
    Require(block.ReadFrames(first, count, frames.data()) == 0);
    std::vector<std::int16_t> numbers;
    std::vector<RunExtremes> extremes(runs * channels);
    std::vector<RunExtremes*> out;
    for (std::size_t channel = 0; channel < channels; ++channel) {
        numbers.push_back(static_cast<std::int16_t>(channel + 1));
        out.push_back(extremes.data() + channel * runs);
    }
    const bool reduced = block.ColumnExtremes(numbers, first, count, run, out);
    std::vector<std::int16_t> codes(size);
    std::vector<float> values(size);
    for (std::size_t channel = 0; channel < channels; ++channel) {
        Require(block.ReadCodes(numbers[channel], first, count, codes.data()) == 0);
        Require(block.ReadValues(numbers[channel], first, count, values.data()) == 0);
        for (std::size_t at = 0; at < size; ++at) Require(codes[at] == frames[at * channels + channel]);
        for (std::size_t at = 0; reduced && at < runs; ++at) {
            const std::size_t from = at * static_cast<std::size_t>(run);
            const std::size_t to = std::min(from + static_cast<std::size_t>(run), size);
            Require(out[channel][at] == PlainExtremes(codes.data() + from, codes.data() + to));
        }
    }
}

void CheckBlock(RecordingBlock& block) {
    CheckDescription(block);
    const std::int32_t samples = block.SampleCount();
    const std::int32_t size = std::min(samples, kMostSamples / block.ChannelCount());
    CheckRange(block, 0, size, 7);
    CheckRange(block, samples - size, size, 1000);
    CheckRange(block, samples / 2, std::min(samples - samples / 2, 5), 1);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto source = std::make_shared<MemorySource>(std::vector<std::uint8_t>(data, data + size));
    try {
        // The extension sends what begins like no format to the reader of the richest header.
        const RecordingContent content = ReadRecording(source, u"input.edf");
        Require(!content.blocks.empty() && !content.info.english.empty() && !content.info.russian.empty());
        const std::size_t step = std::max<std::size_t>(content.blocks.size() / kMostBlocks, 1);
        for (std::size_t at = 0; at < content.blocks.size(); at += step) CheckBlock(*content.blocks[at]);
    } catch (const FormatError& error) {
        Require(!error.Reason().english.empty() && !error.Reason().russian.empty());
    }
    return 0;
}
