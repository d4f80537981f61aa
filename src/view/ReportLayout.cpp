#include "view/ReportLayout.h"

#include <algorithm>
#include <set>
#include <utility>

#include "base/Bilingual.h"
#include "base/DateTime.h"
#include "base/FilePath.h"
#include "base/Text.h"
#include "data/UnitGroups.h"
#include "view/QL_ChUtils.h"
#include "view/ScaleLabels.h"

namespace quillon {

namespace {

/// Lengths at 96 dpi.
constexpr int kEdge = 6;        ///< from the edges of the picture
constexpr int kRightEdge = 14;  ///< beside the graph
constexpr int kLineGap = 3;     ///< between lines of the heading
constexpr int kHeadingGap = 6;  ///< below the heading
constexpr int kBetween = 18;    ///< between the parts of the heading
constexpr int kTick = 5;        ///< length of a line at a scale
constexpr int kMinorTick = 3;
constexpr int kTextGap = 4;             ///< between a line and its text
constexpr int kBarRoom = 16;            ///< of a bar with its edge, beside its text
constexpr int kLaneRoom = 4;            ///< rows that the lowest lane has beside its title
constexpr std::int32_t kStripPart = 3;  ///< the strip is a third of the picture at most

/// A place of the block as a text; `day` is that of the one told before, which is not told again.
std::u16string PlaceText(const ViewBlock& block, std::int32_t sample, const FormatOptions& format,
                         std::u16string& day) {
    std::u16string text = ClockText(AxisSeconds(block, sample, format), format.timeOfDay, format.decimalSeparator);
    if (!format.timeOfDay) return text;
    constexpr std::size_t length = 10;
    const std::u16string date =
        Utf16(Iso8601(block.startTime + sample / block.sampleRate / kSecondsPerDay)).substr(0, length);
    return std::exchange(day, date) == date ? text : date + u' ' + text;
}

std::vector<std::u16string> TimeTexts(const ViewBlock& block, const SampleSpan& samples, const FormatOptions& format,
                                      Language language) {
    constexpr std::u16string_view to = u" \u2013 ";
    std::vector<std::u16string> texts;
    if (format.sampleIndexes || !(block.sampleRate > 0.0)) {
        texts.push_back(Say(u"samples", u"отсчёты").In(language) + u' ' + Decimal(samples.first + 1));
        texts.back().append(to).append(Decimal(samples.End()));
    } else {
        std::u16string day;
        texts.push_back(PlaceText(block, samples.first, format, day));
        texts.back().append(to).append(PlaceText(block, samples.End(), format, day));
    }
    FormatOptions length;
    length.decimalSeparator = format.decimalSeparator;
    if (block.sampleRate > 0.0) texts.push_back(FormatTime(samples.count / block.sampleRate, u" ", length));
    return texts;
}

}  // namespace

ReportHeading MakeReportHeading(const Document& document, const SampleSpan& samples, const std::u16string& shown,
                                const FormatOptions& format, Language language) {
    ReportHeading heading{FileNameOf(document.File().fileName)};
    if (document.File().blockCount > 1) {
        const std::int32_t number = document.File().currentBlockIndex + 1;
        const std::u16string title = document.Block().block->Title();
        heading.push_back(Say(u"block %1", u"блок %1", {Decimal(number)}).In(language) +
                          (title.empty() ? title : u": " + title));
    }
    for (std::u16string& text : TimeTexts(document.Block(), samples, format, language))
        heading.push_back(std::move(text));
    heading.push_back(shown);
    return heading;
}

ReportLayout::ReportLayout(ReportStyle style, ReportHeading heading)
    : m_style(std::move(style)), m_heading(std::move(heading)), m_line(m_style.sizeOf(u"0").height) {}

LaneStrip ReportLayout::Strip(const WaveformView& view, std::int32_t width) const {
    return {.width = width,
            .dpi = m_style.dpi,
            .decimalSeparator = m_style.format.decimalSeparator,
            .rawCodes = view.RawCodes(),
            .colors = m_style.look.colors,
            .barsBeside = true,
            .sizeOf = m_style.sizeOf};
}

std::vector<ReportText> ReportLayout::HeadingTexts(std::int32_t width) const {
    std::vector<ReportText> texts;
    const std::int32_t left = Scaled(kEdge);
    const std::int32_t right = width - Scaled(kRightEdge);
    std::int32_t x = left;
    std::int32_t y = Scaled(kEdge);
    for (const std::u16string& part : m_heading) {
        if (part.empty()) continue;
        const StripText text = CutText(m_style.sizeOf, part, right - left);
        if (x > left && x + text.size.width > right) {
            x = left;
            y += m_line + Scaled(kLineGap);
        }
        texts.push_back({text.text, x, y, texts.empty() ? Colors().heading : Colors().caption});
        x += text.size.width + Scaled(kBetween);
    }
    return texts;
}

std::int32_t ReportLayout::HeadingHeight(std::int32_t width) const {
    const std::vector<ReportText> texts = HeadingTexts(width);
    return texts.empty() ? Scaled(kEdge) : texts.back().y + m_line + Scaled(kHeadingGap);
}

std::int32_t ReportLayout::StripWidth(const WaveformView& view, const Document& document, std::int32_t rows) const {
    if (!view.UsesLanes()) {
        // As wide as any label of the scale.
        std::int32_t widest = 0;
        for (const char16_t* const text : {u"-1000", u"-0.005"})
            widest = std::max(widest, m_style.sizeOf(text).width + Scaled(kTick + kTextGap));
        for (const std::int16_t channel : view.GetLanes().front().channels) {
            const Signal signal = document.GetSignal(channel);
            widest = std::max(widest, m_style.sizeOf(signal.title + u", " + signal.unit).width + Scaled(kTextGap));
        }
        return widest + Scaled(kEdge);
    }
    const ChannelLanes& lanes = view.LanesOfChannels();
    const LaneStrip strip = Strip(view, 0);
    std::int32_t bars = 0;
    for (const LaneChannel& channel : lanes.Channels()) {
        // "500 uV" is as wide as any value with a prefix.
        const std::u16string widest = u"500 " + (channel.group.name.empty() ? u"" : u"m" + channel.group.name);
        if (channel.shown) bars = std::max(bars, m_style.sizeOf(widest).width + Scaled(kBarRoom));
    }
    const std::int32_t titles = WantedWidth(lanes, strip);
    const std::int32_t lane = rows / std::max(lanes.Layout().Count(), 1);
    return HasRoomForBars(lane, strip) ? std::max(titles, bars + Scaled(kEdge)) : titles + bars;
}

std::int32_t ReportLayout::TimesHeight() const {
    return Scaled(kTick + kTextGap) + m_line + Scaled(kHeadingGap);
}

ReportMargins ReportLayout::MarginsFor(const WaveformView& view, const Document& document, TextSize picture) const {
    ReportMargins margins;
    margins.top = HeadingHeight(picture.width);
    margins.right = Scaled(kRightEdge);
    margins.bottom = TimesHeight();
    const std::int32_t rows = picture.height - margins.top - margins.bottom;
    margins.left = std::min(StripWidth(view, document, rows), picture.width / kStripPart);
    return margins;
}

std::int32_t ReportLayout::HeightWithLanes(const WaveformView& view, std::int32_t width, std::int32_t rows) const {
    const std::int32_t lanes = view.UsesLanes() ? std::max(view.LanesOfChannels().Layout().Count(), 1) : 1;
    return HeadingHeight(width) + lanes * rows + TimesHeight();
}

std::int32_t ReportLayout::LeastHeight(const WaveformView& view, std::int32_t width) const {
    return HeightWithLanes(view, width, m_line + Scaled(kLaneRoom));
}

std::int32_t ReportLayout::WantedHeight(const WaveformView& view, std::int32_t width) const {
    return HeightWithLanes(view, width, Scaled(LaneLayout::kLeastHeight));
}

ReportPlan ReportLayout::Frame(const WaveformView& view, const Document& document, const ReportMargins& margins) const {
    ReportPlan plan;
    plan.texts = HeadingTexts(margins.left + view.Axis().Width() + margins.right);
    AddBorder(view, margins, plan);
    if (view.UsesLanes()) {
        AddLanes(view, margins, plan);
    } else {
        AddOneAxis(view, document, margins, plan);
    }
    AddTimes(view, document, margins, plan);
    return plan;
}

void ReportLayout::AddBorder(const WaveformView& view, const ReportMargins& margins, ReportPlan& plan) const {
    const std::int32_t line = std::max(Scaled(1), 1);
    const std::int32_t right = margins.left + view.Axis().Width();
    const std::int32_t end = margins.top + view.GetLanes().back().End();
    const std::int32_t left = margins.left - line;
    const std::int32_t top = margins.top - line;
    plan.boxes.push_back({left, top, right + line, margins.top, Colors().border});
    plan.boxes.push_back({left, end, right + line, end + line, Colors().border});
    plan.boxes.push_back({left, top, margins.left, end, Colors().border});
    plan.boxes.push_back({right, top, right + line, end, Colors().border});
}

void ReportLayout::AddLanes(const WaveformView& view, const ReportMargins& margins, ReportPlan& plan) const {
    const Lanes& lanes = view.GetLanes();
    const std::int32_t line = std::max(Scaled(1), 1);
    const LaneStrip strip = Strip(view, margins.left);
    const auto lowest =
        std::min_element(lanes.begin(), lanes.end(), [](const Lane& a, const Lane& b) { return a.height < b.height; });
    const bool all = HasRoomForBars(lowest->height, strip);
    std::set<std::pair<std::u16string, std::int32_t>> told;
    for (const Lane& lane : lanes) {
        const std::int32_t row = margins.top + lane.top;
        if (lane.top > 0) plan.boxes.push_back({0, row, margins.left - line, row + 1, Colors().laneEdge});
    }
    const auto add = [&](const StripText& text, std::uint32_t color) {
        if (!text.text.empty()) plan.texts.push_back({text.text, text.x, text.y + margins.top, color});
    };
    for (const LaneLabel& label : LaneLabels(view.LanesOfChannels(), lanes, strip)) {
        add(label.title, label.color);
        add(label.factor, Colors().caption);
        if (!label.bar) continue;
        const ScaleBar& bar = *label.bar;
        // Low lanes share one bar for a scale.
        if (!all && !told.emplace(bar.text.text, bar.end - bar.top).second) continue;
        add(bar.text, Colors().caption);
        const std::int32_t cap = 2 * line;
        const std::int32_t top = margins.top + bar.top;
        const std::int32_t end = margins.top + bar.end;
        plan.boxes.push_back({bar.x, top, bar.x + line, end, Colors().bar});
        plan.boxes.push_back({bar.x - cap, top, bar.x + line + cap, top + line, Colors().bar});
        plan.boxes.push_back({bar.x - cap, end - line, bar.x + line + cap, end, Colors().bar});
    }
}

void ReportLayout::AddOneAxis(const WaveformView& view, const Document& document, const ReportMargins& margins,
                              ReportPlan& plan) const {
    const Lane& lane = view.GetLanes().front();
    const std::int32_t left = Scaled(kEdge);
    std::int32_t free = margins.top;  // first row below the titles
    const std::int32_t end = margins.top + lane.End();
    for (const std::int16_t channel : lane.channels) {
        if (free + m_line > end) break;
        const Signal signal = document.GetSignal(channel);
        const std::u16string text = signal.unit.empty() ? signal.title : signal.title + u", " + signal.unit;
        const StripText title = CutText(m_style.sizeOf, text, margins.left - left - Scaled(kTextGap));
        const std::int16_t number = signal.block.channelNumbers[static_cast<std::size_t>(signal.channel - 1)];
        plan.texts.push_back({title.text, left, free, Colors().Trace(number)});
        free += m_line;
    }
    const std::int32_t line = std::max(Scaled(1), 1);
    const std::int32_t right = margins.left - line;
    for (const ScaleLabel& label : AmplitudeLabels(lane, view.RawCodes(), m_style.format.decimalSeparator)) {
        // The label's base line is a row below the level.
        const std::int32_t row = margins.top + label.position - 1;
        const TextSize size = m_style.sizeOf(label.text);
        const std::int32_t y = row - size.height / 2;
        if (row < margins.top || row >= end) continue;
        plan.boxes.push_back({right - Scaled(kTick), row, right, row + line, Colors().border});
        if (y < free || y + size.height > end) continue;
        plan.texts.push_back({label.text, right - Scaled(kTick + kTextGap) - size.width, y, Colors().caption});
    }
}

void ReportLayout::AddTimes(const WaveformView& view, const Document& document, const ReportMargins& margins,
                            ReportPlan& plan) const {
    const std::int32_t line = std::max(Scaled(1), 1);
    const std::int32_t top = margins.top + view.GetLanes().back().End() + line;
    const std::int32_t width = margins.left + view.Axis().Width() + margins.right;
    std::int32_t free = 0;  // first column that no text covers yet
    for (const ScaleLabel& label : TimeLabels(view.Axis(), document.Block(), m_style.format, m_style.dpi)) {
        const std::int32_t x = margins.left + label.position;
        plan.boxes.push_back({x, top, x + line, top + Scaled(label.minor ? kMinorTick : kTick), Colors().border});
        if (label.minor) continue;
        const std::int32_t textWidth = m_style.sizeOf(label.text).width;
        const std::int32_t left = x - textWidth / 2;
        if (left < free || left + textWidth > width) continue;
        plan.texts.push_back({label.text, left, top + Scaled(kTick + kTextGap) - line, Colors().caption});
        free = left + textWidth + Scaled(kTextGap);
    }
}

ReportPlan ReportLayout::MarkTexts(const GraphScene& scene) const {
    ReportPlan plan;
    for (const MarkLine& line : VisibleMarks(scene.axis, scene.block)) {
        // A picture does not scroll: its texts are not cut by its edges.
        const std::int32_t room = std::min(line.textWidth, scene.axis.Width() - line.column) - kMarkGap;
        const StripText text = CutText(m_style.sizeOf, MarkText(scene.block, line), room);
        if (text.text.empty() || line.column < 0) continue;
        ReportText& mark = plan.texts.emplace_back();
        mark = {text.text, line.column + kMarkGap, 1 + line.row * text.size.height, Colors().markText};
        if (AreTextsAbove(scene)) mark.outline = Colors().paper;
    }
    return plan;
}

}  // namespace quillon
