#pragma once

#include <cstdint>
#include <functional>

#include "app/win/HoverCapture.h"
#include "app/win/LaneTitles.h"
#include "view/GraphGestures.h"
#include "view/win/PictureBox.h"

namespace quillon {

/// The mouse over graph and amplitude scale: which of its messages begin, go on with and end a gesture, read values out
/// or ask for a menu.
class GraphMouse {
  public:
    /// What it works on; all outlive it.
    struct Parts {
        const Document& document;
        WaveformView& view;
        const FormatOptions& format;
        HoverCapture& hover;
        GraphGestures& gestures;
        LaneTitles& titles;
        const PictureBox& graph;
        const PictureBox& scale;  ///< the amplitude scale
    };

    explicit GraphMouse(const Parts& parts) : m_parts(parts) {}

    // To be set by the owner.
    std::function<void(const ViewChange& change)> onChange;  ///< a gesture has changed the view
    std::function<void()> onSelection;                       ///< the selection may look otherwise
    std::function<void()> onSelectionStart;
    std::function<void()> onSelectionEnd;  ///< the selection may have been removed
    std::function<void(int x, int y)> onHover;
    std::function<HCURSOR()> onPointer;
    std::function<void(std::int16_t channel)> onChannel;             ///< chosen by a click into its lane
    std::function<void(POINT screen, std::int16_t channel)> onMenu;  ///< channel of the trace there, 0: none

    /// A mouse message of the graph; true when it was handled. Without samples only presses are.
    bool Graph(UINT message, WPARAM keys, const GraphPointer& pointer);
    /// A mouse message of the amplitude scale, which with lanes is the strip of their titles.
    bool ScaleY(UINT message, const GraphPointer& pointer);
    /// Begins a gesture in one of the two.
    void Press(HWND box, GraphButton button, GraphZone zone, const GraphPointer& pointer);
    void Drag(const GraphPointer& pointer);
    void Wheel(int delta, GraphZone zone, const GraphPointer& pointer);
    /// A timer of the window, by which the view scrolls while the pointer is held beside it.
    void OnTimer(UINT_PTR timer);

    [[nodiscard]] bool HasGesture() const { return m_parts.gestures.Current() != GraphGestures::Kind::None; }
    void EndGesture();
    /// Another command is about to use the selection: ends the gesture that changes it.
    void EndSelecting();

  private:
    bool GraphCapture(UINT message);
    void FinishSelection(const GraphPointer& pointer);
    void AskForMenu(const GraphPointer& pointer);
    void StopAutoScroll() const;
    [[nodiscard]] bool HasSamples() const { return m_parts.document.Block().sampleCount > 0; }

    Parts m_parts;
};

}  // namespace quillon
