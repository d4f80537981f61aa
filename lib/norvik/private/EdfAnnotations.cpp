#include "norvik/private/EdfAnnotations.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "base/Text.h"

namespace quillon {

namespace {

constexpr char kAfterText = '\x14';
constexpr char kBeforeDuration = '\x15';
constexpr std::size_t kLongestList = 1U << 20;
constexpr double kLatestOnset = 1e10;  // seconds

}  // namespace

std::optional<double> ParseOnset(std::string_view text) {
    if (text.size() < 2 || (text.front() != '+' && text.front() != '-')) return std::nullopt;
    const bool negative = text.front() == '-';
    text.remove_prefix(1);
    const bool digit = text.front() >= '0' && text.front() <= '9';
    if (!digit && text.front() != '.') return std::nullopt;
    double seconds = 0.0;
    const char* const end = text.data() + text.size();
    const auto parsed = std::from_chars(text.data(), end, seconds, std::chars_format::fixed);
    if (parsed.ec != std::errc() || parsed.ptr != end || seconds > kLatestOnset) return std::nullopt;
    return negative ? -seconds : seconds;
}

void EdfAnnotations::Feed(std::string_view bytes) {
    while (!bytes.empty()) {
        const std::size_t end = bytes.find('\0');
        const std::string_view part = bytes.substr(0, end);
        m_tooLong = m_tooLong || part.size() > kLongestList - m_list.size();
        if (!m_tooLong) m_list.append(part);
        if (end == std::string_view::npos) return;
        EndList();
        bytes.remove_prefix(end);
        // What is left of the record is mostly zeros.
        bytes.remove_prefix(std::min(bytes.find_first_not_of('\0'), bytes.size()));
    }
}

std::optional<double> EdfAnnotations::EndRecord() {
    EndList();
    m_firstList = true;
    return std::exchange(m_recordOnset, std::nullopt);
}

void EdfAnnotations::EndList() {
    if (m_list.empty() && !m_tooLong) return;
    const bool first = std::exchange(m_firstList, false);
    const bool tooLong = std::exchange(m_tooLong, false);
    const std::string list = std::exchange(m_list, {});
    const std::size_t stampEnd = list.find(kAfterText);
    const std::size_t onsetEnd = std::min(list.find(kBeforeDuration), stampEnd);
    const std::optional<double> onset = tooLong || stampEnd == std::string::npos
                                            ? std::nullopt
                                            : ParseOnset(std::string_view(list).substr(0, onsetEnd));
    if (!onset || list.back() != kAfterText) {
        ++m_malformed;
        return;
    }
    const std::string_view texts = std::string_view(list).substr(stampEnd + 1);
    if (first && (texts.empty() || texts.front() == kAfterText)) m_recordOnset = onset;
    double duration = 0.0;
    // Written without a sign.
    if (onsetEnd < stampEnd)
        duration = ParseOnset('+' + list.substr(onsetEnd + 1, stampEnd - onsetEnd - 1)).value_or(0.0);
    AddTexts(*onset, duration, texts);
}

void EdfAnnotations::AddTexts(double onset, double duration, std::string_view texts) {
    while (!texts.empty()) {
        const std::size_t end = texts.find(kAfterText);
        if (end > 0) {
            EdfAnnotation annotation{onset, FromUtf8OrLatin1(texts.substr(0, end)), duration};
            m_bytes += sizeof annotation + annotation.text.size() * sizeof(char16_t);
            m_limitReached = m_limitReached || m_bytes > kAnnotationMemory;
            if (m_limitReached) return;
            m_all.push_back(std::move(annotation));
        }
        texts.remove_prefix(end + 1);
    }
}

}  // namespace quillon
