#include "view/win/ReportPainter.h"

#include <algorithm>
#include <utility>

#include "view/win/cMemDC.h"

namespace quillon {

namespace {

/// The font of the scales, without the coloured edges that suit one screen only.
GdiFont MakeReportFont(int dpi) {
    LOGFONTW font{};
    GetObjectW(MakeFont(dpi).Get(), sizeof font, &font);
    font.lfQuality = ANTIALIASED_QUALITY;
    return GdiFont(CreateFontIndirectW(&font));
}

void FillBox(HDC dc, const RECT& place, COLORREF color) {
    const GdiBrush brush(CreateSolidBrush(color));
    FillRect(dc, &place, brush.Get());
}

void PaintArrow(HDC dc, const EdgeArrow& arrow, POINT at, COLORREF paper) {
    POINT corners[3];
    std::transform(arrow.corners.begin(), arrow.corners.end(), corners, [&](const DevicePoint& corner) {
        return POINT{at.x + corner.x, at.y + corner.y};
    });
    const GdiPen outline(CreatePen(PS_SOLID, 1, paper));
    const GdiBrush fill(CreateSolidBrush(ColorOf(arrow.color)));
    const SelectScope pen(dc, outline.Get());
    const SelectScope brush(dc, fill.Get());
    Polygon(dc, corners, 3);
}

/// Metafiles hold coordinates of a limited range; a line that leaves the graph so far is upright there anyway.
POINT WithinRange(const DevicePoint& point, POINT at) {
    constexpr std::int32_t most = 1 << 20;
    return {at.x + std::clamp(point.x, -most, most), at.y + std::clamp(point.y, -most, most)};
}

}  // namespace

ReportPainter::ReportPainter(int scale, int dpi)
    : m_scale(scale), m_font(MakeReportFont(dpi * scale)), m_screenFont(MakeReportFont(dpi)) {}

TextSize ReportPainter::SizeOf(const std::u16string& text) const {
    // A metafile holds texts with the widths of the screen's pixels, which are not those of larger ones.
    const WindowDC screen(nullptr);
    const std::wstring wide = Wide(text);
    SIZE large{};
    SIZE size{};
    for (const auto& [font, measured] : {std::pair{m_font.Get(), &large}, std::pair{m_screenFont.Get(), &size}}) {
        const SelectScope select(screen.Get(), font);
        GetTextExtentPoint32W(screen.Get(), wide.c_str(), static_cast<int>(wide.size()), measured);
    }
    const auto larger = [&](LONG once, LONG enlarged) {
        return static_cast<std::int32_t>(std::max(once, (enlarged + m_scale - 1) / m_scale));
    };
    return {larger(size.cx, large.cx), larger(size.cy, large.cy)};
}

void ReportPainter::PaintImage(HDC dc, const ReportImage& image) const {
    BITMAPINFO info{};
    info.bmiHeader = DibHeader(image.width, -image.height, 32);
    SetStretchBltMode(dc, COLORONCOLOR);
    StretchDIBits(dc, Scaled(image.left), Scaled(image.top), Scaled(image.width), Scaled(image.height), 0, 0,
                  image.width, image.height, image.pixels.data(), &info, DIB_RGB_COLORS, SRCCOPY);
}

void ReportPainter::PaintLines(HDC dc, const ViewReport& report, POINT at) const {
    for (const ReportBox& box : report.Background())
        FillBox(dc, {at.x + box.left, at.y + box.top, at.x + box.right, at.y + box.end}, ColorOf(box.color));
    const TextSize size = report.GraphSize();
    std::vector<POINT> points;
    // Somewhat less than in the window.
    const int width = std::max(m_scale * (4 * report.Look().lineWidth - 1) / 4, 1);
    for (const TraceLine& line : report.Lines()) {
        const int saved = SaveDC(dc);
        IntersectClipRect(dc, at.x, at.y + line.top, at.x + size.width, at.y + line.end);
        const GdiPen pen(CreatePen(PS_SOLID, width, ColorOf(line.color)));
        points.clear();
        for (const DevicePoint& point : line.points) points.push_back(WithinRange(point, at));
        {
            const SelectScope select(dc, pen.Get());
            Polyline(dc, points.data(), static_cast<int>(points.size()));
        }
        for (std::size_t dot = 0; line.dots && dot < points.size(); ++dot) {
            const POINT& point = points[dot];
            FillBox(dc, {point.x - m_scale, point.y - m_scale, point.x + m_scale + 1, point.y + m_scale + 1},
                    ColorOf(line.color));
        }
        RestoreDC(dc, saved);
    }
}

void ReportPainter::Paint(HDC dc, const ViewReport& report, const std::vector<ReportImage>& images, bool lines) const {
    const TextSize size = report.Size();
    const COLORREF paper = ColorOf(report.Look().colors->paper);
    FillBox(dc, {0, 0, Scaled(size.width), Scaled(size.height)}, paper);
    const POINT graph{Scaled(report.Margins().left), Scaled(report.Margins().top)};
    if (lines) {
        PaintLines(dc, report, graph);
    } else {
        const TextSize pixels = report.GraphSize();
        BITMAPINFO info{};
        info.bmiHeader = DibHeader(pixels.width, -pixels.height, 32);
        SetDIBitsToDevice(dc, graph.x, graph.y, static_cast<DWORD>(pixels.width), static_cast<DWORD>(pixels.height), 0,
                          0, 0, static_cast<UINT>(pixels.height), report.GraphPixels().data(), &info, DIB_RGB_COLORS);
    }
    for (const ReportImage& image : images) PaintImage(dc, image);
    const ReportPlan plan = report.Frame();
    for (const ReportBox& box : plan.boxes)
        FillBox(dc, {Scaled(box.left), Scaled(box.top), Scaled(box.right), Scaled(box.end)}, ColorOf(box.color));
    const SelectScope font(dc, m_font.Get());
    SetBkMode(dc, TRANSPARENT);
    SetTextAlign(dc, TA_LEFT | TA_TOP);
    for (const ReportText& text : plan.texts) {
        if (text.outline) SetTextColor(dc, ColorOf(*text.outline));
        for (std::size_t at = 0; text.outline && at < std::size(kOutline); ++at)
            DrawTextAt(dc, Scaled(text.x + kOutline[at].x), Scaled(text.y + kOutline[at].y), text.text);
        SetTextColor(dc, ColorOf(text.color));
        DrawTextAt(dc, Scaled(text.x), Scaled(text.y), text.text);
    }
    for (const EdgeArrow& arrow : report.Arrows()) PaintArrow(dc, arrow, graph, paper);
}

std::vector<std::uint32_t> ReportPainter::Pixels(const ViewReport& report,
                                                 const std::vector<ReportImage>& images) const {
    const TextSize size = report.Size();
    cMemDC canvas;
    const std::uint32_t* const drawn = canvas.CreatePixels(Scaled(size.width), Scaled(size.height));
    if (drawn == nullptr) return {};
    Paint(canvas.Handle(), report, images, false);
    GdiFlush();
    const auto count = static_cast<std::size_t>(Scaled(size.width)) * static_cast<std::size_t>(Scaled(size.height));
    std::vector<std::uint32_t> pixels(drawn, drawn + count);
    // The system leaves anything in the fourth byte.
    for (std::uint32_t& pixel : pixels) pixel &= 0xFFFFFF;
    return pixels;
}

Metafile ReportPainter::Record(const ViewReport& report, const std::vector<ReportImage>& images,
                               const std::u16string& title) const {
    const WindowDC screen(nullptr);
    const TextSize size = report.Size();
    // The frame is told in hundredths of a millimetre of the reference's pixels, of which one stands for one of the
    // window.
    const auto millimetres = [&](std::int32_t pixels, int side, int resolution) {
        return MulDiv(pixels, GetDeviceCaps(screen.Get(), side) * 100, GetDeviceCaps(screen.Get(), resolution));
    };
    const RECT frame{0, 0, millimetres(size.width, HORZSIZE, HORZRES), millimetres(size.height, VERTSIZE, VERTRES)};
    std::wstring description = L"Quillon";
    description += L'\0' + Wide(title) + L'\0';
    const HDC dc = CreateEnhMetaFileW(screen.Get(), nullptr, &frame, description.c_str());
    if (dc == nullptr) return {};
    SetMapMode(dc, MM_ANISOTROPIC);
    SetWindowExtEx(dc, Scaled(size.width), Scaled(size.height), nullptr);
    SetViewportExtEx(dc, size.width, size.height, nullptr);
    Paint(dc, report, images, true);
    return Metafile(CloseEnhMetaFile(dc));
}

}  // namespace quillon
