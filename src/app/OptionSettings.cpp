#include "app/OptionSettings.h"

namespace quillon {

namespace {

/// Calls `copy` with each pair of a setting and the dialog's value of it; one list serves both ways.
template <typename From, typename To, typename Copy>
void ForEachOption(From& settings, To& values, Copy copy) {
    copy(settings.timeFormat, values.timeFormat);
    copy(settings.timeIndex, values.timeIndex);
    copy(settings.scaleFormat, values.scaleFormat);
    copy(settings.unitScaling, values.unitScaling);
    copy(settings.digitsType, values.digitsType);
    copy(settings.digitsCount, values.digitsCount);
    copy(settings.gridColor, values.gridColor);
    copy(settings.gridStyle, values.gridStyle);
    copy(settings.waveformCursor, values.waveformCursor);
    copy(settings.exportXColumn, values.exportXColumn);
    copy(settings.exportXFormat, values.exportXFormat);
    copy(settings.exportRowHead, values.exportRowHead);
    copy(settings.exportRowSize, values.exportRowSize);
    copy(settings.exportRowRate, values.exportRowRate);
    copy(settings.exportRowStep, values.exportRowStep);
    copy(settings.exportFileType, values.exportFileType);
    copy(settings.exportChannels, values.exportChannels);
    copy(settings.exportFastFile, values.exportFastFile);
}

}  // namespace

OptionValues OptionsOf(const Settings& settings) {
    OptionValues values;
    ForEachOption(settings, values, [](const auto& setting, auto& value) { value = setting; });
    values.spectrum = settings;
    return values;
}

void StoreOptions(const OptionValues& values, Settings& settings) {
    ForEachOption(settings, values, [](auto& setting, const auto& value) { setting = value; });
    static_cast<SpectrumSettings&>(settings) = values.spectrum;
}

}  // namespace quillon
