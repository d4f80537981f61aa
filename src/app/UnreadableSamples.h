#pragma once

#include <string>

namespace quillon {

/// What was told of samples that cannot be read: those in view each time, those out of view once.
class UnreadableSamples {
  public:
    /// Whether the text is to be told now.
    [[nodiscard]] bool Found(const std::u16string& text, bool inView) {
        const bool tell = inView || text != m_told;
        m_told = text;
        return tell;
    }
    /// All that is seen could be read; whether something was told that is to be taken back.
    [[nodiscard]] bool Gone() {
        const bool told = !m_told.empty();
        m_told.clear();
        return told;
    }

  private:
    std::u16string m_told;
};

}  // namespace quillon
