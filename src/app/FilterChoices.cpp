#include "app/FilterChoices.h"

#include <array>
#include <charconv>
#include <cmath>
#include <iterator>
#include <string>
#include <system_error>

#include "app/Commands.h"
#include "base/Text.h"

namespace quillon {

namespace {

constexpr std::array kHighPasses{0.0, 0.1, 0.3, 0.5, 1.0, 5.0, 10.0};
constexpr std::array kLowPasses{0.0, 15.0, 30.0, 35.0, 40.0, 70.0, 100.0, 150.0};
constexpr std::array kNotches{0.0, 50.0, 60.0};
constexpr std::array kOrders{1.0, 2.0, 4.0};
constexpr std::array kDirections{0.0, 1.0};

constexpr double nsp::FilterSettings::*kFrequencies[] = {&nsp::FilterSettings::highPass, &nsp::FilterSettings::lowPass,
                                                         &nsp::FilterSettings::notch};

bool EndsWithUnit(const std::u16string& text) {
    return text.ends_with(u"hz") || text.ends_with(u"\u0433\u0446");
}

}  // namespace

std::span<const double> OfferedValues(FilterField field) {
    switch (field) {
        case FilterField::HighPass: return kHighPasses;
        case FilterField::LowPass: return kLowPasses;
        case FilterField::Notch: return kNotches;
        case FilterField::Order: return kOrders;
        default: return kDirections;
    }
}

int FirstCommand(FilterField field) {
    constexpr std::array commands{mnuHighPass, mnuLowPass, mnuNotch, mnuFilterOrder, mnuFilterDirection};
    return commands[static_cast<std::size_t>(field)];
}

std::optional<FilterChoice> FilterChoiceOf(int command) {
    for (int field = 0; field < kFilterFields; ++field) {
        const FilterChoice choice{static_cast<FilterField>(field)};
        const std::span<const double> values = OfferedValues(choice.field);
        const int index = command - FirstCommand(choice.field);
        if (index >= 0 && index < static_cast<int>(values.size()))
            return FilterChoice{choice.field, values[static_cast<std::size_t>(index)]};
    }
    return std::nullopt;
}

double ValueOf(const nsp::FilterSettings& settings, FilterField field) {
    if (field == FilterField::Order) return settings.order;
    if (field == FilterField::Direction) return settings.bothWays ? 1.0 : 0.0;
    return settings.*kFrequencies[static_cast<std::size_t>(field)];
}

nsp::FilterSettings With(const nsp::FilterSettings& settings, const FilterChoice& choice) {
    nsp::FilterSettings changed = settings;
    if (choice.field == FilterField::Order) {
        changed.order = static_cast<int>(choice.value);
    } else if (choice.field == FilterField::Direction) {
        changed.bothWays = choice.value != 0.0;
    } else {
        changed.*kFrequencies[static_cast<std::size_t>(choice.field)] = choice.value;
    }
    return changed;
}

nsp::FilterSettings Tried(const nsp::FilterSettings& settings, const FilterChoice& choice, double rate) {
    nsp::FilterSettings tried = With(settings, choice);
    for (std::size_t field = 0; field < std::size(kFrequencies); ++field) {
        nsp::FilterSettings alone;
        alone.*kFrequencies[field] = tried.*kFrequencies[field];
        const bool isChosen = field == static_cast<std::size_t>(choice.field);
        if (!isChosen && RefusalOf(alone, rate) != nsp::FilterRefusal::None) tried.*kFrequencies[field] = 0.0;
    }
    return tried;
}

std::optional<double> ParseFrequency(std::u16string_view text, std::u16string_view off) {
    std::u16string typed = LowerCase(text);
    std::erase_if(typed, [](char16_t letter) { return letter == u' ' || letter == u'\t' || letter == u'\u00A0'; });
    if (typed.empty() || typed == LowerCase(off)) return 0.0;
    if (EndsWithUnit(typed)) typed.resize(typed.size() - 2);
    std::string digits = Utf8(typed);
    for (char& letter : digits) letter = letter == ',' ? '.' : letter;
    double frequency = 0.0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, frequency, std::chars_format::fixed);
    if (error != std::errc() || stop != end || !std::isfinite(frequency) || std::signbit(frequency))
        return std::nullopt;
    return frequency;
}

}  // namespace quillon
