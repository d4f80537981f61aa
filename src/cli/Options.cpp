#include "cli/Options.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "base/Text.h"

namespace quillon::cli {

namespace {

template <typename Real>
Real FiniteNumber(const std::u16string& text, std::u16string_view what) {
    const std::string digits = Utf8(text);
    Real number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (error != std::errc() || end != digits.data() + digits.size() || !std::isfinite(number)) {
        throw UsageError(u"'" + text + u"' is not a number for " + std::u16string(what));
    }
    return number;
}

}  // namespace

UsageError::UsageError(const std::u16string& text) : std::runtime_error(Utf8(text)) {}

std::u16string ParsedArguments::Value(std::u16string_view name, std::u16string_view otherwise) const {
    const auto found = options.find(name);
    return found != options.end() ? found->second : std::u16string(otherwise);
}

ParsedArguments ParseArguments(std::span<const std::u16string> arguments, std::span<const OptionRule> rules) {
    ParsedArguments parsed;
    bool optionsEnded = false;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::u16string& word = arguments[i];
        if (optionsEnded || !word.starts_with(u"--")) {
            // A single dash begins a negative number or a file name, never an option.
            parsed.words.push_back(word);
            continue;
        }
        if (word == u"--") {
            optionsEnded = true;
            continue;
        }
        const std::size_t equals = word.find(u'=');
        const std::u16string name = word.substr(0, equals);
        const auto rule = std::find_if(rules.begin(), rules.end(), [&](const OptionRule& r) { return r.name == name; });
        if (rule == rules.end()) throw UsageError(u"unknown option '" + name + u"'");
        std::u16string value;
        if (!rule->takesValue) {
            if (equals != std::u16string::npos) throw UsageError(u"option '" + name + u"' takes no value");
        } else if (equals != std::u16string::npos) {
            value = word.substr(equals + 1);
        } else if (i + 1 < arguments.size()) {
            value = arguments[++i];
        } else {
            throw UsageError(u"option '" + name + u"' needs a value");
        }
        if (rule->takesValue && value.empty()) throw UsageError(u"option '" + name + u"' needs a value");
        if (!parsed.options.emplace(name, value).second) throw UsageError(u"option '" + name + u"' is given twice");
    }
    return parsed;
}

std::u16string OutOfRange(const ParsedArguments& parsed, std::u16string_view name) {
    return u"'" + parsed.Value(name) + u"' is out of range for " + std::u16string(name);
}

double RealNumber(const std::u16string& text, std::u16string_view what) {
    return FiniteNumber<double>(text, what);
}

float SingleNumber(const std::u16string& text, std::u16string_view what) {
    return FiniteNumber<float>(text, what);
}

std::int64_t WholeNumber(const std::u16string& text, std::u16string_view what) {
    const std::string digits = Utf8(text);
    std::int64_t number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (error != std::errc() || end != digits.data() + digits.size()) {
        throw UsageError(u"'" + text + u"' is not a whole number for " + std::u16string(what));
    }
    return number;
}

std::int64_t WholeOption(const ParsedArguments& parsed, std::u16string_view name, std::int64_t otherwise,
                         std::int64_t least, std::int64_t most) {
    if (!parsed.Has(name)) return otherwise;
    const std::int64_t number = WholeNumber(parsed.Value(name), name);
    if (number < least || number > most) throw UsageError(OutOfRange(parsed, name));
    return number;
}

std::size_t Choice(const ParsedArguments& parsed, std::span<const OptionRule> rules, std::u16string_view name) {
    if (!parsed.Has(name)) return 0;
    const std::u16string value = parsed.Value(name);
    const auto rule = std::find_if(rules.begin(), rules.end(), [&](const OptionRule& r) { return r.name == name; });
    std::u16string_view rest = rule->values;
    for (std::size_t position = 0;; ++position) {
        const std::size_t end = rest.find(u'|');
        if (value == rest.substr(0, end)) return position;
        if (end == std::u16string_view::npos) break;
        rest.remove_prefix(end + 1);
    }
    throw UsageError(u"'" + value + u"' is none of " + std::u16string(rule->values) + u" for " + std::u16string(name));
}

std::vector<std::u16string> SplitAtCommas(const std::u16string& list) {
    std::vector<std::u16string> words(1);
    for (const char16_t letter : list) {
        if (letter == u',') {
            words.emplace_back();
        } else {
            words.back() += letter;
        }
    }
    return words;
}

}  // namespace quillon::cli
