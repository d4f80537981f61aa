#include "view/ScaleLabels.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "base/DateTime.h"
#include "base/Text.h"
#include "format/QL_Format.h"
#include "view/TimeTicks.h"

namespace quillon {

namespace {

/// Smaller absolute values are rounding errors of a zero label.
constexpr double kZero = 1e-6;
constexpr auto kCodesPerUnit = static_cast<double>(AmplitudeScale::kCodesPerUnit);

std::u16string AmplitudeText(double value, double step, bool rawCodes, char16_t separator) {
    if (std::fabs(value) < kZero) value = 0.0;
    double divisor = 1.0;
    std::u16string pattern = ScaleNumberPattern(static_cast<float>(step));
    if (rawCodes && step < 100.0) {
        pattern = u"#0";
    } else if (rawCodes) {
        const bool mega = step >= 100000.0;
        divisor = mega ? 1e6 : 1e3;
        pattern = ScaleNumberPattern(static_cast<float>(step / divisor)) + (mega ? u" M" : u" k");
    }
    return FormatPattern(value / divisor, pattern, separator);
}

}  // namespace

double AxisSeconds(const ViewBlock& block, double position, const FormatOptions& format) {
    const double seconds = position / block.sampleRate;
    if (!format.timeOfDay) return seconds;
    // The date resolves the time of day to about a microsecond; further digits are meaningless.
    const double start = std::nearbyint((block.startTime - std::floor(block.startTime)) * kSecondsPerDay * 1e5) / 1e5;
    return std::fmod(start + seconds, kSecondsPerDay);
}

std::vector<ScaleLabel> TimeLabels(const TimeAxis& axis, const ViewBlock& block, const FormatOptions& format, int dpi) {
    std::vector<ScaleLabel> labels;
    if (axis.IsFree()) {
        for (const TimeTick& tick : TimeTicks(axis, block, format, dpi))
            labels.push_back({tick.column, tick.text, !tick.major});
        return labels;
    }
    if (block.sampleCount <= 0) return labels;
    const bool indexes = format.sampleIndexes || !(block.sampleRate > 0.0);
    const std::int64_t division = TimeAxis::kDivision;
    const double step = static_cast<double>(division * axis.SamplesPerPixel()) / block.sampleRate;
    std::int64_t column = axis.FirstColumn() / division * division;
    for (; column < std::int64_t{axis.FirstColumn()} + axis.Width(); column += division) {
        const std::int64_t sample = column * axis.SamplesPerPixel();
        labels.push_back({static_cast<std::int32_t>(column - axis.FirstColumn()),
                          indexes ? NumberText(static_cast<double>(sample + 1), format.decimalSeparator)
                                  : FormatAxisValue(AxisSeconds(block, static_cast<double>(sample), format), step,
                                                    AxisKind::Time, format),
                          false});
    }
    return labels;
}

std::vector<std::int32_t> GridColumns(const TimeAxis& axis, const ViewBlock& block, const FormatOptions& format,
                                      int dpi) {
    std::vector<std::int32_t> columns;
    if (!axis.IsFree()) return columns;
    for (const TimeTick& tick : TimeTicks(axis, block, format, dpi)) {
        if (tick.major) columns.push_back(tick.column);
    }
    return columns;
}

std::vector<ScaleLabel> AmplitudeLabels(const Lane& lane, bool rawCodes, char16_t separator) {
    constexpr std::int32_t division = AmplitudeScale::kDivision;
    const double step = lane.unitsPerDivision * (rawCodes ? kCodesPerUnit : 1.0);
    // The label rows are anchored on the zero row; n counts divisions above it. Rows count from the lane's top.
    const std::int64_t zero = lane.zeroRow - lane.top;
    auto n = static_cast<std::int64_t>(std::nearbyint(static_cast<double>(zero) / division + 0.5));
    std::int64_t row = zero + 1 - division * n;
    for (; row > 0; row -= division) ++n;
    for (; row < -division; row += division) --n;
    std::vector<ScaleLabel> labels;
    for (; row < lane.height + division; row += division, --n) {
        labels.push_back({lane.top + static_cast<std::int32_t>(row),
                          AmplitudeText(static_cast<double>(n) * step, step, rawCodes, separator), false});
    }
    return labels;
}

namespace {

/// Sets rows and widths of the texts of lines in order. What is crowded has the row of its number, so that it does not
/// depend on what else is seen.
void StackTexts(std::vector<MarkLine>& lines) {
    const auto isNear = [&](std::size_t at) { return lines[at + 1].column - lines[at].column < kCrowdedMarks; };
    for (std::size_t at = 0; at < lines.size(); ++at) {
        const bool crowded = (at > 0 && isNear(at - 1)) || (at + 1 < lines.size() && isNear(at));
        lines[at].row = crowded ? lines[at].markIndex % kMarkRows : 0;
    }
    for (std::size_t at = 0; at < lines.size(); ++at) {
        std::int32_t& width = lines[at].textWidth = kMarkTextWidth;
        for (std::size_t next = at + 1; next < lines.size() && width == kMarkTextWidth; ++next) {
            const std::int32_t away = lines[next].column - lines[at].column;
            if (away >= kMarkTextWidth) break;
            if (lines[next].row == lines[at].row) width = away;
        }
    }
}

}  // namespace

std::vector<MarkLine> VisibleMarks(const TimeAxis& axis, const ViewBlock& block) {
    // Include marks left of the graph whose text may reach into it, those right of it that limit the width of a text,
    // and those that crowd these.
    const std::int32_t first = -kMarkTextWidth - kCrowdedMarks;
    const std::int32_t last = axis.Width() + kMarkTextWidth + kCrowdedMarks;
    const auto columnOf = [&](const BlockMark& mark) { return axis.ColumnOf(mark.position); };
    const auto leftOf = [&](std::int32_t column) {
        return [=](const BlockMark& mark) { return columnOf(mark) < column; };
    };
    const auto from = std::partition_point(block.marks.begin(), block.marks.end(), leftOf(first));
    const auto to = std::partition_point(from, block.marks.end(), leftOf(last));
    std::vector<MarkLine> lines;
    for (auto mark = from; mark != to; ++mark)
        lines.push_back({columnOf(*mark), 0, 0, static_cast<std::int32_t>(mark - block.marks.begin())});
    // Where several marks share a column, the first one stands for them.
    lines.erase(std::unique(lines.begin(), lines.end(),
                            [](const MarkLine& a, const MarkLine& b) { return a.column == b.column; }),
                lines.end());
    StackTexts(lines);
    std::erase_if(lines,
                  [&](const MarkLine& line) { return line.column >= axis.Width() || line.column < -kMarkTextWidth; });
    return lines;
}

std::vector<MarkSpan> VisibleSpans(const TimeAxis& axis, const ViewBlock& block) {
    std::vector<MarkSpan> spans;
    for (const BlockMark& mark : block.marks) {
        if (!(mark.seconds > 0.0) || !(block.sampleRate > 0.0)) continue;
        const std::int32_t first = std::max(axis.ColumnOf(mark.position), 0);
        if (first >= axis.Width()) break;
        const double samples = std::max(std::ceil(mark.seconds * block.sampleRate), 1.0);
        const double lastSample = std::min(mark.position + samples - 1.0, block.sampleCount - 1.0);
        const std::int32_t last = std::min(axis.ColumnOf(static_cast<std::int32_t>(lastSample)), axis.Width() - 1);
        if (last < first) continue;
        if (!spans.empty() && first <= spans.back().last + 1) {
            spans.back().last = std::max(spans.back().last, last);
        } else {
            spans.push_back({first, last});
        }
    }
    return spans;
}

std::u16string ZoomCaption(int index) {
    const std::int32_t perPixel = TimeAxis::TableEntry(index);
    return perPixel < 1000 ? Decimal(perPixel) + u":1" : Decimal(perPixel / 1000) + u"k:1";
}

std::u16string CodesText(double codes, char16_t separator) {
    // The patterns of scales count in thousands.
    return codes < 1000.0 ? SingleNumberText(codes, separator) : AmplitudeText(codes, codes, true, separator);
}

std::u16string ScaleCaption(int index, bool rawCodes, char16_t separator) {
    const double units = AmplitudeScale::TableEntry(index);
    if (!rawCodes) return SingleNumberText(units, separator);
    return AmplitudeText(units * kCodesPerUnit, units * kCodesPerUnit, true, separator);
}

}  // namespace quillon
