#include "app/MainLayout.h"

#include <algorithm>

#include "base/Density.h"

namespace quillon {

namespace {

constexpr std::int32_t kDefaultUpperPercent = 42;
constexpr std::int32_t kDefaultValuesHeight = 132;  // at 96 dots per inch: nine lines
constexpr std::int32_t kDefaultSpectrogramPercent = 45;
constexpr std::int32_t kOverview = 36;  // at 96 dots per inch
/// The least height above the time scale, at 96 dots per inch, that the overview leaves: for the graph, and for graph
/// and spectrogram.
constexpr std::int32_t kLeastGraph = 160;
constexpr std::int32_t kLeastPictures = 260;
constexpr std::int32_t kFilterRow = 24;    // at 96 dots per inch: a drop-down list
constexpr std::int32_t kLevelsWidth = 46;  // at 96 dots per inch: "-120" and the caption
constexpr std::int32_t kAboveTools = 2;    // at 96 dots per inch

/// Fills the page below a tab strip: one control above, the rest for the list.
void ArrangePage(const PixelRect& page, std::int32_t comboHeight, std::int32_t gap, PixelRect& combo, PixelRect& list) {
    combo = {page.left, page.top, page.width, comboHeight};
    const std::int32_t top = page.top + comboHeight + gap;
    list = {page.left, top, page.width, std::max(page.Bottom() - top, 0)};
}

/// Sizes common to all parts of the window, in pixels.
struct Measures {
    explicit Measures(const LayoutInput& from)
        : input(from),
          gap(Scaled(4)),
          splitter(Scaled(5)),
          height(std::max(from.clientHeight - from.statusHeight, 0)),
          filters(Scaled(kAboveTools) + from.toolHeight + gap),
          top(filters + (from.filters ? Scaled(kFilterRow) + gap : 0)) {}
    /// Scales a length from 96 dots per inch to this screen.
    [[nodiscard]] std::int32_t Scaled(std::int32_t pixels) const { return ScaledTo(input.dpi, pixels); }

    const LayoutInput& input;
    std::int32_t gap;
    std::int32_t splitter;
    std::int32_t height;   ///< above the status bar
    std::int32_t filters;  ///< top of the row of filters
    std::int32_t top;      ///< below the toolbars and that row
};

/// The row of filters. Where the window is too narrow all of them are, in proportion.
void ArrangeFilters(const Measures& measures, MainLayout& layout) {
    const LayoutInput& input = measures.input;
    if (!input.filters) return;
    std::int32_t wanted = 0;
    for (const std::int32_t width : input.filterWidths) wanted += width;
    const auto gaps = static_cast<std::int32_t>(kFilterControls + 1) * measures.gap;
    const std::int32_t room = std::max(input.clientWidth - gaps, 0);
    const std::int32_t rowHeight = measures.Scaled(kFilterRow);
    std::int32_t left = measures.gap;
    for (std::size_t at = 0; at < kFilterControls; ++at) {
        const std::int32_t own = input.filterWidths[at];
        const std::int32_t width = wanted <= room ? own : own * room / wanted;
        const bool isBox = at == 2 || at == 4 || at >= 6;
        const std::int32_t height = isBox && input.comboHeight > 0 ? std::min(input.comboHeight, rowHeight) : rowHeight;
        layout.filters[at] = {left, measures.filters + (rowHeight - height) / 2, width, height};
        left += width + measures.gap;
    }
}

/// The column on the left: folders or channels, files or blocks, the values.
void ArrangeColumn(const Measures& measures, MainLayout& layout) {
    const auto& [input, gap, splitter, height, filters, top] = measures;
    const std::int32_t columnHeight = std::max(height - gap - top, 0);
    // Each list has room for its tabs, its drop-down list and at least two lines; the values for one.
    const std::int32_t leastList = input.tabHeight + 2 * gap + input.comboHeight + measures.Scaled(34);
    const std::int32_t leastValues = measures.Scaled(20);
    const std::int32_t wanted = input.valuesHeight > 0 ? input.valuesHeight : measures.Scaled(kDefaultValuesHeight);
    const std::int32_t mostValues = columnHeight - 2 * leastList - 2 * splitter;
    layout.valuesHeight = std::clamp(wanted, leastValues, std::max(mostValues, leastValues));
    const PixelRect column{gap, top, std::max(layout.listWidth - gap, 0),
                           std::max(columnHeight - layout.valuesHeight - splitter, 0)};
    layout.splitValues = {column.left, column.Bottom(), column.width, splitter};
    layout.values = {column.left, layout.splitValues.Bottom(), column.width, layout.valuesHeight};
    const std::int32_t shared = std::max(column.height - splitter, 1);
    const std::int32_t least = std::min(leastList, shared / 2);
    const std::int32_t percent = input.upperPercent > 0 ? input.upperPercent : kDefaultUpperPercent;
    const std::int32_t upper = std::clamp(shared * std::min(percent, 100) / 100, least, shared - least);
    layout.upperPercent = (upper * 100 + shared - 1) / shared;
    const auto page = [&](const PixelRect& strip) {
        return PixelRect{strip.left, strip.Bottom() + measures.gap, strip.width, 0};
    };
    layout.tabPath = {column.left, column.top, column.width, input.tabHeight};
    layout.channels = page(layout.tabPath);
    layout.channels.height = std::max(column.top + upper - layout.channels.top, 0);
    ArrangePage(layout.channels, input.comboHeight, gap, layout.drive, layout.folders);
    layout.pathList = layout.drive;
    layout.pathList.width = std::min(input.comboHeight, layout.drive.width / 3);
    layout.pathList.left = layout.drive.Right() - layout.pathList.width;
    layout.drive.width -= layout.pathList.width + gap / 2;
    layout.splitLists = {column.left, column.top + upper, column.width, splitter};
    layout.tabFile = {column.left, layout.splitLists.Bottom(), column.width, input.tabHeight};
    layout.blocks = page(layout.tabFile);
    layout.blocks.height = std::max(column.Bottom() - layout.blocks.top, 0);
    ArrangePage(layout.blocks, input.comboHeight, gap, layout.fileType, layout.files);
}

/// Width of the strips left of the graph and the spectrogram.
std::int32_t WidthOfScale(const Measures& measures, std::int32_t left, std::int32_t bar, MainLayout& layout) {
    const std::int32_t plain = measures.Scaled(62);
    if (measures.input.titlesWidth == 0) return plain;
    // The graph keeps at least half of what is right of the lists.
    const std::int32_t most = std::max((measures.input.clientWidth - measures.gap - bar - left) / 2, plain);
    // Unless the user wants more, long titles leave most of the room to the graph.
    const std::int32_t usual =
        std::clamp(measures.input.titlesWidth + measures.splitter, measures.Scaled(84), measures.Scaled(160));
    layout.laneLabels = std::clamp(measures.input.laneLabels > 0 ? measures.input.laneLabels : usual, plain, most);
    return layout.laneLabels;
}

/// The overview takes its height from that of the other pictures, if enough is left of it. Returns what it takes.
std::int32_t ArrangeOverview(const Measures& measures, std::int32_t above, MainLayout& layout) {
    const LayoutInput& input = measures.input;
    const std::int32_t height = measures.Scaled(kOverview);
    const std::int32_t least = measures.Scaled(input.spectrogram ? kLeastPictures : kLeastGraph);
    if (!input.overview || above - height - measures.gap < least) return 0;
    layout.overview.top = measures.height - measures.gap - height;
    layout.overview.height = height;
    return height + measures.gap;
}

/// Graph, spectrogram, scales and scroll bars.
void ArrangePictures(const Measures& measures, MainLayout& layout) {
    const auto& [input, gap, splitter, height, filters, top] = measures;
    layout.splitColumn = {layout.listWidth, top, splitter, std::max(height - top, 0)};
    const std::int32_t left = layout.splitColumn.Right();
    const std::int32_t bar = measures.Scaled(17);
    const std::int32_t scaleWidth = WidthOfScale(measures, left, bar, layout);
    const std::int32_t scaleHeight = measures.Scaled(26);
    const std::int32_t right = std::max(input.clientWidth - gap, left + scaleWidth + bar);
    const std::int32_t bottom = std::max(height - gap - bar - scaleHeight, top);
    const std::int32_t graphBottom = bottom - ArrangeOverview(measures, bottom - top, layout);
    // Graph and spectrogram share the height above the time scale.
    const std::int32_t both = graphBottom - top;
    std::int32_t graphHeight = both;
    if (input.spectrogram && both > splitter + 2) {
        const std::int32_t wantedShare =
            input.spectrogramPercent > 0 ? input.spectrogramPercent : kDefaultSpectrogramPercent;
        const std::int32_t shareable = both - splitter;
        const std::int32_t leastHeight = std::min(measures.Scaled(60), shareable / 3);
        const std::int32_t share =
            std::clamp(shareable * std::min(wantedShare, 100) / 100, leastHeight, shareable - leastHeight);
        graphHeight = shareable - share;
        layout.spectrogramPercent = (share * 100 + shareable - 1) / shareable;
    }
    layout.scaleY = {left, top, scaleWidth, graphHeight};
    // The figures of the colours take their room where enough is left for the graph.
    const std::int32_t wide = right - bar - layout.scaleY.Right();
    const std::int32_t figures = measures.Scaled(kLevelsWidth);
    const bool levels = layout.spectrogramPercent > 0 && wide - figures > input.clientWidth * 2 / 5;
    layout.graph = {layout.scaleY.Right(), top, std::max(levels ? wide - figures : wide, 0), graphHeight};
    if (input.titlesWidth > 0) {
        layout.scaleY.width -= splitter;
        layout.splitLabels = {layout.scaleY.Right(), top, splitter, graphHeight};
    }
    layout.scrollY = {layout.graph.Right(), top, bar, layout.graph.height};
    if (layout.spectrogramPercent > 0) {
        layout.splitSpectrogram = {left, layout.graph.Bottom(), layout.scrollY.Right() - left, splitter};
        const std::int32_t below = layout.splitSpectrogram.Bottom();
        layout.scaleF = {left, below, scaleWidth, graphBottom - below};
        layout.spectrogram = {layout.graph.left, below, layout.graph.width, graphBottom - below};
        layout.palette = {layout.scrollY.left, below, bar, graphBottom - below};
        if (levels) layout.levels = {layout.palette.Right(), below, figures, graphBottom - below};
    }
    layout.scaleX = {layout.graph.left, graphBottom, layout.graph.width, scaleHeight};
    layout.scrollX = {layout.graph.left, layout.scaleX.Bottom(), layout.graph.width, bar};
    if (layout.overview.height > 0) {
        layout.overview.left = left;
        layout.overview.width = layout.graph.Right() - left;
    }
    layout.zoomX = {left, layout.scaleX.top + measures.Scaled(2), scaleWidth - gap,
                    scaleHeight + bar - measures.Scaled(2)};
}

}  // namespace

MainLayout ArrangeMain(const LayoutInput& input) {
    const Measures measures(input);
    MainLayout layout;
    layout.dpi = input.dpi;
    // The column keeps between 150 pixels and less than half of the window.
    const std::int32_t least = measures.Scaled(150);
    const std::int32_t widest = std::max(input.clientWidth * 45 / 100, least);
    layout.listWidth = std::clamp(input.listWidth > 0 ? input.listWidth : measures.Scaled(232), least, widest);

    // The toolbars stand side by side; the second one is cut off where the window is too narrow for both.
    const std::int32_t edge = measures.Scaled(kAboveTools);
    layout.tools = {measures.gap, edge, std::min(input.toolWidth, input.clientWidth), input.toolHeight};
    const std::int32_t goToLeft = layout.tools.Right() + measures.gap;
    layout.goTo = {goToLeft, edge, std::clamp(input.clientWidth - goToLeft, 0, input.goToWidth), input.toolHeight};
    ArrangeFilters(measures, layout);
    ArrangeColumn(measures, layout);
    ArrangePictures(measures, layout);
    return layout;
}

}  // namespace quillon
