#pragma once

#include <cstdint>
#include <span>

#include "norvik/NorvikCore.h"

namespace quillon::fuzz {

/// The two extremes of codes by the plain loop: in their order, and of equal ones the maximum first.
[[nodiscard]] RunExtremes PlainExtremes(const std::int16_t* from, const std::int16_t* to);

/// All ways of reading samples first .. first+count-1 agree, and so do the extremes of runs. Throws CheckFailed.
void CheckRange(RecordingBlock& block, std::int32_t first, std::int32_t count, std::int32_t run);

/// Opens any bytes as a recording and calls every function of every block: all ways of reading a range agree, and every
/// result is what NorvikCore.h guarantees. Throws CheckFailed.
void CheckReaders(std::span<const std::uint8_t> bytes);

/// Does with a recording what its user does: exports it in every format and reads that back, draws traces, computes
/// spectra, reads values out. Throws CheckFailed.
void CheckUses(std::span<const std::uint8_t> bytes);

}  // namespace quillon::fuzz
