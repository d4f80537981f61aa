#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/Bilingual.h"
#include "norvik/private/ByteSource.h"

/// The header of EDF and EDF+ (16-bit samples) and of BDF and BDF+ (24-bit samples) files.
namespace quillon {

/// One signal of the file; every record holds `samplesPerRecord` samples of it in a row.
struct EdfSignal {
    std::u16string label;
    std::u16string unit;
    /// value = sample x unitsPerSample + unitsOffset; 1 and 0 where the header's limits give no usable scale.
    double unitsPerSample = 1.0;
    double unitsOffset = 0.0;
    std::uint64_t samplesPerRecord = 0;
    std::uint64_t offset = 0;     ///< of its first sample inside a record, in bytes
    std::uint64_t partBytes = 0;  ///< bytes of it in every record
};

struct EdfHeader {
    std::u16string format;  ///< "EDF", "EDF+C", "BDF+D", ...
    bool discontinuous = false;
    std::u16string deviceName;
    std::u16string blockName;
    double startDate = 0.0;  ///< automation date of onset 0; 0 when the header has no readable date
    double recordSeconds = 0.0;
    std::uint64_t records = 0;  ///< whole records that are there, at least 1
    /// Of every signal, as our own writer tells it where the last record is filled: "Startdate ... Samples:1000".
    std::optional<std::uint64_t> samplesTold;
    std::uint64_t dataStart = 0;  ///< byte of the first record
    std::uint64_t recordBytes = 0;
    std::uint64_t sampleBytes = 2;       ///< 2 or 3
    std::vector<EdfSignal> signals;      ///< ordinary signals; none in a file of annotations only
    std::vector<EdfSignal> annotations;  ///< signals that hold annotations instead of samples
    std::vector<Bilingual> notes;        ///< oddities that do not keep the file from being read
};

/// Tells by the version field; `start` are the first bytes of the file.
[[nodiscard]] bool LooksLikeEdf(std::span<const std::uint8_t> start);

/// Reads and checks the header. Throws FormatError where the file cannot be read as EDF or BDF, ReadError when the
/// device fails. Nothing is allocated by a number of the header unless the file is long enough to back it.
[[nodiscard]] EdfHeader ReadEdfHeader(ByteSource& source);

/// A number of a header field: blanks around it, a leading plus and a decimal comma are accepted. Finite.
[[nodiscard]] std::optional<double> ParseEdfNumber(std::string_view field);

/// The number without an exponent where it is whole, else its shortest decimal form.
[[nodiscard]] std::u16string PlainNumber(double number);

}  // namespace quillon
