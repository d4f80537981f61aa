#pragma once

#include <string>

namespace quillon {

/// The message in the panel "Status" and its lifetime: until another message replaces it, or until its topic is no
/// longer current.
class StatusMessage {
  public:
    /// Topic of a message.
    enum class Topic {
        Outcome,     ///< result of a command; kept until the next message
        Progress,    ///< work behind what is shown
        Sound,       ///< playback position, or why nothing is played
        Unreadable,  ///< samples that cannot be read
        Reload,      ///< the file of the recording has changed
        Refusal,     ///< the selected file is no recording
        Choice,      ///< why signals are not shown as was chosen; until they are
        Hint,        ///< of something that helps with what is shown
        Folder       ///< the folder, or the open file in it, is gone or cannot be listed
    };

    void Tell(Topic topic, const std::u16string& text) {
        m_topic = topic;
        m_text = text;
    }
    /// Sets the message unless one of another topic is shown; returns whether it is shown now.
    bool Offer(Topic topic, const std::u16string& text) {
        if (!m_text.empty() && m_topic != topic) return false;
        Tell(topic, text);
        return true;
    }
    /// Clears the message if it belongs to this topic; returns whether it did.
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
