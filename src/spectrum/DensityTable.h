#pragma once

#include <cstddef>
#include <span>
#include <string>

#include "spectrum/SpectrumPlot.h"

/// Spectra as text: a line per frequency, the traces in columns between tabs.
namespace quillon {

/// "Hz", and of every trace its title and what its levels are: uV/sqrt(Hz), or decibels relative to one of it.
[[nodiscard]] std::u16string DensityHeading(std::span<const PlotTrace> traces, bool decibels);

/// Lines that a table has: as many as the longest spectrum has bins.
[[nodiscard]] std::size_t DensityLines(std::span<const PlotTrace> traces);

/// The frequency of a bin and the levels there, in the traces' own units. Traces of other frequencies than those before
/// them have a column of their own for these. A trace without power has empty cells.
[[nodiscard]] std::u16string DensityLine(std::span<const PlotTrace> traces, std::size_t bin, bool decibels,
                                         char16_t separator);

}  // namespace quillon
