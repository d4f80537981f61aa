#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "norvik/private/FrameBlock.h"

namespace quillon {

/// Texts of cue points out of the lists of associated data; the first text of a kind counts.
class WaveCueTexts {
  public:
    /// `list` is the content of a "LIST" chunk; a list of another type adds nothing.
    void Add(std::span<const std::uint8_t> list);
    /// The label, else the note, else the cue's number. A text is handed out once: several cues of one number, which
    /// only a damaged file has, must not multiply it.
    [[nodiscard]] std::u16string TakeTextOf(std::uint32_t cue);

  private:
    std::map<std::uint32_t, std::u16string> m_labels;
    std::map<std::uint32_t, std::u16string> m_notes;
};

/// The cue points in order of position, those outside the data too. Where the sample offset was left 0, the position
/// stands in, but not in a file with a playlist, whose positions count in playing order.
[[nodiscard]] std::vector<FrameMark> ReadWaveCues(std::span<const std::uint8_t> chunk, WaveCueTexts& texts,
                                                  bool playlist);

}  // namespace quillon
