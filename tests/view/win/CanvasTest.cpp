#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "base/win/WinHandle.h"
#include "view/AmplitudeScale.h"
#include "view/TraceCanvas.h"
#include "view/TraceMapping.h"
#include "view/win/GDI_Utils.h"
#include "view/win/cMemDC.h"

namespace quillon {
namespace {

/// Traces of all steepnesses, drawn over each other, are what the system draws, in the whole image and in a part of it.
TEST(TraceCanvas, DrawsThePixelsOfTheSystem) {
    constexpr int width = 300;
    constexpr int height = 200;
    std::mt19937 random(12);
    for (int round = 0; round < 60; ++round) {
        cMemDC expected;
        cMemDC actual;
        const std::uint32_t* expectedPixels = expected.CreatePixels(width, height);
        std::uint32_t* actualPixels = actual.CreatePixels(width, height);
        ASSERT_TRUE(expectedPixels != nullptr && actualPixels != nullptr);
        for (const cMemDC* image : {&expected, &actual}) FillWith(image->Handle(), {0, 0, width, height}, 0xFFFFFF);
        const int from = round % 2 == 0 ? 0 : static_cast<int>(random() % static_cast<unsigned>(width));
        const int to =
            round % 2 == 0 ? width : from + 1 + static_cast<int>(random() % static_cast<unsigned>(width - from));
        IntersectClipRect(expected.Handle(), from, 0, to, height);
        TraceCanvas canvas;
        canvas.Reset(0, 10, height);
        canvas.Reset(from, to, height);
        const std::vector<std::uint32_t> colors{0xCC0000, 0x008000, 0x0000FF};
        const auto reach = static_cast<unsigned>(1 + (round % 10) * (round % 10) * 4);
        for (std::uint8_t id = 3; id >= 1; --id) {
            std::vector<DevicePoint> points{{0, 100}};
            while (points.back().x < width + 3) {
                const auto rise = static_cast<std::int32_t>(random() % reach) - static_cast<std::int32_t>(reach / 2);
                points.push_back({points.back().x + static_cast<std::int32_t>(random() % 2), points.back().y + rise});
                if (random() % 50 == 0) points.back().y = 100;
            }
            if (round == 0) points = {{0, 50 + id}, {width + 40, 50 + id}};
            canvas.Draw(points, id);
            const GdiPen pen(CreatePen(PS_SOLID, 0, ColorOf(colors[id - 1U])));
            const SelectScope select(expected.Handle(), pen.Get());
            Polyline(expected.Handle(), reinterpret_cast<const POINT*>(points.data()), static_cast<int>(points.size()));
        }
        GdiFlush();
        canvas.Compose(actualPixels, width, colors);
        for (int at = 0; at < width * height; ++at) {
            ASSERT_EQ(actualPixels[at] & 0xFFFFFF, expectedPixels[at] & 0xFFFFFF)
                << "round " << round << ", column " << at % width << ", row " << at / width;
        }
    }
}

/// What is in sight lies where the mapping of the system puts it; that counts in single precision, so that halves of
/// rows go either way.
TEST(ToPixels, EqualsTheMappingOfTheSystem) {
    constexpr std::int32_t height = 600;
    std::mt19937 random(3);
    cMemDC surface;
    ASSERT_TRUE(surface.CreatePixels(10, 10) != nullptr);
    const HDC dc = surface.Handle();
    SetMapMode(dc, MM_ANISOTROPIC);
    int seen = 0;
    for (int round = 0; round < 2000; ++round) {
        AmplitudeScale amplitude;
        amplitude.SetGraph(height, height / 2);
        amplitude.SelectScale(static_cast<int>(random() % AmplitudeScale::kScaleCount));
        const TraceGeometry geometry{.zeroRow = amplitude.ZeroRow(),
                                     .height = height,
                                     .unitsPerDivision = amplitude.UnitsPerDivision(),
                                     .samplesPerPixel = round % 2 == 0 ? 1 : 5};
        const double scale = std::pow(10.0, std::uniform_real_distribution<double>(-6, 4)(random));
        const TraceMapping mapping = MapTrace(geometry, static_cast<float>(round % 3 == 0 ? -scale : scale), 0.0F);
        std::vector<TracePoint> points;
        for (std::int32_t x = 0; x < 100; ++x)
            points.push_back({x, static_cast<std::int32_t>(random() % 65536) - 32768});
        std::vector<DevicePoint> pixels;
        ToPixels(mapping, points, pixels);
        SetWindowExtEx(dc, mapping.windowExtentX, mapping.windowExtentY, nullptr);
        SetViewportExtEx(dc, 1, mapping.viewportExtentY, nullptr);
        SetViewportOrgEx(dc, 0, mapping.viewportOriginY, nullptr);
        for (std::size_t at = 0; at < points.size(); ++at) {
            POINT expected{points[at].x, points[at].y - mapping.windowOriginY};
            LPtoDP(dc, &expected, 1);
            ASSERT_EQ(expected.x, pixels[at].x);
            const double code = points[at].y - mapping.windowOriginY;
            const double row = mapping.viewportOriginY + code * mapping.viewportExtentY / mapping.windowExtentY;
            if (row < 0 || row > height || std::fabs(row - std::floor(row) - 0.5) < 1e-4) continue;
            ++seen;
            ASSERT_EQ(expected.y, pixels[at].y) << code << ' ' << row;
        }
    }
    EXPECT_GT(seen, 10000);
}

}  // namespace
}  // namespace quillon
