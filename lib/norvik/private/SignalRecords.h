#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "base/Bilingual.h"

/// What formats have in common whose records hold some samples of every signal: EDF, BDF, GDF.
namespace quillon {

/// value = sample x perSample + offset.
struct LinearUnits {
    double perSample = 1.0;
    double offset = 0.0;
};

/// What the limits of a signal stand for; none where they give no scale that blocks can hold.
[[nodiscard]] std::optional<LinearUnits> UnitsOfLimits(double physicalMinimum, double physicalMaximum,
                                                       double digitalMinimum, double digitalMaximum);

/// Signals whose limits are of no use; told once for all of them.
class UselessLimits {
  public:
    /// `place`: byte of the limits.
    void Add(const std::u16string& label, std::uint64_t place);
    /// Empty where there are none.
    [[nodiscard]] Bilingual Remark() const;

  private:
    std::size_t m_signals = 0;
    std::u16string m_first;  ///< label of the first such signal
    std::uint64_t m_place = 0;
};

/// How many records a file holds, and what to tell about it.
struct RecordCount {
    std::uint64_t count = 0;
    bool stated = false;  ///< by the header, and there are as many
    Bilingual remark;     ///< empty where it is stated
};

/// A count that a header states.
struct StatedCount {
    std::optional<std::int64_t> count;  ///< none where it cannot be read
    std::u16string shown;               ///< as the header has it
    std::uint64_t place = 0;            ///< its byte
};

/// The stated count where the file holds as many, else as many as are whole. Throws FormatError where none is.
[[nodiscard]] RecordCount CountRecords(std::uint64_t fileSize, std::uint64_t dataStart, std::uint64_t recordBytes,
                                       const StatedCount& stated);

/// Bytes that no record takes.
[[nodiscard]] Bilingual RemarkOnRest(std::uint64_t bytes);

/// "EDF+C, 11 signals, 600 records of 1 s"
[[nodiscard]] Bilingual DescribeRecords(const std::u16string& format, std::size_t signals, std::uint64_t records,
                                        double recordSeconds);

}  // namespace quillon
