#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "view/ViewReport.h"
#include "view/win/GDI_Utils.h"

namespace quillon {

/// A picture that stands beside the graph of a report.
struct ReportImage {
    std::vector<std::uint32_t> pixels;  ///< 0xRRGGBB, rows of the width from the top
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::int32_t left = 0;  ///< in the report, in pixels of the window
    std::int32_t top = 0;
};

struct MetafileTraits {
    using Handle = HENHMETAFILE;
    static Handle Invalid() { return nullptr; }
    static void Close(Handle handle) { DeleteEnhMetaFile(handle); }
};
using Metafile = WinHandle<MetafileTraits>;

/// Draws reports in the system's font.
class ReportPainter {
  public:
    /// `scale`: of the reports that are drawn; `dpi`: of the window.
    ReportPainter(int scale, int dpi);
    /// Pixels of the window that a text takes, for ReportStyle.
    [[nodiscard]] TextSize SizeOf(const std::u16string& text) const;

    /// A report whose graph is drawn, as 0xRRGGBB; empty where there is no memory for it.
    [[nodiscard]] std::vector<std::uint32_t> Pixels(const ViewReport& report,
                                                    const std::vector<ReportImage>& images) const;
    /// The same as a metafile: texts as texts, traces as lines. Null where that cannot be made.
    [[nodiscard]] Metafile Record(const ViewReport& report, const std::vector<ReportImage>& images,
                                  const std::u16string& title) const;

  private:
    void Paint(HDC dc, const ViewReport& report, const std::vector<ReportImage>& images, bool lines) const;
    void PaintLines(HDC dc, const ViewReport& report, POINT at) const;
    void PaintImage(HDC dc, const ReportImage& image) const;
    [[nodiscard]] int Scaled(std::int32_t length) const { return length * m_scale; }

    int m_scale;
    GdiFont m_font;        ///< in pixels of the picture
    GdiFont m_screenFont;  ///< in pixels of the window
};

}  // namespace quillon
