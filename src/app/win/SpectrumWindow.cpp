#include "app/win/SpectrumWindow.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "app/win/MainControls.h"
#include "app/win/SpectrumPainter.h"
#include "base/Text.h"
#include "export/win/ImageCopy.h"
#include "norvik/win/ClipboardWriter.h"
#include "view/win/GDI_Utils.h"
#include "view/win/cMemDC.h"

namespace quillon {

namespace {

constexpr const wchar_t* kClassName = L"QuillonSpectrum";
constexpr UINT_PTR kUpdate = 1;
constexpr UINT kUpdatePeriod = 100;  // ms
constexpr DWORD kLine = SS_NOPREFIX | SS_ENDELLIPSIS;

std::u16string DecibelsText(double decibels, char16_t separator) {
    return NumberText(RoundToPlaces(decibels, 1), separator) + u" dB";
}

bool HasControl() {
    return GetKeyState(VK_CONTROL) < 0 && GetKeyState(VK_MENU) >= 0;
}

}  // namespace

SpectrumWindow::SpectrumWindow(const RoomParts& parts, BackgroundWork& work)
    : m_parts(parts),
      m_boxes(parts.services),
      m_spectra(parts.document, parts.view, parts.format, parts.services, parts.language) {
    m_spectra.onWork = [&work](const auto& step, const auto& share) { work.Analyse(step, share); };
    m_spectra.onWorkEnd = [&work] { work.EndAnalysis(); };
    // As the spectrogram's, until another one is chosen.
    SpectrumChoices choices;
    choices.window = std::clamp<std::int16_t>(parts.settings.spectrum.window, 0, 3);
    m_spectra.SetChoices(choices);
}

void SpectrumWindow::Show(HWND owner) {
    if (m_window == nullptr) {
        RegisterFrame(kClassName, Procedure);
        m_dpi = ScreenDpi();
        m_font = MakeFont(m_dpi);
        CreateWindowExW(0, kClassName, L"", WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, CW_USEDEFAULT, CW_USEDEFAULT,
                        MulDiv(940, m_dpi, 96), MulDiv(560, m_dpi, 96), owner, nullptr, GetModuleHandleW(nullptr),
                        this);
        if (m_window == nullptr)
            throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), "spectrum");
        ShowProgramIcon(m_window);
        CreateControls();
    }
    Analyse();
    ShowWindow(m_window, IsIconic(m_window) ? SW_RESTORE : SW_SHOW);
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
            reinterpret_cast<MINMAXINFO*>(lParam)->ptMinTrackSize = {MulDiv(520, m_dpi, 96), MulDiv(340, m_dpi, 96)};
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
        case WM_SYSCOLORCHANGE: return PassColors(m_window), 0;
        case WM_NCDESTROY: {
            const HWND window = std::exchange(m_window, nullptr);
            SetWindowLongPtrW(window, GWLP_USERDATA, 0);
            m_plot.reset();
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
    SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(m_font.Get()), FALSE);
    return control;
}

void SpectrumWindow::MakeList(int id, int columns) {
    constexpr DWORD style =
        WS_TABSTOP | LVS_REPORT | LVS_OWNERDATA | LVS_SINGLESEL | LVS_SHOWSELALWAYS | LVS_NOSORTHEADER;
    const HWND list = Make(WC_LISTVIEWW, style, WS_EX_CLIENTEDGE, id, 0);
    ListView_SetExtendedListViewStyle(list, LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER);
    for (int at = 0; at < columns; ++at) {
        std::wstring caption = Wide(Text(IDS_SPECTRUM_COLUMN_0 + at));
        LVCOLUMNW column{};
        column.mask = LVCF_TEXT | LVCF_FMT;
        column.fmt = at == 0 ? LVCFMT_LEFT : LVCFMT_RIGHT;
        column.pszText = caption.data();
        SendPointer(list, LVM_INSERTCOLUMNW, static_cast<WPARAM>(at), &column);
    }
}

void SpectrumWindow::CreateControls() {
    std::array<HWND, kSpectrumBoxes> boxes{};
    for (std::size_t box = 0; box < kSpectrumBoxes; ++box) {
        // The name of a box is that of the label before it, which has no room of its own.
        Make(WC_STATICW, SS_NOPREFIX, 0, 0, IDS_SPECTRUM_NAME_0 + static_cast<int>(box));
        boxes[box] = Make(WC_COMBOBOXW, WS_TABSTOP | WS_VSCROLL | CBS_DROPDOWNLIST, 0, kBox + static_cast<int>(box), 0);
    }
    m_boxes.Attach(boxes, m_font.Get(), m_dpi);
    Make(WC_STATICW, kLine, 0, kHeading, 0);
    if (!m_picture.Create(m_window, kPlot, *this, false))
        throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), "spectrum");
    SetWindowTextW(m_picture.Window(), Wide(m_spectra.Title()).c_str());
    Make(WC_STATICW, kLine, 0, kPeaksTitle, 0);
    MakeList(kPeaks, 3);
    Make(WC_STATICW, kLine, 0, kHarmonicsTitle, IDS_SPECTRUM_NO_PEAK);
    MakeList(kHarmonics, 3);
    Make(WC_STATICW, kLine, 0, kReadout, 0);
    Make(WC_BUTTONW, WS_TABSTOP | BS_PUSHBUTTON, 0, kRefresh, IDS_SPECTRUM_REFRESH);
}

TextSize SpectrumWindow::SizeOf(const std::u16string& text) const {
    const WindowDC dc(m_window);
    const SelectScope font(dc.Get(), m_font.Get());
    const std::wstring wide = Wide(text);
    SIZE size{};
    GetTextExtentPoint32W(dc.Get(), wide.c_str(), static_cast<int>(wide.size()), &size);
    return {static_cast<std::int32_t>(size.cx), static_cast<std::int32_t>(size.cy)};
}

// What is analysed.

void SpectrumWindow::Analyse() {
    m_left = false;
    m_file = m_parts.document.File().fileName;
    m_spectra.Analyse();
    m_plot.reset();
    m_boxes.Fill(m_spectra);
    SetWindowTextW(m_window, Wide(m_spectra.Title()).c_str());
    SetWindowTextW(Of(kHeading), Wide(m_spectra.Heading()).c_str());
    SetTimer(m_window, kUpdate, kUpdatePeriod, nullptr);
    Arrange();
    ShowNote();
}

void SpectrumWindow::LeaveBlock() {
    if (m_window == nullptr) return;
    m_plot.reset();
    m_spectra.Leave();
    m_left = true;
}

void SpectrumWindow::Follow() {
    if (m_window != nullptr && m_spectra.IsOutdated()) Analyse();
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
    if (m_spectra.SetChoices(m_boxes.Chosen())) return Analyse();
    Redraw();
}

// What is drawn.

void SpectrumWindow::Arrange() {
    RECT client{};
    GetClientRect(m_window, &client);
    SpectrumLayoutInput input;
    input.width = static_cast<std::int32_t>(client.right);
    input.height = static_cast<std::int32_t>(client.bottom);
    input.dpi = m_dpi;
    input.textHeight = SizeOf(u"0").height;
    input.boxHeight = std::max(m_boxes.Height(), input.textHeight);
    input.boxWidths = m_boxes.Widths();
    input.refreshWidth = SizeOf(Text(IDS_SPECTRUM_REFRESH)).width + MulDiv(28, m_dpi, 96);
    input.listWidth = MulDiv(280, m_dpi, 96);
    const SpectrumLayout layout = ArrangeSpectrum(input);
    const auto move = [this](int id, const PixelRect& place, int more = 0) {
        MoveWindow(Of(id), place.left, place.top, place.width, place.height + more, TRUE);
    };
    // The height of a combo box is that of its open list.
    for (std::size_t box = 0; box < kSpectrumBoxes; ++box)
        move(kBox + static_cast<int>(box), layout.boxes[box], MulDiv(300, m_dpi, 96));
    const std::pair<int, PixelRect> places[] = {{kHeading, layout.heading},
                                                {kPlot, layout.plot},
                                                {kPeaksTitle, layout.peaksTitle},
                                                {kPeaks, layout.peaks},
                                                {kHarmonicsTitle, layout.harmonicsTitle},
                                                {kHarmonics, layout.harmonics},
                                                {kReadout, layout.readout},
                                                {kRefresh, layout.refresh}};
    for (const auto& [id, place] : places) move(id, place);
    // Beside the columns is room for a scroll bar, so that none is needed along them.
    const int width = layout.peaks.width - GetSystemMetrics(SM_CXVSCROLL) - 2 * GetSystemMetrics(SM_CXEDGE);
    for (const int list : {kPeaks, kHarmonics})
        for (int column = 0; column < 3; ++column) ListView_SetColumnWidth(Of(list), column, width / 3);
    Redraw();
}

void SpectrumWindow::Redraw() {
    RECT client{};
    GetClientRect(m_picture.Window(), &client);
    PlotRequest request;
    request.traces = m_spectra.Traces();
    request.scales = m_spectra.Choices().scales;
    request.width = static_cast<std::int32_t>(client.right);
    request.height = static_cast<std::int32_t>(client.bottom);
    request.dpi = m_dpi;
    request.decimalSeparator = m_parts.format.decimalSeparator;
    request.sizeOf = [this](const std::u16string& text) { return SizeOf(text); };
    m_plot.emplace(request);
    FillLists();
    m_picture.Invalidate();
}

void SpectrumWindow::FillLists() {
    const std::size_t trace = m_spectra.PeakTrace();
    const char16_t separator = m_parts.format.decimalSeparator;
    m_peakRows.clear();
    for (const SpectralPeak& peak : m_spectra.Peaks())
        m_peakRows.push_back({Wide(m_plot->FrequencyText(peak.frequency)),
                              Wide(m_plot->LevelText(trace, peak.decibels)),
                              Wide(DecibelsText(peak.above, separator))});
    m_harmonicRows.clear();
    for (const Harmonic& harmonic : m_spectra.HarmonicsOfPeak().list)
        m_harmonicRows.push_back({Wide(m_plot->FrequencyText(harmonic.peak.frequency)),
                                  Wide(m_plot->LevelText(trace, harmonic.peak.decibels)),
                                  Wide(DecibelsText(harmonic.peak.above, separator))});
    const std::u16string title = m_spectra.Traces().empty() ? std::u16string() : m_spectra.Traces()[trace].title;
    SetWindowTextW(Of(kPeaksTitle), Wide(FillPlaces(Text(IDS_SPECTRUM_PEAKS), {title})).c_str());
    SetWindowTextW(Of(kHarmonicsTitle), Wide(m_spectra.HarmonicsHeading(*m_plot)).c_str());
    m_filling = true;
    ListView_SetItemCountEx(Of(kPeaks), static_cast<int>(m_peakRows.size()), LVSICF_NOSCROLL);
    ListView_SetItemCountEx(Of(kHarmonics), static_cast<int>(m_harmonicRows.size()), LVSICF_NOSCROLL);
    ListView_SetItemState(Of(kPeaks), -1, 0, LVIS_SELECTED);
    if (const auto chosen = m_spectra.ChosenPeak())
        ListView_SetItemState(Of(kPeaks), static_cast<int>(*chosen), LVIS_SELECTED | LVIS_FOCUSED,
                              LVIS_SELECTED | LVIS_FOCUSED);
    m_filling = false;
    for (const int list : {kPeaks, kHarmonics}) InvalidateRect(Of(list), nullptr, FALSE);
}

void SpectrumWindow::PaintPicture(int, HDC dc, const RECT&) {
    RECT client{};
    GetClientRect(m_picture.Window(), &client);
    const SIZE size{client.right, client.bottom};
    cMemDC canvas;
    if (!m_plot || !canvas.CreateBitmap(size.cx, size.cy)) return FillWith(dc, client, RGB(0xFF, 0xFF, 0xFF));
    {
        const SelectScope font(canvas.Handle(), m_font.Get());
        PaintSpectrum(canvas.Handle(), size, *m_plot, m_spectra, m_dpi);
    }
    BitBlt(dc, 0, 0, size.cx, size.cy, canvas.Handle(), 0, 0, SRCCOPY);
}

// The pointer and the lists.

bool SpectrumWindow::PictureMouse(int, UINT message, WPARAM, LPARAM lParam) {
    const std::int32_t x = GET_X_LPARAM(lParam);
    const std::int32_t y = GET_Y_LPARAM(lParam);
    if (!m_plot) return false;
    if (message == WM_MOUSELEAVE) return ShowNote(), true;
    if (message == WM_LBUTTONDOWN) return Click(x, y), true;
    if (message != WM_MOUSEMOVE) return false;
    TRACKMOUSEEVENT leave{sizeof leave, TME_LEAVE, m_picture.Window(), 0};
    TrackMouseEvent(&leave);
    const std::u16string text = m_plot->Readout(x, y);
    text.empty() ? ShowNote() : ShowReadout(text);
    return true;
}

void SpectrumWindow::Click(std::int32_t x, std::int32_t y) {
    auto peak = m_plot->PeakAt(m_spectra.PeakTrace(), m_spectra.Peaks(), x, y);
    if (!peak) {
        if (const auto trace = m_plot->TraceNear(x, y)) m_spectra.ListPeaksOf(*trace);
        peak = m_plot->PeakAt(m_spectra.PeakTrace(), m_spectra.Peaks(), x, y);
    }
    m_spectra.ChoosePeak(peak);
    FillLists();
    m_picture.Invalidate();
}

LRESULT SpectrumWindow::OnNotify(NMHDR* header) {
    const auto id = static_cast<int>(header->idFrom);
    if (id != kPeaks && id != kHarmonics) return 0;
    if (header->code == LVN_GETDISPINFOW) {
        LVITEMW& item = reinterpret_cast<NMLVDISPINFOW*>(header)->item;
        const Rows& rows = id == kPeaks ? m_peakRows : m_harmonicRows;
        const auto row = static_cast<std::size_t>(item.iItem);
        if ((item.mask & LVIF_TEXT) == 0 || row >= rows.size()) return 0;
        lstrcpynW(item.pszText, rows[row].at(static_cast<std::size_t>(item.iSubItem)).c_str(), item.cchTextMax);
    }
    if (header->code == LVN_ITEMCHANGED && id == kPeaks && !m_filling && m_plot) {
        const int row = ListView_GetNextItem(Of(kPeaks), -1, LVNI_SELECTED);
        m_spectra.ChoosePeak(row < 0 ? std::nullopt : std::optional(static_cast<std::size_t>(row)));
        FillLists();
        m_picture.Invalidate();
    }
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
    if (message.message == WM_KEYDOWN && message.wParam == VK_F5) return Analyse(), true;
    if (message.message == WM_KEYDOWN && message.wParam == 'C' && HasControl()) {
        GetKeyState(VK_SHIFT) < 0 ? CopyPicture() : CopyText();
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

void SpectrumWindow::CopyPicture() {
    RECT client{};
    GetClientRect(m_picture.Window(), &client);
    const LONG margin = MulDiv(4, m_dpi, 96);
    const LONG caption = SizeOf(u"0").height + 2 * margin;
    cMemDC canvas;
    cMemDC plot;
    if (!m_plot || !canvas.CreateBitmap(client.right, client.bottom + caption) ||
        !plot.CreateBitmap(client.right, client.bottom))
        return TellCopied(false);
    canvas.Clear();
    PaintPicture(kPlot, plot.Handle(), client);
    BitBlt(canvas.Handle(), 0, caption, client.right, client.bottom, plot.Handle(), 0, 0, SRCCOPY);
    {
        const SelectScope font(canvas.Handle(), m_font.Get());
        DrawTextAt(canvas.Handle(), margin, margin, m_spectra.Title() + u": " + m_spectra.Heading());
    }
    TellCopied(PictureToClipboard(canvas));
}

}  // namespace quillon
