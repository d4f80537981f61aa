#pragma once

#include <cstdint>
#include <functional>
#include <memory>

namespace quillon {

/// The contract between the viewer and the core library's timer: ticks on the thread that made it, while that thread
/// handles messages. Ticks that could not be delivered in time are not made up for. No tick comes while the timer is
/// disabled or after it is destroyed; it may be destroyed in its own tick.
class TimerObject {
  public:
    virtual ~TimerObject() = default;
    /// False for a new timer. Enabling starts a whole interval.
    virtual void PutEnabled(bool enabled) = 0;
    /// Milliseconds between ticks; an enabled timer starts a whole interval. Below 1, as for a new timer, none come.
    virtual void PutInterval(std::int32_t milliseconds) = 0;
};

/// Makes a timer that calls `tick`, which must not throw.
using TimerFactory = std::function<std::unique_ptr<TimerObject>(std::function<void()> tick)>;

}  // namespace quillon
