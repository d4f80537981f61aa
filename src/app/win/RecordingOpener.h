#pragma once

#include <functional>
#include <optional>
#include <string>

#include "app/LastPlace.h"
#include "app/win/RoomParts.h"

namespace quillon {

class BrowserPane;
class HoverCapture;
class LongCommand;
class StatusBar;

/// Opens recordings: from the lists, from the system's dialog, from the list of recent ones, and at the start the one
/// that was open last, at its place. Everything but the first goes through the lists.
class RecordingOpener {
  public:
    /// The rooms that it works with, and what all rooms share; all must outlive it.
    struct Parts {
        const RoomParts& shared;
        BrowserPane& browser;
        StatusBar& status;
        LongCommand& window;
        HoverCapture& hover;
    };
    explicit RecordingOpener(const Parts& parts) : m_parts(parts), m_shared(parts.shared) {}

    // To be set by the owner.
    std::function<void()> onLeave;  ///< the open recording is about to be closed
    /// The document has another recording, or none; the view to be restored, if any.
    std::function<void(const std::optional<WaveformView::State>& kept)> onChanged;

    /// Opens a file of the shown folder; an empty name closes the recording.
    void OpenFile(const std::wstring& name);
    /// Asks for a file and opens it.
    void Ask();
    void OpenRecent(int index);
    void ClearRecent();
    /// More of the recording is known: shows the last place where it waits for that. Returns whether it has.
    bool ShowAwaited();
    /// Remembers folder, recording and place for the next start.
    void Keep() const;

  private:
    [[nodiscard]] Settings& Kept() const { return m_shared.settings; }
    void StoreRecordings() const;
    /// The recording is open.
    void Opened(bool first);
    /// The view to begin with, unless reading on has to find the place first: the start is shown until then.
    [[nodiscard]] std::optional<WaveformView::State> Reached(const std::optional<LastPlace>& last);
    [[nodiscard]] bool IsAwaiting() const;

    Parts m_parts;
    const RoomParts& m_shared;
    bool m_first = true;                 ///< nothing was opened yet
    std::optional<LastPlace> m_awaited;  ///< that reading on has not reached
};

}  // namespace quillon
