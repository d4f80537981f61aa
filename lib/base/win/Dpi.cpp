#include "base/win/Dpi.h"

#include "base/win/WinHandle.h"

namespace quillon {

namespace {

/// A function that only newer systems have; null on others.
template <typename Function>
Function FromUser32(const char* name) {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"user32.dll"), name)));
}

}  // namespace

int ScreenDpi() {
    const WindowDC screen(nullptr);
    return GetDeviceCaps(screen.Get(), LOGPIXELSX);
}

int DpiOf(HWND window) {
    const auto get = FromUser32<UINT(WINAPI*)(HWND)>("GetDpiForWindow");
    const UINT dpi = get == nullptr ? 0 : get(window);
    return dpi == 0 ? ScreenDpi() : static_cast<int>(dpi);
}

int MetricAt(int dpi, int index) {
    const auto get = FromUser32<int(WINAPI*)(int, UINT)>("GetSystemMetricsForDpi");
    return get == nullptr ? GetSystemMetrics(index) : get(index, static_cast<UINT>(dpi));
}

NONCLIENTMETRICSW FrameMetricsAt(int dpi) {
    const auto get = FromUser32<BOOL(WINAPI*)(UINT, UINT, void*, UINT, UINT)>("SystemParametersInfoForDpi");
    NONCLIENTMETRICSW metrics{};
    metrics.cbSize = sizeof metrics;
    if (get == nullptr || !get(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0, static_cast<UINT>(dpi)))
        SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
    return metrics;
}

}  // namespace quillon
