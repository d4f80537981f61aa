#pragma once

#include <optional>
#include <string>

#include "data/UserServices.h"

namespace quillon {

/// Decides when a message about unreadable samples is shown: for samples in view each time, for those out of view once.
class UnreadableSamples {
  public:
    /// What is known after drawing; a reason is empty where all samples could be read.
    struct Facts {
        std::u16string fileName;  ///< without its folder
        std::string inView;       ///< why samples in view could not be read
        std::string inRanges;     ///< why the range of a channel leaves out samples
        bool wholeView;           ///< all of the view was drawn, not only a part that was scrolled into it
    };
    /// The message to show now; empty: the one shown before is to be cleared; none: nothing is to be done.
    [[nodiscard]] std::optional<std::u16string> Tell(const Facts& facts, const UserServices& services);

  private:
    std::u16string m_told;
};

}  // namespace quillon
