#pragma once

#include <cstdint>

namespace quillon {

/// Makes a count that never goes back out of the device's 32-bit position, which starts again at 0 after 2^32 and on
/// some devices jumps back a little. Fed at least once per 2^31 counts.
class PlayPosition {
  public:
    /// `raw` is the device's current position. Returns the count since the playback began.
    std::int64_t Advance(std::uint32_t raw) {
        const auto step = static_cast<std::int32_t>(raw - static_cast<std::uint32_t>(m_count));
        if (step > 0) m_count += step;
        return m_count;
    }

  private:
    std::int64_t m_count = 0;
};

}  // namespace quillon
