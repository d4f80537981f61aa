#pragma once

#include <memory>

#include "norvik/RegistryObject.h"

namespace quillon {

/// The registry of this computer. Opens the current user's hive unless another root is set.
[[nodiscard]] std::unique_ptr<RegistryObject> MakeRegistryObject();

}  // namespace quillon
