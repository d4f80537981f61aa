#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace quillon {

/// A length of a page in samples: a rational number, so that pages of a length in seconds keep to it from page to page
/// at every sample rate.
struct PageSamples {
    static constexpr std::int64_t kMostParts = 8192;
    std::int64_t samples = 1;
    std::int64_t parts = 1;  ///< 1 to kMostParts, more where the page was that of another block
    [[nodiscard]] double Count() const { return static_cast<double>(samples) / static_cast<double>(parts); }
    friend bool operator==(const PageSamples&, const PageSamples&) = default;
};

/// Pages that the menu offers, in seconds.
inline constexpr std::array<double, 13> kPageLengths{1, 2, 5, 10, 15, 20, 30, 60, 120, 300, 600, 1800, 3600};
inline constexpr int kPageCount = static_cast<int>(kPageLengths.size());

/// The rational number nearest to a number of samples, which is above 0 and at most 2^31.
[[nodiscard]] PageSamples PageOf(double samples);

/// The next shorter or longer page in steps of about 1.25 that are at least a tenth from the present one: 1, 1.2, 1.5,
/// 2, 2.5, 3, 4, 5, 6, 8, 10, 12, 15 ... seconds, from a minute on minutes, then hours and days. From one of these the
/// next one leads back to it.
[[nodiscard]] double NextPage(double seconds, bool longer);

/// "50 ms", "10 s", "1.5 min", "2 h", "1 d".
[[nodiscard]] std::u16string PageCaption(double seconds, char16_t separator);

}  // namespace quillon
