#include "app/win/StatusBar.h"

#include <algorithm>
#include <array>
#include <utility>

#include "base/win/WinHandle.h"
#include "view/ReadableColor.h"

namespace quillon {

namespace {

constexpr auto kMessagePanel = static_cast<std::size_t>(StatusPanel::Status);
constexpr auto kShownPanel = static_cast<std::size_t>(StatusPanel::Shown);
constexpr std::uint32_t kShownColor = 0xF0A000;

}  // namespace

void StatusBar::Attach(HWND control, const ScreenDensity& density) {
    m_window = control;
    m_density = &density;
    SetWindowSubclass(control, Procedure, 1, reinterpret_cast<DWORD_PTR>(this));
}

LRESULT CALLBACK StatusBar::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                                      DWORD_PTR bar) {
    const LRESULT result = DefSubclassProc(window, message, wParam, lParam);
    if (message == WM_PAINT) reinterpret_cast<const StatusBar*>(bar)->PaintShown();
    return result;
}

void StatusBar::PaintShown() const {
    if (!m_panels || (*m_panels)[kShownPanel].empty()) return;
    RECT place{};
    if (SendPointer(m_window, SB_GETRECT, kShownPanel, &place) == 0) return;
    InflateRect(&place, -1, -1);
    const std::uint32_t background = Mixed(SystemColor(COLOR_BTNFACE), kShownColor, 0.35);
    const WindowDC dc(m_window);
    FillWith(dc.Get(), place, ColorOf(background));
    const SelectScope font(dc.Get(), m_density->Font());
    SetBkMode(dc.Get(), TRANSPARENT);
    SetTextColor(dc.Get(), ColorOf(Readable(SystemColor(COLOR_BTNTEXT), background, 4.5)));
    const std::wstring text = Wide((*m_panels)[kShownPanel]);
    DrawTextW(dc.Get(), text.c_str(), static_cast<int>(text.size()), &place,
              DT_SINGLELINE | DT_CENTER | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
}

void StatusBar::ShowPanels(const PanelTexts& texts) {
    if (m_window == nullptr || texts == m_panels) return;
    const bool first = !m_panels.has_value();
    const PanelTexts before = m_panels.value_or(PanelTexts{});
    m_panels = texts;
    ArrangePanels();
    if (first) ShowMessage();
    for (std::size_t panel = 0; panel < texts.size(); ++panel) {
        if (panel != kMessagePanel && texts[panel] != before[panel])
            SendPointer(m_window, SB_SETTEXTW, panel, Wide(texts[panel]).c_str());
    }
}

void StatusBar::Resize() {
    SendMessageW(m_window, WM_SIZE, 0, 0);
    if (m_panels) ArrangePanels();
}

void StatusBar::ArrangePanels() const {
    const PanelTexts& texts = *m_panels;
    const int margin = m_density->Scaled(14);
    std::array<int, std::tuple_size_v<PanelTexts>> edges{};
    const WindowDC dc(m_window);
    const SelectScope font(dc.Get(), m_density->Font());
    int others = m_density->Metric(SM_CXVSCROLL);  // the grip
    for (std::size_t panel = 0; panel < texts.size(); ++panel) {
        if (panel == kMessagePanel) continue;
        SIZE size{};
        const std::wstring text = Wide(texts[panel]);
        GetTextExtentPoint32W(dc.Get(), text.c_str(), static_cast<int>(text.size()), &size);
        edges[panel] = panel == kShownPanel && text.empty() ? 0 : static_cast<int>(size.cx) + margin;
        others += edges[panel];
    }
    RECT client{};
    GetClientRect(m_window, &client);
    // A narrow window keeps room for messages rather than for the sizes of the block.
    for (const StatusPanel panel : {StatusPanel::Volume, StatusPanel::Size}) {
        if (client.right - others >= m_density->Scaled(160)) break;
        others -= std::exchange(edges[static_cast<std::size_t>(panel)], 0);
    }
    edges[kMessagePanel] = std::max(static_cast<int>(client.right) - others, m_density->Scaled(80));
    int right = 0;
    for (int& edge : edges) edge = right += edge;
    edges.back() = -1;
    SendPointer(m_window, SB_SETPARTS, edges.size(), edges.data());
}

void StatusBar::Tell(Topic topic, const std::u16string& text) {
    m_message.Tell(topic, text);
    ShowMessage();
}

void StatusBar::Offer(Topic topic, const std::u16string& text) {
    if (m_message.Offer(topic, text)) ShowMessage();
}

void StatusBar::Retract(Topic topic) {
    if (m_message.Retract(topic)) ShowMessage();
}

void StatusBar::ShowMessage() {
    // Before its panels are set (SB_SETPARTS) the control does not keep texts.
    if (!m_panels) return;
    const std::wstring text = Wide(m_message.Text());
    SendPointer(m_window, SB_SETTEXTW, kMessagePanel, text.c_str());
    // Tooltip with the full text if the panel is too narrow for it.
    SendPointer(m_window, SB_SETTIPTEXTW, kMessagePanel, text.c_str());
    m_announcer.Tell(m_message.Text());
}

void StatusBar::AnnounceBy(const TimerFactory& makeTimer) {
    m_announcer.onAnnounce = [this](const std::u16string&) {
        // Panels are children of the control, counted from 1.
        NotifyWinEvent(EVENT_OBJECT_NAMECHANGE, m_window, OBJID_CLIENT, static_cast<LONG>(kMessagePanel) + 1);
    };
    m_announcer.Attach(makeTimer);
}

}  // namespace quillon
