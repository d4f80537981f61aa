#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "data/QL_Types.h"
#include "data/UserServices.h"
#include "kvsound/SoundOutput.h"

namespace quillon {

/// Plays the codes of the loaded block through the sound card, unscaled, one channel or all at once, and reports the
/// position. Owns the sound output, and during a playback a share of the block. Everything happens on the window's
/// thread; the samples are read piece by piece, so the length of a playback costs neither time at its start nor memory.
/// No function throws or asks the user: on any failure the object is idle and has an error text.
class QLSound {
  public:
    /// `block` is what the viewer has loaded at the time of each Play; it and `services` must outlive the object.
    /// Without an output (none can be made, or it knows no device) every operation does nothing.
    QLSound(const ViewBlock& block, const UserServices& services, const SoundOutputFactory& makeOutput);
    ~QLSound();
    QLSound(const QLSound&) = delete;
    QLSound& operator=(const QLSound&) = delete;

    // Callbacks, set by the owner; each may call any operation but must not destroy the object. Stop raises onStopped
    // too, asynchronously, unless a Play follows before.
    std::function<void()> onStarted;
    std::function<void()> onStopped;
    /// The sample of the block being played, counted from 1 as in Play. Never goes back within a playback.
    std::function<void(std::int32_t sample)> onPlayProgress;

    [[nodiscard]] std::int16_t DeviceCount() const;
    /// Of device 0 .. DeviceCount-1; empty for any other.
    [[nodiscard]] std::u16string DeviceName(std::int16_t index) const;
    /// -1 while the chosen device is not connected.
    [[nodiscard]] std::int16_t Device() const;
    /// Chooses a device by its name, whatever its index becomes; takes effect with the next Play. While it is not there
    /// nothing is played on another one. An index without a device changes nothing.
    void PutDevice(std::int16_t index);
    /// Whether there was a device when the object was created, or at the last Refresh.
    [[nodiscard]] bool Available() const { return m_available; }
    /// Enumerates the devices again, as Play does too. Returns Available.
    bool Refresh();
    [[nodiscard]] bool Playing() const { return m_playing; }
    /// Why the last Play did not start or was aborted; empty otherwise, and after Stop.
    [[nodiscard]] std::u16string ErrorText() const { return m_errorText; }
    void Stop();
    /// Plays samples first (from 1) .. first+sampleCount-1, as far as the block has them, of one channel (from 1) or,
    /// for 0 and below, of all. A channel that the block does not have is not played. What was playing ends first.
    void Play(std::int16_t channel, std::int32_t first, std::int32_t sampleCount);

  private:
    static constexpr std::int32_t kFramesPerBuffer = 4096;

    void FindChosen();
    void Start(std::int32_t first, std::int32_t sampleCount);
    [[nodiscard]] bool OpenOutput();
    void WriteNext();
    void Fail(std::u16string text);
    void OnProgress(std::int64_t played);
    void OnStopped();
    void BecomeIdle();
    /// Runs what reads the block; a failure ends the playback with its reason as the error text.
    template <typename Action>
    void Guard(Action action);

    const ViewBlock& m_block;
    const UserServices& m_services;
    bool m_available = false;
    bool m_playing = false;
    std::u16string m_chosen;  ///< name of the chosen device; empty before one was chosen
    bool m_chosenIsThere = true;
    std::u16string m_errorText;
    std::int16_t m_firstChannel = 0;  ///< from 1
    std::int16_t m_channelCount = 0;
    bool m_allChannels = false;
    float m_rate = 0.0F;  ///< samples per second as the device plays them

    std::shared_ptr<RecordingBlock> m_source;  ///< only while playing
    std::vector<std::int16_t> m_buffer;
    // All in samples of the block, from 0.
    std::int32_t m_begin = 0;
    std::int32_t m_end = 0;
    std::int32_t m_next = 0;   ///< to be written next
    std::int32_t m_heard = 0;  ///< the last one reported to the owner

    /// Last, because its events refer to the other members.
    std::unique_ptr<SoundOutput> m_objOut;
};

}  // namespace quillon
