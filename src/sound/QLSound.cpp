#include "sound/QLSound.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <utility>

#include "base/Text.h"
#include "data/CoreTexts.h"

namespace quillon {

QLSound::QLSound(const ViewBlock& block, const UserServices& services, const SoundOutputFactory& makeOutput)
    : m_block(block), m_services(services) {
    SoundOutputEvents events;
    events.started = [this] {
        if (onStarted) onStarted();
    };
    events.writeProgress = [this](std::int64_t played) { OnProgress(played); };
    events.moreWanted = [this] {
        if (m_playing) Guard([this] { WriteNext(); });
    };
    events.stopped = [this] { OnStopped(); };
    try {
        m_objOut = makeOutput(std::move(events));
    } catch (const std::exception&) {
        // A system without sound is no fault of the program: it merely cannot play.
        m_objOut.reset();
    }
    Refresh();
}

QLSound::~QLSound() {
    Stop();
}

bool QLSound::Refresh() {
    m_available = m_objOut != nullptr && m_objOut->DeviceCount() > 0;
    if (m_available) FindChosen();
    return m_available;
}

void QLSound::FindChosen() {
    m_chosenIsThere = true;
    // Two devices may have the same name: the index that was chosen comes first.
    if (m_chosen.empty() || m_objOut->DeviceName(m_objOut->Device()) == m_chosen) return;
    const std::int16_t count = m_objOut->DeviceCount();
    for (std::int16_t index = 0; index < count; ++index) {
        if (m_objOut->DeviceName(index) == m_chosen) return m_objOut->PutDevice(index);
    }
    m_chosenIsThere = false;
}

std::int16_t QLSound::DeviceCount() const {
    return m_available ? m_objOut->DeviceCount() : std::int16_t{0};
}

std::u16string QLSound::DeviceName(std::int16_t index) const {
    return m_available ? m_objOut->DeviceName(index) : std::u16string();
}

std::int16_t QLSound::Device() const {
    if (!m_available) return 0;
    return m_chosenIsThere ? m_objOut->Device() : std::int16_t{-1};
}

void QLSound::PutDevice(std::int16_t index) {
    if (!m_available || index < 0 || index >= m_objOut->DeviceCount()) return;
    m_objOut->PutDevice(index);
    m_chosen = m_objOut->DeviceName(index);
    m_chosenIsThere = true;
}

void QLSound::BecomeIdle() {
    m_playing = false;
    m_begin = m_end = m_next = m_heard = 0;
    // The recording can be closed.
    m_source.reset();
}

void QLSound::Stop() {
    // Not only when available: the last device may have been pulled out during a playback.
    if (m_playing) {
        BecomeIdle();
        m_objOut->Stop();
    }
    m_errorText.clear();
}

void QLSound::Fail(std::u16string text) {
    BecomeIdle();
    m_objOut->Stop();
    m_errorText = std::move(text);
}

template <typename Action>
void QLSound::Guard(Action action) {
    try {
        action();
    } catch (const std::exception& error) {
        Fail(m_services.Text(IDS_SOUND_UNREADABLE) + u": " + Utf16(error.what()));
    }
}

bool QLSound::OpenOutput() {
    const std::int32_t maximum = m_objOut->MaximumRate();
    // The bound only keeps the number within a single's range.
    m_rate = static_cast<float>(std::min(std::nearbyint(m_block.sampleRate), 1e9));
    // Played slower than recorded rather than not at all.
    if (m_rate >= 10.0F && static_cast<float>(maximum) < m_rate) m_rate = static_cast<float>(maximum);
    // A rate below half a sample per second, or none, is for the device to refuse.
    const bool countable = m_rate >= 1.0F;
    return m_objOut->Open(m_channelCount, countable ? static_cast<std::int32_t>(m_rate) : 0);
}

void QLSound::Play(std::int16_t channel, std::int32_t first, std::int32_t sampleCount) {
    Stop();
    if (!Refresh() || m_block.stored == nullptr || channel > m_block.channelCount) return;
    if (!m_chosenIsThere) {
        m_errorText = m_chosen + u": " + m_services.Text(IDS_SOUND_DEVICE_GONE);
        return;
    }
    m_allChannels = channel <= 0;
    m_firstChannel = std::max<std::int16_t>(channel, 1);
    m_channelCount = m_allChannels ? m_block.channelCount : std::int16_t{1};
    if (!OpenOutput()) {
        m_errorText = m_objOut->ErrorText();
        return;
    }
    Guard([&] { Start(first, sampleCount); });
}

void QLSound::Start(std::int32_t first, std::int32_t sampleCount) {
    const std::int64_t begin = std::int64_t{first} - 1;
    const std::int64_t end = std::min<std::int64_t>(begin + sampleCount, m_block.sampleCount);
    // Two samples, of all channels together, make no sound.
    if (begin < 0 || (end - begin) * m_channelCount < 3) {
        Fail(m_services.Text(IDS_SOUND_NO_DATA));
        return;
    }
    m_begin = m_next = m_heard = static_cast<std::int32_t>(begin);
    m_end = static_cast<std::int32_t>(end);
    m_source = m_block.stored;
    WriteNext();
    m_playing = true;
}

void QLSound::WriteNext() {
    const std::int32_t count = std::min(m_end - m_next, kFramesPerBuffer);
    if (count == 0) return;
    m_buffer.resize(static_cast<std::size_t>(count) * static_cast<std::size_t>(m_channelCount));
    if (m_allChannels) {
        m_source->ReadFrames(m_next, count, m_buffer.data());
    } else {
        m_source->ReadCodes(m_firstChannel, m_next, count, m_buffer.data());
    }
    m_objOut->Write(m_buffer.data(), count);
    m_next += count;
}

void QLSound::OnProgress(std::int64_t played) {
    if (!m_playing) return;
    // Devices report positions that jump back a little, and some past the end.
    const std::int64_t sample = std::min<std::int64_t>(m_begin + played, m_end - 1);
    m_heard = std::max(m_heard, static_cast<std::int32_t>(std::max<std::int64_t>(sample, m_begin)));
    if (onPlayProgress) onPlayProgress(m_heard + 1);
}

void QLSound::OnStopped() {
    if (m_playing) {
        BecomeIdle();
        m_errorText = m_objOut->ErrorText();
    }
    if (onStopped) onStopped();
}

}  // namespace quillon
