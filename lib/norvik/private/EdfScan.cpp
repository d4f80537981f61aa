#include "norvik/private/EdfScan.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

#include "norvik/private/EdfRecords.h"
#include "norvik/private/FileBlock.h"

namespace quillon {

namespace {

/// What a read of a few bytes costs of a step, since the disk has to seek, and what it counts for in BytesRead.
constexpr std::uint64_t kSeekCost = 32768;
constexpr std::uint64_t kLeastRead = 16384;
/// A record's onset is in its first list; longer lists are damaged.
constexpr std::uint64_t kFirstListBytes = (1U << 20) + 64;

std::string_view Characters(const std::uint8_t* bytes, std::uint64_t count) {
    return {reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(count)};
}

}  // namespace

EdfScan::EdfScan(const std::shared_ptr<ByteSource>& source, const EdfHeader& header, EdfTimeline& timeline,
                 EdfMarks& marks, std::uint64_t stepBytes)
    : m_source(source),
      m_header(header),
      m_timeline(timeline),
      m_marks(marks),
      m_stepBytes(stepBytes),
      m_readable(header.records) {
    if (header.annotations.empty()) {
        timeline.AddGapless(header.records);
        return;
    }
    std::uint64_t annotationBytes = 0;
    std::uint64_t cost = 0;
    m_low = header.recordBytes;
    for (const EdfSignal& signal : header.annotations) {
        m_low = std::min(m_low, signal.offset);
        m_high = std::max(m_high, signal.offset + signal.partBytes);
        annotationBytes += signal.partBytes;
        cost += std::max(signal.partBytes, kSeekCost);
    }
    const bool littleElse = header.recordBytes <= kPieceBytes && annotationBytes >= header.recordBytes / 2;
    m_wholeRecords = header.recordBytes <= kSmallRecord || littleElse;
    if (m_wholeRecords) cost = header.recordBytes;
    m_partRecords = std::max<std::uint64_t>(m_stepBytes / cost, 1);
    m_end = (header.records + m_partRecords - 1) / m_partRecords;
    m_done.resize(static_cast<std::size_t>(m_end));
    ReadFirstOnset();
}

void EdfScan::ReadFirstOnset() {
    const EdfSignal& signal = m_header.annotations.front();
    EdfAnnotations lists;
    const std::uint64_t size = std::min(signal.partBytes, kFirstListBytes);
    for (std::uint64_t at = 0; at < size; at += kPieceBytes) {
        const std::uint64_t count = std::min<std::uint64_t>(kPieceBytes, size - at);
        lists.Feed(Characters(
            m_piece.Read(*m_source, m_header.dataStart + signal.offset + at, static_cast<std::size_t>(count)), count));
    }
    const std::optional<double> onset = lists.EndRecord();
    m_timeline.Add(onset);
    if (!m_header.discontinuous) m_timeline.AddGapless(m_header.records - 1);
}

double EdfScan::Share() const {
    return m_end == 0 ? 1.0 : static_cast<double>(std::min(m_doneCount, m_end)) / static_cast<double>(m_end);
}

std::uint64_t EdfScan::NextPart(std::uint64_t nearRecord) {
    const auto isLeft = [&](std::uint64_t part) { return part < m_end && !m_done[static_cast<std::size_t>(part)]; };
    if (!m_header.discontinuous) {
        const std::uint64_t near = nearRecord / m_partRecords;
        for (const std::uint64_t part : {near, near + 1, near - 1})
            if (isLeft(part)) return part;
    }
    while (m_nextInOrder < m_end && !isLeft(m_nextInOrder)) ++m_nextInOrder;
    return m_nextInOrder;
}

std::uint64_t EdfScan::PartEnd() const {
    return std::min((m_part + 1) * m_partRecords, m_header.records);
}

void EdfScan::BeginPart(std::uint64_t part) {
    m_inPart = true;
    m_part = part;
    m_record = part * m_partRecords;
    m_signal = 0;
    m_byte = 0;
    m_lists = {};
}

void EdfScan::EndPart() {
    m_inPart = false;
    m_done[static_cast<std::size_t>(m_part)] = true;
    ++m_doneCount;
    m_malformed += m_lists.Malformed();
    const bool cut = m_lists.LimitReached();
    m_marks.Add(static_cast<std::uint32_t>(m_part), m_lists.Take(), cut);
}

bool EdfScan::Step(std::uint64_t nearRecord) {
    if (!m_inPart) {
        const std::uint64_t part = NextPart(nearRecord);
        if (part >= m_end) return false;
        BeginPart(part);
    }
    try {
        for (std::uint64_t cost = 0; cost < m_stepBytes && m_record < PartEnd();)
            cost += m_wholeRecords ? ReadRecords() : ReadPiece();
    } catch (const ReadError&) {
        // The rest is not tried: where a device is gone every attempt takes long.
        m_readable = m_record;
        m_end = m_part;
        m_lists.EndRecord();
        EndPart();
    }
    if (m_inPart && m_record == PartEnd()) EndPart();
    return m_inPart || NextPart(nearRecord) < m_end;
}

std::uint64_t EdfScan::ReadRecords() {
    const std::uint64_t size = m_high - m_low;
    const std::uint64_t records =
        std::min(PartEnd() - m_record, std::max<std::uint64_t>(kPieceBytes / m_header.recordBytes, 1));
    const std::uint64_t bytes = (records - 1) * m_header.recordBytes + size;
    const std::uint8_t* piece = m_piece.Read(*m_source, m_header.dataStart + m_record * m_header.recordBytes + m_low,
                                             static_cast<std::size_t>(bytes));
    for (std::uint64_t record = 0; record < records; ++record, piece += m_header.recordBytes) {
        for (std::size_t signal = 0; signal < m_header.annotations.size(); ++signal) {
            const EdfSignal& from = m_header.annotations[signal];
            m_lists.Feed(Characters(piece + (from.offset - m_low), from.partBytes));
            EndSignal(signal);
        }
    }
    m_record += records;
    m_bytesRead += std::max(bytes, kLeastRead);
    return bytes;
}

std::uint64_t EdfScan::ReadPiece() {
    const EdfSignal& signal = m_header.annotations[m_signal];
    const std::uint64_t count = std::min<std::uint64_t>(signal.partBytes - m_byte, kPieceBytes);
    const std::uint64_t offset = m_header.dataStart + m_record * m_header.recordBytes + signal.offset + m_byte;
    m_lists.Feed(Characters(m_piece.Read(*m_source, offset, static_cast<std::size_t>(count)), count));
    m_byte += count;
    if (m_byte == signal.partBytes) {
        EndSignal(m_signal);
        m_byte = 0;
        if (++m_signal == m_header.annotations.size()) {
            m_signal = 0;
            ++m_record;
        }
    }
    m_bytesRead += std::max(count, kLeastRead);
    return std::max(count, kSeekCost);
}

void EdfScan::EndSignal(std::size_t signal) {
    const std::optional<double> onset = m_lists.EndRecord();
    // Only the first annotation signal contains the onsets of records.
    if (signal > 0 || !m_header.discontinuous) return;
    if (!onset) ++m_withoutOnset;
    if (!std::exchange(m_firstPassed, true)) return;
    m_timeline.Add(onset);
}

}  // namespace quillon
