#pragma once

#include "base/win/Win32.h"

namespace quillon {

/// Pixels per inch of the main monitor when the program was started.
[[nodiscard]] int ScreenDpi();

/// Pixels per inch of the monitor that a window is on. Systems before Windows 10 1607 do not tell it: the screen's.
///
/// A window that is laid out by us asks once, when it is made: from then on WM_DPICHANGED tells it.
[[nodiscard]] int DpiOf(HWND window);

/// GetSystemMetrics for a density; the screen's where the system has none for others.
[[nodiscard]] int MetricAt(int dpi, int index);

/// The fonts and sizes of the frames of windows at a density.
[[nodiscard]] NONCLIENTMETRICSW FrameMetricsAt(int dpi);

}  // namespace quillon
