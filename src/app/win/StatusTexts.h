#pragma once

#include <exception>
#include <string>

#include "app/UnreadableSamples.h"
#include "app/win/RoomParts.h"
#include "app/win/StatusBar.h"

namespace quillon {

class GraphPane;
class SpectrogramPane;

/// What the status bar says of the block, the view and the sound.
class StatusTexts {
  public:
    /// All arguments must outlive this object.
    StatusTexts(const RoomParts& parts, StatusBar& status, const GraphPane& graph, const SpectrogramPane& spectrogram)
        : m_parts(parts), m_status(status), m_graph(graph), m_spectrogram(spectrogram) {}

    /// The panels that describe the block.
    void ShowPanels();
    /// The sample that is being played; 0: none.
    void ShowPosition(std::int32_t sample);
    /// Which samples cannot be read. `wholeView`: not only a part of the view was drawn anew.
    void TellUnreadable(bool wholeView);
    /// That a changed recording was loaded again, or could not be.
    void TellReload(bool loaded, const std::u16string& text);
    /// That there are lanes.
    void TellOfLanes();
    /// The block is closed: takes back what was told of it and its file.
    void BlockLeft();
    /// A command ended early (no memory, a failed library call).
    void Failed(const std::exception& error) noexcept;

  private:
    const RoomParts& m_parts;
    StatusBar& m_status;
    const GraphPane& m_graph;
    const SpectrogramPane& m_spectrogram;
    UnreadableSamples m_unreadable;
};

}  // namespace quillon
