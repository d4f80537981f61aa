#pragma once

#include <functional>
#include <optional>
#include <string>

#include "base/win/Win32.h"
#include "data/UserServices.h"
#include "view/Readout.h"
#include "view/Selection.h"
#include "view/Statistics.h"

namespace quillon {

// Small windows of the main window's commands. Each returns when the user has closed it.

/// Statistics of the shown channels over a selection. `onWork` is given the steps of a pass that takes longer, and
/// nothing when they are no longer wanted.
void ShowStatistics(HWND owner, const ReadoutSource& source, const Selection& selection, const UserServices& services,
                    const std::function<void(StatisticsPass* pass)>& onWork);

/// Asks for a place of the block; `present` is the initial text. None when the user cancels.
[[nodiscard]] std::optional<std::u16string> AskForPlace(HWND owner, const std::u16string& present,
                                                        const UserServices& services);

}  // namespace quillon
