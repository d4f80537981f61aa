#pragma once

#include <string>

#include "data/UserServices.h"
#include "dialogs/win/DialogTemplate.h"

namespace quillon {

/// The split dialog's controls in their places, with all texts that do not change.
[[nodiscard]] DialogTemplate MakeSplitTemplate(const UserServices& services, const std::u16string& baseName,
                                               const std::u16string& folder);

}  // namespace quillon
