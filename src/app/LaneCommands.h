#pragma once

#include <functional>

#include "app/WindowPlacement.h"
#include "data/Document.h"
#include "view/WaveformView.h"

namespace quillon {

/// The commands that turn lanes and their ways of drawing on and off. These and the page of their time axis are
/// remembered between runs.
class LaneCommands {
  public:
    /// All arguments must outlive this object.
    LaneCommands(Document& document, WaveformView& view, WindowPlacement& remembered)
        : m_document(document), m_view(view), m_remembered(remembered) {}

    // To be set by the owner.
    std::function<void(const ViewChange& change)> onChange;
    std::function<void()> onSignals;  ///< the document has other signals

    /// Takes what was remembered; at the start.
    void Restore();
    /// Keeps what the view has now; after every change, as going back to a previous view changes it too.
    void Remember();
    void ToggleLanes();
    /// Reading on has found other blocks of the stretch.
    void SignalsFound();
    /// Lanes of all signals; turns lanes on for them.
    void ToggleAllSignals();
    void ToggleNegativeUp();
    void ToggleClip();
    /// Whether the user should be told of lanes: once since the start, when a block is shown on one axis that lanes
    /// would make easier to read.
    [[nodiscard]] bool TakeHint();

  private:
    /// All signals are a matter of lanes: on one axis the document has those of the block.
    ViewChange ChooseSignals();

    Document& m_document;
    WaveformView& m_view;
    WindowPlacement& m_remembered;
    bool m_hinted = false;
};

}  // namespace quillon
