#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "sound/SoundOutput.h"

namespace quillon::testing {

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
