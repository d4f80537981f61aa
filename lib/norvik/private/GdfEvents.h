#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/Bilingual.h"
#include "norvik/private/ByteSource.h"
#include "norvik/private/FileBlock.h"
#include "norvik/private/GdfHeader.h"

/// The event table of GDF files, which follows the last record.
namespace quillon {

struct GdfEvent {
    std::uint32_t position = 0;  ///< from 0, in samples at the table's rate
    std::uint32_t duration = 0;  ///< in the same
    std::uint16_t type = 0;
    std::uint16_t channel = 0;  ///< from 1; 0: of all channels
};

struct GdfEvents {
    double rate = 1.0;           ///< that positions count at, in Hz
    std::vector<GdfEvent> all;   ///< those to be shown, in order of position and, at one position, of the file
    std::vector<double> breaks;  ///< seconds, in order: where samples go on after a pause
    std::vector<Bilingual> notes;
};

/// Reads the table, where the file has one, and at most `most` events of it. Where the file ends inside it, the events
/// whose types are there are read. Never throws on account of the file.
[[nodiscard]] GdfEvents ReadGdfEvents(ByteSource& source, const GdfHeader& header, std::size_t most);

/// "left hand", "left hand end", "0x0123": a type of its own text never shares it with another.
[[nodiscard]] std::u16string GdfEventName(std::uint16_t type);

/// The marks that events make in `count` samples at `rate` from `first` on.
[[nodiscard]] std::vector<MarkDescription> GdfMarksWithin(const GdfEvents& events,
                                                          const std::vector<std::u16string>& labels, double rate,
                                                          std::uint64_t first, std::int32_t count);

}  // namespace quillon
