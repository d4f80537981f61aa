#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "nsp/FilterDesign.h"

namespace quillon {

/// What the user chooses of a filter, in the order of the row of filters and of their commands.
enum class FilterField { HighPass, LowPass, Notch, Order, Direction };
inline constexpr int kFilterFields = 5;

/// One of them with its value: a frequency in Hz (0: off), an order, or 0 forward and 1 both ways.
struct FilterChoice {
    FilterField field = FilterField::HighPass;
    double value = 0.0;
    friend bool operator==(const FilterChoice&, const FilterChoice&) = default;
};

/// The values that menus and lists offer.
[[nodiscard]] std::span<const double> OfferedValues(FilterField field);
/// The first command of a field; one follows for each offered value.
[[nodiscard]] int FirstCommand(FilterField field);
/// None for a command that chooses no filter.
[[nodiscard]] std::optional<FilterChoice> FilterChoiceOf(int command);

[[nodiscard]] double ValueOf(const nsp::FilterSettings& settings, FilterField field);
[[nodiscard]] nsp::FilterSettings With(const nsp::FilterSettings& settings, const FilterChoice& choice);

/// What decides whether that can be chosen at a rate in samples per second: the settings with the choice, without those
/// of other fields that this rate does not allow, as they were chosen for another recording.
[[nodiscard]] nsp::FilterSettings Tried(const nsp::FilterSettings& settings, const FilterChoice& choice, double rate);

/// The frequency that a text means, with a point or a comma, with or without its unit; 0 for the empty text and `off`.
/// None for what is not understood.
[[nodiscard]] std::optional<double> ParseFrequency(std::u16string_view text, std::u16string_view off);

}  // namespace quillon
