#include "app/win/SpectrumLists.h"

#include "app/StringIds.h"
#include "format/NumberText.h"

namespace quillon {

namespace {

constexpr int kColumns = 3;

std::array<std::wstring, kColumns> RowOf(const SpectralPeak& peak, std::size_t trace, const SpectrumPlot& plot,
                                         char16_t separator) {
    return {Wide(plot.FrequencyText(peak.frequency)), Wide(plot.LevelText(trace, peak.decibels)),
            Wide(NumberText(RoundToPlaces(peak.above, 1), separator) + u" dB")};
}

}  // namespace

void SpectrumLists::Attach(HWND peaks, HWND harmonics) {
    m_peaks = peaks;
    m_harmonics = harmonics;
    for (const HWND list : {peaks, harmonics}) {
        ListView_SetExtendedListViewStyle(list, LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER);
        for (int at = 0; at < kColumns; ++at) {
            std::wstring caption = Wide(m_services.Text(IDS_SPECTRUM_COLUMN_0 + at));
            LVCOLUMNW column{};
            column.mask = LVCF_TEXT | LVCF_FMT;
            column.fmt = at == 0 ? LVCFMT_LEFT : LVCFMT_RIGHT;
            column.pszText = caption.data();
            SendPointer(list, LVM_INSERTCOLUMNW, static_cast<WPARAM>(at), &column);
        }
    }
}

void SpectrumLists::Fill(const SpectrumCommands& spectra, const SpectrumPlot& plot, char16_t separator) {
    const std::size_t trace = spectra.PeakTrace();
    m_peakRows.clear();
    for (const SpectralPeak& peak : spectra.Peaks()) m_peakRows.push_back(RowOf(peak, trace, plot, separator));
    m_harmonicRows.clear();
    for (const Harmonic& harmonic : spectra.HarmonicsOfPeak().list)
        m_harmonicRows.push_back(RowOf(harmonic.peak, trace, plot, separator));
    m_filling = true;
    ListView_SetItemCountEx(m_peaks, static_cast<int>(m_peakRows.size()), LVSICF_NOSCROLL);
    ListView_SetItemCountEx(m_harmonics, static_cast<int>(m_harmonicRows.size()), LVSICF_NOSCROLL);
    ListView_SetItemState(m_peaks, -1, 0, LVIS_SELECTED);
    if (const auto chosen = spectra.ChosenPeak())
        ListView_SetItemState(m_peaks, static_cast<int>(*chosen), LVIS_SELECTED | LVIS_FOCUSED,
                              LVIS_SELECTED | LVIS_FOCUSED);
    m_filling = false;
    for (const HWND list : {m_peaks, m_harmonics}) InvalidateRect(list, nullptr, FALSE);
}

void SpectrumLists::FitColumns(int width, const ScreenDensity& density) const {
    // Beside the columns is room for a scroll bar, so that none is needed along them.
    const int inside = width - density.Metric(SM_CXVSCROLL) - 2 * density.Metric(SM_CXEDGE);
    for (const HWND list : {m_peaks, m_harmonics})
        for (int column = 0; column < kColumns; ++column) ListView_SetColumnWidth(list, column, inside / kColumns);
}

void SpectrumLists::Tell(NMLVDISPINFOW& asked) const {
    LVITEMW& item = asked.item;
    const Rows& rows = asked.hdr.hwndFrom == m_peaks ? m_peakRows : m_harmonicRows;
    const auto row = static_cast<std::size_t>(item.iItem);
    if ((item.mask & LVIF_TEXT) == 0 || row >= rows.size()) return;
    lstrcpynW(item.pszText, rows[row].at(static_cast<std::size_t>(item.iSubItem)).c_str(), item.cchTextMax);
}

std::optional<std::size_t> SpectrumLists::SelectedPeak() const {
    const int row = ListView_GetNextItem(m_peaks, -1, LVNI_SELECTED);
    return row < 0 ? std::nullopt : std::optional(static_cast<std::size_t>(row));
}

}  // namespace quillon
