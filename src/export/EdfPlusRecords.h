#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace quillon {

/// A range of samples as data records of equal length.
struct EdfPlusRecords {
    std::int32_t samples = 1;   ///< per signal and record
    std::string seconds = "1";  ///< duration of a record, as the header has it
    std::int32_t count = 0;     ///< of records
    std::int32_t filled = 0;    ///< samples of the last record behind the range
    double rate = 0.0;          ///< that a reader computes, Hz
};

/// What EDF recommends a record to take at most.
inline constexpr std::size_t kEdfRecordBytes = 61440;

/// The records that hold all samples of a range and give its rate exactly, as far as a duration of 8 characters can.
/// Where several do, in this order: no fill or little of it, records that are not tiny, whole seconds, about a second.
/// An exact rate is given up where it would take a fill of a second or more, or one longer than the range and a tenth
/// of a second; a fill of 3 samples is always taken. `recordBytes` is what the samples of all signals may take of a
/// record; at least one of each is in it. Throws FormatError for a rate that readers refuse.
[[nodiscard]] EdfPlusRecords ChooseEdfPlusRecords(double rate, std::int32_t sampleCount, std::size_t signals,
                                                  std::size_t recordBytes);

}  // namespace quillon
