#pragma once

#include <cstddef>

#include "nsp/FilterDesign.h"

/// What FilterBank runs on, compiled for two and for four doubles at a time.
namespace quillon::nsp {

struct Doubles2;
struct Doubles4;

/// Most vectors that are run together. With two sections they are four chains of operations, which hide each other's
/// latency; more do not fit the registers and were slower.
inline constexpr std::size_t kMostVectors = 2;

/// Replaces `count` times `vectors` (1 or 2) vectors of samples in `work`, one time after the other, by what the
/// sections make of them. `states` has two rows of `vectors` vectors for every section.
template <typename Doubles>
void RunSections(const FilterSection* sections, std::size_t sectionCount, std::size_t vectors, double* states,
                 double* work, std::size_t count);

}  // namespace quillon::nsp
