#include "export/EdfLimits.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "base/Bilingual.h"
#include "export/EdfText.h"

namespace quillon {

namespace {

constexpr int kLowest = -32768;
constexpr int kHighest = 32767;
constexpr double kMostError = 0.499;  // of a code

/// A code and the text that is nearest to its value.
struct Point {
    int code = 0;
    std::string text;
    double value = 0.0;  ///< of the text
    double error = 0.0;  ///< of that value, in codes
};

class Search {
  public:
    Search(float scale, float offset) : m_scale(static_cast<double>(scale)), m_offset(static_cast<double>(offset)) {}

    [[nodiscard]] std::optional<EdfLimits> Usual() const {
        const EdfLimits usual;
        for (const bool exact : {false, true}) {
            const auto at = [&](int code) {
                const auto single = static_cast<float>(code) * static_cast<float>(m_scale);
                return exact ? At(code)
                             : PointOf(code, EdfNumber(single + static_cast<float>(m_offset), kEdfNumberWidth));
            };
            const Point low = at(usual.digitalMinimum);
            const Point high = at(usual.digitalMaximum);
            if (AreNear(low, high)) return Between(low, high);
        }
        return std::nullopt;
    }

    /// The widest limits that lie near both ends of the codes.
    [[nodiscard]] std::optional<EdfLimits> Wide() const {
        constexpr int most = 768;
        std::vector<Point> low;
        std::vector<Point> high;
        for (int inset = 0; inset < most; ++inset) {
            low.push_back(At(kLowest + inset));
            high.push_back(At(kHighest - inset));
            for (int left = 0; left <= inset; ++left) {
                const Point& first = low[static_cast<std::size_t>(left)];
                const Point& last = high[static_cast<std::size_t>(inset - left)];
                if (AreNear(first, last)) return Between(first, last);
            }
        }
        return std::nullopt;
    }

    /// The widest limits of any codes. Where this is needed few codes have a text near enough.
    [[nodiscard]] std::optional<EdfLimits> Any() const {
        constexpr std::size_t most = 500;  // from each end, and of the nearest
        std::vector<Point> points;
        for (int code = kLowest; code <= kHighest; ++code) {
            Point point = At(code);
            if (std::abs(point.error) <= kMostError) points.push_back(std::move(point));
        }
        if (points.size() > 3 * most) {
            const auto inner = std::ptrdiff_t{most};
            std::nth_element(points.begin() + inner, points.begin() + 2 * inner, points.end() - inner,
                             [](const Point& a, const Point& b) { return std::abs(a.error) < std::abs(b.error); });
            points.erase(points.begin() + 2 * inner, points.end() - inner);
            std::sort(points.begin(), points.end(), [](const Point& a, const Point& b) { return a.code < b.code; });
        }
        std::optional<EdfLimits> best;
        int width = 0;
        for (std::size_t a = 0; a < points.size(); ++a) {
            for (std::size_t b = points.size(); b-- > a + 1;) {
                if (points[b].code - points[a].code <= width) break;
                if (!AreNear(points[a], points[b])) continue;
                best = Between(points[a], points[b]);
                width = points[b].code - points[a].code;
            }
        }
        return best;
    }

  private:
    [[nodiscard]] double Value(double code) const { return code * m_scale + m_offset; }
    [[nodiscard]] Point PointOf(int code, std::string text) const {
        const double value = EdfValue(text);
        return {code, std::move(text), value, (value - Value(code)) / m_scale};
    }
    [[nodiscard]] Point At(int code) const { return PointOf(code, EdfNumber(Value(code), kEdfNumberWidth)); }
    static EdfLimits Between(const Point& low, const Point& high) { return {low.code, high.code, low.text, high.text}; }

    /// Whether a reader's values are near those of all codes: the error is linear in the code, so it is largest at an
    /// end.
    [[nodiscard]] bool AreNear(const Point& low, const Point& high) const {
        const double scale = (high.value - low.value) / (high.code - low.code);
        const double offset = low.value - scale * low.code;
        // The scale must not become 0 for readers that keep it in single precision.
        if (static_cast<float>(scale) == 0.0F) return false;
        const auto error = [&](int code) { return std::abs(scale * code + offset - Value(code)); };
        return std::max(error(kLowest), error(kHighest)) <= kMostError * std::abs(m_scale);
    }

    double m_scale;
    double m_offset;
};

/// What the first of the searches that finds anything has found.
template <typename... Searches>
std::optional<EdfLimits> FirstOf(const Searches&... searches) {
    std::optional<EdfLimits> limits;
    try {
        static_cast<void>(((limits = searches()).has_value() || ...));
    } catch (const FormatError&) {
        // Values that no text of 8 characters holds, as of infinite scales.
        return std::nullopt;
    }
    return limits;
}

}  // namespace

std::optional<EdfLimits> FindEdfLimits(float scale, float offset) {
    const Search search(scale, offset);
    return FirstOf([&] { return search.Usual(); }, [&] { return search.Wide(); }, [&] { return search.Any(); });
}

std::optional<EdfLimits> FindWideEdfLimits(float scale, float offset) {
    const Search search(scale, offset);
    return FirstOf([&] { return search.Wide(); }, [&] { return search.Any(); });
}

}  // namespace quillon
