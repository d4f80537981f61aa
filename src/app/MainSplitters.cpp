#include "app/MainSplitters.h"

#include <algorithm>

#include "app/ControlIds.h"
#include "base/Density.h"

namespace quillon {

namespace {

bool Contains(const PixelRect& rect, int x, int y) {
    return x >= rect.left && x < rect.Right() && y >= rect.top && y < rect.Bottom();
}

}  // namespace

Splitter SplitterAt(const MainLayout& layout, int x, int y) {
    if (Contains(layout.splitSpectrogram, x, y)) return Splitter::Spectrogram;
    if (Contains(layout.splitLabels, x, y)) return Splitter::Labels;
    if (Contains(layout.splitValues, x, y)) return Splitter::Values;
    if (Contains(layout.splitLists, x, y)) return Splitter::Lists;
    return Contains(layout.splitColumn, x, y) ? Splitter::Column : Splitter::None;
}

void TakeSizes(const WindowPlacement& placement, LayoutInput& input) {
    const auto at = [&](std::int32_t size) { return Converted(size, placement.sizesDpi, input.dpi); };
    input.listWidth = at(placement.listWidth);
    input.upperPercent = placement.upperPercent;
    input.valuesHeight = at(placement.valuesHeight);
    input.spectrogram = placement.spectrogramShown;
    input.spectrogramPercent = placement.spectrogramPercent;
    input.laneLabels = at(placement.laneLabels);
    input.overview = WantsOverview(placement);
    input.filters = placement.filters;
}

void DragSplitter(Splitter splitter, const MainLayout& layout, int x, int y, WindowPlacement& placement) {
    // Only here: sizes that are converted back and forth do not stay what they were.
    for (std::int32_t* size : {&placement.listWidth, &placement.valuesHeight, &placement.laneLabels})
        *size = Converted(*size, placement.sizesDpi, layout.dpi);
    placement.sizesDpi = layout.dpi;
    const int top = layout.tabPath.top;
    const int height = layout.blocks.Bottom() - top - layout.splitLists.height;
    if (splitter == Splitter::Column) placement.listWidth = std::max(x - layout.splitColumn.width / 2, 1);
    if (splitter == Splitter::Lists && height > 0) placement.upperPercent = std::max((y - top) * 100 / height, 1);
    if (splitter == Splitter::Labels)
        placement.laneLabels = std::max(x + layout.splitLabels.width / 2 - layout.scaleY.left, 1);
    if (splitter == Splitter::Values)
        placement.valuesHeight = std::max(layout.values.Bottom() - y - layout.splitValues.height / 2, 1);
    const int shared = layout.spectrogram.Bottom() - layout.graph.top - layout.splitSpectrogram.height;
    if (splitter == Splitter::Spectrogram && shared > 0)
        placement.spectrogramPercent =
            std::max((layout.spectrogram.Bottom() - y - layout.splitSpectrogram.height / 2) * 100 / shared, 1);
}

void KeepReached(Splitter splitter, const MainLayout& layout, WindowPlacement& placement) {
    placement.listWidth = layout.listWidth;
    placement.upperPercent = layout.upperPercent;
    if (splitter == Splitter::Labels) placement.laneLabels = layout.laneLabels;
    if (splitter == Splitter::Values) placement.valuesHeight = layout.valuesHeight;
    if (splitter == Splitter::Spectrogram && layout.spectrogramPercent > 0)
        placement.spectrogramPercent = layout.spectrogramPercent;
}

std::vector<ControlPlace> PlacesOf(const MainLayout& layout) {
    std::vector<ControlPlace> places{
        {tbMain, layout.tools},        {tbGoTo, layout.goTo},         {tabPath, layout.tabPath},
        {lstDrive, layout.drive},      {pbPathList, layout.pathList}, {lstDir, layout.folders},
        {lvCh, layout.channels},       {tabFile, layout.tabFile},     {cboFileType, layout.fileType},
        {lstFile, layout.files},       {lstBlock, layout.blocks},     {pnValues, layout.values},
        {pbScaleY, layout.scaleY},     {pbGraph, layout.graph},       {scScaleY, layout.scrollY},
        {btnZoomX, layout.zoomX},      {pbScaleX, layout.scaleX},     {scScaleX, layout.scrollX},
        {pbFFT, layout.spectrogram},   {pbPal, layout.palette},       {pbScaleF, layout.scaleF},
        {edtMarks, layout.fileType},   {lvMarks, layout.files},       {pbLevels, layout.levels},
        {pbOverview, layout.overview},
    };
    for (std::size_t at = 0; at < kFilterControls; ++at)
        places.push_back({lblFilterGroup + static_cast<int>(at), layout.filters[at]});
    return places;
}

PixelRect FramedWith(const MainLayout& layout, int control) {
    switch (control) {
        case lstDir: return layout.folders;
        case lvCh: return layout.channels;
        case lstFile:
        case lvMarks: return layout.files;
        case lstBlock: return layout.blocks;
        case pnValues: return layout.values;
        case pbGraph: {
            // Around the spectrogram too, which lies between the graph and its time scale.
            const std::int32_t right =
                std::max({layout.scrollY.Right(), layout.palette.Right(), layout.levels.Right()});
            return {layout.scaleY.left, layout.scaleY.top, right - layout.scaleY.left,
                    layout.scrollX.Bottom() - layout.scaleY.top};
        }
        case pbFFT: {
            const std::int32_t right = std::max(layout.palette.Right(), layout.levels.Right());
            return {layout.scaleF.left, layout.scaleF.top, right - layout.scaleF.left, layout.scaleF.height};
        }
        default: return {};
    }
}

}  // namespace quillon
