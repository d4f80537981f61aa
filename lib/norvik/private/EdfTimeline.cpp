#include "norvik/private/EdfTimeline.h"

#include <algorithm>
#include <cmath>

#include "base/DateTime.h"
#include "base/Text.h"
#include "norvik/private/FileBlock.h"

namespace quillon {

EdfTimeline::EdfTimeline(const EdfHeader& header, std::size_t maxStretches)
    : m_startDate(header.startDate),
      m_recordSeconds(header.recordSeconds),
      m_discontinuous(header.discontinuous),
      m_maxStretches(maxStretches) {
    std::uint64_t fastest = 1;
    for (const EdfSignal& signal : header.signals) fastest = std::max(fastest, signal.samplesPerRecord);
    m_maxRecords = static_cast<std::uint64_t>(kBlockSamples) / fastest;
    // A little more than a half, so that decimal onsets of exactly half a sample do not cut.
    m_tolerance = 0.5000001 * header.recordSeconds / static_cast<double>(fastest);
}

void EdfTimeline::Add(std::optional<double> onset) {
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

void EdfTimeline::AddGapless(std::uint64_t records) {
    while (records > 0 && !m_full) {
        Add(std::nullopt);
        EdfStretch& stretch = m_stretches.back();
        const std::uint64_t more = std::min(records - 1, m_maxRecords - stretch.records);
        stretch.records += more;
        m_record += more;
        records -= more + 1;
    }
}

void EdfTimeline::Begin(std::uint64_t record, double onset) {
    if (m_stretches.size() == m_maxStretches) {
        m_full = true;
        return;
    }
    m_stretches.push_back({record, 1, onset});
    ChooseNaming();
}

double EdfTimeline::StartOf(const EdfStretch& stretch) const {
    return m_startDate + stretch.onset / kSecondsPerDay;
}

std::string EdfTimeline::Text(std::size_t stretch, Naming naming) const {
    std::string text = Iso8601(StartOf(m_stretches[stretch]));
    const std::size_t dateEnd = text.find('T');
    text[dateEnd] = ' ';
    const bool milliseconds = naming == Naming::Milliseconds || naming == Naming::DateMilliseconds;
    const bool date = naming == Naming::DateTime || naming == Naming::DateMilliseconds;
    if (!milliseconds) text.resize(text.find('.'));
    return date ? text : text.substr(dateEnd + 1);
}

void EdfTimeline::ChooseNaming() {
    for (std::size_t at = m_stretches.size() - 1; m_naming != Naming::Number && at < m_stretches.size();) {
        if (m_texts.insert(Text(at, m_naming)).second) {
            ++at;
            continue;
        }
        m_texts.clear();
        at = 0;
        m_naming = static_cast<Naming>(static_cast<int>(m_naming) + 1);
        const bool dated = m_naming == Naming::DateTime || m_naming == Naming::DateMilliseconds;
        if (dated && m_startDate == 0.0) m_naming = static_cast<Naming>(static_cast<int>(m_naming) + 1);
    }
}

std::u16string EdfTimeline::Title(std::size_t stretch) const {
    if (m_stretches.size() == 1) return {};
    std::u16string title = Utf16(Text(stretch, m_naming));
    if (m_naming == Naming::Number) title += u" (" + Decimal(static_cast<std::int64_t>(stretch + 1)) + u")";
    return title;
}

}  // namespace quillon
