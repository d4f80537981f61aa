#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "export/SplitPlan.h"
#include "export/SplitSettings.h"

/// Converts between the settings and the entries of the split dialog, independent of the window.
namespace quillon {

/// What is split.
struct SplitSource {
    std::int32_t samples = 0;  ///< of the block, per channel
    double rate = 0.0;         ///< Hz
    std::u16string recording;  ///< full path
    char16_t decimalSeparator = u'.';
};

/// What the dialog's controls hold. Both modes have a size and a step, as typed: by time, by samples.
struct SplitChoices {
    bool bySamples = false;
    std::array<std::u16string, 2> size;
    std::array<std::u16string, 2> step;
    bool sampleNames = false;
    bool baseName = false;
    bool deleteFiles = false;
};

/// What the controls show of the settings; where nothing was chosen yet, what suits the block.
[[nodiscard]] SplitChoices ShowSplitSettings(const SplitSettings& settings, const SplitSource& source);

/// Stores the choices. A size or step that is not a number keeps its setting.
void KeepSplitSettings(const SplitChoices& choices, const SplitSource& source, SplitSettings& settings);

/// The plan of the choices; size and step are those of the entries where these have no fault.
[[nodiscard]] SplitPlan MakeSplitPlan(const SplitChoices& choices, const SplitSource& source);

/// An invalid size or step.
struct SplitFault {
    bool step = false;
    EntryFault fault = EntryFault::None;
    std::u16string typed;
};

/// The first invalid entry of the selected mode.
[[nodiscard]] std::optional<SplitFault> FindSplitFault(const SplitChoices& choices, const SplitSource& source);

/// Whether to ask for confirmation because of the large number of files.
[[nodiscard]] inline bool IsUnusualCount(const SplitPlan& plan) {
    return plan.PieceCount() > 10000;
}

}  // namespace quillon
