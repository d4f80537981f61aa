#include "view/ScaleSteps.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <string>

namespace quillon {

namespace {

using StepTable = std::array<double, 2 * kMostStep + 1>;

StepTable MakeSteps() {
    StepTable steps{};
    static_assert(kMostStep % 3 == 0, "the table begins with a 1");
    for (std::size_t at = 0; at < steps.size(); ++at) {
        // Read as decimals, because products of powers of ten are not always the nearest doubles.
        const int power = static_cast<int>(at / 3) - kMostStep / 3;
        const std::string text = std::string(1, "125"[at % 3]) + 'e' + std::to_string(power);
        std::from_chars(text.data(), text.data() + text.size(), steps[at]);
    }
    return steps;
}

const StepTable& Steps() {
    static const StepTable steps = MakeSteps();
    return steps;
}

}  // namespace

int ClampStep(int step) {
    return std::clamp(step, -kMostStep, kMostStep);
}

double StepValue(int step) {
    return Steps()[static_cast<std::size_t>(ClampStep(step) + kMostStep)];
}

int StepHolding(double value) {
    const StepTable& steps = Steps();
    const auto found = std::lower_bound(steps.begin(), steps.end(), value);
    return ClampStep(static_cast<int>(found - steps.begin()) - kMostStep);
}

int StepWithin(double value) {
    const StepTable& steps = Steps();
    const auto found = std::upper_bound(steps.begin(), steps.end(), value);
    return ClampStep(static_cast<int>(found - steps.begin()) - 1 - kMostStep);
}

}  // namespace quillon
