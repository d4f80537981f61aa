#include <algorithm>
#include <cmath>
#include <set>
#include <vector>

#include "fuzz/Checks.h"
#include "fuzz/FuzzedRecording.h"

namespace quillon::fuzz {

namespace {

// Per block, over all channels.
constexpr std::int32_t kSamples = 3000;
constexpr std::int32_t kSamplesOfLong = 100000;

void CheckDescription(const RecordingBlock& block) {
    Require(block.ChannelCount() >= 1 && block.ChannelCount() <= 32, "1 to 32 channels");
    Require(block.SampleRate() > 0.0 && std::isfinite(block.SampleRate()), "a rate above 0");
    Require(block.SampleCount() >= 0, "no negative number of samples");
    std::set<std::int16_t> numbers;
    for (std::int16_t channel = 1; channel <= block.ChannelCount(); ++channel) {
        const std::int16_t number = block.ChannelNumber(channel);
        Require(number >= 0 && number < 32 && numbers.insert(number).second, "unique channel numbers from 0 to 31");
        Require(block.InputNumber(channel) >= 1, "inputs count from 1");
        static_cast<void>(block.ChannelTitle(channel).size() + block.ChannelUnit(channel).size());
    }
    std::int32_t earlier = 0;
    for (std::int32_t mark = 1; mark <= std::min(block.MarkCount(), 1000); ++mark) {
        const std::int32_t position = block.MarkPosition(mark);
        Require(position >= earlier && position < block.SampleCount(), "marks in order inside the block");
        earlier = position;
        static_cast<void>(block.MarkText(mark).size());
    }
    static_cast<void>(block.Title().size() + block.DeviceName().size() + block.BlockName().size());
}

void CheckValues(const RecordingBlock& block, std::int16_t channel, std::span<const std::int16_t> codes,
                 std::span<const float> values) {
    const float scale = block.ChannelScale(channel);
    const float offset = block.ChannelOffset(channel);
    Require(std::isfinite(scale) && std::isfinite(offset), "finite scales and offsets");
    for (std::size_t at = 0; at < codes.size(); ++at) {
        const float value = static_cast<float>(codes[at]) * scale + offset;
        Require(values[at] == value || (std::isnan(values[at]) && std::isnan(value)),
                "values = codes x scale + offset");
    }
}

}  // namespace

RunExtremes PlainExtremes(const std::int16_t* from, const std::int16_t* to) {
    const auto* maximum = std::max_element(from, to);
    const auto* minimum = std::min_element(from, to);
    return minimum < maximum ? RunExtremes{*minimum, *maximum} : RunExtremes{*maximum, *minimum};
}

void CheckRange(RecordingBlock& block, std::int32_t first, std::int32_t count, std::int32_t run) {
    const auto channels = static_cast<std::size_t>(block.ChannelCount());
    const auto size = static_cast<std::size_t>(count);
    const std::size_t runs = (size + static_cast<std::size_t>(run) - 1) / static_cast<std::size_t>(run);
    std::vector<std::int16_t> frames(size * channels);
    std::vector<std::int16_t> rows(size * channels);
    Require(block.ReadFrames(first, count, frames.data()) == 0, "frames are read");
    Require(block.ReadRows(first, count, rows.data()) == 0, "rows are read");
    // Asked for in another order than they are stored in.
    std::vector<std::int16_t> numbers;
    std::vector<std::vector<RunExtremes>> extremes(channels, std::vector<RunExtremes>(runs));
    std::vector<RunExtremes*> out;
    for (std::size_t channel = channels; channel-- > 0;) {
        numbers.push_back(static_cast<std::int16_t>(channel + 1));
        out.push_back(extremes[channel].data());
    }
    const bool reduced = block.ColumnExtremes(numbers, first, count, run, out);
    std::vector<std::int16_t> codes(size);
    std::vector<float> values(size);
    for (std::size_t channel = 0; channel < channels; ++channel) {
        const auto number = static_cast<std::int16_t>(channel + 1);
        Require(block.ReadCodes(number, first, count, codes.data()) == 0, "codes are read");
        Require(block.ReadValues(number, first, count, values.data()) == 0, "values are read");
        CheckValues(block, number, codes, values);
        Require(std::equal(codes.begin(), codes.end(), rows.begin() + static_cast<std::ptrdiff_t>(channel * size)),
                "rows hold the codes");
        for (std::size_t at = 0; at < size; ++at)
            Require(codes[at] == frames[at * channels + channel], "frames hold the codes");
        for (std::size_t at = 0; reduced && at < runs; ++at) {
            const std::size_t from = at * static_cast<std::size_t>(run);
            const std::size_t to = std::min(from + static_cast<std::size_t>(run), size);
            Require(extremes[channel][at] == PlainExtremes(codes.data() + from, codes.data() + to),
                    "extremes are those of the codes");
        }
        // A single one of several channels takes another code path.
        std::vector<RunExtremes> alone(runs);
        RunExtremes* const only = alone.data();
        Require(
            block.ColumnExtremes({&number, 1}, first, count, run, {&only, 1}) == reduced && alone == extremes[channel],
            "extremes of one channel are those of all");
    }
}

namespace {

void CheckBlock(RecordingBlock& block, std::int32_t most) {
    CheckDescription(block);
    block.PrepareQuickly();
    while (block.PrepareMore()) {
    }
    Require(!block.IsProvisional() && block.PreparedShare() == 1.0, "a finished pass is finished");
    const std::int32_t samples = block.SampleCount();
    const std::int32_t size = std::min(samples, most / block.ChannelCount());
    CheckRange(block, 0, size, 7);
    CheckRange(block, samples - size, size, 1000);
    CheckRange(block, samples / 2, std::min(samples - samples / 2, 5), 1);
}

}  // namespace

void CheckReaders(std::span<const std::uint8_t> bytes) {
    const std::optional<FuzzedRecording> recording = OpenFuzzed(bytes);
    if (!recording) return;
    for (const std::size_t at : BlocksToCheck(recording->content)) {
        try {
            CheckBlock(*recording->content.blocks[at], recording->isLong ? kSamplesOfLong : kSamples);
        } catch (const ReadError& error) {
            Require(!error.Reason().english.empty() && !error.Reason().russian.empty(), "a failed read has a reason");
        }
    }
}

}  // namespace quillon::fuzz
