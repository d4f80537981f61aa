#pragma once

#include <string>
#include <string_view>

#include "base/win/Win32.h"
#include "norvik/OutputFile.h"

namespace quillon {

class cMemDC;

/// Puts the bitmap of a canvas onto the clipboard, as a bitmap and as device-independent pixels. False when there is no
/// memory for it, or the clipboard does not take it.
[[nodiscard]] bool PictureToClipboard(const cMemDC& canvas);

/// The windows whose content makes the picture; each paints itself on WM_PRINTCLIENT.
struct ImageWindows {
    HWND scaleY;
    HWND graph;
    HWND scaleF;       ///< null where the spectrogram is not shown
    HWND spectrogram;  ///< null where it is not shown
    HWND scaleX;
    bool hasTitles = false;  ///< whether scaleY holds titles of lanes, which keep their colours
};

/// Puts a picture of the view under a caption line onto the clipboard (kClipboardTarget), as a bitmap and as
/// device-independent pixels, or into a file of that name, as a BMP of 24 bits per pixel. False when there is no memory
/// for it, or the clipboard or the file, which `makeFile` makes, does not take it.
bool ImageCopy(const ImageWindows& windows, HFONT font, const std::u16string& caption, std::u16string_view target,
               const OutputFileFactory& makeFile = {});

}  // namespace quillon
