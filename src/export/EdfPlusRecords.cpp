#include "export/EdfPlusRecords.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <tuple>

#include "base/Bilingual.h"
#include "export/EdfText.h"
#include "export/ExportRun.h"

namespace quillon {

namespace {

constexpr std::int64_t kMostRecords = 99999999;  ///< that the header's field holds
constexpr double kShortest = 1e-9;               ///< seconds of a record that readers take
constexpr double kLongest = 1e9;

/// The nearest duration of at most 8 characters without an exponent, which not every program reads. 0 where there is
/// none.
double PlainSeconds(double seconds) {
    constexpr std::array powers{1.0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8};
    static_assert(powers.size() == kEdfNumberWidth + 1);
    std::size_t digits = 1;
    while (digits < kEdfNumberWidth && seconds >= powers[digits]) ++digits;
    const double unit = digits + 1 < kEdfNumberWidth ? powers[kEdfNumberWidth - 1 - digits] : 1.0;
    const double nearest = std::nearbyint(seconds * unit) / unit;
    return nearest < powers[kEdfNumberWidth] ? nearest : 0.0;
}

constexpr int kMissed = 5;

/// How far apart two rates are: 0 the same but for rounding, 1 a second in 30 years or less, then ten times as far
/// each, to kMissed: more than a second in 11 days.
int Miss(double rate, double asked) {
    const double miss = std::abs(rate - asked) / asked;
    if (miss <= 1e-12) return 0;
    int degree = 1;
    for (double most = 1e-9; degree < kMissed && miss > most; most *= 10.0) ++degree;
    return degree;
}

class Choice {
  public:
    Choice(double rate, std::int32_t sampleCount, std::size_t signals, std::size_t recordBytes)
        : m_rate(rate), m_count(sampleCount), m_signals(signals) {
        const auto most = static_cast<std::int64_t>(recordBytes / (2 * signals));
        m_most = static_cast<std::int32_t>(std::clamp<std::int64_t>(most, 1, 1 << 20));
    }

    [[nodiscard]] EdfPlusRecords Best() const {
        std::int32_t best = 0;
        Rank bestRank;
        for (std::int32_t samples = 1; samples <= m_most; ++samples) {
            const double seconds = PlainSeconds(samples / m_rate);
            if (seconds <= 0.0 || RecordsOf(samples) > kMostRecords) continue;
            const Rank rank = RankOf(samples, seconds);
            if (best != 0 && rank >= bestRank) continue;
            best = samples;
            bestRank = rank;
        }
        if (best != 0 && std::get<1>(bestRank) < kMissed)
            return Made(best, EdfNumber(PlainSeconds(best / m_rate), kEdfNumberWidth));
        return Nearest();
    }

  private:
    /// The lower, the better: too much fill, miss of the rate, tiny records, fill, a rate that is rounded, parts of
    /// seconds, times a second is less or more.
    using Rank = std::tuple<bool, int, bool, std::int64_t, bool, bool, double>;

    [[nodiscard]] std::int64_t RecordsOf(std::int32_t samples) const { return (m_count - 1) / samples + 1; }
    [[nodiscard]] Rank RankOf(std::int32_t samples, double seconds) const {
        const std::int64_t records = RecordsOf(samples);
        const std::int64_t fill = records * samples - m_count;
        const bool part = std::nearbyint(seconds) != seconds;
        const double rate = samples / seconds;
        const bool tiny = IsTiny(samples, seconds, records);
        const int miss = Miss(rate, m_rate);
        return {IsTooMuch(fill, miss == 0), miss, tiny, fill, rate != m_rate, part, std::max(seconds, 1.0 / seconds)};
    }
    [[nodiscard]] bool IsTooMuch(std::int64_t fill, bool exact) const {
        constexpr std::int64_t little = 3;
        const double seconds = static_cast<double>(fill) / m_rate;
        if (fill <= little || seconds <= 0.1) return false;
        return !exact || seconds >= 1.0 || fill > m_count;
    }
    /// Whether what every record holds besides, its time, would count, or programs would take long for the many
    /// records.
    [[nodiscard]] bool IsTiny(std::int32_t samples, double seconds, std::int64_t records) const {
        const std::size_t bytes = 2 * m_signals * static_cast<std::size_t>(samples);
        if (records == 1) return false;
        return bytes < 64 || (seconds < 0.1 && bytes < 8192 && records > 10000);
    }
    [[nodiscard]] EdfPlusRecords Made(std::int32_t samples, std::string seconds) const {
        EdfPlusRecords made;
        made.samples = samples;
        made.count = static_cast<std::int32_t>(RecordsOf(samples));
        made.filled = static_cast<std::int32_t>(RecordsOf(samples) * samples - m_count);
        made.rate = EdfRate(samples, seconds);
        made.seconds = std::move(seconds);
        return made;
    }
    /// Of few records, those whose duration, with an exponent if need be, is nearest.
    [[nodiscard]] EdfPlusRecords Nearest() const {
        constexpr std::int64_t tried = 64;
        const std::int64_t fewest = RecordsOf(m_most);
        EdfPlusRecords best;
        for (std::int64_t records = fewest; records < fewest + tried && records <= m_count; ++records) {
            const auto samples = static_cast<std::int32_t>((m_count - 1) / records + 1);
            const double seconds = samples / m_rate;
            if (!(seconds >= kShortest && seconds <= kLongest)) continue;
            EdfPlusRecords made = Made(samples, NearestNumber(seconds, kEdfNumberWidth));
            if (best.count == 0 || std::abs(made.rate - m_rate) < std::abs(best.rate - m_rate)) best = std::move(made);
        }
        if (best.count == 0) RefuseExportRate(m_rate);
        return best;
    }

    double m_rate;
    std::int32_t m_count;
    std::size_t m_signals;
    std::int32_t m_most;  ///< samples of a signal that a record may hold
};

}  // namespace

EdfPlusRecords ChooseEdfPlusRecords(double rate, std::int32_t sampleCount, std::size_t signals,
                                    std::size_t recordBytes) {
    if (!std::isfinite(rate) || rate <= 0.0 || sampleCount < 1)
        throw FormatError(
            Say(u"without samples and a rate there is no data record", u"без отсчётов и частоты нет записи данных"));
    return Choice(rate, sampleCount, signals, recordBytes).Best();
}

}  // namespace quillon
