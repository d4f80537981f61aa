#pragma once

#include <vector>

#include "app/MainLayout.h"
#include "app/WindowPlacement.h"

namespace quillon {

/// What the user drags between the controls of the main window.
enum class Splitter { None, Column, Lists, Values, Spectrogram };

[[nodiscard]] Splitter SplitterAt(const MainLayout& layout, int x, int y);

/// Where the layout is to put what the user has dragged before.
void TakeSizes(const WindowPlacement& placement, LayoutInput& input);

/// Sets the size that the splitter dragged to that point asks for. The layout is the present one.
void DragSplitter(Splitter splitter, const MainLayout& layout, int x, int y, WindowPlacement& placement);

/// What was reached by it counts, so that dragging beyond a limit and back has no dead travel.
void KeepReached(Splitter splitter, const MainLayout& layout, WindowPlacement& placement);

struct ControlPlace {
    int id;  ///< see ControlIds.h
    PixelRect rect;
};
[[nodiscard]] std::vector<ControlPlace> PlacesOf(const MainLayout& layout);

/// What is framed when a control has the keyboard; empty for one that shows that itself.
[[nodiscard]] PixelRect FramedWith(const MainLayout& layout, int control);

}  // namespace quillon
