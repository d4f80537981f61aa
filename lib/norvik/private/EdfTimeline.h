#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "norvik/private/EdfHeader.h"

namespace quillon {

/// Records that follow each other in time without a gap.
struct EdfStretch {
    std::uint64_t firstRecord = 0;
    std::uint64_t records = 0;
    double onset = 0.0;  ///< of the first record, in seconds since the start date
};

/// Cuts the records of a file into stretches as their onsets come in: at every record of a discontinuous file whose
/// onset is off by more than half a sample of the fastest signal, and where a block would get too many samples.
/// What comes after `maxStretches` stretches is left out.
class EdfTimeline {
  public:
    EdfTimeline(const EdfHeader& header, std::size_t maxStretches);

    /// The next record, with its onset if it contains one.
    void Add(std::optional<double> onset);
    /// Many records that follow each other and tell no onsets.
    void AddGapless(std::uint64_t records);

    /// In the order of the file. The last one may grow, the others stay as they are.
    [[nodiscard]] const std::vector<EdfStretch>& Stretches() const { return m_stretches; }
    [[nodiscard]] bool Full() const { return m_full; }
    /// Automation date.
    [[nodiscard]] double StartOf(const EdfStretch& stretch) const;
    /// Text that tells a stretch from the others: the time of day of its start, as short as it can be; empty for the
    /// only one.
    [[nodiscard]] std::u16string Title(std::size_t stretch) const;

  private:
    enum class Naming { Time, DateTime, Milliseconds, DateMilliseconds, Number };

    void Begin(std::uint64_t record, double onset);
    /// Chooses the shortest kind of titles that tells all stretches apart, now that there is one more.
    void ChooseNaming();
    [[nodiscard]] std::string Text(std::size_t stretch, Naming naming) const;

    double m_startDate;
    double m_recordSeconds;
    bool m_discontinuous;
    std::size_t m_maxStretches;
    std::uint64_t m_maxRecords = 1;
    double m_tolerance = 0.0;
    std::uint64_t m_record = 0;
    bool m_full = false;
    std::vector<EdfStretch> m_stretches;
    Naming m_naming = Naming::Time;
    std::unordered_set<std::string> m_texts;  ///< of all stretches, as m_naming makes them
};

}  // namespace quillon
