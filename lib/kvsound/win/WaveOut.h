#pragma once

#include "base/Language.h"
#include "kvsound/SoundOutput.h"

namespace quillon {

/// The sound library: plays through the system's wave devices, on the calling thread, which must handle messages.
/// Its reasons are in `language`. Throws std::system_error when its window cannot be made.
[[nodiscard]] std::unique_ptr<SoundOutput> MakeSoundOutput(SoundOutputEvents events, Language language);

}  // namespace quillon
