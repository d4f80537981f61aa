#include "dialogs/SplitChoices.h"

#include <cmath>
#include <type_traits>

#include "base/Text.h"
#include "format/NumberText.h"

namespace quillon {

namespace {

SplitEntry Parse(const std::u16string& typed, bool samples, const SplitSource& source) {
    return samples ? ParseSplitSamples(typed) : ParseSplitSeconds(typed, source.rate, source.decimalSeparator);
}

}  // namespace

SplitChoices ShowSplitSettings(const SplitSettings& settings, const SplitSource& source) {
    const auto seconds = [](float stored, float otherwise) {
        return stored > 0.0F && std::isfinite(stored) ? stored : otherwise;
    };
    const auto samples = [](std::int32_t stored, std::int32_t otherwise) { return stored > 0 ? stored : otherwise; };
    const auto text = [&](float number) { return SingleNumberText(number, source.decimalSeparator); };
    const auto firstSeconds = static_cast<float>(FirstSplitSize(kSplitSeconds, source.samples / source.rate));
    const float timeSize = seconds(settings.timeSize, firstSeconds);
    const float timeStep = seconds(settings.timeStep, timeSize);
    const std::int32_t size = samples(settings.samplesSize, FirstSplitSize(kSplitSamples, source.samples));
    const std::int32_t step = samples(settings.samplesStep, size);
    return {.bySamples = settings.type == 1,
            .size = {text(timeSize), Decimal(size)},
            .step = {text(timeStep), Decimal(step)},
            .sampleNames = settings.fileIndex == 1,
            .baseName = settings.baseName != 0};
}

void KeepSplitSettings(const SplitChoices& choices, const SplitSource& source, SplitSettings& settings) {
    settings.type = choices.bySamples ? 1 : 0;
    settings.fileIndex = choices.sampleNames ? 1 : 0;
    settings.baseName = choices.baseName ? 1 : 0;
    // Both modes are stored; entries of the one that is not selected may be invalid.
    const auto keep = [&](const std::u16string& typed, bool samples, auto& setting) {
        const SplitEntry entry = Parse(typed, samples, source);
        if (entry.fault == EntryFault::None)
            setting = static_cast<std::remove_reference_t<decltype(setting)>>(entry.number);
    };
    keep(choices.size[0], false, settings.timeSize);
    keep(choices.step[0], false, settings.timeStep);
    keep(choices.size[1], true, settings.samplesSize);
    keep(choices.step[1], true, settings.samplesStep);
}

SplitPlan MakeSplitPlan(const SplitChoices& choices, const SplitSource& source) {
    SplitPlan plan;
    plan.blockSamples = source.samples;
    const std::size_t mode = choices.bySamples ? 1 : 0;
    const SplitEntry size = Parse(choices.size[mode], choices.bySamples, source);
    const SplitEntry step = Parse(choices.step[mode], choices.bySamples, source);
    if (size.fault == EntryFault::None) plan.size = size.samples;
    if (step.fault == EntryFault::None) plan.step = step.samples;
    plan.sampleNames = choices.sampleNames;
    if (choices.baseName) plan.prefix = SplitBaseName(source.recording) + u'_';
    plan.extension = SplitExtension(source.recording);
    return plan;
}

std::optional<SplitFault> FindSplitFault(const SplitChoices& choices, const SplitSource& source) {
    const std::size_t mode = choices.bySamples ? 1 : 0;
    for (const bool step : {false, true}) {
        const std::u16string& typed = (step ? choices.step : choices.size)[mode];
        const EntryFault fault = Parse(typed, choices.bySamples, source).fault;
        if (fault != EntryFault::None) return SplitFault{step, fault, typed};
    }
    return std::nullopt;
}

}  // namespace quillon
