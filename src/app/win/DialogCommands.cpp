#include "app/win/DialogCommands.h"

#include <algorithm>

#include "app/StringIds.h"
#include "app/win/MainRooms.h"
#include "app/win/ViewDialogs.h"
#include "dialogs/win/dlgOptions.h"
#include "dialogs/win/dlgSplit.h"
#include "export/QL_Export.h"
#include "export/win/ImageCopy.h"
#include "view/PositionInput.h"
#include "view/win/GDI_Utils.h"

namespace quillon {

void DialogCommands::GoToPlace() {
    const std::int32_t present = SampleUnder(m_rooms.view.Axis(), 0);
    const std::optional<std::u16string> answer =
        AskForPlace(m_rooms.longCommand.Window(), PositionText(m_parts.document.Block(), present, u" ", m_parts.format),
                    m_parts.services);
    if (!answer || m_rooms.longCommand.IsGone() || m_parts.document.Block().sampleCount == 0) return;
    const std::optional<std::int32_t> sample =
        ParsePosition(*answer, m_parts.document.Block(), m_parts.format, present);
    if (!sample) {
        m_rooms.status.Tell(StatusBar::Topic::Place, *answer + u": " + m_parts.services.Text(IDS_PLACE_BAD));
        return;
    }
    m_rooms.status.Tell(StatusBar::Topic::Outcome, {});
    m_rooms.GoTo(*sample);
}

void DialogCommands::Statistics() {
    const ReadoutSource source{m_parts.document.Block(), m_parts.document.Slots(), m_parts.format,
                               m_rooms.view.RawCodes()};
    ShowStatistics(m_rooms.longCommand.Window(), source, m_rooms.view.Selected(), m_parts.services);
}

void DialogCommands::Options() {
    m_rooms.hover.End();
    Settings& settings = m_parts.settings;
    const OptionsCalls calls{
        [this](HWND, std::u16string& name) { return FastExportDialog(m_parts.saveDialog, m_parts.services, name); },
        [this](HWND) { m_rooms.onHelp(); }};
    dlgOptions dialog(m_parts.services, calls, m_parts.format, m_parts.document.Block().sampleRate);
    const std::optional<OptionChanges> changes =
        dialog.Show(m_rooms.longCommand.Window(), {settings.display, settings.text, settings.spectrum});
    if (!changes || m_rooms.longCommand.IsGone()) return;
    const bool codesBefore = m_rooms.view.RawCodes();
    m_parts.applySettings();
    // Codes and values have scales of their own.
    if (m_rooms.view.RawCodes() != codesBefore) m_rooms.graph.FitScales();
    if (changes->initSpectrogram) m_rooms.spectrogram.Prepare();
    if (changes->buildPalette) m_rooms.spectrogram.BuildPalette();
    if (changes->buildWindow) m_rooms.spectrogram.BuildWindow();
    if (changes->setOrder) m_rooms.spectrogram.SetOrder(settings.spectrum.order);
    if (changes->initSpectrogram) m_rooms.spectrogram.Spectrogram_Init(true);
    m_rooms.Refresh();
}

void DialogCommands::Split() {
    m_rooms.hover.End();
    if (m_rooms.playback.IsPlaying()) m_rooms.playback.Stop();
    m_rooms.RunBusy([&] {
        ShowSplitDialog(m_rooms.longCommand.Window(), {m_parts.document.Block().block, m_parts.document.File().fileName,
                                                       m_parts.settings.split, m_parts.exporter, m_parts.services,
                                                       m_parts.format.decimalSeparator, [this] { m_rooms.onHelp(); }});
    });
    // The folder watch does not report new subfolders.
    if (!m_rooms.longCommand.IsGone()) m_rooms.browser.FilesChanged();
}

void DialogCommands::CopyImage() {
    m_rooms.hover.End();
    // The playback line does not belong in a copied image.
    m_rooms.graph.ShowPlayLine(0);
    const bool hasSpectrogram = m_parts.settings.window.spectrogramShown;
    const ImageWindows windows{m_rooms.graph.ScaleY(), m_rooms.graph.Graph(),
                               hasSpectrogram ? m_rooms.spectrogram.Scale() : nullptr,
                               hasSpectrogram ? m_rooms.spectrogram.Picture() : nullptr, m_rooms.graph.ScaleX()};
    const TimeAxis& axis = m_rooms.view.Axis();
    const auto place = [&](std::int32_t column) {
        return PositionText(m_parts.document.Block(), SampleUnder(axis, column), u" ", m_parts.format);
    };
    const std::u16string caption = Narrow16(WindowText(m_rooms.longCommand.Window())) + u"    " + place(0) +
                                   u" \u2013 " + place(std::max(axis.Width() - 1, 0)) + u"    " +
                                   m_parts.services.DateAndTime(m_parts.document.Block().startTime);
    // The caption strip has the same height at any screen density.
    const GdiFont font = MakeFont(USER_DEFAULT_SCREEN_DPI);
    const bool done = ImageCopy(windows, font.Get(), caption, kClipboardTarget);
    m_rooms.graph.ShowPlayLine(m_rooms.playback.Position());
    m_rooms.status.Tell(StatusBar::Topic::Outcome, m_parts.services.Text(done ? IDS_COPIED : IDS_CLIPBOARD_FAILED));
}

}  // namespace quillon
