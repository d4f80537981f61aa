#pragma once

#include <cstdint>
#include <string>

#include "data/UserServices.h"
#include "export/SplitPlan.h"
#include "export/SplitRun.h"

/// What the split dialog tells, in the user's language.
namespace quillon {

/// How the pieces will be named.
[[nodiscard]] std::u16string SplitExampleText(const UserServices& services, const SplitPlan& plan);
/// `piece` counts from 0.
[[nodiscard]] std::u16string SplitProgressText(const UserServices& services, const SplitPlan& plan, std::int64_t piece,
                                               const std::u16string& name);
/// What is wrong with a typed size or step, whose label names it.
[[nodiscard]] std::u16string SplitFaultText(const UserServices& services, int label, const std::u16string& typed,
                                            bool seconds, EntryFault fault);
/// Why nothing is split; empty for no obstacle.
[[nodiscard]] std::u16string SplitObstacleText(const UserServices& services, SplitObstacle obstacle,
                                               const SplitPlan& plan, const std::u16string& folder);
/// How a run ended, with the name of what was not written or deleted.
[[nodiscard]] std::u16string SplitResultText(const UserServices& services, const SplitResult& result,
                                             const std::u16string& folder);

}  // namespace quillon
