#include "view/GraphColors.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <random>
#include <set>

#include "support/FakeRecording.h"
#include "view/GraphPicture.h"
#include "view/ReadableColor.h"

namespace quillon {
namespace {

using namespace ::quillon::testing;

using Triple = std::array<double, 3>;

/// Linear light of a colour, as someone without one kind of cones sees it (Machado, Oliveira and Fernandes 2009).
Triple SeenBy(std::uint32_t color, const std::array<Triple, 3>& eyes) {
    Triple linear{};
    for (std::size_t part = 0; part < 3; ++part) {
        const double value = static_cast<double>(color >> (16 - 8 * part) & 0xFF) / 255;
        linear[part] = value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    }
    Triple seen{};
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t part = 0; part < 3; ++part) seen[row] += eyes[row][part] * linear[part];
        seen[row] = std::clamp(seen[row], 0.0, 1.0);
    }
    return seen;
}

/// CIE 1976 L*, a*, b* under daylight.
Triple Lab(const Triple& light) {
    const auto [red, green, blue] = light;
    const auto curve = [](double t) { return t > 0.008856 ? std::cbrt(t) : 7.787 * t + 16.0 / 116; };
    const double x = curve((0.4124 * red + 0.3576 * green + 0.1805 * blue) / 0.9505);
    const double y = curve(0.2126 * red + 0.7152 * green + 0.0722 * blue);
    const double z = curve((0.0193 * red + 0.1192 * green + 0.9505 * blue) / 1.089);
    return {116 * y - 16, 500 * (x - y), 200 * (y - z)};
}

double Difference(std::uint32_t first, std::uint32_t second, const std::array<Triple, 3>& eyes) {
    const Triple a = Lab(SeenBy(first, eyes));
    const Triple b = Lab(SeenBy(second, eyes));
    return std::hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]);
}

constexpr std::array<Triple, 3> kUsual{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
constexpr std::array<Triple, 3> kProtanope{
    {{0.152286, 1.052583, -0.204868}, {0.114503, 0.786281, 0.099216}, {-0.003882, -0.048116, 1.051998}}};
constexpr std::array<Triple, 3> kDeuteranope{
    {{0.367322, 0.860646, -0.227968}, {0.280085, 0.672501, 0.047413}, {-0.011820, 0.042940, 0.968881}}};

TEST(GraphColors, TracesAreSeenAndToldApart) {
    for (const GraphColors* colors : {&kLightColors, &kDarkColors}) {
        for (const std::uint32_t trace : colors->traces) {
            EXPECT_GE(Contrast(trace, colors->paper), 3) << std::hex << trace;
            EXPECT_GE(Contrast(trace, colors->selectedPaper.value_or(colors->paper)), 3) << std::hex << trace;
        }
        // Two units are hardly a difference beside each other; traces seldom are.
        const double least = colors == &kDarkColors ? 14.0 : 2.0;
        for (std::size_t a = 0; a < colors->traces.size(); ++a) {
            for (std::size_t b = 0; b < a; ++b) {
                for (const auto& eyes : {kUsual, kProtanope, kDeuteranope})
                    EXPECT_GE(Difference(colors->traces[a], colors->traces[b], eyes), least) << a << ' ' << b;
            }
        }
    }
}

TEST(GraphColors, TextsAreReadAndBandsAreSeen) {
    for (const GraphColors* colors : {&kLightColors, &kDarkColors}) {
        for (const std::uint32_t text : {colors->text, colors->faintText, colors->heading, colors->caption,
                                         colors->markText, colors->measure, colors->harmonic})
            EXPECT_GE(Contrast(text, colors->paper), 4.5) << std::hex << text;
        EXPECT_GE(Contrast(colors->scaleInk, colors->scaleFace), 4.5);
        for (const std::uint32_t line : {colors->plotEdge, colors->border})
            EXPECT_GE(Contrast(line, colors->paper), 3) << std::hex << line;
    }
    const StripColors& strip = *kDarkColors.strip;
    EXPECT_GE(Contrast(strip.text, strip.face), 7);
    EXPECT_GE(Contrast(strip.pointedText, strip.pointed), 7);
    EXPECT_GE(Contrast(strip.accent, strip.face), 3);
    for (const std::uint32_t trace : kDarkColors.traces) EXPECT_GE(Contrast(trace, strip.face), 3) << std::hex << trace;
    EXPECT_GE(Contrast(*kDarkColors.selectedPaper, kDarkColors.paper), 1.4);
    EXPECT_GE(Contrast(kDarkColors.markText, *kDarkColors.selectedPaper), 4.5);
}

/// A dark picture is the light one with every colour exchanged for its own.
TEST(GraphColors, NothingOfADarkPictureIsDrawnInLightColors) {
    constexpr std::int32_t width = 400, height = 300, channels = 6;
    auto noise = std::make_shared<FakeBlock>();
    std::mt19937 random(5);
    noise->samples.assign(channels, std::vector<std::int16_t>(30000));
    for (auto& channel : noise->samples)
        for (auto& code : channel) code = static_cast<std::int16_t>(random() % 100);
    ViewBlock block;
    block.block = noise;
    block.channelCount = channels;
    block.sampleCount = 30000;
    block.invScale.assign(channels, 1.0F);
    block.offsets.assign(channels, 0.0F);
    for (std::int16_t channel = 0; channel < channels; ++channel) block.channelNumbers.push_back(channel);
    for (std::int32_t at = 50; at < 30000; at += 300) block.marks.push_back({at, {}});
    TimeAxis axis;
    axis.SetBlock(block.sampleCount);
    axis.SetWidth(width);
    axis.SelectZoom(3);
    for (const bool single : {false, true}) {
        Lanes lanes(channels / 2);
        for (std::int32_t at = 0; at < channels / 2; ++at) {
            Lane& lane = lanes[static_cast<std::size_t>(at)];
            lane.top = at * 100;
            lane.height = 100;
            lane.zeroRow = lane.top + 60;
            lane.unitsPerDivision = 300.0;
            lane.single = single;
            lane.channels = {static_cast<std::int16_t>(at + 1)};
        }
        std::map<std::uint32_t, std::set<std::uint32_t>> exchanged;
        ExtremesCache extremes;
        std::vector<std::uint32_t> images[2];
        for (const bool dark : {false, true}) {
            const GraphColors& colors = dark ? kDarkColors : kLightColors;
            images[dark].resize(std::size_t{width} * height);
            GraphPicture picture;
            picture.SetPixels(images[dark].data(), width, height);
            picture.Draw({.block = block,
                          .axis = axis,
                          .lanes = lanes,
                          .extremes = extremes,
                          .gridStyle = GridStyle::Lines,
                          .gridColor = colors.Trace(1),
                          .look = {&colors, 1}});
        }
        for (std::size_t at = 0; at < images[0].size(); ++at) exchanged[images[0][at]].insert(images[1][at]);
        EXPECT_GE(exchanged.size(), 6U);
        for (const auto& [light, dark] : exchanged) {
            EXPECT_EQ(dark.size(), 1U) << std::hex << light;
            EXPECT_FALSE(exchanged.contains(*dark.begin())) << std::hex << light;
        }
    }
}

}  // namespace
}  // namespace quillon
