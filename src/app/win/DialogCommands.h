#pragma once

#include <cstdint>
#include <functional>

#include "app/GoToInput.h"
#include "app/SpectrogramChoices.h"
#include "app/win/RoomParts.h"
#include "view/Statistics.h"

namespace quillon {

struct ImageWindows;
class GraphPane;
class HoverCapture;
class LongCommand;
class ShownCommands;
class SpectrogramPane;
class StatusBar;

/// Commands that open a dialog or combine data of several components.
class DialogCommands {
  public:
    /// The rooms that it works with, and what all rooms share; all must outlive it.
    struct Parts {
        const RoomParts& shared;
        GraphPane& graph;
        SpectrogramPane& spectrogram;
        HoverCapture& hover;
        StatusBar& status;
        LongCommand& window;
    };
    explicit DialogCommands(const Parts& parts) : m_parts(parts), m_shared(parts.shared) {}

    // To be set by the owner.
    std::function<void(const wchar_t* page)> onHelp;                ///< request for a page of the help
    std::function<void(const GoToMeaning& place)> onGoTo;           ///< request to show a place
    std::function<void()> onRedraw;                                 ///< the settings have changed
    std::function<void(const std::function<void()>& work)> onWork;  ///< runs work that no command may interrupt
    std::function<void(StatisticsPass* pass)> onStatistics;         ///< see ShowStatistics
    std::function<bool()> onPrepare;                                ///< see ExportCommands
    std::function<bool()> onPictures;                               ///< completes the pictures; false when it could not
    std::function<void()> onFiles;                                  ///< files may have been written

    void GoToPlace();
    void Statistics();
    void Options();
    void Split();
    /// Asks for a montage and shows it.
    void NewMontage(ShownCommands& shown);
    /// A choice of the spectrogram's menu, and those that are typed.
    void SetSpectrogram(const SpectrogramChoice& choice);
    void SpectrogramLevels();
    void SpectrogramFrequency();
    /// A picture of the view to the clipboard.
    void CopyImage();
    /// Name and version of the program.
    void About();

  private:
    /// A copied image is dark on white, whatever the window's graph is.
    [[nodiscard]] bool CopyInLight(const ImageWindows& windows, HFONT font, const std::u16string& caption);
    void ApplySpectrogram(const SpectrumSettings& chosen);
    [[nodiscard]] std::u16string TextOfShown() const;
    [[nodiscard]] const ViewBlock& Block() const { return m_shared.document.Block(); }

    Parts m_parts;
    const RoomParts& m_shared;
};

}  // namespace quillon
