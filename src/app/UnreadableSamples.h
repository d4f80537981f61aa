#pragma once

#include <string>

namespace quillon {

/// Decides when a message about unreadable samples is shown: for samples in view each time, for those out of view once.
class UnreadableSamples {
  public:
    /// Whether the text is to be shown now.
    [[nodiscard]] bool Found(const std::u16string& text, bool inView) {
        const bool tell = inView || text != m_told;
        m_told = text;
        return tell;
    }
    /// To be called when all visible samples could be read; returns whether a shown message has to be cleared.
    [[nodiscard]] bool Gone() {
        const bool told = !m_told.empty();
        m_told.clear();
        return told;
    }

  private:
    std::u16string m_told;
};

}  // namespace quillon
