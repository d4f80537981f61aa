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

/// Plays the document through the sound card, knows the sample that is heard, and decides whether the view follows it:
/// from when the line of the sound is in view until the user goes elsewhere.
class Playback {
  public:
    /// All outlive it.
    Playback(const Document& document, const WaveformView& view, const UserServices& services,
             const SoundOutputFactory& makeOutput)
        : m_document(document), m_view(view), m_services(services), m_makeOutput(makeOutput) {}

    // What the owner may set to be told; none may throw, but what the owner does in them may: see onFailed.
    std::function<void()> onState;  ///< devices, or whether it plays
    std::function<void()> onPosition;
    std::function<void(const std::u16string& text)> onError;  ///< why nothing is played, or no more
    /// The view is to be moved by that many columns.
    std::function<void(std::int32_t columns)> onScroll;
    std::function<void(const std::exception& error)> onFailed;  ///< one of the others has thrown

    /// Looks for sound devices, which may take long. Before that there is none, and nothing is played.
    void Open();
    /// Ends the sound for good.
    void Close() { m_sound.reset(); }
    /// Devices may have come or gone.
    void LookForDevices();
    [[nodiscard]] std::int16_t DeviceCount() const { return m_sound ? m_sound->DeviceCount() : std::int16_t{0}; }
    [[nodiscard]] std::vector<std::u16string> DeviceNames() const;
    /// -1 while the chosen one is not there.
    [[nodiscard]] std::int16_t Device() const { return m_sound ? m_sound->Device() : std::int16_t{-1}; }
    void ChooseDevice(std::int16_t index);

    [[nodiscard]] bool IsPlaying() const { return m_sound && m_sound->Playing(); }
    /// Sample that is heard, from 1; 0 when none is.
    [[nodiscard]] std::int32_t Position() const { return m_position; }
    /// Plays the selection, or what is in view, of one channel (from 1) or, for 0, of all.
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
    bool m_follows = false;  ///< the line was in view, and the user has not scrolled it away
};

}  // namespace quillon
