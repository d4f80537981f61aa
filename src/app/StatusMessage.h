#pragma once

#include <string>

namespace quillon {

/// What the panel "Status" says, and how long it stands: until something else is told, or until what it was told of is
/// over.
class StatusMessage {
  public:
    /// What a message is about.
    enum class Topic {
        Outcome,     ///< of a command; stands until the next message
        Sound,       ///< where it is, or why there is none
        Unreadable,  ///< samples that cannot be read
        Place,       ///< a place that was asked for and not understood
        Reload,      ///< the recording has changed
        Folder       ///< it cannot be listed
    };

    void Tell(Topic topic, const std::u16string& text) {
        m_topic = topic;
        m_text = text;
    }
    /// Tells it unless something of another topic stands; returns whether it does.
    bool Offer(Topic topic, const std::u16string& text) {
        if (!m_text.empty() && m_topic != topic) return false;
        Tell(topic, text);
        return true;
    }
    /// Takes back what was told of a topic, where it still stands; returns whether it did.
    bool Retract(Topic topic) {
        if (m_text.empty() || m_topic != topic) return false;
        m_text.clear();
        return true;
    }
    [[nodiscard]] const std::u16string& Text() const { return m_text; }

  private:
    Topic m_topic = Topic::Outcome;
    std::u16string m_text;
};

}  // namespace quillon
