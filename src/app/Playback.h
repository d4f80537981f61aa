#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "data/Document.h"
#include "sound/QLSound.h"
#include "view/WaveformView.h"

namespace quillon {

/// Plays the document through the sound card, tracks the playback position, and decides whether the view follows it:
/// from when the playback line is in view until the user scrolls or jumps elsewhere.
class Playback {
  public:
    /// All arguments must outlive this object.
    Playback(const Document& document, const WaveformView& view, const UserServices& services,
             const SoundOutputFactory& makeOutput)
        : m_document(document), m_view(view), m_services(services), m_makeOutput(makeOutput) {}

    // Callbacks, set by the owner. An exception thrown by one of them is caught and passed to onFailed.
    std::function<void()> onState;  ///< the device list or the playing state has changed
    std::function<void()> onPosition;
    std::function<void(const std::u16string& text)> onError;  ///< why playback did not start or has stopped
    /// Request to scroll the view by that many columns.
    std::function<void(std::int32_t columns)> onScroll;
    std::function<void(const std::exception& error)> onFailed;  ///< another callback has thrown

    /// Enumerates the sound devices, which may take long. Until it is called the device list is empty and nothing is
    /// played.
    void Open();
    /// Stops playback and releases the device; it cannot be started again.
    void Close() { m_sound.reset(); }
    /// Enumerates the devices again; some may have been plugged in or removed.
    void LookForDevices();
    [[nodiscard]] std::int16_t DeviceCount() const { return m_sound ? m_sound->DeviceCount() : std::int16_t{0}; }
    [[nodiscard]] std::vector<std::u16string> DeviceNames() const;
    /// -1 while the chosen device is not connected.
    [[nodiscard]] std::int16_t Device() const { return m_sound ? m_sound->Device() : std::int16_t{-1}; }
    void ChooseDevice(std::int16_t index);

    [[nodiscard]] bool IsPlaying() const { return m_sound && m_sound->Playing(); }
    /// Sample being played, from 1; 0 while stopped.
    [[nodiscard]] std::int32_t Position() const { return m_position; }
    /// Plays the selection, or without one the visible range, of one channel (from 1) or, for 0, of all.
    void Play(std::int16_t channel);
    void Stop();
    /// The view was changed by a command.
    void ViewChanged(const ViewChange& change);

  private:
    [[nodiscard]] bool IsInView() const;
    void SetPosition(std::int32_t sample);
    void OnProgress(std::int32_t sample);
    void OnStopped();
    void End();

    const Document& m_document;
    const WaveformView& m_view;
    const UserServices& m_services;
    const SoundOutputFactory& m_makeOutput;
    std::unique_ptr<QLSound> m_sound;
    std::int32_t m_position = 0;
    bool m_follows = false;  ///< the playback line was in view, and the user has not scrolled away from it
};

}  // namespace quillon
