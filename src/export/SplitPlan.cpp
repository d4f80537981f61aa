#include "export/SplitPlan.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <system_error>

#include "base/FilePath.h"
#include "base/Rounding.h"
#include "base/Text.h"

namespace quillon {

namespace {

constexpr std::int32_t kMostSamples = std::numeric_limits<std::int32_t>::max();
constexpr std::size_t kLongestName = 255;  ///< characters that file systems take

bool IsDigit(char16_t character) {
    return character >= u'0' && character <= u'9';
}

std::u16string_view WithoutBlanks(std::u16string_view text) {
    while (!text.empty() && text.front() == u' ') text.remove_prefix(1);
    while (!text.empty() && text.back() == u' ') text.remove_suffix(1);
    return text;
}

/// Without the blanks and points at the end, which name the same file on Windows.
std::u16string_view WithoutTail(std::u16string_view path) {
    while (!path.empty() && (path.back() == u' ' || path.back() == u'.')) path.remove_suffix(1);
    return path;
}

/// Where the point before the extension stands; the end where there is none. A point at the front begins none.
std::size_t ExtensionStart(std::u16string_view path) {
    const std::size_t point = path.rfind(u'.');
    return point == std::u16string_view::npos || point <= NameStart(path) ? path.size() : point;
}

std::u16string Padded(std::int64_t number, std::size_t digits) {
    std::u16string text = Decimal(number);
    if (text.size() < digits) text.insert(0, digits - text.size(), u'0');
    return text;
}

/// Digits of the largest number in a plan's names.
std::size_t NameDigits(const SplitPlan& plan) {
    return Decimal(plan.sampleNames ? plan.blockSamples : plan.PieceCount()).size();
}

SplitEntry Fault(EntryFault fault) {
    return {0.0, 0, fault};
}

}  // namespace

std::int32_t FirstSplitSize(std::span<const std::int32_t> offered, double length) {
    constexpr double pieces = 10.0;
    std::int32_t size = offered.front();
    for (const std::int32_t offer : offered) {
        if (offer * pieces <= length) size = std::max(size, offer);
    }
    return size;
}

SplitEntry ParseSplitSeconds(std::u16string_view text, double rate, char16_t separator) {
    std::string digits;
    bool whole = true;
    bool positive = false;
    for (const char16_t character : WithoutBlanks(text)) {
        if (IsDigit(character)) {
            positive |= character != u'0';
            digits.push_back(static_cast<char>(character));
        } else if (whole && (character == u'.' || character == u',' || character == separator)) {
            whole = false;
            digits.push_back('.');
        } else {
            return Fault(EntryFault::NotPositive);
        }
    }
    if (!positive) return Fault(EntryFault::NotPositive);
    double seconds = 0.0;
    const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), seconds, std::chars_format::fixed);
    if (read.ec == std::errc::result_out_of_range) {
        // Beyond the range of doubles: hundreds of digits before the point, or of zeros after it.
        if (digits.find_first_of("123456789") < digits.find('.')) return Fault(EntryFault::TooLarge);
        seconds = std::numeric_limits<double>::min();
    }
    const double samples = seconds * rate;
    if (!(samples <= kMostSamples)) return Fault(EntryFault::TooLarge);
    return {seconds, std::max(RoundHalfEven(samples), 1), EntryFault::None};
}

SplitEntry ParseSplitSamples(std::u16string_view text) {
    std::int64_t samples = 0;
    for (const char16_t character : WithoutBlanks(text)) {
        if (!IsDigit(character)) return Fault(EntryFault::NotPositive);
        samples = std::min<std::int64_t>(samples * 10 + (character - u'0'), std::int64_t{kMostSamples} + 1);
    }
    if (samples == 0) return Fault(EntryFault::NotPositive);
    if (samples > kMostSamples) return Fault(EntryFault::TooLarge);
    return {static_cast<double>(samples), static_cast<std::int32_t>(samples), EntryFault::None};
}

std::u16string SplitBaseName(std::u16string_view recording) {
    const std::size_t start = NameStart(recording);
    return std::u16string(recording.substr(start, ExtensionStart(recording) - start));
}

std::u16string SplitFolderName(std::u16string_view recording) {
    const std::u16string folder(WithoutTail(recording.substr(0, ExtensionStart(recording))));
    return folder == WithoutTail(recording) ? folder + u"_pieces" : folder;
}

std::u16string SplitExtension(std::u16string_view recording) {
    return LowerCase(recording.substr(ExtensionStart(recording))) == u".wav" ? u"wav" : u"bin";
}

std::int64_t SplitPlan::PieceCount() const {
    if (blockSamples < 1) return 0;
    // The quotient is cut toward zero, so that a size a little above the block's still gives one piece.
    return (std::int64_t{blockSamples} - size) / step + 1;
}

std::int32_t SplitPlan::FirstSample(std::int64_t piece) const {
    return static_cast<std::int32_t>(piece * step + 1);
}

std::int32_t SplitPlan::SampleCount(std::int64_t piece) const {
    return static_cast<std::int32_t>(std::min<std::int64_t>(size, blockSamples - piece * step));
}

std::u16string SplitPlan::Name(std::int64_t piece) const {
    const std::size_t digits = NameDigits(*this);
    if (!sampleNames) return prefix + Padded(piece + 1, digits) + u'.' + extension;
    const std::int64_t first = piece * step;
    // The family's programs find the samples of these names in block files only, whatever they were cut from.
    return prefix + Padded(first, digits) + u'-' + Padded(first + size - 1, digits) + u'.' +
           (edfPlus ? extension : u"bin");
}

std::int32_t SplitPlan::Percent(std::int64_t piece, std::int32_t done, std::int32_t total) const {
    const double pieces = static_cast<double>(piece) + static_cast<double>(done) / std::max(total, 1);
    return static_cast<std::int32_t>(100.0 * pieces / static_cast<double>(PieceCount()));
}

std::u16string SplitPlan::ExampleName() const {
    return prefix + (sampleNames ? u"###-###" : u"#") + u'.' + extension;
}

std::optional<std::int64_t> SplitPlan::PieceOf(std::u16string_view name) const {
    std::int64_t number = 0;
    for (std::size_t at = prefix.size(); at < name.size() && IsDigit(name[at]); ++at) {
        number = number * 10 + (name[at] - u'0');
        if (number > std::int64_t{kMostSamples} + 1) return std::nullopt;
    }
    const std::int64_t piece = sampleNames ? number / step : number - 1;
    if (piece < 0 || piece >= PieceCount() || LowerCase(name) != LowerCase(Name(piece))) return std::nullopt;
    return piece;
}

SplitObstacle FindSplitObstacle(const SplitPlan& plan, const SplitFolderState& folder) {
    const std::int64_t pieces = plan.PieceCount();
    if (pieces < 1) return SplitObstacle::NoPieces;
    if (plan.Name(pieces - 1).size() > kLongestName) return SplitObstacle::NameTooLong;
    if (folder.kind == SplitFolderState::Kind::NotFolder) return SplitObstacle::NotFolder;
    if (folder.holdsRecording) return SplitObstacle::HoldsRecording;
    if (folder.kind == SplitFolderState::Kind::Unreadable) return SplitObstacle::Unreadable;
    return SplitObstacle::None;
}

std::int64_t CountReplaced(const SplitPlan& plan, const SplitFolderState& folder) {
    return std::count_if(folder.files.begin(), folder.files.end(),
                         [&](const std::u16string& name) { return plan.PieceOf(name).has_value(); });
}

}  // namespace quillon
