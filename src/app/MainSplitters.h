#pragma once

#include <vector>

#include "app/MainLayout.h"
#include "app/WindowPlacement.h"

namespace quillon {

/// The splitter bars between the controls of the main window.
enum class Splitter { None, Column, Lists, Values, Spectrogram, Labels };

[[nodiscard]] Splitter SplitterAt(const MainLayout& layout, int x, int y);

/// Input of the layout from the stored splitter positions, which may be of another density than the input.
void TakeSizes(const WindowPlacement& placement, LayoutInput& input);

/// Stores the size that results from dragging the splitter to that point. `layout` is the current one.
void DragSplitter(Splitter splitter, const MainLayout& layout, int x, int y, WindowPlacement& placement);

/// Stores the sizes after clamping, so that the splitter follows the pointer at once after it was dragged past a limit.
void KeepReached(Splitter splitter, const MainLayout& layout, WindowPlacement& placement);

struct ControlPlace {
    int id;  ///< see ControlIds.h
    PixelRect rect;
};
[[nodiscard]] std::vector<ControlPlace> PlacesOf(const MainLayout& layout);

/// Rectangle of the focus frame of a control; empty for controls that show the focus themselves.
[[nodiscard]] PixelRect FramedWith(const MainLayout& layout, int control);

}  // namespace quillon
