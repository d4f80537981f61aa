#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/DateTime.h"
#include "base/Language.h"
#include "base/SampleSpan.h"
#include "data/ShownSettings.h"
#include "norvik/NorvikCore.h"

/// What EDF+ files and the user are told of an export to EDF+ (Kemp and Olivan, "European data format 'plus'", 2003).
namespace quillon {

/// When a range begins.
struct EdfPlusStart {
    CivilTime time;         ///< the whole second
    double fraction = 0.0;  ///< of a second after it, to 100 ns
    bool known = true;      ///< else the first second that the format can tell stands for it
};

/// Start of the sample `first` (from 0). A block without a date stays without one.
[[nodiscard]] EdfPlusStart FindEdfPlusStart(const RecordingBlock& block, std::int32_t first);

/// "Startdate 04-APR-2011 X X X": the date alone, nothing of who, where and with what. Where the last record is filled,
/// the samples of every signal that are not fill: "... X X X Samples:1000".
[[nodiscard]] std::u16string EdfPlusRecordingField(const EdfPlusStart& start, std::int32_t samples, bool filled);

/// The title; one that would make readers take the signal for annotations is written otherwise.
[[nodiscard]] std::u16string EdfPlusLabel(std::u16string title);
/// The unit in ASCII: u for the micro sign and the Greek mu, Ohm, deg.
[[nodiscard]] std::u16string EdfPlusUnit(std::u16string_view unit);

/// How a channel of a shown block differs from the stored one.
struct EdfPlusShown {
    std::u16string prefiltering;  ///< "HP:0.5Hz LP:35Hz N:50Hz"; behind it an order other than 2, and "both ways"
    std::u16string reference;     ///< "Reference: average"; empty where none is subtracted or the title tells it
};
/// Of every channel of a block that is shown as the settings say. `averaged` tells of each whether it is part of an
/// average; empty: all are.
[[nodiscard]] std::vector<EdfPlusShown> DescribeShown(const RecordingBlock& block, ShownSettings settings,
                                                      std::vector<bool> averaged = {});

/// What would be written: "10.0 s from 00:01:00, 6 of 8 channels, EDF+".
[[nodiscard]] std::u16string EdfPlusSummary(const SampleSpan& range, double rate, std::size_t channels,
                                            std::size_t allChannels, Language language, char16_t separator = u'.');
/// Behind it, where the samples are shown otherwise than they are stored: ", as shown" or ", as stored".
[[nodiscard]] std::u16string EdfPlusSamples(bool asShown, Language language);

}  // namespace quillon
