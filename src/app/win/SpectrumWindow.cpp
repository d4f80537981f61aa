#include "app/win/SpectrumWindow.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "app/win/MainControls.h"
#include "app/win/WindowPlace.h"
#include "base/Text.h"
#include "norvik/win/ClipboardWriter.h"

namespace quillon {

namespace {

constexpr const wchar_t* kClassName = L"QuillonSpectrum";
constexpr UINT_PTR kUpdate = 1;
constexpr UINT kUpdatePeriod = 100;  // ms
constexpr DWORD kLine = SS_NOPREFIX | SS_ENDELLIPSIS;

bool HasControl() {
    return GetKeyState(VK_CONTROL) < 0 && GetKeyState(VK_MENU) >= 0;
}

}  // namespace

SpectrumWindow::SpectrumWindow(const RoomParts& parts, BackgroundWork& work)
    : m_parts(parts),
      m_boxes(parts.services),
      m_lists(parts.services),
      m_spectra(parts.document, parts.view, parts.format, parts.services, parts.language),
      m_picture(m_spectra, parts.view, m_density) {
    m_spectra.onWork = [&work](const auto& step, const auto& share) { work.Analyse(step, share); };
    m_spectra.onWorkEnd = [&work] { work.EndAnalysis(); };
    m_picture.onClick = [this](std::int32_t x, std::int32_t y) { Click(x, y); };
    m_picture.onReadout = [this](const std::u16string& text) { text.empty() ? ShowNote() : ShowReadout(text); };
    m_picture.onFailed = [this](const std::exception& error) { onFailed(error); };
    m_spectra.SetChoices(parts.settings.spectrumWindow.Choices(parts.settings.spectrum.window));
}

void SpectrumWindow::Show(HWND owner) {
    int shown = SW_SHOW;
    if (m_window == nullptr) {
        RegisterFrame(kClassName, Procedure);
        m_density.Set(ScreenDpi());
        CreateWindowExW(0, kClassName, L"", WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, CW_USEDEFAULT, CW_USEDEFAULT,
                        m_density.Scaled(940), m_density.Scaled(560), owner, nullptr, GetModuleHandleW(nullptr), this);
        if (m_window == nullptr)
            throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), "spectrum");
        m_density.Set(DpiOf(m_window));
        ShowProgramIcon(m_window, m_density);
        CreateControls();
        RestoreWindowPlace(m_window, m_parts.settings.spectrumWindow.place, m_density, shown);
    }
    Analyse();
    ShowWindow(m_window, IsIconic(m_window) ? SW_RESTORE : shown);
    SetForegroundWindow(m_window);
    SetFocus(Of(kPeaks));
}

LRESULT CALLBACK SpectrumWindow::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCCREATE) {
        auto* made = static_cast<SpectrumWindow*>(reinterpret_cast<CREATESTRUCTW*>(lParam)->lpCreateParams);
        made->m_window = window;
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(made));
    }
    auto* own = reinterpret_cast<SpectrumWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (own == nullptr) return DefWindowProcW(window, message, wParam, lParam);
    try {
        return own->Handle(message, wParam, lParam);
    } catch (const std::exception& error) {
        own->onFailed(error);
        return 0;
    }
}

LRESULT SpectrumWindow::Handle(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_SIZE:
            if (wParam != SIZE_MINIMIZED) Arrange();
            return 0;
        case WM_GETMINMAXINFO:
            reinterpret_cast<MINMAXINFO*>(lParam)->ptMinTrackSize = {m_density.Scaled(520), m_density.Scaled(340)};
            return 0;
        case WM_TIMER:
            if (m_spectra.IsDone()) KillTimer(m_window, kUpdate);
            if (m_spectra.Update()) Redraw();
            return 0;
        case WM_NOTIFY: return OnNotify(reinterpret_cast<NMHDR*>(lParam));
        case WM_COMMAND:
            if (LOWORD(wParam) == IDCANCEL) DestroyWindow(m_window);
            if (LOWORD(wParam) == kRefresh) Analyse();
            if (HIWORD(wParam) == CBN_SELCHANGE) TakeChoices();
            return 0;
        case WM_DPICHANGED: OnDensity(LOWORD(wParam), *reinterpret_cast<const RECT*>(lParam)); return 0;
        case WM_SYSCOLORCHANGE: return PassColors(m_window), 0;
        case WM_DESTROY: KeepPlace(); return 0;
        case WM_NCDESTROY: {
            const HWND window = std::exchange(m_window, nullptr);
            SetWindowLongPtrW(window, GWLP_USERDATA, 0);
            m_picture.Reset();
            m_picture.ForgetBand();
            m_spectra.Leave();
            return DefWindowProcW(window, message, wParam, lParam);
        }
        default: return DefWindowProcW(m_window, message, wParam, lParam);
    }
}

HWND SpectrumWindow::Make(const wchar_t* className, DWORD style, DWORD extendedStyle, int id, int textId) {
    const std::wstring text = textId == 0 ? std::wstring() : Wide(Text(textId));
    const HWND control =
        CreateWindowExW(extendedStyle, className, text.c_str(), WS_CHILD | WS_VISIBLE | style, 0, 0, 0, 0, m_window,
                        reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), GetModuleHandleW(nullptr), nullptr);
    if (control == nullptr)
        throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), "spectrum");
    SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(m_density.Font()), FALSE);
    return control;
}

HWND SpectrumWindow::MakeList(int id) {
    constexpr DWORD style =
        WS_TABSTOP | LVS_REPORT | LVS_OWNERDATA | LVS_SINGLESEL | LVS_SHOWSELALWAYS | LVS_NOSORTHEADER;
    return Make(WC_LISTVIEWW, style, WS_EX_CLIENTEDGE, id, 0);
}

void SpectrumWindow::CreateControls() {
    std::array<HWND, kSpectrumBoxes> boxes{};
    for (std::size_t box = 0; box < kSpectrumBoxes; ++box) {
        const int at = static_cast<int>(box);
        // It gives the box its name and its key, too.
        Make(WC_STATICW, SS_LEFT, 0, kLabel + at, IDS_SPECTRUM_NAME_0 + at);
        boxes[box] = Make(WC_COMBOBOXW, WS_TABSTOP | WS_VSCROLL | CBS_DROPDOWNLIST, 0, kBox + at, 0);
    }
    m_boxes.Attach(boxes, m_density);
    Make(WC_STATICW, kLine, 0, kHeading, 0);
    if (!m_picture.Create(m_window, kPlot))
        throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), "spectrum");
    SetWindowTextW(m_picture.Window(), Wide(m_spectra.Title()).c_str());
    Make(WC_STATICW, kLine, 0, kPeaksTitle, 0);
    const HWND peaks = MakeList(kPeaks);
    Make(WC_STATICW, kLine, 0, kHarmonicsTitle, IDS_SPECTRUM_NO_PEAK);
    m_lists.Attach(peaks, MakeList(kHarmonics));
    Make(WC_STATICW, kLine, 0, kReadout, 0);
    Make(WC_BUTTONW, WS_TABSTOP | BS_PUSHBUTTON, 0, kRefresh, IDS_SPECTRUM_REFRESH);
}

void SpectrumWindow::OnDensity(int dpi, const RECT& place) {
    ChangeDensity(m_window, m_density, dpi);
    m_boxes.DensityChanged();
    SetWindowPos(m_window, nullptr, place.left, place.top, place.right - place.left, place.bottom - place.top,
                 SWP_NOZORDER | SWP_NOACTIVATE);
    Arrange();
}

// What is analysed.

void SpectrumWindow::Analyse() {
    m_left = false;
    m_file = m_parts.document.File().fileName;
    m_spectra.Analyse();
    m_picture.Reset();
    m_boxes.Fill(m_spectra);
    SetWindowTextW(m_window, Wide(m_spectra.Title()).c_str());
    SetWindowTextW(Of(kHeading), Wide(m_spectra.Heading()).c_str());
    SetTimer(m_window, kUpdate, kUpdatePeriod, nullptr);
    Arrange();
    ShowNote();
}

void SpectrumWindow::KeepPlace() {
    if (m_window != nullptr) KeepWindowPlace(m_window, m_density, m_parts.settings.spectrumWindow.place);
}

void SpectrumWindow::LeaveBlock() {
    if (m_window == nullptr) return;
    m_picture.Reset();
    m_spectra.Leave();
    m_left = true;
}

void SpectrumWindow::Follow() {
    // Without a selection the spectra stay those of the one that was there.
    if (m_window != nullptr && m_parts.view.Selected().active && m_spectra.IsOutdated()) Analyse();
}

void SpectrumWindow::Look() {
    if (m_window == nullptr) return;
    const ViewBlock& block = m_parts.document.Block();
    if (block.block == nullptr || m_parts.document.File().fileName != m_file) {
        DestroyWindow(m_window);
    } else if (m_left || m_spectra.IsOfOtherBlock()) {
        Analyse();
    } else {
        ShowNote();
    }
}

void SpectrumWindow::TakeChoices() {
    const SpectrumChoices chosen = m_boxes.Chosen();
    m_parts.settings.spectrumWindow.Remember(chosen);
    if (m_spectra.SetChoices(chosen)) return Analyse();
    Redraw();
}

// What is drawn.

void SpectrumWindow::Arrange() {
    RECT client{};
    GetClientRect(m_window, &client);
    SpectrumLayoutInput input;
    input.width = static_cast<std::int32_t>(client.right);
    input.height = static_cast<std::int32_t>(client.bottom);
    input.dpi = m_density.Dpi();
    input.textHeight = m_picture.SizeOf(u"0").height;
    input.boxHeight = std::max(m_boxes.Height(), input.textHeight);
    input.boxWidths = m_boxes.Widths();
    input.refreshWidth = m_picture.SizeOf(Text(IDS_SPECTRUM_REFRESH)).width + m_density.Scaled(28);
    input.listWidth = m_density.Scaled(280);
    const SpectrumLayout layout = ArrangeSpectrum(input);
    const auto move = [this](int id, const PixelRect& place, int more = 0) {
        MoveWindow(Of(id), place.left, place.top, place.width, place.height + more, TRUE);
    };
    // The height of a combo box is that of its open list.
    for (std::size_t box = 0; box < kSpectrumBoxes; ++box) {
        move(kLabel + static_cast<int>(box), layout.labels[box]);
        move(kBox + static_cast<int>(box), layout.boxes[box], m_density.Scaled(300));
    }
    const std::pair<int, PixelRect> places[] = {{kHeading, layout.heading},
                                                {kPlot, layout.plot},
                                                {kPeaksTitle, layout.peaksTitle},
                                                {kPeaks, layout.peaks},
                                                {kHarmonicsTitle, layout.harmonicsTitle},
                                                {kHarmonics, layout.harmonics},
                                                {kReadout, layout.readout},
                                                {kRefresh, layout.refresh}};
    for (const auto& [id, place] : places) move(id, place);
    m_lists.FitColumns(layout.peaks.width, m_density);
    Redraw();
}

void SpectrumWindow::Redraw() {
    m_picture.Draw(m_parts.format.decimalSeparator);
    FillLists();
}

void SpectrumWindow::FillLists() {
    const bool none = m_spectra.Traces().empty();
    const std::u16string title = none ? std::u16string() : m_spectra.Traces()[m_spectra.PeakTrace()].title;
    const bool noPeaks = !none && m_spectra.IsDone() && m_spectra.Peaks().empty();
    const std::u16string peaks = Text(noPeaks ? IDS_SPECTRUM_NO_PEAKS : IDS_SPECTRUM_PEAKS);
    SetWindowTextW(Of(kPeaksTitle), Wide(FillPlaces(peaks, {title})).c_str());
    SetWindowTextW(Of(kHarmonicsTitle), Wide(m_spectra.HarmonicsHeading(*m_picture.Plot())).c_str());
    m_lists.Fill(m_spectra, *m_picture.Plot(), m_parts.format.decimalSeparator);
}

// The pointer and the lists.

void SpectrumWindow::Click(std::int32_t x, std::int32_t y) {
    const SpectrumPlot& plot = *m_picture.Plot();
    auto peak = plot.PeakAt(m_spectra.PeakTrace(), m_spectra.Peaks(), x, y);
    if (!peak) {
        if (const auto trace = plot.TraceNear(x, y)) m_spectra.ListPeaksOf(*trace);
        peak = plot.PeakAt(m_spectra.PeakTrace(), m_spectra.Peaks(), x, y);
    }
    ChoosePeak(peak);
}

void SpectrumWindow::ChoosePeak(std::optional<std::size_t> peak) {
    m_spectra.ChoosePeak(peak);
    FillLists();
    m_picture.Invalidate();
}

LRESULT SpectrumWindow::OnNotify(NMHDR* header) {
    const auto id = static_cast<int>(header->idFrom);
    if (id != kPeaks && id != kHarmonics) return 0;
    if (header->code == LVN_GETDISPINFOW) m_lists.Tell(*reinterpret_cast<NMLVDISPINFOW*>(header));
    if (header->code != LVN_ITEMCHANGED || id != kPeaks || m_lists.IsFilling() || !m_picture.Plot()) return 0;
    ChoosePeak(m_lists.SelectedPeak());
    // What was chosen in the list is to be seen.
    if (const auto peak = m_spectra.ChosenPeak()) m_picture.ShowPeak(m_spectra.Peaks()[*peak]);
    return 0;
}

void SpectrumWindow::ShowReadout(const std::u16string& text) {
    if (std::exchange(m_readout, text) != text) SetWindowTextW(Of(kReadout), Wide(text).c_str());
}

void SpectrumWindow::ShowNote() {
    ShowReadout(m_spectra.IsOutdated() ? Text(IDS_SPECTRUM_OUTDATED) : std::u16string());
}

// Keys and the clipboard.

bool SpectrumWindow::Translate(MSG message) {
    if (m_window == nullptr || (message.hwnd != m_window && !IsChild(m_window, message.hwnd))) return false;
    if (m_picture.Translate(message)) return true;
    if (message.message == WM_KEYDOWN && message.wParam == VK_F1) return onHelp(L"spectrum.html#averaged"), true;
    if (message.message == WM_KEYDOWN && message.wParam == VK_F5) return Analyse(), true;
    if (message.message == WM_KEYDOWN && message.wParam == 'C' && HasControl()) {
        GetKeyState(VK_SHIFT) < 0 ? TellCopied(m_picture.Copy(m_spectra.Title() + u": " + m_spectra.Heading()))
                                  : CopyText();
        return true;
    }
    // Esc, which becomes IDCANCEL, and the keys that go from control to control.
    return IsDialogMessageW(m_window, &message) != FALSE;
}

void SpectrumWindow::CopyText() {
    const std::unique_ptr<TextSink> clipboard = MakeClipboardText();
    clipboard->Write(Utf8(m_spectra.TableText()));
    TellCopied(clipboard->Close());
}

}  // namespace quillon
