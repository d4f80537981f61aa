#pragma once

#include <algorithm>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "data/UserServices.h"
#include "kvsound/SoundOutput.h"
#include "norvik/NorvikCore.h"
#include "norvik/SaveFileDialog.h"

namespace quillon::testing {

/// A block in memory: planar samples, one vector per channel. Any call named in `failing` throws, and any that would
/// read a sample of the hole.
class FakeBlock : public RecordingBlock {
  public:
    std::u16string title;
    double start = 45000.5;
    double rate = 100.0;
    std::vector<std::vector<std::int16_t>> samples;
    std::vector<std::int16_t> numbers;
    std::vector<std::int16_t> inputs;
    std::vector<std::u16string> titles;
    std::vector<std::u16string> units;  ///< volts where there are none
    std::vector<float> scales;
    std::vector<float> offsets;  ///< the channel's number where there are none
    bool fills = false;          ///< answer of FillsCodes
    std::vector<std::pair<std::int32_t, std::u16string>> marks;
    std::map<std::int32_t, double> durations;  ///< of marks, by their number from 1
    std::vector<std::string> failing;
    std::int32_t holeFrom = 0, holeTo = 0;  ///< samples from 0 that cannot be read, the second one outside

    void Prepare() override { Ask("Prepare"), stepsLeft = 0, provisional = {}; }
    /// Provisional scales and the steps of the pass that ends with `scales`.
    std::vector<float> provisional;
    int stepsLeft = 0;
    void PrepareQuickly() override {
        if (provisional.empty()) Prepare();
    }
    bool PrepareMore() override {
        if (stepsLeft > 0 && --stepsLeft == 0) provisional = {};
        return stepsLeft > 0;
    }
    bool IsProvisional() const override { return !provisional.empty(); }
    std::u16string Title() const override { return Ask("Title"), title; }
    double StartTime() const override { return Ask("StartTime"), start; }
    double SampleRate() const override { return Ask("SampleRate"), rate; }
    std::int32_t SampleCount() const override {
        return Ask("SampleCount"), samples.empty() ? 0 : static_cast<std::int32_t>(samples[0].size());
    }
    std::int16_t ChannelCount() const override {
        return Ask("ChannelCount"), static_cast<std::int16_t>(samples.size());
    }
    std::int16_t ChannelNumber(std::int16_t channel) const override {
        Ask("ChannelNumber");
        return numbers.empty() ? static_cast<std::int16_t>(channel - 1) : numbers.at(Index(channel));
    }
    std::u16string ChannelTitle(std::int16_t channel) const override {
        Ask("ChannelTitle");
        return titles.empty() ? std::u16string() : titles.at(Index(channel));
    }
    std::u16string ChannelUnit(std::int16_t channel) const override {
        return Ask("ChannelUnit"), units.empty() ? u"V" : units.at(Index(channel));
    }
    float ChannelScale(std::int16_t channel) const override {
        Ask("ChannelScale");
        if (!provisional.empty()) return provisional.at(Index(channel));
        return scales.empty() ? 0.5F : scales.at(Index(channel));
    }
    bool FillsCodes(std::int16_t) const override { return fills; }
    float ChannelOffset(std::int16_t channel) const override {
        return Ask("ChannelOffset"), offsets.empty() ? static_cast<float>(channel) : offsets.at(Index(channel));
    }
    std::int32_t ReadCodes(std::int16_t channel, std::int32_t first, std::int32_t count,
                           std::int16_t* buffer) override {
        Ask("ReadCodes", first, count);
        const auto& data = samples.at(Index(channel));
        if (first < 0 || count < 0 || static_cast<std::size_t>(first) + static_cast<std::size_t>(count) > data.size()) {
            throw std::out_of_range("samples outside the block");
        }
        samplesRead += count;
        std::copy_n(data.begin() + first, count, buffer);
        return 0;
    }
    std::int32_t ReadValues(std::int16_t channel, std::int32_t first, std::int32_t count, float* buffer) override {
        std::vector<std::int16_t> codes(static_cast<std::size_t>(count));
        ReadCodes(channel, first, count, codes.data());
        for (const std::int16_t code : codes)
            *buffer++ = static_cast<float>(code) * ChannelScale(channel) + ChannelOffset(channel);
        return 0;
    }
    std::int32_t MarkCount() const override { return Ask("MarkCount"), static_cast<std::int32_t>(marks.size()); }
    std::int32_t MarkPosition(std::int32_t mark) const override {
        return Ask("MarkPosition"), marks.at(static_cast<std::size_t>(mark - 1)).first;
    }
    std::u16string MarkText(std::int32_t mark) const override {
        return Ask("MarkText"), marks.at(static_cast<std::size_t>(mark - 1)).second;
    }
    double MarkDuration(std::int32_t mark) const override {
        const auto found = durations.find(mark);
        return found == durations.end() ? 0.0 : found->second;
    }
    std::u16string DeviceName() const override { return {}; }
    std::u16string BlockName() const override { return {}; }
    std::int16_t InputNumber(std::int16_t channel) const override {
        return inputs.empty() ? channel : inputs.at(Index(channel));
    }
    std::int32_t ReadFrames(std::int32_t first, std::int32_t count, std::int16_t* buffer) override {
        Ask("ReadFrames", first, count);
        samplesRead += std::int64_t{count} * ChannelCount();
        for (std::int32_t at = first; at < first + count; ++at) {
            for (const auto& channel : samples) *buffer++ = channel.at(static_cast<std::size_t>(at));
        }
        return 0;
    }
    bool FramesAreCheap() const override { return framed; }
    bool framed = false;  ///< whether it says that it stores its samples as frames
    std::int32_t SamplesPerPiece() const override { return pieceSamples; }
    std::int32_t pieceSamples = 1 << 19;
    mutable std::int64_t samplesRead = 0;  ///< of all channels together, since it was set to 0
    bool ColumnExtremes(std::span<const std::int16_t> channels, std::int32_t first, std::int32_t count,
                        std::int32_t run, std::span<RunExtremes* const> out) override {
        Ask("ColumnExtremes", first, count);
        if (!offersExtremes) return false;
        samplesRead += std::int64_t{count} * static_cast<std::int64_t>(channels.size());
        for (std::size_t at = 0; at < channels.size(); ++at) {
            nsp::PlanarRunReducer reducer(run, out[at]);
            reducer.Feed(samples.at(Index(channels[at])).data() + first, static_cast<std::size_t>(count));
            reducer.Finish();
        }
        return true;
    }
    bool offersExtremes = true;
    /// Names of the calls made, in order; a name once per stretch of equal calls.
    mutable std::vector<std::string> calls;

  private:
    static std::size_t Index(std::int16_t channel) { return static_cast<std::size_t>(channel) - 1; }
    void Ask(const char* name, std::int64_t first = 0, std::int64_t count = 0) const {
        if (first < holeTo && first + count > holeFrom) throw std::runtime_error("hole");
        if (calls.empty() || calls.back() != name) calls.emplace_back(name);
        if (std::find(failing.begin(), failing.end(), name) != failing.end()) throw std::runtime_error(name);
    }
};

class FakeRecording : public Recording {
  public:
    std::u16string name;
    std::vector<OtherFile> others;
    std::vector<std::shared_ptr<FakeBlock>> blocks;
    std::vector<std::function<void()>> steps;  ///< what ReadMore does, the last one first
    std::int32_t version = 0;
    std::vector<std::pair<std::int16_t, std::int32_t>> asked;  ///< of ReadMore
    bool ReadMore(std::int16_t block, std::int32_t nearSample) override {
        asked.emplace_back(block, nearSample);
        if (steps.empty()) return false;
        ++version;
        steps.back()();
        steps.pop_back();
        return !steps.empty();
    }
    std::vector<OtherFile> OtherFiles() const override { return others; }
    std::int32_t Version() const override { return version; }
    double ReadShare() const override { return steps.empty() ? 1.0 : 0.0; }
    std::u16string FileName() const override { return name; }
    std::u16string FormatName() const override { return u"FAKE"; }
    std::u16string FileInfo() const override { return u"fake"; }
    std::int16_t BlockCount() const override { return static_cast<std::int16_t>(blocks.size()); }
    std::shared_ptr<RecordingBlock> GetBlock(std::int16_t number) override {
        return blocks.at(static_cast<std::size_t>(number) - 1);
    }
};

/// Opens what is registered under a lower-case or any other exact path; refuses the rest.
class FakeLibrary : public RecordingLibrary {
  public:
    std::map<std::u16string, std::shared_ptr<FakeRecording>> files;
    int opened = 0;
    int closed = 0;
    bool OpenRecording(const std::u16string& fileName, std::shared_ptr<Recording>& recording) override {
        const auto found = files.find(fileName);
        recording = found == files.end() ? nullptr : found->second;
        if (recording) ++opened;
        return recording != nullptr;
    }
    void CloseRecording(std::shared_ptr<Recording>& recording) override {
        ++closed;
        recording.reset();
    }
    std::u16string LastErrorText() const override { return u"no such thing"; }
    std::int32_t FileTypeCount() const override { return 0; }
    std::u16string FileTypeName(std::int32_t) const override { return u"All"; }
    std::u16string FileTypeMask(std::int32_t) const override { return u"*.fake"; }
};

/// Keeps what the core said.
class FakeServices : public UserServices {
  public:
    std::vector<std::u16string> messages;
    std::u16string status;
    using UserServices::ShowMessage;
    void ShowMessage(const std::u16string& text, const std::u16string&) override { messages.push_back(text); }
    bool Ask(const std::u16string& text) override { return messages.push_back(text), false; }
    void SetStatus(const std::u16string& text) override { status = text; }
    std::u16string Text(int id) const override {
        return id == 501 ? u"Канал" : u"#" + std::u16string(1, static_cast<char16_t>(id));
    }
    std::u16string DateAndTime(double) const override { return u"15.03.2023 12:00:00"; }
    std::u16string LongTime(double date) const override { return date == 45000.5 ? u"12:00:00" : u"?"; }
};

/// Answers with what a test set up.
class FakeSaveDialog : public SaveFileDialog {
  public:
    std::function<bool(FakeSaveDialog&)> answer = [](FakeSaveDialog&) { return false; };
    bool Show() override { return answer(*this); }
};

/// A device whose events the test raises. Outlives the QLSound, which owns only a share in it.
struct DeviceState {
    SoundOutputEvents events;
    std::int16_t count = 1;
    std::int16_t chosen = 0;
    std::vector<std::u16string> names = std::vector<std::u16string>(10, u"card");
    std::int32_t maximumRate = 192000;
    std::u16string errorText;
    std::u16string refusal;  ///< Open refuses when not empty
    std::vector<std::string> calls;
    std::vector<std::int16_t> written;
    std::vector<std::int32_t> writes;
};

class FakeOutput : public SoundOutput {
  public:
    explicit FakeOutput(DeviceState& device) : m_device(device) {}
    std::int16_t DeviceCount() const override { return m_device.count; }
    std::u16string DeviceName(std::int16_t index) const override {
        return index < m_device.count ? m_device.names.at(static_cast<std::size_t>(index)) : std::u16string();
    }
    std::int16_t Device() const override { return m_device.chosen; }
    void PutDevice(std::int16_t index) override { m_device.chosen = index; }
    std::u16string ErrorText() const override { return m_device.errorText; }
    std::int32_t MaximumRate() const override { return m_device.maximumRate; }
    void Stop() override {
        m_device.calls.emplace_back("stop");
        m_device.errorText.clear();
    }
    bool Open(std::int16_t channelCount, std::int32_t rate) override {
        m_device.calls.push_back("open " + std::to_string(channelCount) + " " + std::to_string(rate));
        m_device.errorText = m_device.refusal;
        m_channels = channelCount;
        return m_device.refusal.empty();
    }
    void Write(const std::int16_t* samples, std::int32_t count) override {
        m_device.written.insert(m_device.written.end(), samples, samples + m_channels * count);
        m_device.writes.push_back(count);
    }

  private:
    DeviceState& m_device;
    std::ptrdiff_t m_channels = 0;
};

}  // namespace quillon::testing
