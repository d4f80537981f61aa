#include "view/PageLength.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <string_view>
#include <vector>

#include "format/NumberText.h"

namespace quillon {

namespace {

constexpr std::array<double, 10> kMantissas{1.0, 1.2, 1.5, 2.0, 2.5, 3.0, 4.0, 5.0, 6.0, 8.0};
constexpr double kMinute = 60.0;
constexpr double kHour = 3600.0;
constexpr double kDay = 86400.0;

std::vector<double> MakePages() {
    std::vector<double> pages;
    const auto add = [&](double scale, double unit, double below) {
        // Tenths are decimals that a product of powers of ten would miss.
        for (const double mantissa : kMantissas) {
            const double page = std::nearbyint(mantissa * 10.0) * scale * unit / 10.0;
            if (page < below) pages.push_back(page);
        }
    };
    constexpr std::int64_t most = 1'000'000'000;
    for (std::int64_t divisor = most; divisor > 1; divisor /= 10) {
        for (const double mantissa : kMantissas)
            pages.push_back(std::nearbyint(mantissa * 10.0) / static_cast<double>(divisor * 10));
    }
    for (const double scale : {1.0, 10.0}) add(scale, 1.0, kMinute);
    for (const double scale : {1.0, 10.0}) add(scale, kMinute, kHour);
    for (const double scale : {1.0, 10.0}) add(scale, kHour, kDay);
    for (std::int64_t scale = 1; scale < most; scale *= 10) add(static_cast<double>(scale), kDay, 1e15);
    return pages;
}

}  // namespace

PageSamples PageOf(double samples) {
    // Convergents of the continued fraction, as long as their denominators are small enough.
    PageSamples before{1, 0};
    PageSamples page{static_cast<std::int64_t>(std::floor(samples)), 1};
    double rest = samples - std::floor(samples);
    constexpr double whole = 1e-9;
    while (rest > whole && std::fabs(page.Count() - samples) > samples * 1e-14) {
        const double inverse = 1.0 / rest;
        const double term = std::floor(inverse);
        rest = inverse - term;
        const auto next = static_cast<double>(before.parts) + term * static_cast<double>(page.parts);
        if (next > static_cast<double>(PageSamples::kMostParts)) break;
        const auto times = static_cast<std::int64_t>(term);
        const PageSamples better{before.samples + times * page.samples, static_cast<std::int64_t>(next)};
        before = page;
        page = better;
    }
    if (page.samples < 1) return {1, std::clamp<std::int64_t>(std::llround(1.0 / samples), 1, PageSamples::kMostParts)};
    return page;
}

double NextPage(double seconds, bool longer) {
    static const std::vector<double> pages = MakePages();
    constexpr double least = 1.1;
    if (longer) {
        const auto found = std::lower_bound(pages.begin(), pages.end(), seconds * least);
        return found == pages.end() ? seconds : *found;
    }
    const auto found = std::upper_bound(pages.begin(), pages.end(), seconds / least);
    return found == pages.begin() ? seconds : *(found - 1);
}

std::u16string PageCaption(double seconds, char16_t separator) {
    struct Unit {
        double seconds;
        std::u16string_view name;
    };
    constexpr std::array<Unit, 6> units{
        {{kDay, u" d"}, {kHour, u" h"}, {kMinute, u" min"}, {1.0, u" s"}, {1e-3, u" ms"}, {1e-6, u" mks"}}};
    // What rounds up to a unit is told in it.
    constexpr double nearly = 0.99995;
    const auto* unit =
        std::find_if(units.begin(), units.end(), [&](const Unit& each) { return seconds >= each.seconds * nearly; });
    if (unit == units.end()) unit = &units.back();
    // "100 s" rather than "1.667 min".
    const auto isShort = [&](const Unit& each) {
        const double tenths = seconds / each.seconds * 10.0;
        constexpr double mostTenths = 10000.0;
        return tenths < mostTenths && std::fabs(tenths - std::nearbyint(tenths)) < tenths * 1e-6;
    };
    if (unit + 1 != units.end() && !isShort(*unit) && isShort(*(unit + 1))) ++unit;
    const double number = seconds / unit->seconds;
    constexpr int digits = 3;
    return NumberText(RoundToPlaces(number, digits - DecimalExponent(number)), separator).append(unit->name);
}

}  // namespace quillon
