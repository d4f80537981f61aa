#include "app/ToolbarIcons.h"

#include <algorithm>
#include <array>
#include <initializer_list>

#include "view/ReadableColor.h"

namespace quillon {

namespace {

constexpr std::uint32_t kInk = 0x3A4250;
constexpr std::uint32_t kBlue = 0x0072B2;
constexpr std::uint32_t kRed = 0xC0392B;
constexpr std::uint32_t kGreen = 0x2E8B57;
constexpr std::uint32_t kAmber = 0xD08A00;
constexpr std::uint32_t kPaper = 0xFFFFFF;

struct Point {
    double x;
    double y;
};

/// A picture on a grid of 16 x 16 units. Later shapes cover earlier ones; each pixel is sampled at 4 x 4 points.
class IconCanvas {
  public:
    IconCanvas(int size, std::uint32_t background)
        : m_size(size),
          m_background(background),
          m_colors(static_cast<std::size_t>(size) * static_cast<std::size_t>(size) * kSamples, 0),
          m_covered(m_colors.size(), false) {}

    void Line(std::initializer_list<Point> points, std::uint32_t color, double width = 1.5) {
        const std::vector<Point> corners(points);
        Paint(color, [&](Point at) {
            for (std::size_t i = 0; i + 1 < corners.size(); ++i) {
                if (SquaredDistance(at, corners[i], corners[i + 1]) <= width * width / 4) return true;
            }
            return false;
        });
    }
    void Fill(std::initializer_list<Point> points, std::uint32_t color) {
        const std::vector<Point> corners(points);
        Paint(color, [&](Point at) {
            bool inside = false;
            for (std::size_t i = 0, j = corners.size() - 1; i < corners.size(); j = i++) {
                const Point a = corners[i];
                const Point b = corners[j];
                if ((a.y > at.y) != (b.y > at.y) && at.x < (b.x - a.x) * (at.y - a.y) / (b.y - a.y) + a.x)
                    inside = !inside;
            }
            return inside;
        });
    }
    void Box(double left, double top, double right, double bottom, std::uint32_t color) {
        Fill({{left, top}, {right, top}, {right, bottom}, {left, bottom}}, color);
    }
    void Ring(Point centre, double radius, std::uint32_t color, double width) {
        const double inner = radius - width / 2;
        const double outer = radius + width / 2;
        Paint(color, [&](Point at) {
            const double squared = SquaredDistance(at, centre);
            return squared >= inner * inner && squared <= outer * outer;
        });
    }
    void Disk(Point centre, double radius, std::uint32_t color) {
        Paint(color, [&](Point at) { return SquaredDistance(at, centre) <= radius * radius; });
    }

    [[nodiscard]] std::vector<std::uint32_t> Pixels() const {
        std::vector<std::uint32_t> pixels;
        for (std::size_t pixel = 0; pixel < m_colors.size() / kSamples; ++pixel) {
            std::array<std::uint32_t, 3> sums{};
            std::uint32_t covered = 0;
            for (std::size_t sample = pixel * kSamples; sample < (pixel + 1) * kSamples; ++sample) {
                if (!m_covered[sample]) continue;
                ++covered;
                for (std::size_t part = 0; part < 3; ++part) sums[part] += m_colors[sample] >> (16 - 8 * part) & 0xFF;
            }
            if (covered == 0) {
                pixels.push_back(0);
                continue;
            }
            const std::uint32_t alpha = covered * 255 / static_cast<std::uint32_t>(kSamples);
            pixels.push_back(alpha << 24 | sums[0] / covered << 16 | sums[1] / covered << 8 | sums[2] / covered);
        }
        return pixels;
    }

  private:
    static constexpr std::size_t kSide = 4;
    static constexpr std::size_t kSamples = kSide * kSide;

    // Compares squares: square roots would dominate the time.
    static double SquaredDistance(Point a, Point b) { return (a.x - b.x) * (a.x - b.x) + (a.y - b.y) * (a.y - b.y); }
    static double SquaredDistance(Point at, Point a, Point b) {
        const double length = SquaredDistance(a, b);
        const double along = length == 0 ? 0 : ((at.x - a.x) * (b.x - a.x) + (at.y - a.y) * (b.y - a.y)) / length;
        const double t = std::clamp(along, 0.0, 1.0);
        return SquaredDistance(at, {a.x + t * (b.x - a.x), a.y + t * (b.y - a.y)});
    }

    template <typename Covers>
    void Paint(std::uint32_t ofLight, const Covers& covers) {
        const std::uint32_t color = Shown(ofLight);
        const double unit = 16.0 / m_size;
        std::size_t sample = 0;
        for (int row = 0; row < m_size; ++row) {
            for (int column = 0; column < m_size; ++column) {
                for (std::size_t place = 0; place < kSamples; ++place, ++sample) {
                    const std::size_t down = place / kSide;
                    const double x = column + (static_cast<double>(place % kSide) + 0.5) / kSide;
                    const double y = row + (static_cast<double>(down) + 0.5) / kSide;
                    if (!covers({x * unit, y * unit})) continue;
                    m_colors[sample] = color;
                    m_covered[sample] = true;
                }
            }
        }
    }

    /// What stands for a colour of the drawing.
    [[nodiscard]] std::uint32_t Shown(std::uint32_t color) const {
        if (!IsDark(m_background)) return color;
        return color == kPaper ? m_background : Readable(color, m_background, color == kInk ? 10 : 4);
    }

    int m_size;
    std::uint32_t m_background;
    std::vector<std::uint32_t> m_colors;
    std::vector<bool> m_covered;
};

void DrawMagnifier(IconCanvas& canvas, bool plus) {
    canvas.Line({{10, 10}, {14.2, 14.2}}, kInk, 2.4);
    canvas.Disk({6.5, 6.5}, 5, kPaper);
    canvas.Ring({6.5, 6.5}, 5, kInk, 1.5);
    canvas.Line({{4, 6.5}, {9, 6.5}}, kBlue, 1.5);
    if (plus) canvas.Line({{6.5, 4}, {6.5, 9}}, kBlue, 1.5);
}

void DrawPage(IconCanvas& canvas, double left, double top, double right, double bottom) {
    canvas.Box(left, top, right, bottom, kInk);
    canvas.Box(left + 1.2, top + 1.2, right - 1.2, bottom - 1.2, kPaper);
}

void DrawSpeaker(IconCanvas& canvas) {
    canvas.Fill({{1, 6}, {3.5, 6}, {7, 2.5}, {7, 13.5}, {3.5, 10}, {1, 10}}, kInk);
}

void DrawScaleIcons(IconCanvas& canvas, Icon icon) {
    switch (icon) {
        case Icon::ZoomYOut: DrawMagnifier(canvas, false); break;
        case Icon::ZoomYIn: DrawMagnifier(canvas, true); break;
        case Icon::Bipolar:
            canvas.Line({{1, 8}, {15, 8}}, kInk, 1.2);
            canvas.Line({{1.5, 8}, {4, 3}, {6.5, 8}, {9.5, 13}, {12, 8}, {14.5, 3.5}}, kBlue, 1.6);
            break;
        case Icon::FindData:
            canvas.Line({{1.5, 1.5}, {14.5, 1.5}}, kInk, 1.4);
            canvas.Line({{1.5, 14.5}, {14.5, 14.5}}, kInk, 1.4);
            canvas.Line({{1.5, 9}, {4, 12.5}, {6.5, 3.5}, {9.5, 12.5}, {12, 4}, {14.5, 8}}, kBlue, 1.6);
            break;
        case Icon::ShowLanes:
            for (const double y : {5.5, 10.5}) canvas.Line({{1, y}, {15, y}}, 0xB4BAC4, 1);
            canvas.Line({{1, 3}, {4, 1.2}, {6.5, 4.4}, {9.5, 1.6}, {12, 4.2}, {15, 2.6}}, kBlue, 1.4);
            canvas.Line({{1, 8}, {4.5, 6.6}, {7, 9.2}, {10, 6.8}, {12.5, 9}, {15, 8}}, kRed, 1.4);
            canvas.Line({{1, 13}, {3.5, 14.4}, {6.5, 11.8}, {9, 14.2}, {12, 11.8}, {15, 13.4}}, kGreen, 1.4);
            break;
        case Icon::Spectrogram:
            canvas.Box(1, 1, 15, 15, 0x14305A);
            canvas.Box(1, 9, 4.5, 13, kBlue);
            canvas.Box(4.5, 6.5, 8, 12, kGreen);
            canvas.Box(8, 4, 11.5, 10, kAmber);
            canvas.Box(11.5, 7, 15, 12.5, kRed);
            break;
        case Icon::Options:
            for (const double y : {3.5, 8.0, 12.5}) canvas.Line({{1.5, y}, {14.5, y}}, kInk, 1.3);
            canvas.Disk({10.5, 3.5}, 2.2, kBlue);
            canvas.Disk({5, 8}, 2.2, kBlue);
            canvas.Disk({11, 12.5}, 2.2, kBlue);
            break;
        default: break;
    }
}

void DrawFileIcons(IconCanvas& canvas, Icon icon) {
    switch (icon) {
        case Icon::SaveAs:
            canvas.Fill({{1.5, 1.5}, {12, 1.5}, {14.5, 4}, {14.5, 14.5}, {1.5, 14.5}}, kBlue);
            canvas.Box(4, 1.5, 11, 6, kPaper);
            canvas.Box(8.2, 2.4, 10, 5.2, kBlue);
            canvas.Box(3.5, 8.5, 12.5, 14.5, kPaper);
            break;
        case Icon::FastExport:
            DrawPage(canvas, 1.5, 1.5, 10.5, 14.5);
            for (const double y : {5.0, 7.5, 10.0}) canvas.Line({{3.8, y}, {8, y}}, kInk, 1);
            canvas.Fill({{8, 8.2}, {11.5, 8.2}, {11.5, 5.6}, {15.5, 9.8}, {11.5, 14}, {11.5, 11.4}, {8, 11.4}}, kGreen);
            break;
        case Icon::Split:
            canvas.Line({{1, 8}, {3, 4}, {5, 11}, {6, 8}}, kBlue, 1.5);
            canvas.Line({{10, 8}, {11, 5}, {13, 12}, {15, 8}}, kBlue, 1.5);
            for (const double y : {1.5, 5.0, 8.5, 12.0}) canvas.Line({{8, y}, {8, y + 2}}, kRed, 1.5);
            break;
        case Icon::CopyData:
            DrawPage(canvas, 1.5, 1.5, 10, 11.5);
            DrawPage(canvas, 5.5, 4.5, 14.5, 14.5);
            for (const double y : {7.5, 9.7, 11.9}) canvas.Line({{7.6, y}, {12.4, y}}, kBlue, 1.1);
            break;
        case Icon::CopyImage:
            DrawPage(canvas, 1.5, 1.5, 10, 11.5);
            DrawPage(canvas, 5.5, 4.5, 14.5, 14.5);
            canvas.Line({{7.2, 11}, {8.8, 8}, {10.6, 12}, {12.6, 8.4}}, kRed, 1.3);
            break;
        case Icon::Folders:
            canvas.Fill({{1, 3}, {6, 3}, {7.5, 5}, {15, 5}, {15, 13.5}, {1, 13.5}}, kAmber);
            canvas.Fill({{1, 6.5}, {15, 6.5}, {15, 13.5}, {1, 13.5}}, 0xF2B84B);
            canvas.Line({{1, 3}, {6, 3}, {7.5, 5}, {15, 5}, {15, 13.5}, {1, 13.5}, {1, 3}}, kInk, 1);
            break;
        default: break;
    }
}

void DrawMoveIcons(IconCanvas& canvas, Icon icon) {
    switch (icon) {
        case Icon::PlayChannel:
            DrawSpeaker(canvas);
            canvas.Fill({{9.5, 4}, {15, 8}, {9.5, 12}}, kGreen);
            break;
        case Icon::PlayAll:
            DrawSpeaker(canvas);
            canvas.Fill({{8, 4.5}, {12, 8}, {8, 11.5}}, kGreen);
            canvas.Fill({{11.5, 4.5}, {15.5, 8}, {11.5, 11.5}}, kGreen);
            break;
        case Icon::StopPlay:
            DrawSpeaker(canvas);
            canvas.Box(9, 5, 15, 11, kRed);
            break;
        case Icon::Help:
            canvas.Disk({8, 8}, 7, kBlue);
            canvas.Line({{5.4, 6.2}, {5.9, 4.6}, {8, 3.7}, {10.2, 4.7}, {10.2, 6.6}, {8, 8.2}, {8, 9.8}}, kPaper, 1.7);
            canvas.Disk({8, 12.3}, 1.1, kPaper);
            break;
        case Icon::GoToStart:
            canvas.Box(2.5, 3, 4.3, 13, kInk);
            canvas.Fill({{13, 3}, {13, 13}, {5.5, 8}}, kInk);
            break;
        case Icon::PreviousPage: canvas.Fill({{11, 2.5}, {11, 13.5}, {4, 8}}, kInk); break;
        case Icon::NextPage: canvas.Fill({{5, 2.5}, {5, 13.5}, {12, 8}}, kInk); break;
        case Icon::GoToEnd:
            canvas.Box(11.7, 3, 13.5, 13, kInk);
            canvas.Fill({{3, 3}, {3, 13}, {10.5, 8}}, kInk);
            break;
        default: break;
    }
}

}  // namespace

std::vector<std::uint32_t> DrawIcon(Icon icon, int size, std::uint32_t background) {
    IconCanvas canvas(size, background);
    DrawScaleIcons(canvas, icon);
    DrawFileIcons(canvas, icon);
    DrawMoveIcons(canvas, icon);
    return canvas.Pixels();
}

std::vector<std::uint32_t> Greyed(std::vector<std::uint32_t> pixels) {
    for (std::uint32_t& pixel : pixels) {
        const std::uint32_t grey = ((pixel >> 16 & 0xFF) * 3 + (pixel >> 8 & 0xFF) * 6 + (pixel & 0xFF)) / 10;
        const std::uint32_t light = 120 + grey / 2;
        pixel = (pixel >> 24) * 6 / 10 << 24 | light << 16 | light << 8 | light;
    }
    return pixels;
}

}  // namespace quillon
