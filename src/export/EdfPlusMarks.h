#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "base/SampleSpan.h"
#include "export/EdfPlusRecords.h"
#include "norvik/NorvikCore.h"

namespace quillon {

/// The signal "EDF Annotations" of a file: the time of every record, and the marks of a range as time-stamped lists of
/// one annotation each.
///
/// A mark is told in its own record. Where a record has far more of them than others, so that room for all would make
/// every record large, some are told in records behind it, or in front of it; readers take them from any.
class EdfPlusMarks {
  public:
    /// Finds the marks of the range. `block` is asked for their texts until the last record is made. `fraction` is the
    /// part of a second by which the range begins after the header's start.
    EdfPlusMarks(const RecordingBlock& block, const SampleSpan& range, double fraction);

    /// Lays the marks out over the records, of which samples take `dataBytes` each; begins with the first record.
    void Plan(const EdfPlusRecords& records, std::size_t dataBytes);
    /// Of the signal in every record; even.
    [[nodiscard]] std::size_t RecordBytes() const { return m_width; }
    /// The signal's bytes in the next record.
    [[nodiscard]] std::string NextRecord();

  private:
    struct Told {
        std::int32_t mark = 1;    ///< number in the block
        std::int32_t sample = 0;  ///< of the range
        std::size_t bytes = 0;    ///< of its list
        std::int32_t record = 0;  ///< that tells it
    };
    [[nodiscard]] std::string TextOf(std::int32_t mark) const;
    [[nodiscard]] std::string ListOf(const Told& told) const;
    [[nodiscard]] std::string StampOf(std::int32_t record) const;
    [[nodiscard]] std::int32_t OwnRecord(const Told& told) const { return told.sample / m_records.samples; }
    [[nodiscard]] std::size_t MostOfOneRecord() const;
    /// Chooses the record of every mark; false where `room` bytes in each are too few.
    [[nodiscard]] bool Lay(std::size_t room);

    const RecordingBlock& m_block;
    double m_fraction;
    EdfPlusRecords m_records;
    double m_seconds = 0.0;    ///< of a record
    std::size_t m_places = 0;  ///< behind the point of times of records
    std::vector<Told> m_marks;
    std::size_t m_width = 0;
    std::int32_t m_record = 0;  ///< the next one
    std::size_t m_next = 0;     ///< the next mark to be told
};

}  // namespace quillon
