#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "norvik/private/ByteSource.h"
#include "norvik/private/EdfAnnotations.h"
#include "norvik/private/EdfHeader.h"
#include "norvik/private/EdfMarks.h"
#include "norvik/private/EdfTimeline.h"
#include "norvik/private/PieceBuffer.h"

namespace quillon {

/// Reads the annotation signals of a file step by step.
///
/// Of a discontinuous file the records are read in order, since their onsets make the timeline. Of another one all
/// stretches are known from the first record on, and the annotations may come in any order: those asked for first.
class EdfScan {
  public:
    /// The header, the timeline and the marks must outlive the scan. Reads the first onset; throws ReadError.
    EdfScan(const std::shared_ptr<ByteSource>& source, const EdfHeader& header, EdfTimeline& timeline, EdfMarks& marks,
            std::uint64_t stepBytes);

    /// Reads about `stepBytes`, first what lies near a record. Returns whether more is left.
    bool Step(std::uint64_t nearRecord);
    /// Bytes that steps have read; a read of few bytes counts as one of 16 KiB.
    [[nodiscard]] std::uint64_t BytesRead() const { return m_bytesRead; }
    /// Share of the records that is read.
    [[nodiscard]] double Share() const;

    /// Records that could be read: all of the header's unless a read failed.
    [[nodiscard]] std::uint64_t Readable() const { return m_readable; }
    [[nodiscard]] std::uint64_t WithoutOnset() const { return m_withoutOnset; }
    [[nodiscard]] std::size_t Malformed() const { return m_malformed; }

  private:
    void ReadFirstOnset();
    [[nodiscard]] std::uint64_t PartEnd() const;
    /// The part to be read next, or the number of parts when none is left.
    [[nodiscard]] std::uint64_t NextPart(std::uint64_t nearRecord);
    void BeginPart(std::uint64_t part);
    void EndPart();
    /// Read whole records in one go, or a piece of one annotation signal of one record.
    std::uint64_t ReadRecords();
    std::uint64_t ReadPiece();
    void EndSignal(std::size_t signal);

    std::shared_ptr<ByteSource> m_source;
    const EdfHeader& m_header;
    EdfTimeline& m_timeline;
    EdfMarks& m_marks;
    std::uint64_t m_stepBytes;
    bool m_wholeRecords = false;      ///< records are small enough, or hold little else
    std::uint64_t m_low = 0;          ///< the annotation signals' first byte in a record
    std::uint64_t m_high = 0;         ///< behind their last one
    std::uint64_t m_partRecords = 1;  ///< records of one part
    std::vector<bool> m_done;         ///< of each part
    std::uint64_t m_doneCount = 0;
    std::uint64_t m_nextInOrder = 0;  ///< no part before it is left
    std::uint64_t m_end = 0;          ///< parts from here on are not read

    // The part under way.
    bool m_inPart = false;
    std::uint64_t m_part = 0;
    std::uint64_t m_record = 0;
    std::size_t m_signal = 0;
    std::uint64_t m_byte = 0;  ///< of the signal in the record
    EdfAnnotations m_lists;
    bool m_firstPassed = false;  ///< the first record, which the timeline has from the start

    PieceBuffer m_piece;
    std::uint64_t m_bytesRead = 0;
    std::uint64_t m_readable = 0;
    std::uint64_t m_withoutOnset = 0;
    std::size_t m_malformed = 0;
};

}  // namespace quillon
