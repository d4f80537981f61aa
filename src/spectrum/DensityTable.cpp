#include "spectrum/DensityTable.h"

#include <algorithm>
#include <cmath>

#include "format/NumberText.h"

namespace quillon {

namespace {

/// Whether a column of frequencies stands before that of a trace.
bool HasFrequencies(std::span<const PlotTrace> traces, std::size_t trace) {
    return trace == 0 || traces[trace].density.binWidth != traces[trace - 1].density.binWidth;
}

}  // namespace

std::u16string DensityHeading(std::span<const PlotTrace> traces, bool decibels) {
    std::u16string text;
    for (std::size_t at = 0; at < traces.size(); ++at) {
        if (HasFrequencies(traces, at)) text += at == 0 ? u"Hz" : u"\tHz";
        std::u16string title = traces[at].title;
        std::replace(title.begin(), title.end(), u'\t', u' ');
        text += u'\t' + title + (decibels ? u", dB re 1 " : u", ");
        text += (traces[at].unit.empty() ? u"1" : traces[at].unit) + u"/sqrt(Hz)";
    }
    return text;
}

std::size_t DensityLines(std::span<const PlotTrace> traces) {
    std::size_t lines = 0;
    for (const PlotTrace& trace : traces) lines = std::max(lines, trace.density.power.size());
    return lines;
}

std::u16string DensityLine(std::span<const PlotTrace> traces, std::size_t bin, bool decibels, char16_t separator) {
    std::u16string text;
    for (std::size_t at = 0; at < traces.size(); ++at) {
        const PowerDensity& density = traces[at].density;
        if (HasFrequencies(traces, at)) text += (at == 0 ? u"" : u"\t") + NumberText(density.Frequency(bin), separator);
        text += u'\t';
        if (bin >= density.power.size()) continue;
        const double power = density.power[bin];
        text += SingleNumberText(decibels ? DecibelsOf(power) : std::sqrt(power), separator);
    }
    return text;
}

}  // namespace quillon
