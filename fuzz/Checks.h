#pragma once

#include <cstdint>
#include <span>

namespace quillon::fuzz {

/// Opens any bytes as a recording and asks every block everything: all ways of reading a range agree, and every answer
/// keeps what its contract promises. Throws BrokenPromise.
void CheckReaders(std::span<const std::uint8_t> bytes);

/// Does with a recording what its user does: exports it in every format and reads that back, draws traces, computes
/// spectra, reads values out. Throws BrokenPromise.
void CheckUses(std::span<const std::uint8_t> bytes);

}  // namespace quillon::fuzz
