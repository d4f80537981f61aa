#pragma once

#include "norvik/TimerObject.h"

namespace quillon {

/// The core library's timer, a timer of the system on the calling thread. The system's shortest interval is about 10
/// ms. Throws std::system_error when its window cannot be made.
[[nodiscard]] std::unique_ptr<TimerObject> MakeTimer(std::function<void()> tick);

}  // namespace quillon
