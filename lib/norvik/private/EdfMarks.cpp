#include "norvik/private/EdfMarks.h"

#include <algorithm>
#include <cmath>

namespace quillon {

namespace {

std::size_t BytesOf(const EdfAnnotation& annotation) {
    return sizeof annotation + annotation.text.size() * sizeof(char16_t);
}

}  // namespace

void EdfMarks::Add(std::uint32_t part, std::vector<EdfAnnotation> annotations, bool cut) {
    if (cut) m_end = std::min(m_end, Place{part, static_cast<std::uint32_t>(annotations.size())});
    if (annotations.empty() || m_end <= Place{part, 0}) return;
    for (std::uint32_t at = 0; at < annotations.size() && Place{part, at} < m_end; ++at) {
        m_bytes += BytesOf(annotations[at]);
        ++m_count;
        m_sorted.push_back({annotations[at].onset, {part, at}});
    }
    if (part == m_end.first) annotations.resize(std::min<std::size_t>(annotations.size(), m_end.second));
    m_parts.emplace(part, std::move(annotations));
    m_marksValid = false;
    ++m_version;
    LeaveOutLast();
}

void EdfMarks::LeaveOutLast() {
    while (m_bytes > m_memory) {
        const auto last = std::prev(m_parts.end());
        m_bytes -= BytesOf(last->second.back());
        --m_count;
        last->second.pop_back();
        m_end = {last->first, static_cast<std::uint32_t>(last->second.size())};
        if (last->second.empty()) m_parts.erase(last);
    }
}

void EdfMarks::Sort() {
    if (m_end != kNoEnd) {
        const auto isLeftOut = [&](const Entry& entry) { return entry.place >= m_end; };
        const auto sortedEnd = m_sorted.begin() + static_cast<std::ptrdiff_t>(m_sortedCount);
        const auto left = static_cast<std::size_t>(std::count_if(m_sorted.begin(), sortedEnd, isLeftOut));
        std::erase_if(m_sorted, isLeftOut);
        m_sortedCount -= left;
    }
    const auto middle = m_sorted.begin() + static_cast<std::ptrdiff_t>(m_sortedCount);
    if (middle == m_sorted.end()) return;
    std::sort(middle, m_sorted.end());
    std::inplace_merge(m_sorted.begin(), middle, m_sorted.end());
    m_sortedCount = m_sorted.size();
}

std::optional<std::pair<double, double>> EdfMarks::Extent() const {
    std::optional<std::pair<double, double>> extent;
    for (const auto& [part, annotations] : m_parts) {
        for (const EdfAnnotation& annotation : annotations) {
            const double end = annotation.onset + annotation.duration;
            if (!extent) extent.emplace(annotation.onset, end);
            extent->first = std::min(extent->first, annotation.onset);
            extent->second = std::max(extent->second, end);
        }
    }
    return extent;
}

const std::vector<EdfMarks::Mark>& EdfMarks::Of(double onset, double rate, std::int32_t sampleCount) {
    const std::tuple asked(onset, rate, sampleCount);
    if (m_marksValid && m_marksOf == asked) return m_marks;
    Sort();
    m_marks.clear();
    // Wider than the block by a sample on either side; the rounded position decides.
    const auto before = [](const Entry& entry, double time) { return entry.onset < time; };
    const auto from = std::lower_bound(m_sorted.begin(), m_sorted.end(), onset - 1.0 / rate, before);
    const auto to = std::lower_bound(from, m_sorted.end(), onset + (sampleCount + 1.0) / rate, before);
    for (auto entry = from; entry != to; ++entry) {
        const double position = std::nearbyint((entry->onset - onset) * rate);
        if (position < 0.0 || position >= sampleCount) continue;
        m_marks.push_back({static_cast<std::int32_t>(position), entry->place.first, entry->place.second});
    }
    // Positions ascend with the onsets; only those at one position have another order than in the file.
    const auto inFile = [](const Mark& one, const Mark& other) {
        return std::tie(one.part, one.index) < std::tie(other.part, other.index);
    };
    for (auto run = m_marks.begin(); run != m_marks.end();) {
        const auto end =
            std::find_if(run, m_marks.end(), [&](const Mark& mark) { return mark.position != run->position; });
        std::sort(run, end, inFile);
        run = end;
    }
    m_marksOf = asked;
    m_marksValid = true;
    return m_marks;
}

}  // namespace quillon
