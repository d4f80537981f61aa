#pragma once

#include <string>

#include "app/win/DialogTemplate.h"
#include "data/UserServices.h"

namespace quillon {

/// The split dialog's controls in their places, with all texts that do not change.
[[nodiscard]] DialogTemplate MakeSplitTemplate(const UserServices& services, const std::u16string& baseName,
                                               const std::u16string& folder);

}  // namespace quillon
