#pragma once

#include <cstdint>
#include <vector>

namespace quillon {

/// The symmetric window of a number of SpectrumSettings::window over that many points, not scaled.
[[nodiscard]] std::vector<float> AnalysisWindow(std::int16_t kind, std::int32_t length);

}  // namespace quillon
