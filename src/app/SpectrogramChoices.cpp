#include "app/SpectrogramChoices.h"

#include <array>
#include <cmath>

#include "app/Commands.h"
#include "app/StringIds.h"
#include "base/Text.h"
#include "format/NumberText.h"
#include "spectrum/QL_FFT.h"
#include "view/ScaleSteps.h"

namespace quillon {

namespace {

constexpr std::array kPalettes{0.0, 1.0, 2.0};
constexpr std::array kRanges{30.0, 60.0, 90.0, 120.0, 160.0};
constexpr std::array kTopLevels{0.0, -10.0, -20.0, -40.0, -60.0};
constexpr std::array kOrders{5.0, 6.0, 7.0, 8.0, 9.0, 10.0, 11.0};
constexpr std::array kWindows{0.0, 1.0, 2.0, 3.0};
static_assert(kRanges.size() == kLevelRanges && kTopLevels.size() == kTopLevelCount && kOrders.size() == kSizes);

/// All frequencies, then the round ones below half the rate, the highest one first.
double OfferedFrequency(int index, double rate) {
    if (index == 0 || !(rate > 0.0)) return 0.0;
    const int below = StepWithin(rate / 2.0);
    const int first = StepValue(below) < rate / 2.0 ? below : below - 1;
    return StepValue(first - (index - 1));
}

template <std::size_t count>
std::optional<SpectrogramChoice> Among(const std::array<double, count>& values, SpectrogramField field, int index) {
    if (index < 0 || index >= static_cast<int>(count)) return std::nullopt;
    return SpectrogramChoice{field, values[static_cast<std::size_t>(index)]};
}

std::u16string DecibelText(double value, const UserServices& services, char16_t separator) {
    return NumberText(value, separator) + u' ' + services.Text(IDS_OPT_DB);
}

}  // namespace

std::optional<SpectrogramChoice> SpectrogramChoiceOf(int command, double rate) {
    using Field = SpectrogramField;
    if (command == mnuBlankEnds) return SpectrogramChoice{Field::BlankEnds};
    const int frequency = command - mnuHighestFrequency;
    if (frequency >= 0 && frequency < kHighestFrequencies)
        return SpectrogramChoice{Field::Highest, OfferedFrequency(frequency, rate)};
    if (const auto palette = Among(kPalettes, Field::Colors, command - mnuPalette)) return palette;
    if (const auto range = Among(kRanges, Field::Range, command - mnuLevelRange)) return range;
    if (const auto level = Among(kTopLevels, Field::TopLevel, command - mnuTopLevel)) return level;
    if (const auto size = Among(kOrders, Field::Size, command - mnuTransformSize)) return size;
    return Among(kWindows, Field::Window, command - mnuTransformWindow);
}

SpectrumSettings With(const SpectrumSettings& settings, const SpectrogramChoice& choice) {
    SpectrumSettings changed = settings;
    switch (choice.field) {
        case SpectrogramField::Colors: changed.palette = static_cast<std::int16_t>(choice.value); break;
        case SpectrogramField::Range: changed.decibelRange = static_cast<float>(choice.value); break;
        case SpectrogramField::TopLevel: changed.topLevel = static_cast<float>(choice.value); break;
        case SpectrogramField::Size: changed.order = static_cast<std::int32_t>(choice.value); break;
        case SpectrogramField::Window: changed.window = static_cast<std::int16_t>(choice.value); break;
        case SpectrogramField::Highest: changed.highestFrequency = static_cast<float>(choice.value); break;
        case SpectrogramField::BlankEnds: changed.blankEnds = !changed.blankEnds; break;
    }
    return changed;
}

bool IsChosen(const SpectrumSettings& settings, const SpectrogramChoice& choice) {
    if (choice.field == SpectrogramField::BlankEnds) return settings.blankEnds;
    return With(settings, choice) == settings;
}

bool IsOffered(const SpectrumSettings& settings, const SpectrogramChoice& choice) {
    const bool level = choice.field == SpectrogramField::Range || choice.field == SpectrogramField::TopLevel;
    return !level || settings.type != 1;
}

std::u16string CaptionOf(const SpectrogramChoice& choice, const UserServices& services, char16_t separator) {
    const auto value = static_cast<int>(choice.value);
    switch (choice.field) {
        case SpectrogramField::Colors: return services.Text(IDS_OPT_PALETTE_0 + value);
        case SpectrogramField::Range: return DecibelText(choice.value, services, separator);
        case SpectrogramField::TopLevel:
            return value == 0 ? services.Text(IDS_FULL_SCALE) : DecibelText(choice.value, services, separator);
        case SpectrogramField::Size: return Decimal(std::int64_t{1} << value);
        case SpectrogramField::Window: return services.Text(IDS_OPT_WINDOW_0 + value);
        case SpectrogramField::Highest:
            return choice.value == 0.0 ? services.Text(IDS_ALL_FREQUENCIES)
                                       : NumberText(choice.value, separator) + u' ' + services.Text(IDS_HERTZ);
        default: return services.Text(IDS_BLANK_ENDS);
    }
}

std::optional<SpectrumSettings> WithLevels(const SpectrumSettings& settings, std::u16string_view highest,
                                           std::u16string_view lowest, char16_t separator) {
    const std::optional<float> high = SingleFromText(highest, separator);
    const std::optional<float> low = SingleFromText(lowest, separator);
    if (!high || !low) return std::nullopt;
    SpectrumSettings changed = settings;
    changed.topLevel = *high;
    changed.decibelRange = *high - *low;
    SpectrumSettings repaired = changed;
    QL_FFT::RepairSettings(repaired);
    if (repaired.topLevel != changed.topLevel || repaired.decibelRange != changed.decibelRange) return std::nullopt;
    return changed;
}

}  // namespace quillon
