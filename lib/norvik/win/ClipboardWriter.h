#pragma once

#include <memory>

#include "norvik/TextSink.h"

namespace quillon {

/// Gathers a text that Close puts onto the clipboard as Unicode text, in place of what was there. The clipboard keeps
/// its content when that fails: no memory, or another program holds it for longer than a second.
[[nodiscard]] std::unique_ptr<TextSink> MakeClipboardText();

}  // namespace quillon
