#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace quillon {

/// A mark of an axis at a value; the text is empty for the small ones between.
struct AxisTick {
    double value = 0.0;
    double place = 0.0;  ///< pixel, not rounded
    std::u16string text{};
};

/// An axis of a plot: values from `low` to `high` on the pixels from `first` to `last`, which may run either way.
class PlotAxis {
  public:
    /// Widens an empty range; of a logarithmic axis `low` is above 0.
    PlotAxis(double low, double high, bool logarithmic, double first, double last);

    [[nodiscard]] double Low() const { return m_low; }
    [[nodiscard]] double High() const { return m_high; }
    /// Values below and above the range lie outside of the pixels; on a logarithmic axis those not above 0 lie at
    /// `first`.
    [[nodiscard]] double PlaceOf(double value) const;
    [[nodiscard]] double ValueAt(double place) const;

    /// Round marks in rising order, texts at least `spacing` pixels apart, counted in units of `unit`. Linear: steps of
    /// 1, 2 or 5 times a power of ten, all with texts. Logarithmic: the powers of ten, as many of 2 ... 9 between them
    /// as have room, and steps as of a linear axis where there is less than a decade.
    [[nodiscard]] std::vector<AxisTick> Ticks(double spacing, double unit, char16_t separator) const;

  private:
    [[nodiscard]] double Share(double value) const;
    void AddSteps(double step, std::vector<AxisTick>& ticks) const;
    void AddDecades(double spacing, std::vector<AxisTick>& ticks) const;

    double m_low;
    double m_high;
    bool m_logarithmic;
    double m_first;
    double m_last;
};

}  // namespace quillon
