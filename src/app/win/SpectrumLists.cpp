#include "app/win/SpectrumLists.h"

#include "app/StringIds.h"
#include "format/NumberText.h"

namespace quillon {

namespace {

constexpr int kColumns = 3;         ///< of a peak
constexpr int kMultipleWidth = 36;  ///< pixels at 96 dpi of the column before them that tells a harmonic's multiple

std::vector<std::wstring> RowOf(const SpectralPeak& peak, std::size_t trace, const SpectrumPlot& plot,
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
        int at = 0;
        const auto add = [&](const std::u16string& text, int format) {
            std::wstring caption = Wide(text);
            LVCOLUMNW column{};
            column.mask = LVCF_TEXT | LVCF_FMT;
            column.fmt = format;
            column.pszText = caption.data();
            SendPointer(list, LVM_INSERTCOLUMNW, static_cast<WPARAM>(at++), &column);
        };
        if (list == harmonics) add(u"\u00D7", LVCFMT_LEFT);
        for (int own = 0; own < kColumns; ++own)
            add(m_services.Text(IDS_SPECTRUM_COLUMN_0 + own), own == 0 ? LVCFMT_LEFT : LVCFMT_RIGHT);
    }
}

void SpectrumLists::Fill(const SpectrumCommands& spectra, const SpectrumPlot& plot, char16_t separator) {
    const std::size_t trace = spectra.PeakTrace();
    m_peakRows.clear();
    for (const SpectralPeak& peak : spectra.Peaks()) m_peakRows.push_back(RowOf(peak, trace, plot, separator));
    m_harmonicRows.clear();
    for (const Harmonic& harmonic : spectra.HarmonicsOfPeak().list) {
        std::vector<std::wstring>& row = m_harmonicRows.emplace_back(RowOf(harmonic.peak, trace, plot, separator));
        row.insert(row.begin(), Wide(MultipleText(harmonic.multiple)));
    }
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
    for (int column = 0; column < kColumns; ++column) ListView_SetColumnWidth(m_peaks, column, inside / kColumns);
    const int multiple = density.Scaled(kMultipleWidth);
    ListView_SetColumnWidth(m_harmonics, 0, multiple);
    for (int column = 1; column <= kColumns; ++column)
        ListView_SetColumnWidth(m_harmonics, column, (inside - multiple) / kColumns);
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
