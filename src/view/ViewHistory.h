#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "view/LaneSettings.h"
#include "view/TimeAxis.h"

namespace quillon {

/// A view: the visible part of a block, the scale of one axis (see AmplitudeScale), and the lanes.
struct ViewPlace {
    TimeAxis::Place time;
    int scale = 0;
    std::int64_t shift = 0;
    LaneSettings lanes;
    friend bool operator==(const ViewPlace&, const ViewPlace&) = default;
};

/// The views before each jump or zoom, for going back; when full, the oldest one is dropped.
class ViewHistory {
  public:
    static constexpr std::size_t kMost = 32;

    void Push(const ViewPlace& place) {
        if (m_count > 0 && m_places[(m_next + kMost - 1) % kMost] == place) return;
        m_places[m_next] = place;
        m_next = (m_next + 1) % kMost;
        if (m_count < kMost) ++m_count;
    }
    [[nodiscard]] std::optional<ViewPlace> Pop() {
        if (m_count == 0) return std::nullopt;
        --m_count;
        m_next = (m_next + kMost - 1) % kMost;
        return m_places[m_next];
    }
    [[nodiscard]] bool IsEmpty() const { return m_count == 0; }
    void Clear() { m_count = 0; }

  private:
    std::array<ViewPlace, kMost> m_places{};
    std::size_t m_next = 0;
    std::size_t m_count = 0;
};

}  // namespace quillon
