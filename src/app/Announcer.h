#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "norvik/TimerObject.h"

namespace quillon {

/// Tells programs that read the screen aloud of a text that may change many times a second: the first change at once,
/// then at most one every kPause, the last one always. They would fall behind otherwise.
class Announcer {
  public:
    static constexpr std::int32_t kPause = 250;  ///< ms

    // To be set by the owner.
    std::function<void(const std::u16string& text)> onAnnounce;

    /// Until then nothing is announced.
    void Attach(const TimerFactory& makeTimer);
    /// The text is this one now.
    void Tell(const std::u16string& text);

  private:
    void Announce();
    void OnPauseEnd();

    std::unique_ptr<TimerObject> m_timer;
    bool m_pausing = false;
    std::u16string m_text;
    std::u16string m_announced;
};

/// A text of several lines and cells as one line: cells apart by blanks, lines by commas.
[[nodiscard]] std::u16string SpokenText(const std::u16string& text);

}  // namespace quillon
