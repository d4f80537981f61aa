#include "norvik/private/BrainVisionMarkers.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "base/DateTime.h"
#include "base/Text.h"
#include "norvik/private/EdfAnnotations.h"
#include "norvik/private/SectionedText.h"

namespace quillon {

namespace {

constexpr std::u16string_view kNewSegment = u"New Segment";

/// "YYYYMMDDhhmmssuuuuuu"; recorders without a clock write zeros, or a date of the year 0.
std::optional<std::int64_t> ParseDate(std::u16string_view text) {
    const std::optional<CivilTime> time = CivilFromDigits(text.substr(0, 14));
    if (!time || text.size() != 20) return std::nullopt;
    int micros = 0;
    for (const char16_t letter : text.substr(14)) {
        if (letter < u'0' || letter > u'9') return std::nullopt;
        micros = micros * 10 + (letter - u'0');
    }
    CivilTime date;
    date.year = time->year;
    date.month = time->month;
    date.day = time->day;
    const auto days = static_cast<std::int64_t>(DateFromCivil(date));
    return (((days * 24 + time->hour) * 60 + time->minute) * 60 + time->second) * 1000000 + micros;
}

double DaysOf(std::int64_t microseconds) {
    return static_cast<double>(microseconds) / 1e6 / kSecondsPerDay;
}

/// 0 for what is no whole number above 0.
std::uint64_t WholeNumber(std::u16string_view text) {
    const std::string digits = Utf8(text);
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return error == std::errc() && end == digits.data() + digits.size() ? number : 0;
}

bool IsNewSegment(const BrainVisionMarker& marker) {
    return LowerCase(marker.type) == LowerCase(kNewSegment);
}

FrameMark MarkOf(const BrainVisionMarker& marker, const FrameRecording& recording) {
    FrameMark mark;
    mark.position = marker.position;
    mark.text = marker.description.empty() ? marker.type : marker.description;
    if (!marker.description.empty() && LowerCase(marker.type) == u"comment")
        mark.text = marker.type + u": " + marker.description;
    // As EDF+ files name the channel of an annotation, which the list of marks shows.
    if (marker.channel > 0 && marker.channel <= recording.channels.size())
        mark.text += u"@@" + recording.channels[static_cast<std::size_t>(marker.channel) - 1].title;
    // A marker of one sample is a point in time.
    if (marker.size > 1) mark.duration = static_cast<double>(marker.size) / recording.sampleRate;
    return mark;
}

/// Cuts a recording where its new segments begin.
class SegmentCuts {
  public:
    SegmentCuts(const FrameRecording& recording, std::vector<FrameRun>& stretches)
        : m_rate(recording.sampleRate), m_stretches(stretches) {
        m_stretches = {{0, recording.frameCount, recording.startTime}};
    }

    /// Returns whether the marker was used up; a mark else.
    bool Take(const BrainVisionMarker& marker) {
        const std::optional<double> elapsed = Elapsed(marker);
        if (!m_seen) {
            m_seen = true;
            if (marker.date) {
                const double before = static_cast<double>(marker.position) / m_rate / kSecondsPerDay;
                m_stretches.front().startTime = DaysOf(*marker.date) - before;
            }
            Remember(marker);
            return true;
        }
        FrameRun& last = m_stretches.back();
        const std::uint64_t samples = marker.position - last.first;
        // The clocks of some recorders lag behind their samples.
        const bool continues = elapsed && *elapsed <= 0.5 / m_rate;
        if (samples == 0 || continues) return false;
        const double contiguous = last.startTime + static_cast<double>(samples) / m_rate / kSecondsPerDay;
        const FrameRun next{marker.position, last.count - samples, marker.date ? DaysOf(*marker.date) : contiguous};
        last.count = samples;
        m_stretches.push_back(next);
        Remember(marker);
        return true;
    }

  private:
    /// Seconds between the end of the samples before the marker and its date, where both are known.
    [[nodiscard]] std::optional<double> Elapsed(const BrainVisionMarker& marker) const {
        if (!m_dated || !marker.date) return std::nullopt;
        return static_cast<double>(*marker.date - m_date) / 1e6 -
               static_cast<double>(marker.position - m_position) / m_rate;
    }
    void Remember(const BrainVisionMarker& marker) {
        m_dated = marker.date.has_value();
        m_date = marker.date.value_or(0);
        m_position = marker.position;
    }

    double m_rate;
    std::vector<FrameRun>& m_stretches;
    bool m_seen = false;
    bool m_dated = false;     ///< the last segment that was used up has a date
    std::int64_t m_date = 0;  ///< of that segment
    std::uint64_t m_position = 0;
};

/// Cuts the stretches where a segment of the header begins, up to one more than a recording may have blocks.
std::vector<FrameRun> CutSegments(const std::vector<FrameRun>& stretches, std::uint64_t segmentSamples, double rate) {
    std::vector<FrameRun> parts;
    for (const FrameRun& stretch : stretches) {
        for (std::uint64_t done = 0; done < stretch.count && parts.size() <= kMostBlocks;) {
            const std::uint64_t first = stretch.first + done;
            const std::uint64_t count = std::min(segmentSamples - first % segmentSamples, stretch.count - done);
            const double days = static_cast<double>(done) / rate / kSecondsPerDay;
            parts.push_back({first, count, stretch.startTime + days});
            done += count;
        }
    }
    return parts;
}

}  // namespace

BrainVisionMarkers ParseBrainVisionMarkers(std::string_view text, std::uint64_t samples) {
    BrainVisionMarkers markers;
    std::size_t bytes = 0;
    ForEachEntry(text, [&](const TextEntry& entry) {
        if (entry.section != u"marker infos" || !entry.key.starts_with(u"mk") || markers.limitReached) return;
        CommaFields fields(entry.value);
        BrainVisionMarker marker;
        marker.type = fields.Next();
        marker.description = fields.Next();
        const std::uint64_t position = WholeNumber(fields.Next());
        marker.size = WholeNumber(fields.Next());
        marker.channel = WholeNumber(fields.Next());
        marker.date = ParseDate(fields.Next());
        if (position < 1 || position > samples) {
            ++markers.leftOut;
            return;
        }
        marker.position = position - 1;
        bytes += sizeof marker + sizeof(FrameMark) + sizeof(MarkDescription) + 2 * entry.value.size();
        markers.limitReached = bytes > kAnnotationMemory;
        if (!markers.limitReached) markers.all.push_back(std::move(marker));
    });
    std::stable_sort(
        markers.all.begin(), markers.all.end(),
        [](const BrainVisionMarker& left, const BrainVisionMarker& right) { return left.position < right.position; });
    return markers;
}

void ApplyMarkers(const BrainVisionMarkers& markers, const BrainVisionHeader& header, FrameRecording& recording) {
    std::vector<FrameRun> stretches;
    SegmentCuts cuts(recording, stretches);
    for (const BrainVisionMarker& marker : markers.all) {
        if (IsNewSegment(marker) && cuts.Take(marker)) continue;
        recording.marks.push_back(MarkOf(marker, recording));
    }
    if (header.segmentSamples > 0) stretches = CutSegments(stretches, header.segmentSamples, recording.sampleRate);
    recording.startTime = stretches.front().startTime;
    recording.stretches = std::move(stretches);
}

}  // namespace quillon
