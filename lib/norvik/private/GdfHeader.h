#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "base/Bilingual.h"
#include "norvik/private/ByteSource.h"
#include "norvik/private/SignalRecords.h"
#include "norvik/private/WideSamples.h"

/// The header of GDF files (A. Schloegl, "GDF - A general dataformat for biosignals"), versions 1 and 2.
namespace quillon {

/// One channel of samples; every record holds `samplesPerRecord` of them in a row.
struct GdfSignal {
    std::u16string label;
    std::u16string unit;
    LinearUnits units;
    std::uint64_t samplesPerRecord = 0;
    SampleKind kind = SampleKind::Int16;
    std::uint64_t offset = 0;  ///< of its first sample inside a record, in bytes
    std::size_t channel = 0;   ///< its ordinal among all channels, from 0
};

struct GdfHeader {
    std::u16string version;  ///< "2.10"
    int hundredths = 0;      ///< the version as a number: 210
    double startDate = 0.0;  ///< automation date; 0 when the header has no readable one
    /// Duration of a record in seconds, as a fraction: the rate of a signal is exact where its numbers are.
    double durationNumerator = 0.0;
    double durationDenominator = 1.0;
    std::uint64_t dataStart = 0;  ///< byte of the first record
    std::uint64_t recordBytes = 0;
    std::uint64_t records = 0;           ///< whole ones that are there, at least 1
    bool recordsStated = false;          ///< so that it is known what follows them
    std::vector<GdfSignal> signals;      ///< at least one
    std::vector<std::u16string> labels;  ///< of all channels, with those whose samples are events
    std::vector<Bilingual> notes;        ///< oddities that do not keep the file from being read

    [[nodiscard]] double Rate(std::uint64_t samplesPerRecord) const {
        return static_cast<double>(samplesPerRecord) * durationDenominator / durationNumerator;
    }
    [[nodiscard]] double RecordSeconds() const { return durationNumerator / durationDenominator; }
};

/// Tells by the first letters; `start` are the first bytes of the file.
[[nodiscard]] bool LooksLikeGdf(std::span<const std::uint8_t> start);

/// Reads and checks the header. Throws FormatError where the file cannot be read, ReadError when the device fails.
/// Nothing is allocated by a number of the header unless the file is long enough to back it.
[[nodiscard]] GdfHeader ReadGdfHeader(ByteSource& source);

}  // namespace quillon
