#include "norvik/private/EdfTimeline.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <span>
#include <string_view>

#include "base/Text.h"
#include "norvik/private/EdfRecords.h"
#include "norvik/private/FileBlock.h"

namespace quillon {

namespace {

/// Cuts records into stretches as their onsets come in.
class StretchCutter {
  public:
    StretchCutter(const EdfHeader& header, std::size_t maxStretches)
        : m_recordSeconds(header.recordSeconds), m_discontinuous(header.discontinuous), m_maxStretches(maxStretches) {
        std::uint64_t fastest = 1;
        for (const EdfSignal& signal : header.signals) fastest = std::max(fastest, signal.samplesPerRecord);
        m_maxRecords = static_cast<std::uint64_t>(kBlockSamples) / fastest;
        // A little more than a half, so that decimal onsets of exactly half a sample do not cut.
        m_tolerance = 0.5000001 * header.recordSeconds / static_cast<double>(fastest);
    }

    /// The next record, with its onset if it contains one.
    void Add(std::optional<double> onset) {
        const std::uint64_t record = m_record++;
        if (m_full) return;
        if (m_stretches.empty()) {
            Begin(record, onset.value_or(0.0));
            return;
        }
        EdfStretch& stretch = m_stretches.back();
        const double expected = stretch.onset + static_cast<double>(stretch.records) * m_recordSeconds;
        if (m_discontinuous && onset && std::abs(*onset - expected) > m_tolerance) {
            Begin(record, *onset);
        } else if (stretch.records == m_maxRecords) {
            Begin(record, expected);
        } else {
            ++stretch.records;
        }
    }

    /// Many records that follow each other and tell no onsets.
    void AddGapless(std::uint64_t records) {
        while (records > 0 && !m_full) {
            Add(std::nullopt);
            EdfStretch& stretch = m_stretches.back();
            const std::uint64_t more = std::min(records - 1, m_maxRecords - stretch.records);
            stretch.records += more;
            m_record += more;
            records -= more + 1;
        }
    }

    [[nodiscard]] bool Full() const { return m_full; }
    [[nodiscard]] std::uint64_t Records() const { return m_record; }
    [[nodiscard]] std::vector<EdfStretch> Take() { return std::move(m_stretches); }

  private:
    void Begin(std::uint64_t record, double onset) {
        if (m_stretches.size() < m_maxStretches) {
            m_stretches.push_back({record, 1, onset});
        } else {
            m_full = true;
        }
    }

    double m_recordSeconds;
    bool m_discontinuous;
    std::size_t m_maxStretches;
    std::uint64_t m_maxRecords = 1;
    double m_tolerance = 0.0;
    std::uint64_t m_record = 0;
    bool m_full = false;
    std::vector<EdfStretch> m_stretches;
};

void ReadAnnotations(const std::shared_ptr<ByteSource>& source, const EdfHeader& header, StretchCutter& cutter,
                     EdfTimeline& timeline) {
    EdfRecords records(source, header.dataStart, header.recordBytes);
    std::uint64_t withoutOnset = 0;
    std::uint64_t readable = header.records;
    for (std::size_t at = 0; at < header.annotations.size(); ++at) {
        std::uint64_t read = 0;
        const EdfSignal& signal = header.annotations[at];
        const auto visit = [&](std::uint64_t position, std::span<const std::uint8_t* const> streams,
                               std::size_t bytes) {
            timeline.annotations.Feed({reinterpret_cast<const char*>(streams[0]), bytes});
            if ((position + bytes) % signal.partBytes != 0) return;
            const std::optional<double> onset = timeline.annotations.EndRecord();
            ++read;
            // Only the first annotation signal contains the onsets of records.
            if (at > 0) return;
            if (!onset) ++withoutOnset;
            cutter.Add(onset);
        };
        try {
            records.Visit(std::array{signal.offset}, signal.partBytes, 0, readable * signal.partBytes, visit);
        } catch (const ReadError&) {
            // Without gaps the records tell nothing that the samples need. The rest is not tried: where a device is
            // gone every attempt takes long.
            if (header.discontinuous || (at == 0 && read == 0)) throw;
            timeline.annotations.EndRecord();
            readable = read;
        }
    }
    cutter.AddGapless(header.records - cutter.Records());
    if (readable < header.records) {
        timeline.notes.push_back(Say(u"annotations read up to record %1 only", u"аннотации прочитаны до записи %1",
                                     {Decimal(static_cast<std::int64_t>(readable))}));
    }
    if (header.discontinuous && withoutOnset > 0) {
        timeline.notes.push_back(Say(u"%1 records without an onset taken as gapless",
                                     u"записей без времени начала: %1, приняты за непрерывные",
                                     {Decimal(static_cast<std::int64_t>(withoutOnset))}));
    }
}

}  // namespace

EdfTimeline ReadEdfTimeline(const std::shared_ptr<ByteSource>& source, const EdfHeader& header,
                            std::size_t maxStretches) {
    EdfTimeline timeline;
    StretchCutter cutter(header, maxStretches);
    if (header.annotations.empty()) {
        cutter.AddGapless(header.records);
    } else {
        ReadAnnotations(source, header, cutter, timeline);
    }
    const bool full = cutter.Full();
    timeline.stretches = cutter.Take();

    if (header.discontinuous && header.annotations.empty()) {
        timeline.notes.push_back(
            Say(u"no annotation signal, taken as gapless", u"нет сигнала аннотаций, принят за непрерывный"));
    }
    if (timeline.stretches.size() > 1) {
        timeline.notes.push_back(
            Say(u"%1 stretches", u"участков: %1", {Decimal(static_cast<std::int64_t>(timeline.stretches.size()))}));
    }
    if (full) {
        const EdfStretch& last = timeline.stretches.back();
        timeline.notes.push_back(Say(u"too many stretches, read up to record %1",
                                     u"слишком много участков, прочитано записей: %1",
                                     {Decimal(static_cast<std::int64_t>(last.firstRecord + last.records))}));
    }
    if (timeline.annotations.Malformed() > 0) {
        timeline.notes.push_back(Say(u"%1 damaged annotations left out", u"пропущено повреждённых аннотаций: %1",
                                     {Decimal(static_cast<std::int64_t>(timeline.annotations.Malformed()))}));
    }
    if (timeline.annotations.LimitReached()) {
        timeline.notes.push_back(Say(u"too many annotations, the first %1 read",
                                     u"слишком много аннотаций, прочитаны первые %1",
                                     {Decimal(static_cast<std::int64_t>(timeline.annotations.All().size()))}));
    }
    return timeline;
}

}  // namespace quillon
