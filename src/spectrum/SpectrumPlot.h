#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "base/Density.h"
#include "data/UnitGroups.h"
#include "spectrum/Peaks.h"
#include "spectrum/PlotAxis.h"
#include "spectrum/Welch.h"
#include "view/GraphPicture.h"
#include "view/TraceCanvas.h"

namespace quillon {

/// How levels are drawn: decibels, or unit/sqrt(Hz) on either scale.
enum class LevelScale { Decibels, Logarithmic, Linear };

struct PlotScales {
    bool logFrequency = false;
    LevelScale levels = LevelScale::Decibels;
    friend bool operator==(const PlotScales&, const PlotScales&) = default;
};

/// Part of the axis of frequencies, in Hz.
struct FrequencyBand {
    double low = 0.0;
    double high = 0.0;
    friend bool operator==(const FrequencyBand&, const FrequencyBand&) = default;
};

/// A spectrum to draw.
struct PlotTrace {
    PowerDensity density{};
    std::u16string title{};
    std::u16string unit{};    ///< of the channel
    std::int16_t number = 0;  ///< of the channel, which gives its colour
};

/// What a plot is made for; all of it outlives the plot.
struct PlotRequest {
    std::span<const PlotTrace> traces;  ///< those without power are not drawn
    PlotScales scales;
    std::int32_t width = 0;  ///< pixels
    std::int32_t height = 0;
    int dpi = 96;
    char16_t decimalSeparator = u'.';
    /// To be shown; none: all frequencies. Kept within these, and wide enough for some bins.
    std::optional<FrequencyBand> band{};
    std::function<TextSize(const std::u16string&)> sizeOf;  ///< in the font of the plot
};

/// A text with its left upper corner.
struct PlotText {
    std::u16string text{};
    std::int32_t x = 0;
    std::int32_t y = 0;
};

/// The vertical line of a harmonic.
struct HarmonicLine {
    PlotText label{};      ///< its multiple, at its column; without text where there is no room for it
    std::int32_t top = 0;  ///< its first row: below the label of another one that it would cross
};

/// "×2"
[[nodiscard]] std::u16string MultipleText(int multiple);

/// A mark of an axis: its column or row, and whether it has a text (and a line of the grid).
struct PlotMark {
    std::int32_t place = 0;
    bool major = false;
};

/// A plot of spectra with both axes, laid out in pixels.
///
/// Levels of the units that differ from the first trace's by a prefix only are told in the first one's; those of other
/// units in their own.
class SpectrumPlot {
  public:
    /// The part with the traces, whose edges belong to it.
    struct Area {
        std::int32_t left = 0, top = 0, right = 0, bottom = 0;
    };
    explicit SpectrumPlot(const PlotRequest& request);

    [[nodiscard]] const Area& Inside() const { return m_area; }
    /// The frequencies that are shown; none where these are all.
    [[nodiscard]] const std::optional<FrequencyBand>& Band() const { return m_band; }
    /// The frequencies from column to column, which may lie outside.
    [[nodiscard]] FrequencyBand Between(double first, double last) const;
    /// Those of a view with that part of the width (above 1: more) in which a column stays where it is.
    [[nodiscard]] FrequencyBand Zoomed(double part, std::int32_t column) const;
    /// Those of a view that is so many columns further right, at most as far as there are frequencies.
    [[nodiscard]] FrequencyBand Moved(double columns) const;
    [[nodiscard]] std::int32_t Middle() const { return (m_area.left + m_area.right) / 2; }
    [[nodiscard]] bool IsInside(const DevicePoint& point) const {
        return point.x >= m_area.left && point.x <= m_area.right;
    }
    [[nodiscard]] const std::vector<PlotMark>& Columns() const { return m_columns; }
    [[nodiscard]] const std::vector<PlotMark>& Rows() const { return m_rows; }
    /// Of both axes, their units included.
    [[nodiscard]] const std::vector<PlotText>& Texts() const { return m_texts; }
    /// The line of a trace: from column to column its lowest and its highest level where several bins share one. Empty
    /// for a trace without power.
    [[nodiscard]] std::vector<DevicePoint> Line(std::size_t trace) const;

    /// The bins of a trace in a column, at least the nearest one; from, to.
    [[nodiscard]] std::pair<std::size_t, std::size_t> BinsAt(std::size_t trace, std::int32_t column) const;
    /// The trace that passes nearest to a point; none without traces, and outside.
    [[nodiscard]] std::optional<std::size_t> TraceNear(std::int32_t x, std::int32_t y) const;
    /// "C3: 10.25 Hz, 3.1 uV/√Hz": the highest level of that trace in the column of a point; empty outside.
    [[nodiscard]] std::u16string Readout(std::int32_t x, std::int32_t y) const;
    /// A level of a trace with its unit.
    [[nodiscard]] std::u16string LevelText(std::size_t trace, double decibels) const;
    [[nodiscard]] std::u16string FrequencyText(double hertz) const;

    /// Where a peak of a trace lies.
    [[nodiscard]] DevicePoint PlaceOf(std::size_t trace, const SpectralPeak& peak) const;
    /// The peak whose mark is at a point.
    [[nodiscard]] std::optional<std::size_t> PeakAt(std::size_t trace, std::span<const SpectralPeak> peaks,
                                                    std::int32_t x, std::int32_t y) const;
    /// Of the harmonics that are inside.
    [[nodiscard]] std::vector<HarmonicLine> HarmonicLines(const Harmonics& harmonics) const;

  private:
    void MeasureLevels();
    void PlaceAxes();
    /// The frequencies to show, low and high.
    [[nodiscard]] FrequencyBand ChooseBand();
    [[nodiscard]] std::vector<AxisTick> FrequencyTicks(double unit) const;
    void AddFrequencies();
    void AddLevels(const std::vector<AxisTick>& ticks, const std::u16string& unit);
    /// That the level axis counts in, and the levels of one of it.
    [[nodiscard]] GroupUnit LevelUnit() const;
    [[nodiscard]] std::int32_t Scaled(int length) const { return ScaledTo(m_request.dpi, length); }
    /// Factor of a trace's amplitudes to those of the axis.
    [[nodiscard]] double FactorOf(const PlotTrace& trace) const;
    /// Of a power density in the trace's unit; as the axis counts it.
    [[nodiscard]] double LevelOf(const PlotTrace& trace, double power) const;
    [[nodiscard]] std::int32_t RowOf(double level) const;
    /// The highest bin of a trace in a column.
    [[nodiscard]] std::size_t HighestIn(std::size_t trace, std::int32_t column) const;

    PlotRequest m_request;
    UnitGroup m_group;          ///< of the first trace
    bool m_mixed = false;       ///< there are units of other groups
    double m_leastLevel = 0.0;  ///< as the axis counts
    double m_mostLevel = 0.0;
    double m_nyquist = 0.0;
    double m_binWidth = 0.0;
    std::optional<FrequencyBand> m_band;
    FrequencyBand m_all;
    Area m_area;
    PlotAxis m_frequencies;
    PlotAxis m_levels;
    std::vector<PlotMark> m_columns;
    std::vector<PlotMark> m_rows;
    std::vector<PlotText> m_texts;
};

}  // namespace quillon
