#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "app/SpectrumCommands.h"
#include "base/win/Win32.h"
#include "data/UserServices.h"
#include "spectrum/SpectrumPlot.h"
#include "view/win/ScreenDensity.h"

namespace quillon {

/// The lists of peaks and of harmonics in the window of averaged spectra. They ask for the texts of the rows that are
/// seen (LVN_GETDISPINFO).
class SpectrumLists {
  public:
    /// `services` must outlive this object.
    explicit SpectrumLists(const UserServices& services) : m_services(services) {}

    /// Their windows have been made: adds the columns.
    void Attach(HWND peaks, HWND harmonics);
    /// Shows the peaks, which one is chosen and its harmonics, in the units of the plot.
    void Fill(const SpectrumCommands& spectra, const SpectrumPlot& plot, char16_t separator);
    /// `width` of the lists in pixels.
    void FitColumns(int width, const ScreenDensity& density) const;
    /// The text of a cell.
    void Tell(NMLVDISPINFOW& asked) const;
    /// Changes of the selection are not the user's.
    [[nodiscard]] bool IsFilling() const { return m_filling; }
    [[nodiscard]] std::optional<std::size_t> SelectedPeak() const;

  private:
    using Rows = std::vector<std::vector<std::wstring>>;

    const UserServices& m_services;
    HWND m_peaks = nullptr;
    HWND m_harmonics = nullptr;
    Rows m_peakRows;
    Rows m_harmonicRows;
    bool m_filling = false;
};

}  // namespace quillon
