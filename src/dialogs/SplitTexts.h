#pragma once

#include <cstdint>
#include <string>

#include "data/UserServices.h"
#include "dialogs/SplitChoices.h"
#include "export/SplitPlan.h"
#include "export/SplitRun.h"

/// Messages of the split dialog, in the user's language.
namespace quillon {

/// How the pieces will be named, and how many files a run would delete or replace.
[[nodiscard]] std::u16string SplitStatusText(const UserServices& services, const SplitChoices& choices,
                                             const SplitSource& source, const SplitFolderState& folder);
/// How many pieces there will be; empty where size or step is at fault.
[[nodiscard]] std::u16string SplitCountText(const UserServices& services, const SplitChoices& choices,
                                            const SplitSource& source);
/// `piece` counts from 0; the percentage is that of all pieces.
[[nodiscard]] std::u16string SplitProgressText(const UserServices& services, const SplitPlan& plan, std::int64_t piece,
                                               std::int32_t percent);
/// What is wrong with a typed size or step.
[[nodiscard]] std::u16string SplitFaultText(const UserServices& services, const SplitFault& fault, bool bySamples);
/// Why nothing is split; empty for no obstacle.
[[nodiscard]] std::u16string SplitObstacleText(const UserServices& services, SplitObstacle obstacle,
                                               const SplitPlan& plan, const std::u16string& folder);
/// How a run ended, with the name of what was not written or deleted.
[[nodiscard]] std::u16string SplitResultText(const UserServices& services, const SplitPlan& plan,
                                             const SplitResult& result, const std::u16string& folder);

}  // namespace quillon
