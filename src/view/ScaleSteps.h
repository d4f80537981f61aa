#pragma once

namespace quillon {

/// The steps of scales of lanes: ... 0.5, 1, 2, 5, 10, 20 ... Step k is 1, 2 or 5 times a power of ten, step 0 is 1.
inline constexpr int kMostStep = 90;  ///< steps run from -kMostStep (1e-30) to kMostStep (1e30)

/// A step within the table.
[[nodiscard]] int ClampStep(int step);
/// The value of a step, the double nearest to its decimal; steps beyond the table count as its ends.
[[nodiscard]] double StepValue(int step);
/// The least step whose value is at least that; the last one where there is none.
[[nodiscard]] int StepHolding(double value);
/// The greatest step whose value is at most that; the first one where there is none.
[[nodiscard]] int StepWithin(double value);

}  // namespace quillon
