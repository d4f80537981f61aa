#include "app/win/DialogCommands.h"

#include <utility>

#include "app/Captions.h"
#include "app/LookCommands.h"
#include "app/ShownCommands.h"
#include "app/ShownTexts.h"
#include "app/StringIds.h"
#include "app/win/GraphPane.h"
#include "app/win/HoverCapture.h"
#include "app/win/LongCommand.h"
#include "app/win/SpectrogramPane.h"
#include "app/win/StatusBar.h"
#include "app/win/ViewDialogs.h"
#include "dialogs/win/dlgOptions.h"
#include "dialogs/win/dlgSplit.h"
#include "export/QL_Export.h"
#include "export/win/ImageCopy.h"
#include "view/win/GDI_Utils.h"

namespace quillon {

void DialogCommands::GoToPlace() {
    const TimeAxis& axis = m_shared.view.Axis();
    const std::int32_t present = SampleUnder(axis, 0);
    const std::shared_ptr<RecordingBlock> block = Block().block;
    const GoToTexts offered{
        PositionText(Block(), present, u" ", m_shared.format),
        axis.IsFree() ? PageCaption(axis.PageSeconds(), m_shared.format.decimalSeparator) : std::u16string()};
    const auto meaning = AskForPlace(m_parts.window.Window(), offered, m_shared.services, [&](const GoToTexts& typed) {
        return MeaningOf(typed, offered, Block(), m_shared.format, present);
    });
    if (!meaning || m_parts.window.IsGone() || Block().block != block) return;
    m_parts.status.Tell(StatusBar::Topic::Outcome, {});
    onGoTo(*meaning);
}

std::u16string DialogCommands::TextOfShown() const {
    return quillon::TextOfShown(m_shared.document, m_shared.language, m_shared.format.decimalSeparator);
}

void DialogCommands::Statistics() {
    const ReadoutSource source{Block(),
                               m_shared.document.Slots(),
                               m_shared.format,
                               m_shared.view.RawCodes(),
                               &m_shared.view.Extremes(),
                               m_shared.view.UsesLanes()};
    ShowStatistics(m_parts.window.Window(), source, m_shared.view.Selected(), TextOfShown(), m_shared.services,
                   onStatistics);
}

void DialogCommands::Options() {
    m_parts.hover.End();
    Settings& settings = m_shared.settings;
    const OptionsCalls calls{
        [this](HWND, std::u16string& name) { return FastExportDialog(m_shared.saveDialog, m_shared.services, name); },
        [this](HWND) { onHelp(L"options.html"); }};
    dlgOptions dialog(m_shared.services, calls, m_shared.format, Block().sampleRate);
    const std::optional<OptionChanges> changes =
        dialog.Show(m_parts.window.Window(), {settings.display, settings.text, settings.spectrum});
    if (!changes || m_parts.window.IsGone()) return;
    const bool codesBefore = m_shared.view.RawCodes();
    m_shared.applySettings();
    // Codes and values have scales of their own.
    if (m_shared.view.RawCodes() != codesBefore) m_parts.graph.FitScales();
    if (changes->initSpectrogram) m_parts.spectrogram.Prepare();
    if (changes->buildPalette) m_parts.spectrogram.BuildPalette();
    if (changes->buildWindow) m_parts.spectrogram.BuildWindow();
    if (changes->setOrder) m_parts.spectrogram.SetOrder(settings.spectrum.order);
    if (changes->initSpectrogram) m_parts.spectrogram.Spectrogram_Init(true);
    onRedraw();
}

void DialogCommands::Split() {
    m_parts.hover.End();
    if (m_shared.playback.IsPlaying()) m_shared.playback.Stop();
    onWork([&] {
        bool prepared = false;
        m_parts.window.RunPart([&] { prepared = onPrepare(); });
        if (!prepared) return;
        ShowSplitDialog(m_parts.window.Window(),
                        {Block().stored, m_shared.document.File().fileName, m_shared.settings.split, m_shared.exporter,
                         m_shared.services, m_shared.format.decimalSeparator, [this] { onHelp(L"export.html#split"); },
                         [this](const std::function<void()>& run) {
                             m_parts.window.RunPart(run);
                             return !m_parts.window.IsCloseAsked();
                         },
                         [this] { return m_parts.window.StayAlive(); }});
    });
    // The folder watch does not report new subfolders.
    if (!m_parts.window.IsGone()) onFiles();
}

void DialogCommands::NewMontage(ShownCommands& shown) {
    const std::shared_ptr<RecordingBlock> block = Block().block;
    const auto text = AskForMontage(m_parts.window.Window(), m_shared.services,
                                    [&](const std::u16string& typed) { return shown.RefusalOfMontage(typed); });
    if (text && !m_parts.window.IsGone() && Block().block == block) shown.AddMontage(*text);
}

void DialogCommands::ApplySpectrogram(const SpectrumSettings& chosen) {
    const SpectrumSettings before = std::exchange(m_shared.settings.spectrum, chosen);
    m_parts.spectrogram.SettingsChanged(before);
    onRedraw();
}

void DialogCommands::SetSpectrogram(const SpectrogramChoice& choice) {
    m_parts.hover.End();
    ApplySpectrogram(With(m_shared.settings.spectrum, choice));
}

void DialogCommands::SpectrogramLevels() {
    m_parts.hover.End();
    const auto chosen =
        AskForLevels(m_parts.window.Window(), m_shared.settings.spectrum, m_shared.services, m_shared.format);
    if (chosen && !m_parts.window.IsGone()) ApplySpectrogram(*chosen);
}

void DialogCommands::SpectrogramFrequency() {
    m_parts.hover.End();
    const auto highest = AskForFrequency(m_parts.window.Window(), m_shared.settings.spectrum.highestFrequency,
                                         m_shared.services, m_shared.format);
    if (highest && !m_parts.window.IsGone()) SetSpectrogram({SpectrogramField::Highest, *highest});
}

bool DialogCommands::CopyInLight(const ImageWindows& windows, HFONT font, const std::u16string& caption) {
    const bool isDark = m_shared.view.Look().colors != &kLightColors;
    const auto redraw = [&] {
        if (isDark) m_parts.graph.Refresh(0);
        while (isDark && m_parts.graph.IsIncomplete()) m_parts.graph.DrawMore();
    };
    bool done = false;
    {
        const LookScope light(m_shared.view, kLightColors);
        redraw();
        // The playback line does not belong in a copied image.
        m_parts.graph.ShowPlayLine(0);
        done = ImageCopy(windows, font, caption, kClipboardTarget);
    }
    redraw();
    return done;
}

void DialogCommands::CopyImage() {
    if (!onPictures()) return;
    m_parts.hover.End();
    const bool hasSpectrogram = m_shared.settings.window.spectrogramShown;
    const ImageWindows windows{m_parts.graph.ScaleY(),
                               m_parts.graph.Graph(),
                               hasSpectrogram ? m_parts.spectrogram.Scale() : nullptr,
                               hasSpectrogram ? m_parts.spectrogram.Picture() : nullptr,
                               m_parts.graph.ScaleX(),
                               m_shared.view.UsesLanes()};
    const std::u16string caption = ImageCaption(Narrow16(WindowText(m_parts.window.Window())), TextOfShown(), Block(),
                                                m_shared.view.Axis(), m_shared.format, m_shared.services);
    // The caption strip has the same height at any screen density.
    const GdiFont font = MakeFont(USER_DEFAULT_SCREEN_DPI);
    const bool done = CopyInLight(windows, font.Get(), caption);
    m_parts.graph.ShowPlayLine(m_shared.playback.Position());
    m_parts.status.Tell(StatusBar::Topic::Outcome, m_shared.services.Text(done ? IDS_COPIED : IDS_CLIPBOARD_FAILED));
}

void DialogCommands::About() {
    const std::wstring text =
        L"Quillon " + Wide(KVExport::Version()) + L"\n\n" + Wide(m_shared.services.Text(IDS_ABOUT_TEXT));
    MSGBOXPARAMSW box{};
    box.cbSize = sizeof box;
    box.hwndOwner = m_parts.window.Window();
    box.hInstance = GetModuleHandleW(nullptr);
    box.lpszText = text.c_str();
    box.lpszCaption = L"Quillon";
    box.dwStyle = MB_OK | MB_USERICON;
    box.lpszIcon = MAKEINTRESOURCEW(1);
    MessageBoxIndirectW(&box);
}

}  // namespace quillon
