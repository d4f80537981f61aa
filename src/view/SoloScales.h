#pragma once

#include <cstdint>
#include <optional>

#include "view/AmplitudeScale.h"
#include "view/ChannelLanes.h"

namespace quillon {

/// The scales from before a channel that is shown alone was fitted: the other channels come back with them.
class SoloScales {
  public:
    /// Does nothing where they are kept already.
    void Keep(const AmplitudeScale& axis, const LaneSettings& lanes);
    /// Sets those that are kept; does nothing where there are none.
    void GiveBack(AmplitudeScale& axis, ChannelLanes& lanes);

  private:
    struct Kept {
        int scale = 0;
        std::int64_t shift = 0;
        LaneScales values{};
        LaneScales codes{};
    };
    std::optional<Kept> m_kept;
};

}  // namespace quillon
