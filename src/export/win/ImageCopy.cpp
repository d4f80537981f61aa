#include "export/win/ImageCopy.h"

#include <cstdint>
#include <cstring>
#include <vector>

#include "base/win/Clipboard.h"
#include "base/win/WinHandle.h"
#include "export/ByteWriter.h"
#include "export/ImagePlan.h"
#include "norvik/TextSink.h"
#include "view/win/GDI_Utils.h"
#include "view/win/cMemDC.h"

namespace quillon {

namespace {

SIZE SizeOf(HWND window) {
    RECT client{};
    if (window != nullptr) GetClientRect(window, &client);
    return {client.right, client.bottom};
}

/// Device-independent pixels of 24 bits: rows from the bottom, each filled up to whole 32-bit words.
struct DibPixels {
    BITMAPINFOHEADER header{};
    std::vector<std::uint8_t> bytes;
};

class Picture {
  public:
    bool Draw(const ImageWindows& windows, HFONT font, const std::u16string& caption);
    [[nodiscard]] bool ToClipboard() const { return PictureToClipboard(m_canvas); }
    [[nodiscard]] bool ToFile(const std::u16string& name, const OutputFileFactory& makeFile) const;

  private:
    bool CopyWindow(HWND window, const ImagePart& part, DWORD operation) const;
    bool CopyBlackAndWhite(HWND window, const ImagePart& part) const;
    void DrawCaption(HFONT font, const std::u16string& caption, const ImagePart& strip) const;

    cMemDC m_canvas;
};

/// The content of a window as it paints itself.
bool Print(HWND window, cMemDC& canvas) {
    const SIZE size = SizeOf(window);
    if (!canvas.CreateBitmap(size.cx, size.cy)) return false;
    canvas.Clear();
    return SendMessageW(window, WM_PRINTCLIENT, reinterpret_cast<WPARAM>(canvas.Handle()), PRF_CLIENT) != 0;
}

bool Picture::Draw(const ImageWindows& windows, HFONT font, const std::u16string& caption) {
    const SIZE graph = SizeOf(windows.graph);
    const ImagePlan plan = PlanImage(graph.cx, graph.cy, SizeOf(windows.scaleY).cx, SizeOf(windows.spectrogram).cy,
                                     SizeOf(windows.scaleX).cy);
    if (!m_canvas.CreateBitmap(plan.width, plan.height)) return false;
    m_canvas.Clear();
    DrawCaption(font, caption, plan.caption);
    bool done = CopyWindow(windows.graph, plan.graph, SRCCOPY) &&
                (windows.hasTitles ? CopyWindow(windows.scaleY, plan.scaleY, SRCCOPY)
                                   : CopyBlackAndWhite(windows.scaleY, plan.scaleY));
    if (windows.spectrogram != nullptr) {
        done = done && CopyWindow(windows.spectrogram, plan.spectrogram, SRCCOPY);
        // White on black on the screen; against the white of the picture it becomes black on white.
        done = done && CopyWindow(windows.scaleF, plan.scaleF, SRCINVERT);
    }
    return done && CopyWindow(windows.scaleX, plan.scaleX, SRCCOPY);
}

void Picture::DrawCaption(HFONT font, const std::u16string& caption, const ImagePart& strip) const {
    const SelectScope select(m_canvas.Handle(), font);
    SetBkMode(m_canvas.Handle(), TRANSPARENT);
    RECT place{strip.left + 2, strip.top + 1, strip.left + strip.width, strip.top + strip.height};
    const std::wstring text = Wide(caption);
    DrawTextW(m_canvas.Handle(), text.c_str(), static_cast<int>(text.size()), &place,
              DT_LEFT | DT_TOP | DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS);
}

bool Picture::CopyWindow(HWND window, const ImagePart& part, DWORD operation) const {
    cMemDC source;
    if (!Print(window, source)) return false;
    return BitBlt(m_canvas.Handle(), part.left, part.top, part.width, part.height, source.Handle(), 0, 0, operation) !=
           FALSE;
}

bool Picture::CopyBlackAndWhite(HWND window, const ImagePart& part) const {
    cMemDC source;
    cMemDC monochrome;
    if (!Print(window, source) || !monochrome.CreateMonochromeBitmap(part.width, part.height + 1)) return false;
    // The background turns white, everything else black.
    SetBkColor(source.Handle(), GetPixel(source.Handle(), 0, 0));
    return BitBlt(monochrome.Handle(), 0, 0, part.width, part.height, source.Handle(), 0, 0, SRCCOPY) != FALSE &&
           BitBlt(m_canvas.Handle(), part.left, part.top, part.width, part.height, monochrome.Handle(), 0, 0,
                  SRCCOPY) != FALSE;
}

DibPixels PixelsOf(const cMemDC& canvas) {
    const SIZE size = canvas.Size();
    DibPixels pixels;
    pixels.header = DibHeader(size.cx, size.cy, 24);
    const std::size_t row = (static_cast<std::size_t>(size.cx) * 3 + 3) / 4 * 4;
    pixels.bytes.resize(row * static_cast<std::size_t>(size.cy));
    pixels.header.biSizeImage = static_cast<DWORD>(pixels.bytes.size());
    BITMAPINFO info{};
    info.bmiHeader = pixels.header;
    const HBITMAP bitmap = canvas.CopyBitmap();  // one that no context holds
    const WindowDC screen(nullptr);
    const int rows =
        GetDIBits(screen.Get(), bitmap, 0, static_cast<UINT>(size.cy), pixels.bytes.data(), &info, DIB_RGB_COLORS);
    DeleteObject(bitmap);
    if (rows != size.cy) pixels.bytes.clear();
    return pixels;
}

bool Picture::ToFile(const std::u16string& name, const OutputFileFactory& makeFile) const {
    const DibPixels pixels = PixelsOf(m_canvas);
    if (pixels.bytes.empty()) return false;
    const BITMAPINFOHEADER& info = pixels.header;
    constexpr std::uint32_t headers = 14 + 40;
    ByteWriter header;
    header.Text("BM").U32(headers + info.biSizeImage).U32(0).U32(headers);
    header.U32(40).U32(static_cast<std::uint32_t>(info.biWidth)).U32(static_cast<std::uint32_t>(info.biHeight));
    header.U16(1).U16(24).U32(0).U32(info.biSizeImage).Zeros(16);
    const std::unique_ptr<OutputFile> file = makeFile();
    return file->Create(name) && file->Write(header.Bytes()) && file->Write(std::as_bytes(std::span(pixels.bytes))) &&
           file->Close();
}

}  // namespace

bool PictureToClipboard(const cMemDC& canvas) {
    const DibPixels pixels = PixelsOf(canvas);
    const HBITMAP bitmap = canvas.CopyBitmap();
    const HGLOBAL dib = GlobalAlloc(GMEM_MOVEABLE, sizeof pixels.header + pixels.bytes.size());
    bool bitmapTaken = false;
    bool dibTaken = false;
    if (bitmap != nullptr && dib != nullptr && !pixels.bytes.empty()) {
        auto* bytes = static_cast<std::uint8_t*>(GlobalLock(dib));
        std::memcpy(bytes, &pixels.header, sizeof pixels.header);
        std::memcpy(bytes + sizeof pixels.header, pixels.bytes.data(), pixels.bytes.size());
        GlobalUnlock(dib);
        const ClipboardScope clipboard;
        bitmapTaken = clipboard.Put(CF_BITMAP, bitmap);
        dibTaken = clipboard.Put(CF_DIB, dib);
    }
    if (!bitmapTaken && bitmap != nullptr) DeleteObject(bitmap);
    if (!dibTaken && dib != nullptr) GlobalFree(dib);
    return bitmapTaken && dibTaken;
}

bool ImageCopy(const ImageWindows& windows, HFONT font, const std::u16string& caption, std::u16string_view target,
               const OutputFileFactory& makeFile) {
    Picture picture;
    if (!picture.Draw(windows, font, caption)) return false;
    return target == kClipboardTarget ? picture.ToClipboard() : picture.ToFile(std::u16string(target), makeFile);
}

}  // namespace quillon
