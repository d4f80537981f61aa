#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/Bilingual.h"

/// The header files of WFDB records (.hea): lines of text that name the files of samples, or other records that follow
/// each other (the format's public manual page "header").
namespace quillon {

struct WfdbSignal {
    std::size_t line = 0;     ///< of the header, from 1
    std::size_t ordinal = 0;  ///< among the signals with samples; in a segment, among those of the whole record
    std::string file;         ///< as it is written
    int format = 0;           ///< 0: there are no samples
    std::uint32_t samplesPerFrame = 1;
    std::int64_t skew = 0;     ///< samples by which it is stored later than the others
    std::uint64_t offset = 0;  ///< bytes of the file before the samples
    double gain = 200.0;       ///< codes per unit
    double baseline = 0.0;     ///< code of the value 0
    std::int32_t initial = 0;  ///< what the first difference of format 8 adds to
    std::u16string unit;
    std::u16string title;
};

/// A record that is a part of another one, or a gap between two.
struct WfdbSegment {
    std::string name;
    std::uint64_t frames = 0;
    [[nodiscard]] bool IsGap() const { return name == "~"; }
};

struct WfdbHeader {
    std::string name;
    /// The record consists of other ones, and has no signals of its own.
    bool isMaster = false;
    std::vector<WfdbSegment> segments;
    std::vector<WfdbSignal> signals;     ///< those with samples; those of one file have one format
    std::vector<std::u16string> titles;  ///< of all signals
    double rate = 250.0;                 ///< frames per second
    std::uint64_t frames = 0;            ///< 0: unknown
    std::optional<double> startTime;     ///< automation date, or the time of day alone
    std::u16string remark;               ///< what is written behind the signals, shortened
    std::vector<Bilingual> notes;        ///< oddities that do not keep the record from being read
};

/// Tells by the first two lines; `start` are the first bytes of the file.
[[nodiscard]] bool LooksLikeWfdb(std::span<const std::uint8_t> start);

/// Reads and checks the text of a header. Throws FormatError where the record cannot be read.
[[nodiscard]] WfdbHeader ParseWfdbHeader(std::string_view text);

}  // namespace quillon
