#pragma once

#include <cstddef>
#include <cstdint>
#include <map>

#include "nsp/CellFilter.h"

namespace quillon {

/// States of a filter at samples of a block, left behind by streams that passed there, so that a later stream need not
/// come the whole way from the start of its cell. Some MB of them are kept.
class FilterCheckpoints {
  public:
    FilterCheckpoints(const nsp::FilterDesign& design, std::size_t channels);

    /// The latest one at or before a sample; null where there is none.
    [[nodiscard]] const nsp::CellFilter* Before(std::int32_t sample) const;
    /// Keeps the state, unless one near by is known. Null is no state.
    void Pass(const nsp::CellFilter* state);
    /// Samples between two of them where all of the block has been passed.
    [[nodiscard]] std::int32_t Spacing() const { return m_spacing; }

  private:
    std::size_t m_most;                              ///< that are kept
    std::int32_t m_spacing;                          ///< each stretch of so many samples has one at most
    std::map<std::int32_t, nsp::CellFilter> m_kept;  ///< by the number of the stretch
};

}  // namespace quillon
