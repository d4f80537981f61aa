#include <optional>

#include "app/OptionSettings.h"
#include "app/win/frmQLMain.h"
#include "base/StringIds.h"
#include "dialogs/win/dlgOptions.h"
#include "dialogs/win/dlgSplit.h"
#include "export/QL_Export.h"

namespace quillon {

void frmQLMain::Options(int) {
    EndHover();
    Settings& settings = m_global.settings;
    OptionValues values = OptionsOf(settings);
    const OptionsCalls calls{
        [this](HWND, std::u16string& name) { return FastExportDialog(*m_global.saveDialog, m_services, name); },
        [this](HWND) { Help(0); }};
    dlgOptions dialog(m_services, calls, m_global.format, m_document.Block().sampleRate);
    const std::optional<OptionChanges> changes = dialog.Show(m_window, values);
    if (!changes || m_window == nullptr || m_closing) return;
    StoreOptions(values, settings);
    const bool codesBefore = m_view.RawCodes();
    ApplyDisplaySettings(m_global);
    // Codes and values have scales of their own.
    if (m_view.RawCodes() != codesBefore) FitUnlessLegible();
    if (changes->initSpectrogram) InitSpectrum();
    if (changes->buildPalette) m_fft.FFT_BuildPalette();
    if (changes->buildWindow) m_fft.FFT_BuildWindow();
    if (changes->setOrder) m_fft.FFT_SetOrder(settings.order);
    if (changes->initSpectrogram) Spectrogram_Init(true);
    Refresh();
}

void frmQLMain::Split(int) {
    EndHover();
    if (m_playback.IsPlaying()) StopSound();
    Settings& settings = m_global.settings;
    RunBusy([&] {
        ShowSplitDialog(m_window, {m_document.Block().block, m_document.File().fileName, settings, *m_global.exporter,
                                   m_services, m_global.format.decimalSeparator, [this] { Help(0); }});
    });
    // The folder that was made is not among what the watch tells.
    if (m_window != nullptr && !m_closing) FilesChanged();
}

}  // namespace quillon
