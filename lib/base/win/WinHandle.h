#pragma once

#include <utility>

#include "base/win/Win32.h"

namespace quillon {

/// Owner of one handle: closes it with Traits::Close unless it is Traits::Invalid().
template <typename Traits>
class WinHandle {
  public:
    using Handle = typename Traits::Handle;
    WinHandle() = default;
    explicit WinHandle(Handle handle) : m_handle(handle) {}
    WinHandle(WinHandle&& other) noexcept : m_handle(other.Release()) {}
    WinHandle& operator=(WinHandle&& other) noexcept {
        if (this != &other) Reset(other.Release());
        return *this;
    }
    ~WinHandle() { Reset(); }

    [[nodiscard]] Handle Get() const { return m_handle; }
    [[nodiscard]] explicit operator bool() const { return m_handle != Traits::Invalid(); }
    [[nodiscard]] Handle Release() { return std::exchange(m_handle, Traits::Invalid()); }
    void Reset(Handle handle = Traits::Invalid()) {
        const Handle old = std::exchange(m_handle, handle);
        if (old != Traits::Invalid()) Traits::Close(old);
    }

  private:
    Handle m_handle = Traits::Invalid();
};

template <typename Object>
struct GdiTraits {
    using Handle = Object;
    static Handle Invalid() { return nullptr; }
    static void Close(Handle handle) { DeleteObject(handle); }
};

using GdiPen = WinHandle<GdiTraits<HPEN>>;
using GdiBrush = WinHandle<GdiTraits<HBRUSH>>;
using GdiFont = WinHandle<GdiTraits<HFONT>>;
using GdiBitmap = WinHandle<GdiTraits<HBITMAP>>;

struct MenuTraits {
    using Handle = HMENU;
    static Handle Invalid() { return nullptr; }
    static void Close(Handle handle) { DestroyMenu(handle); }
};
using Menu = WinHandle<MenuTraits>;

struct ImageListTraits {
    using Handle = HIMAGELIST;
    static Handle Invalid() { return nullptr; }
    static void Close(Handle handle) { ImageList_Destroy(handle); }
};
using ImageList = WinHandle<ImageListTraits>;

struct FindTraits {
    using Handle = HANDLE;
    static Handle Invalid() { return INVALID_HANDLE_VALUE; }
    static void Close(Handle handle) { FindClose(handle); }
};
using FindHandle = WinHandle<FindTraits>;

struct FileTraits {
    using Handle = HANDLE;
    static Handle Invalid() { return INVALID_HANDLE_VALUE; }
    static void Close(Handle handle) { CloseHandle(handle); }
};
using FileHandle = WinHandle<FileTraits>;

struct MemoryDCTraits {
    using Handle = HDC;
    static Handle Invalid() { return nullptr; }
    static void Close(Handle handle) { DeleteDC(handle); }
};
using MemoryDC = WinHandle<MemoryDCTraits>;

/// Selects an object into a device context and puts the previous one back.
class SelectScope {
  public:
    SelectScope(HDC dc, HGDIOBJ object) : m_dc(dc), m_previous(SelectObject(dc, object)) {}
    ~SelectScope() { SelectObject(m_dc, m_previous); }
    SelectScope(const SelectScope&) = delete;
    SelectScope& operator=(const SelectScope&) = delete;

  private:
    HDC m_dc;
    HGDIOBJ m_previous;
};

/// The device context of a window (or of the screen, for null) for as long as the scope lasts.
class WindowDC {
  public:
    explicit WindowDC(HWND window) : m_window(window), m_dc(GetDC(window)) {}
    ~WindowDC() { ReleaseDC(m_window, m_dc); }
    WindowDC(const WindowDC&) = delete;
    WindowDC& operator=(const WindowDC&) = delete;
    [[nodiscard]] HDC Get() const { return m_dc; }

  private:
    HWND m_window;
    HDC m_dc;
};

}  // namespace quillon
