#include "spectrum/SpectrumPlot.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <random>
#include <set>

#include "spectrum/PlotDrag.h"

namespace quillon {
namespace {

TextSize SizeOfText(const std::u16string& text) {
    return {static_cast<std::int32_t>(7 * text.size()), 14};
}

PlotTrace Trace(std::size_t bins, double rate, unsigned seed, std::u16string unit = u"uV") {
    std::mt19937 random(seed);
    std::lognormal_distribution<double> levels(0.0, 3.0);
    PlotTrace trace{
        {1, rate / 2.0 / static_cast<double>(bins - 1), 5, std::vector<double>(bins)}, u"C3", std::move(unit)};
    for (double& power : trace.density.power) power = levels(random);
    return trace;
}

PlotRequest RequestOf(std::span<const PlotTrace> traces, const PlotScales& scales, std::int32_t width = 600) {
    return {.traces = traces, .scales = scales, .width = width, .height = 400, .sizeOf = SizeOfText};
}

constexpr PlotScales kScales[] = {{false, LevelScale::Decibels},    {true, LevelScale::Decibels},
                                  {false, LevelScale::Logarithmic}, {true, LevelScale::Logarithmic},
                                  {false, LevelScale::Linear},      {true, LevelScale::Linear}};

TEST(PlotAxis, MarksAreRoundInOrderAndApart) {
    std::mt19937 random(4);
    std::uniform_real_distribution<double> exponent(-9.0, 6.0);
    for (int round = 0; round < 4000; ++round) {
        const bool logarithmic = round % 2 == 0;
        const double first = std::pow(10.0, exponent(random));
        const double low = logarithmic ? first : first * (round % 3 - 1);
        const double high = low + std::pow(10.0, exponent(random)) + first / 100.0;
        const bool down = round % 4 < 2;
        const PlotAxis axis(low, high, logarithmic, down ? 500.0 : 20.0, down ? 20.0 : 500.0);
        double before = -1e9;
        int texts = 0;
        for (const AxisTick& tick : axis.Ticks(50.0, 1.0, u'.')) {
            ASSERT_NEAR(axis.ValueAt(tick.place), tick.value, 1e-6 * (high - low));
            ASSERT_TRUE(tick.place > 19.99 && tick.place < 500.01);
            if (tick.text.empty()) continue;
            ++texts;
            ASSERT_GE(std::fabs(tick.place - before), 49.99) << low << ' ' << high << ' ' << logarithmic;
            before = tick.place;
            ASSERT_LE(tick.text.size(), 14U) << low << ' ' << high;
        }
        ASSERT_GE(texts, 1) << low << ' ' << high << ' ' << logarithmic;
    }
    EXPECT_EQ(PlotAxis(0.0, 100.0, false, 0.0, 500.0).Ticks(60.0, 10.0, u',')[1].text, u"2");
    EXPECT_EQ(PlotAxis(0.1, 100.0, true, 0.0, 500.0).Ticks(60.0, 1.0, u',')[0].text, u"0,1");
}

TEST(SpectrumPlot, LinesHaveTheExtremesOfEveryColumn) {
    // More bins than columns, as many, and fewer.
    for (const std::size_t bins : {32769U, 600U, 129U}) {
        for (const PlotScales& scales : kScales) {
            const PlotTrace trace = Trace(bins, 256.0, 1);
            const SpectrumPlot plot(RequestOf({&trace, 1}, scales));
            const auto& area = plot.Inside();
            const auto& power = trace.density.power;
            const double low = scales.logFrequency ? trace.density.binWidth : 0.0;
            std::map<std::int32_t, std::pair<double, double>> expected;
            for (std::size_t bin = scales.logFrequency ? 1 : 0; bin < bins; ++bin) {
                const double f = trace.density.Frequency(bin);
                const double share = scales.logFrequency ? std::log(f / low) / std::log(128.0 / low) : f / 128.0;
                const double exact = area.left + share * (area.right - area.left);
                // A bin on the border of two columns may be in either.
                if (std::fabs(exact - std::floor(exact) - 0.5) < 1e-6) continue;
                const auto found =
                    expected.try_emplace(static_cast<std::int32_t>(std::nearbyint(exact)), power[bin], power[bin])
                        .first;
                found->second.first = std::min(found->second.first, power[bin]);
                found->second.second = std::max(found->second.second, power[bin]);
            }
            std::map<std::int32_t, std::set<std::int32_t>> rows;
            std::int32_t before = 0;
            for (const DevicePoint& point : plot.Line(0)) {
                ASSERT_GE(point.x, before);
                before = point.x;
                rows[point.x].insert(point.y);
                ASSERT_LE(rows[point.x].size(), 2U);
            }
            EXPECT_EQ(rows.begin()->first, area.left);
            EXPECT_EQ(rows.rbegin()->first, area.right);
            for (const auto& [column, range] : expected) {
                const auto place = [&](double level) { return plot.PlaceOf(0, {.decibels = DecibelsOf(level)}).y; };
                ASSERT_NEAR(*rows[column].begin(), place(range.second), 1) << bins << ' ' << column;
                ASSERT_NEAR(*rows[column].rbegin(), place(range.first), 1) << bins << ' ' << column;
            }
        }
    }
}

TEST(SpectrumPlot, EverythingIsInsideAndTextsDoNotOverlap) {
    for (const PlotScales& scales : kScales) {
        for (const double rate : {1.0, 256.0, 48000.0}) {
            for (const std::int32_t width : {300, 900}) {
                const PlotTrace traces[] = {Trace(513, rate, 1), Trace(513, rate, 2, u"mV")};
                const SpectrumPlot plot(RequestOf(traces, scales, width));
                const auto& texts = plot.Texts();
                EXPECT_GE(texts.size(), 6U);
                for (auto text = texts.begin(); text != texts.end(); ++text) {
                    const TextSize size = SizeOfText(text->text);
                    EXPECT_TRUE(text->x >= 0 && text->y >= 0 && text->x + size.width <= width &&
                                text->y + size.height <= 400)
                        << text->x << ' ' << text->y << ' ' << width << ' ' << rate;
                    for (auto other = texts.begin(); other != text; ++other) {
                        const bool apart = other->x + SizeOfText(other->text).width <= text->x ||
                                           text->x + size.width <= other->x || std::abs(other->y - text->y) >= 14;
                        EXPECT_TRUE(apart) << width << ' ' << rate << ' ' << text->x << ' ' << text->y;
                    }
                }
                for (const std::size_t trace : {0U, 1U}) {
                    const auto line = plot.Line(trace);
                    EXPECT_TRUE(std::any_of(line.begin(), line.end(), [&](const DevicePoint& point) {
                        return point.y >= plot.Inside().top && point.y <= plot.Inside().bottom;
                    }));
                }
            }
        }
    }
}

TEST(SpectrumPlot, AZoomedPlotIsACutOutOfTheWholeOne) {
    std::mt19937 random(6);
    const PlotTrace trace = Trace(2049, 1000.0, 1);
    for (int round = 0; round < 200; ++round) {
        PlotRequest request = RequestOf({&trace, 1}, kScales[static_cast<std::size_t>(round) % 6]);
        const double low = std::uniform_real_distribution<double>(-20.0, 520.0)(random);
        request.band = FrequencyBand{low, low + std::uniform_real_distribution<double>(0.0, 400.0)(random)};
        const SpectrumPlot plot(request);
        ASSERT_TRUE(plot.Band());
        const FrequencyBand band = *plot.Band();
        ASSERT_GE(band.high - band.low, 3.99 * trace.density.binWidth);
        const auto& area = plot.Inside();
        // Texts do not overlap, wherever their figures are long.
        std::int32_t end = -100;
        int figures = 0;
        for (const PlotText& text : plot.Texts()) {
            if (text.y <= area.bottom || text.text == u"Hz") continue;
            ASSERT_GE(text.x, end + 5) << round;
            end = text.x + SizeOfText(text.text).width;
            ++figures;
        }
        ASSERT_GE(figures, 1);
        // Between its ends the line goes through the very bins.
        const auto line = plot.Line(0);
        ASSERT_GE(line.size(), 4U);
        ASSERT_TRUE(line.front().x <= area.left + 1 && line.back().x >= area.right - 1);
        for (std::size_t bin = 1; bin < trace.density.power.size(); ++bin) {
            const SpectralPeak peak{trace.density.Frequency(bin), DecibelsOf(trace.density.power[bin]), 0.0};
            const DevicePoint place = plot.PlaceOf(0, peak);
            if (place.x <= area.left || place.x >= area.right || band.high - band.low > 60.0) continue;
            if (request.scales.logFrequency) continue;
            ASSERT_TRUE(std::any_of(line.begin(), line.end(),
                                    [&](const DevicePoint& point) {
                                        return std::abs(point.x - place.x) <= 1 && std::abs(point.y - place.y) <= 1;
                                    }))
                << round << ' ' << bin;
        }
        // A column stays where it is; what was gone over comes back; the ends are the ends.
        const double there = plot.Between(300, 301).low;
        PlotRequest nearer = request;
        nearer.band = plot.Zoomed(0.5, 300);
        const SpectrumPlot zoomed(nearer);
        const bool narrowest = zoomed.Band()->high - zoomed.Band()->low < 5.0 * trace.density.binWidth;
        ASSERT_TRUE(narrowest || std::fabs(zoomed.Between(300, 301).low - there) < 1e-6 * there);
        const FrequencyBand right = plot.Moved(1e6);
        ASSERT_NEAR(right.high, 500.0, 1e-6);
        const double widened = right.high - right.low - (band.high - band.low);
        ASSERT_TRUE(request.scales.logFrequency || std::fabs(widened) < 1e-6);
        ASSERT_FALSE(SpectrumPlot(RequestOf({&trace, 1}, request.scales)).Band());
    }
}

TEST(PlotDrag, APressBecomesADragAndStaysOne) {
    PlotDrag drag;
    EXPECT_FALSE(drag.Move(50, 5));
    drag.Press(10);
    EXPECT_FALSE(drag.Move(13, 5));
    EXPECT_FALSE(drag.Columns());
    EXPECT_TRUE(drag.Move(2, 5));
    EXPECT_TRUE(drag.Move(9, 5));
    EXPECT_EQ(drag.Columns(), std::pair(9, 10));
    drag.End();
    EXPECT_FALSE(drag.IsPressed() || drag.Columns());
}

TEST(SpectrumPlot, NothingIsDrawnOverTheLabelsOfHarmonics) {
    PlotTrace traces[] = {Trace(4097, 1000.0, 3)};
    Harmonics harmonics;
    for (int multiple = 1; multiple <= 40; ++multiple)
        harmonics.list.push_back({.multiple = multiple, .peak = {7.0 * multiple, 0.0, 0.0}});
    std::size_t texts = 0;
    for (const PlotScales& scales : kScales) {
        for (const std::int32_t width : {300, 600, 1500}) {
            const SpectrumPlot plot(RequestOf(traces, scales, width));
            const std::vector<HarmonicLine> lines = plot.HarmonicLines(harmonics);
            ASSERT_EQ(lines.size(), 40U);
            for (const auto& [label, top] : lines) {
                if (label.text.empty()) continue;
                ++texts;
                const TextSize size = SizeOfText(label.text);
                EXPECT_LE(label.x + size.width, plot.Inside().right);
                for (const HarmonicLine& other : lines) {
                    const bool isBeside = other.label.x <= label.x || other.label.x > label.x + size.width + 2;
                    EXPECT_TRUE(isBeside || (other.label.text.empty() && other.top >= label.y + size.height)) << width;
                }
            }
        }
    }
    EXPECT_GT(texts, 100U);
}

TEST(SpectrumPlot, PointersFindTracesPeaksAndValues) {
    PlotTrace traces[] = {Trace(257, 256.0, 1), Trace(257, 256.0, 1, u"mV")};
    for (PlotTrace& trace : traces) std::fill(trace.density.power.begin(), trace.density.power.end(), 1.0);
    traces[0].density.power[100] = 1e4;
    traces[1].title = u"C4";
    for (const PlotScales& scales : kScales) {
        const SpectrumPlot plot(RequestOf(traces, scales));
        const SpectralPeak peak{50.0, 40.0, 40.0};
        const DevicePoint place = plot.PlaceOf(0, peak);
        const bool decibels = scales.levels == LevelScale::Decibels;
        EXPECT_EQ(plot.Readout(place.x, place.y), decibels ? u"C3: 50 Hz, 40 dB" : u"C3: 50 Hz, 100 uV/\u221AHz");
        // A thousand times the first one's unit.
        const DevicePoint other = plot.PlaceOf(1, {50.0, 0.0, 0.0});
        EXPECT_EQ(plot.TraceNear(other.x, other.y), 1U);
        EXPECT_EQ(plot.Readout(other.x, other.y), decibels ? u"C4: 50 Hz, 60 dB" : u"C4: 50 Hz, 1 mV/\u221AHz");
        EXPECT_EQ(plot.PeakAt(0, {{{10.0, 0.0, 0.0}, peak}}, place.x + 3, place.y - 3), 1U);
        EXPECT_EQ(plot.PeakAt(0, {{peak}}, place.x + 30, place.y), std::nullopt);
        EXPECT_EQ(plot.Readout(0, place.y), u"");
        const auto lines = plot.HarmonicLines(HarmonicsOf(traces[0].density, 50.0));
        ASSERT_EQ(lines.size(), 2U);
        EXPECT_EQ(lines[0].label.x, place.x);
        EXPECT_EQ(lines[1].label.text, u"\u00D72");
    }
    traces[1].unit = u"mmHg";
    EXPECT_EQ(SpectrumPlot(RequestOf(traces, kScales[0])).Texts().back().text, u"dB (1/\u221AHz)");
    // Nothing to draw, or silence, is an empty plot.
    std::fill(traces[0].density.power.begin(), traces[0].density.power.end(), 0.0);
    traces[1].density.power.clear();
    for (const PlotScales& scales : kScales) {
        EXPECT_EQ(SpectrumPlot(RequestOf({}, scales)).TraceNear(100, 100), std::nullopt);
        const SpectrumPlot plot(RequestOf(traces, scales));
        EXPECT_TRUE(plot.Line(1).empty());
        for (const DevicePoint& point : plot.Line(0)) EXPECT_GE(point.y, plot.Inside().bottom);
    }
}

}  // namespace
}  // namespace quillon
