#include "view/GraphPicture.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <map>
#include <span>
#include <utility>

#include "base/Density.h"
#include "view/InvertLightness.h"

namespace quillon {

namespace {

/// Rows and columns between the dots of a dotted grid; a divisor of a division of either axis.
constexpr std::int32_t kDotStep = 4;
static_assert(TimeAxis::kDivision % kDotStep == 0 && AmplitudeScale::kDivision % kDotStep == 0);

/// A colour mixed with the paper.
std::uint32_t Fainter(std::uint32_t rgb, std::uint32_t paper) {
    constexpr double share = 0.3;
    const auto mixed = [&](int shift) {
        const auto behind = static_cast<double>(paper >> shift & 0xFF);
        return static_cast<std::uint32_t>(behind - (behind - static_cast<double>(rgb >> shift & 0xFF)) * share);
    };
    return mixed(16) << 16 | mixed(8) << 8 | mixed(0);
}

/// Makes pixels of either colour those of the other one. Done twice it changes nothing.
void SwapColors(std::span<std::uint32_t> pixels, std::uint32_t first, std::uint32_t second) {
    for (std::uint32_t& pixel : pixels) {
        const std::uint32_t color = pixel & 0xFFFFFF;
        if (color == first || color == second) pixel ^= first ^ second;
    }
}

/// What a row of the graph holds of the grid.
enum class GridRow { Empty, Between, Level, Zero, LaneZero, LaneEdge, Count };

/// Dots are as large at any density: they are seen as a tone.
std::int32_t LineOf(const GraphScene& scene) {
    return scene.gridStyle == GridStyle::Dots ? 1 : scene.line;
}

/// Rows of every kind from a division's first column on; one division longer than the graph, so that it may begin
/// anywhere in them. `lines`: the columns of vertical lines, where they do not lie at every division.
using GridRows = std::array<std::vector<std::uint32_t>, static_cast<std::size_t>(GridRow::Count)>;

GridRows MakeGridRows(std::int32_t width, const GraphScene& scene, const std::vector<std::int32_t>* lines) {
    const GraphColors& colors = scene.Colors();
    GridRows rows;
    const auto length = static_cast<std::size_t>(width) + TimeAxis::kDivision;
    rows.fill(std::vector<std::uint32_t>(length, colors.paper));
    auto& [empty, between, level, zero, laneZero, laneEdge] = rows;
    std::fill(zero.begin(), zero.end(), colors.zero);
    std::fill(laneZero.begin(), laneZero.end(), colors.laneZero);
    std::fill(laneEdge.begin(), laneEdge.end(), colors.laneEdge);
    const std::uint32_t fainter = Fainter(scene.gridColor, colors.paper);
    const auto draw = [&row = between, length, fainter, thickness = LineOf(scene)](std::int32_t line) {
        const std::int32_t end = std::min(line + thickness, static_cast<std::int32_t>(length));
        for (std::int32_t at = std::max(line, 0); at < end; ++at) row[static_cast<std::size_t>(at)] = fainter;
    };
    if (lines != nullptr) std::for_each(lines->begin(), lines->end(), draw);
    for (std::size_t at = 0; lines == nullptr && at < length; at += TimeAxis::kDivision)
        draw(static_cast<std::int32_t>(at));
    const std::size_t step = scene.gridStyle == GridStyle::Dots ? kDotStep : 1;
    for (std::size_t at = 0; at < length; at += step) level[at] = fainter;
    return rows;
}

/// Whether a row is one of a line that begins at another.
bool IsOn(std::int64_t line, std::int32_t thickness, std::int32_t row) {
    return row >= line && row < line + thickness;
}

/// Of a lane without levels.
GridRow KindOfSingle(const Lane& lane, const GraphScene& scene, std::int32_t row) {
    if (IsOn(lane.top, scene.line, row) && lane.top > 0) return GridRow::LaneEdge;
    if (IsOn(lane.zeroRow, scene.line, row)) return GridRow::LaneZero;
    const GridStyle style = scene.gridStyle;
    const bool lines = style == GridStyle::Lines || (style == GridStyle::Dots && row % kDotStep == 0);
    return lines ? GridRow::Between : GridRow::Empty;
}

GridRow KindOf(const Lane& lane, const GraphScene& scene, std::int32_t row) {
    if (lane.single) return KindOfSingle(lane, scene, row);
    const std::int64_t above = lane.zeroRow - row;
    // The zero level is no part of the grid.
    if (IsOn(lane.zeroRow, scene.line, row)) return GridRow::Zero;
    const GridStyle style = scene.gridStyle;
    if (style == GridStyle::None) return GridRow::Empty;
    const std::int64_t division = std::int64_t{AmplitudeScale::kDivision} * scene.enlargement;
    // Rows below the first one of a level.
    const std::int64_t below = (division - above % division) % division;
    if (below < LineOf(scene)) return GridRow::Level;
    // The dots of the vertical lines lie on the levels. Whole lines begin where their first dot would be.
    if (above % kDotStep == 0) return GridRow::Between;
    const std::int64_t down = row - lane.top;
    const bool begun = down >= kDotStep || ((above + down) % kDotStep + kDotStep) % kDotStep < down;
    return style == GridStyle::Lines && begun ? GridRow::Between : GridRow::Empty;
}

}  // namespace

void GraphPicture::SetPixels(std::uint32_t* pixels, std::int32_t width, std::int32_t height) {
    m_pixels = pixels;
    m_width = width;
    m_height = height;
    m_missing = {std::vector<bool>(static_cast<std::size_t>(width)), 0};
}

void GraphPicture::Missing::Set(std::int32_t from, std::int32_t to, bool missing) {
    for (auto at = static_cast<std::size_t>(from); at < static_cast<std::size_t>(to); ++at) {
        if (columns[at] == missing) continue;
        columns[at] = missing;
        count += missing ? 1 : -1;
    }
}

ColumnBand GraphPicture::Missing::Next(std::int32_t from) const {
    const auto first = std::find(columns.begin() + from, columns.end(), true);
    const auto end = std::find(first, columns.end(), false);
    return {static_cast<std::int32_t>(first - columns.begin()), static_cast<std::int32_t>(end - columns.begin()) - 1};
}

double GraphPicture::MissingShare() const {
    return m_width == 0 ? 0.0 : static_cast<double>(m_missing.count) / m_width;
}

void GraphPicture::Clear(const GraphColors& colors) {
    m_colors = &colors;
    m_bands = {};
    m_missing.Set(0, m_width, false);
    m_beyond.clear();
    m_traces.Reset(0, m_width, m_height);
    std::fill_n(m_pixels, static_cast<std::size_t>(m_width) * static_cast<std::size_t>(m_height), colors.paper);
}

void GraphPicture::Draw(const GraphScene& scene) {
    m_colors = scene.look.colors;
    m_traces.Reset(ChannelsOf(scene.lanes).size(), m_width, m_height);
    if (m_width == 0) return;
    m_missing.Set(0, m_width, true);
    DrawMissing(scene);
    InvertBands();
}

void GraphPicture::Scroll(const GraphScene& scene, std::int32_t shift) {
    if (m_width == 0 || shift == 0) return;
    if (shift >= m_width || shift <= -m_width) return Draw(scene);
    EraseBands();
    const auto stays = static_cast<std::size_t>(m_width - std::abs(shift)) * sizeof *m_pixels;
    for (std::int32_t row = 0; row < m_height; ++row)
        std::memmove(Row(row) + std::max(-shift, 0), Row(row) + std::max(shift, 0), stays);
    m_traces.Scroll(shift);
    // At the edges a trace starts or ends and its pixels differ from those inside: those columns are never copied.
    const std::int32_t edge = 2 + TraceCanvas::Reach(scene.look.lineWidth);
    const std::int32_t left = std::min(std::max(-shift, 0) + edge, m_width);
    const std::int32_t right = std::max(m_width - std::max(shift, 0) - edge, left);
    std::vector<bool>& columns = m_missing.columns;
    if (shift > 0) {
        std::copy(columns.begin() + shift, columns.end(), columns.begin());
    } else {
        std::copy_backward(columns.begin(), columns.end() + shift, columns.end());
    }
    m_missing.count = static_cast<std::int32_t>(std::count(columns.begin(), columns.end(), true));
    m_missing.Set(0, left, true);
    m_missing.Set(right, m_width, true);
    DrawMissing(scene);
    InvertBands();
}

void GraphPicture::DrawMissing(const GraphScene& scene) {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point start = Clock::now();
    const auto isOver = [&] {
        return m_patience != std::chrono::milliseconds::max() && Clock::now() - start >= m_patience;
    };
    do {
        DrawNext(scene, isOver);
    } while (m_missing.count > 0 && !isOver());
    for (ColumnBand run = m_missing.Next(0); run.left < m_width; run = m_missing.Next(run.right + 1)) {
        m_traces.Forget(run.left, run.right + 1);
        DrawBackground(scene, run.left, run.right + 1);
        for (std::int32_t row = std::max(m_height - kMissingRows, 0); row < m_height; ++row)
            std::fill_n(Row(row) + run.left, run.right + 1 - run.left, kMissingColor);
        if (AreTextsAbove(scene) && onMarkTexts) onMarkTexts(scene, run.left, run.right + 1);
    }
    FindOutside(scene);
}

std::optional<ColumnBand> GraphPicture::DrawNext(const GraphScene& scene, const std::function<bool()>& isOver) {
    const ColumnBand run = m_missing.Next(0);
    // Many columns at once are drawn faster than one after the other.
    std::int32_t end = run.left;
    for (bool more = true; more;) {
        const std::int32_t before = std::exchange(end, m_traces.Approach(scene, run.left, run.right + 1));
        more = end <= run.right && (end > before || end == run.left) && !isOver();
    }
    if (end <= run.left) return std::nullopt;
    DrawBackground(scene, run.left, end);
    m_traces.Draw(scene, run.left, end);
    m_traces.Compose(m_pixels);
    if (AreTextsAbove(scene) && onMarkTexts) onMarkTexts(scene, run.left, end);
    m_missing.Set(run.left, end, false);
    return ColumnBand{run.left, end - 1};
}

std::optional<ColumnBand> GraphPicture::DrawMore(const GraphScene& scene) {
    if (m_missing.count == 0) return std::nullopt;
    using Clock = std::chrono::steady_clock;
    constexpr int pieces = 16;
    constexpr std::chrono::milliseconds most{5};
    const Clock::time_point start = Clock::now();
    int read = 0;
    const std::optional<ColumnBand> drawn =
        DrawNext(scene, [&] { return ++read >= pieces || Clock::now() - start >= most; });
    if (!drawn) return std::nullopt;
    FindOutside(scene);
    for (std::size_t which = 0; which < m_bands.size(); ++which) {
        if (const auto& band = m_bands[which])
            Invert(which, {std::max(band->left, drawn->left), std::min(band->right, drawn->right)});
    }
    return drawn;
}

void GraphPicture::DrawBackground(const GraphScene& scene, std::int32_t from, std::int32_t to) {
    DrawGrid(scene, from, to);
    DrawMarkLines(scene, from, to);
    if (!AreTextsAbove(scene) && onMarkTexts) onMarkTexts(scene, from, to);
}

void GraphPicture::DrawGrid(const GraphScene& scene, std::int32_t from, std::int32_t to) {
    const std::int32_t phase = (scene.axis.FirstColumn() + from) % TimeAxis::kDivision;
    std::vector<std::int32_t> lines;
    for (const std::int32_t column : scene.gridColumns) lines.push_back(column - from + phase);
    const GridRows rows = MakeGridRows(to - from, scene, scene.axis.IsFree() ? &lines : nullptr);
    const auto draw = [&](std::int32_t row, GridRow kind) {
        std::copy_n(rows[static_cast<std::size_t>(kind)].data() + phase, to - from, Row(row) + from);
    };
    std::int32_t row = 0;
    for (const Lane& lane : scene.lanes) {
        for (; row < std::min(lane.top, m_height); ++row) draw(row, GridRow::Empty);
        for (; row < std::min(lane.top + lane.height, m_height); ++row) draw(row, KindOf(lane, scene, row));
    }
    for (; row < m_height; ++row) draw(row, GridRow::Empty);
}

void GraphPicture::DrawMarkLines(const GraphScene& scene, std::int32_t from, std::int32_t to) {
    for (const MarkLine& line : VisibleMarks(scene.axis, scene.block)) {
        const std::int32_t first = std::max(line.column, from);
        const std::int32_t end = std::min(line.column + scene.line, to);
        for (std::int32_t row = 0; first < end && row < m_height; ++row)
            std::fill_n(Row(row) + first, end - first, scene.Colors().markLine);
    }
}

std::optional<ColumnBand> GraphPicture::Invert(std::size_t which, const ColumnBand& band) {
    const ColumnBand seen{std::max(band.left, 0), std::min(band.right, m_width - 1)};
    if (seen.left > seen.right) return std::nullopt;
    const bool isSelection = which == static_cast<std::size_t>(GraphBand::Selection);
    for (std::int32_t row = 0; row < m_height; ++row) {
        const std::span pixels(Row(row) + seen.left, Row(row) + seen.right + 1);
        if (isSelection && m_colors->selectedPaper) {
            SwapColors(pixels, m_colors->paper, *m_colors->selectedPaper);
        } else {
            InvertLightness(pixels);
        }
    }
    return seen;
}

void GraphPicture::InvertBands(std::size_t from) {
    for (std::size_t which = from; which < m_bands.size(); ++which) {
        if (m_bands[which]) Invert(which, *m_bands[which]);
    }
}

void GraphPicture::EraseBands(std::size_t from) {
    for (std::size_t which = m_bands.size(); which-- > from;) {
        if (m_bands[which]) Invert(which, *m_bands[which]);
    }
}

std::optional<ColumnBand> GraphPicture::SetBand(GraphBand which, const std::optional<ColumnBand>& columns) {
    const auto at = static_cast<std::size_t>(which);
    std::optional<ColumnBand>& band = m_bands[at];
    if (m_width == 0 || band == columns) return std::nullopt;
    // Those that lie over it are drawn over it again.
    EraseBands(at + 1);
    const auto gone = band ? Invert(at, *band) : std::nullopt;
    band = columns;
    const auto come = band ? Invert(at, *band) : std::nullopt;
    InvertBands(at + 1);
    if (!gone || !come) return gone ? gone : come;
    return ColumnBand{std::min(gone->left, come->left), std::max(gone->right, come->right)};
}

void GraphPicture::FindOutside(const GraphScene& scene) {
    m_beyond.clear();
    const std::vector<LaneTrace> traces = TracesOf(scene.lanes);
    const SceneBlocks blocks = scene.Blocks();
    for (const SignalsOfBlock& group : GroupsOf(blocks, ChannelsOf(scene.lanes))) {
        for (std::size_t at = 0; at < group.channels.size(); ++at) {
            const std::size_t trace = group.first + at;
            const TraceSides::Side side = m_traces.SideOf(trace);
            if (side == TraceSides::Side::None) continue;
            const std::int16_t number = group.of.block.channelNumbers[static_cast<std::size_t>(group.channels[at] - 1)];
            const Lane& lane = scene.lanes[traces[trace].lane];
            m_beyond.push_back({scene.Colors().Trace(number), side == TraceSides::Side::Above, traces[trace].lane,
                                lane.top, lane.End()});
        }
    }
    m_markRows = 0;
    for (const MarkLine& line : VisibleMarks(scene.axis, scene.block)) m_markRows = std::max(m_markRows, line.row + 1);
}

std::vector<EdgeArrow> GraphPicture::Arrows(int dpi) const {
    const auto scaled = [&](int length) { return ScaledTo(dpi, length); };
    const std::int32_t half = scaled(6);
    const std::int32_t height = scaled(8);
    const std::int32_t step = scaled(16);
    const std::int32_t margin = scaled(4);
    const std::int32_t perRow = std::max((m_width - 2 * margin) / step, 1);
    // The texts of marks stand along the upper edge.
    const std::int32_t labels = m_markRows * scaled(16);
    std::map<std::pair<std::size_t, bool>, std::int32_t> placed;
    std::vector<EdgeArrow> arrows;
    for (const Beyond& trace : m_beyond) {
        const std::int32_t at = placed[{trace.lane, trace.above}]++;
        const std::int32_t x = margin + half + at % perRow * step;
        const std::int32_t inward = margin + at / perRow * (height + margin);
        const std::int32_t room = std::max(trace.end - trace.top - inward - height - 1, 0);
        const std::int32_t below = trace.top == 0 ? std::min(labels, room) : 0;
        const std::int32_t tip = trace.above ? trace.top + below + inward : trace.end - 1 - inward;
        const std::int32_t base = trace.above ? tip + height : tip - height;
        arrows.push_back({trace.color, {{{x, tip}, {x + half, base}, {x - half, base}}}});
    }
    return arrows;
}

std::u16string MarkText(const ViewBlock& block, const MarkLine& line) {
    constexpr std::int32_t leastText = 16;
    return line.textWidth < leastText ? std::u16string() : block.marks[static_cast<std::size_t>(line.markIndex)].text;
}

std::optional<std::size_t> MarkAt(const GraphScene& scene, std::int32_t x, std::int32_t y,
                                  const std::function<TextSize(const std::u16string&)>& sizeOf) {
    constexpr std::int32_t reach = 3;  // distance in pixels at which a line is still hit
    std::optional<std::size_t> found;
    for (const MarkLine& line : VisibleMarks(scene.axis, scene.block)) {
        const TextSize size = sizeOf(MarkText(scene.block, line));
        const std::int32_t width = std::min(size.width + kMarkGap, line.textWidth);
        const std::int32_t top = line.row * size.height;
        const bool onLabel = y > top && y <= top + size.height && x >= line.column && x < line.column + width;
        if (onLabel || std::abs(x - line.column) <= reach) found = static_cast<std::size_t>(line.markIndex);
    }
    return found;
}

}  // namespace quillon
