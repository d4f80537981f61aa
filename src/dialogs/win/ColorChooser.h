#pragma once

#include <optional>
#include <string>

#include "base/win/Win32.h"

namespace quillon {

/// Number of the button of colour 0 in the chooser; the others follow.
inline constexpr int kFirstColorButton = 100;

/// Lets the user choose one of the trace colours in a modal window with a button per colour: by a click, or by arrow
/// keys and Enter or Space. None when the user cancels.
[[nodiscard]] std::optional<int> ChooseTraceColor(HWND owner, const std::wstring& title, int color);

/// Paints an owner-drawn button that shows a trace colour.
void DrawSwatch(const DRAWITEMSTRUCT& item, int color);

}  // namespace quillon
