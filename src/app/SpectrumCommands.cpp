#include "app/SpectrumCommands.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "app/ShownTexts.h"
#include "app/StringIds.h"
#include "app/ViewTables.h"
#include "base/Text.h"
#include "data/ChannelSelection.h"
#include "format/NumberText.h"
#include "spectrum/DensityTable.h"
#include "view/LaneSettings.h"
#include "view/QL_ChUtils.h"
#include "view/Readout.h"

namespace quillon {

namespace {

/// The samples of a block that cover the same time as those of another one of the stretch.
SampleSpan SameTime(const SampleSpan& samples, std::int32_t own, std::int32_t other) {
    const auto scaled = [&](std::int32_t sample) {
        return static_cast<std::int32_t>(std::int64_t{sample} * other / std::max(own, 1));
    };
    const std::int32_t first = scaled(samples.first);
    return {first, scaled(samples.End()) - first};
}

}  // namespace

std::vector<std::int16_t> SpectrumCommands::Signals() const {
    if (!m_view.UsesLanes()) return ShownChannels(m_document.Block(), m_document.Slots());
    std::vector<std::int16_t> signals = m_document.SignalOrder();
    std::erase_if(signals, [this](std::int16_t signal) { return !m_document.IsShown(signal); });
    return signals;
}

SpectrumCommands::Basis SpectrumCommands::Present() const {
    const ViewBlock& block = m_document.Block();
    Basis basis{block.block.get(), m_view.Axis().Visible(), Signals()};
    if (m_view.Selected().active) basis.samples = m_view.Selected().Samples();
    if (m_choices.signal == 0) return basis;
    // A signal that is no longer shown is of no interest.
    const auto found = std::find(basis.signals.begin(), basis.signals.end(), m_choices.signal);
    if (found != basis.signals.end()) basis.signals = {m_choices.signal};
    return basis;
}

bool SpectrumCommands::IsOutdated() const {
    return Present() != m_basis;
}

std::int32_t SpectrumCommands::Length() const {
    const std::int32_t wanted = m_choices.length == 0 ? UsualLength(m_basis.samples.count) : m_choices.length;
    return FittingLength(wanted, m_basis.samples.count).value_or(0);
}

void SpectrumCommands::Analyse() {
    Leave();
    m_basis = Present();
    m_shownAs = TextOfShown(m_document, m_language, m_format.decimalSeparator);
    const std::vector<LaneChannel> all = LaneChannelsOf(m_document, false);
    for (const std::int16_t number : m_basis.signals) {
        const LaneChannel& channel = all[static_cast<std::size_t>(number - 1)];
        PlotTrace& trace = m_traces.emplace_back();
        trace.title = channel.title;
        trace.unit = m_document.GetSignal(number).unit;
        trace.number = channel.number;
    }
    if (m_traces.empty()) {
        m_refusal = m_services.Text(IDS_NO_CHANNEL);
    } else if (!(m_document.Block().sampleRate > 0.0)) {
        m_refusal = m_services.Text(IDS_SPECTRUM_NO_RATE);
    } else if (Length() == 0) {
        m_refusal = FillPlaces(m_services.Text(IDS_SPECTRUM_SHORT), {Decimal(WelchSettings::kLeastLength)});
    } else {
        StartPasses();
    }
}

void SpectrumCommands::StartPasses() {
    const ViewBlock& own = m_document.Block();
    std::vector<std::pair<const ViewBlock*, std::vector<std::size_t>>> groups;
    for (std::size_t trace = 0; trace < m_traces.size(); ++trace) {
        const ViewBlock* const block = &m_document.GetSignal(m_basis.signals[trace]).block;
        auto group = std::find_if(groups.begin(), groups.end(), [&](const auto& one) { return one.first == block; });
        if (group == groups.end()) group = groups.insert(groups.end(), {block, {}});
        group->second.push_back(trace);
    }
    for (auto& [block, traces] : groups) {
        const SampleSpan samples = SameTime(m_basis.samples, own.sampleCount, block->sampleCount);
        const std::optional<std::int32_t> length = FittingLength(Length(), samples.count);
        if (!length) continue;
        std::vector<std::int16_t> channels;
        for (const std::size_t trace : traces) channels.push_back(m_document.GetSignal(m_basis.signals[trace]).channel);
        Running& running = m_passes.emplace_back();
        running.pass =
            std::make_unique<WelchPass>(block->block, channels, samples, WelchSettings{m_choices.window, *length});
        running.traces = std::move(traces);
    }
    onWork([this] { return Step(); }, [this] { return Share(); });
}

bool SpectrumCommands::Step() {
    const auto next =
        std::find_if(m_passes.begin(), m_passes.end(), [](const Running& one) { return !one.pass->IsDone(); });
    if (next == m_passes.end()) return false;
    return next->pass->Step() || next + 1 != m_passes.end();
}

double SpectrumCommands::Share() const {
    double share = 0.0;
    for (const Running& one : m_passes) share += one.pass->Share();
    return m_passes.empty() ? 1.0 : share / static_cast<double>(m_passes.size());
}

bool SpectrumCommands::Update() {
    // A pass that the user has stopped stays where it was.
    if (m_passes.empty() || std::exchange(m_taken, Share()) == Share()) return false;
    bool done = true;
    for (const Running& one : m_passes) {
        std::vector<PowerDensity> found = one.pass->Result();
        for (std::size_t at = 0; at < found.size(); ++at) m_traces[one.traces[at]].density = std::move(found[at]);
        done = done && one.pass->IsDone();
    }
    if (done) m_passes.clear();
    const bool none = std::all_of(m_traces.begin(), m_traces.end(),
                                  [](const PlotTrace& trace) { return trace.density.power.empty(); });
    if (done && none) m_refusal = m_services.Text(IDS_SPECTRUM_UNREADABLE);
    FindPeaksAnew();
    return true;
}

bool SpectrumCommands::SetChoices(const SpectrumChoices& choices) {
    SpectrumChoices before = std::exchange(m_choices, choices);
    before.scales = choices.scales;
    return before != choices;
}

void SpectrumCommands::Leave() {
    if (!m_passes.empty()) onWorkEnd();
    m_passes.clear();
    m_taken = 0.0;
    m_traces.clear();
    m_refusal.clear();
    m_basis = {};
    m_peaks.clear();
    m_peak.reset();
    m_harmonics = {};
}

std::u16string SpectrumCommands::TitleOf(std::int16_t signal) const {
    const std::vector<LaneChannel> all = LaneChannelsOf(m_document, false);
    return all[static_cast<std::size_t>(signal - 1)].title;
}

std::vector<std::int32_t> SpectrumCommands::Lengths() const {
    std::vector<std::int32_t> lengths{0};
    for (std::int32_t length = WelchSettings::kLeastLength;
         length <= std::min(m_basis.samples.count, WelchSettings::kMostLength); length *= 2)
        lengths.push_back(length);
    return lengths;
}

std::u16string SpectrumCommands::LengthText(std::int32_t length) const {
    if (length == 0) return m_services.Text(IDS_SPECTRUM_AUTO_LENGTH);
    const double width = m_document.Block().sampleRate / length;
    constexpr int digits = 3;
    const double rounded = RoundToPlaces(width, std::max(digits - 1 - DecimalExponent(width), 0));
    return Decimal(length) + u" (" + NumberText(rounded, m_format.decimalSeparator) + u" Hz)";
}

std::u16string SpectrumCommands::Title() const {
    const std::u16string title = PlainCaption(m_services.Text(IDS_SPECTRUM));
    return m_shownAs.empty() ? title : title + u" - " + m_shownAs;
}

std::u16string SpectrumCommands::Heading() const {
    if (m_basis.samples.count < 1) return {};
    std::u16string text = RangeText(m_document.Block(), m_basis.samples, m_format, m_services);
    const std::int32_t length = Length();
    if (!m_refusal.empty() || length == 0) return text;
    const std::int32_t segments = m_basis.samples.count / (length / 2) - 1;
    return text + u", " + FillPlaces(m_services.Text(IDS_SPECTRUM_SEGMENTS), {Decimal(segments), LengthText(length)});
}

void SpectrumCommands::ListPeaksOf(std::size_t trace) {
    if (trace == m_peakTrace || trace >= m_traces.size()) return;
    m_peakTrace = trace;
    m_peak.reset();
    FindPeaksAnew();
}

void SpectrumCommands::FindPeaksAnew() {
    if (m_peakTrace >= m_traces.size()) m_peakTrace = 0;
    m_peaks.clear();
    if (!m_traces.empty()) m_peaks = FindPeaks(m_traces[m_peakTrace].density);
    if (!m_peak) return ChoosePeak(std::nullopt);
    // While more is averaged, a peak may move a little and in the list.
    const auto found = std::min_element(m_peaks.begin(), m_peaks.end(), [&](const auto& a, const auto& b) {
        return std::fabs(a.frequency - m_peakFrequency) < std::fabs(b.frequency - m_peakFrequency);
    });
    const bool same = found != m_peaks.end() &&
                      std::fabs(found->frequency - m_peakFrequency) <= 2.0 * m_traces[m_peakTrace].density.binWidth;
    ChoosePeak(same ? std::optional(static_cast<std::size_t>(found - m_peaks.begin())) : std::nullopt);
}

void SpectrumCommands::ChoosePeak(std::optional<std::size_t> peak) {
    m_peak = peak && *peak < m_peaks.size() ? peak : std::nullopt;
    m_harmonics = {};
    if (!m_peak) return;
    m_peakFrequency = m_peaks[*m_peak].frequency;
    m_harmonics = HarmonicsOf(m_traces[m_peakTrace].density, m_peakFrequency);
}

std::u16string SpectrumCommands::HarmonicsHeading(const SpectrumPlot& plot) const {
    if (!m_peak) return m_services.Text(IDS_SPECTRUM_NO_PEAK);
    if (m_harmonics.list.empty())
        return FillPlaces(m_services.Text(IDS_SPECTRUM_TOO_LOW), {plot.FrequencyText(m_peakFrequency)});
    const double percent = RoundToPlaces(m_harmonics.distortion * 100.0, 2);
    return FillPlaces(m_services.Text(IDS_SPECTRUM_HARMONICS),
                      {plot.FrequencyText(m_peakFrequency), NumberText(percent, m_format.decimalSeparator)});
}

std::u16string SpectrumCommands::TableText() const {
    const bool decibels = m_choices.scales.levels == LevelScale::Decibels;
    std::u16string text = DensityHeading(m_traces, decibels) + u"\r\n";
    const std::size_t lines = DensityLines(m_traces);
    for (std::size_t line = 0; line < lines; ++line)
        text += DensityLine(m_traces, line, decibels, m_format.decimalSeparator) + u"\r\n";
    return text;
}

}  // namespace quillon
