#pragma once

#include <deque>
#include <memory>
#include <vector>

#include "data/ShownSettings.h"
#include "norvik/NorvikCore.h"

namespace quillon {

/// The blocks that were made of stored ones for showing. The latest are kept, so that going to and fro between
/// settings gives the same blocks again, and what is known of them stays of use.
class ShownBlocks {
  public:
    using Block = std::shared_ptr<RecordingBlock>;
    /// The stored block as it is to be shown; itself where that is no other. `shown` tells of each channel whether it
    /// is shown.
    [[nodiscard]] Block Of(const Block& stored, const ShownSettings& settings, const std::vector<bool>& shown);
    /// The pairs of the montage; null where there are none.
    [[nodiscard]] Block PairsOf(const Block& stored, const ShownSettings& settings);
    /// Whether it is one of the blocks kept.
    [[nodiscard]] bool Keeps(const RecordingBlock* block) const;
    /// Scales have changed, or the recording is closed.
    void Forget() { m_made.clear(); }

  private:
    struct Made {
        Block stored;
        ShownSettings settings;
        std::vector<bool> shown;
        bool pairs = false;
        Block block;
    };
    template <typename Make>
    Block Find(Made wanted, const Make& make);

    std::deque<Made> m_made;  ///< the one used last is the first
};

}  // namespace quillon
