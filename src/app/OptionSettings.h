#pragma once

#include "app/Settings.h"
#include "dialogs/OptionsModel.h"

namespace quillon {

/// The part of the settings that the options dialog edits, and its way back.
[[nodiscard]] OptionValues OptionsOf(const Settings& settings);
void StoreOptions(const OptionValues& values, Settings& settings);

}  // namespace quillon
