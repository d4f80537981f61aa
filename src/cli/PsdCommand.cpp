#include "cli/PsdCommand.h"

#include <bit>
#include <cmath>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "base/Bilingual.h"
#include "base/Text.h"
#include "cli/CommandSupport.h"
#include "cli/Interrupt.h"
#include "spectrum/DensityTable.h"
#include "spectrum/Welch.h"

namespace quillon::cli {

namespace {

/// The number of a sample at which --from or --to lies.
std::int32_t SampleAt(const ParsedArguments& parsed, std::u16string_view name, const RecordingBlock& block,
                      std::int32_t otherwise, Language language) {
    if (!parsed.Has(name)) return otherwise;
    const double seconds = RealNumber(parsed.Value(name), name);
    const double sample = std::nearbyint(seconds * block.SampleRate());
    const std::int32_t samples = block.SampleCount();
    if (!(sample >= 0.0 && sample <= samples)) {
        throw Refusal(Say(u"%1 s lies outside the block (%2 s)", u"%1 с лежит вне блока (%2 с)",
                          {parsed.Value(name), ShortestDecimal(samples / block.SampleRate())})
                          .In(language));
    }
    return static_cast<std::int32_t>(sample);
}

SampleSpan FindSpan(const ParsedArguments& parsed, const RecordingBlock& block, Language language) {
    if (!(block.SampleRate() > 0.0))
        throw Refusal(Say(u"the block has no sampling rate", u"у блока нет частоты дискретизации").In(language));
    const std::int32_t first = SampleAt(parsed, u"--from", block, 0, language);
    const std::int32_t end = SampleAt(parsed, u"--to", block, block.SampleCount(), language);
    return {first, std::max(end - first, 0)};
}

WelchSettings SettingsOf(const ParsedArguments& parsed, std::int32_t samples) {
    WelchSettings settings;
    settings.window = static_cast<std::int16_t>(Choice(parsed, kPsdOptions, u"--window"));
    settings.length = static_cast<std::int32_t>(WholeOption(parsed, u"--length", UsualLength(samples),
                                                            WelchSettings::kLeastLength, WelchSettings::kMostLength));
    if (!std::has_single_bit(static_cast<std::uint32_t>(settings.length)))
        throw UsageError(u"'" + parsed.Value(u"--length") + u"' is no power of 2 for --length");
    return settings;
}

std::vector<PlotTrace> TracesOf(const RecordingBlock& block, std::vector<PowerDensity> densities) {
    std::vector<PlotTrace> traces(densities.size());
    for (std::size_t at = 0; at < traces.size(); ++at) {
        const std::int16_t channel = densities[at].channel;
        traces[at].title = block.ChannelTitle(channel);
        if (traces[at].title.empty()) traces[at].title = u"Ch" + Decimal(channel);
        traces[at].unit = block.ChannelUnit(channel);
        traces[at].density = std::move(densities[at]);
    }
    return traces;
}

void WriteTable(const CommandContext& context, const std::vector<PlotTrace>& traces, bool decibels) {
    const std::string_view lineEnd = context.target.IsStandard() ? context.lineEnd : "\r\n";
    std::string text = Utf8(DensityHeading(traces, decibels)).append(lineEnd);
    const std::size_t lines = DensityLines(traces);
    for (std::size_t line = 0; line < lines; ++line) {
        text.append(Utf8(DensityLine(traces, line, decibels, u'.'))).append(lineEnd);
        constexpr std::size_t piece = 1 << 16;
        if (text.size() < piece) continue;
        context.target.Write(text);
        text.clear();
    }
    context.target.Write(text);
}

}  // namespace

void RunPsd(const CommandContext& context) {
    const ParsedArguments& parsed = context.parsed;
    const Language language = context.language;
    const ShownRequest shown(parsed, language);
    const OpenFile file(parsed.words[1], language);
    const std::shared_ptr<RecordingBlock> block = shown.Show(FindBlock(
        file.Get(), parsed.Has(u"--block") ? WholeNumber(parsed.Value(u"--block"), u"--block") : 1, language));
    const std::vector<std::int16_t> channels = ChosenChannels(parsed, *block, language);
    const SampleSpan span = FindSpan(parsed, *block, language);
    const WelchSettings settings = SettingsOf(parsed, span.count);
    if (span.count < settings.length) {
        throw Refusal(Say(u"a range of %1 samples is shorter than a segment of %2",
                          u"диапазон из %1 отсчётов короче отрезка из %2",
                          {Decimal(span.count), Decimal(settings.length)})
                          .In(language));
    }
    block->Prepare();
    const InterruptScope interrupt;
    WelchPass pass(block, channels, span, settings);
    while (pass.Step()) {
        if (interrupt.IsAsked()) RefuseInterrupted(language);
    }
    const std::vector<PlotTrace> traces = TracesOf(*block, pass.Result());
    const auto lost =
        std::count_if(traces.begin(), traces.end(), [](const PlotTrace& trace) { return trace.density.power.empty(); });
    const std::u16string reason = Say(u"%1 of %2 channels cannot be read", u"каналов не читается: %1 из %2",
                                      {Decimal(lost), Decimal(static_cast<std::int64_t>(traces.size()))})
                                      .In(language);
    if (lost == static_cast<std::ptrdiff_t>(traces.size())) throw Refusal(reason);
    WriteTable(context, traces, parsed.Has(u"--db"));
    if (lost > 0) context.error << "quillon-cli: " << Utf8(parsed.words[1]) << ": " << Utf8(reason) << '\n';
}

}  // namespace quillon::cli
