#pragma once

#include <memory>

#include "norvik/SaveFileDialog.h"

namespace quillon {

/// The system's own dialog. Names up to 32767 characters.
[[nodiscard]] std::unique_ptr<SaveFileDialog> MakeSaveDialog();

}  // namespace quillon
