#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "app/SpectrumCommands.h"
#include "app/SpectrumLayout.h"
#include "base/win/Win32.h"
#include "data/UserServices.h"
#include "view/win/ScreenDensity.h"

namespace quillon {

/// The drop-down lists of the window of averaged spectra: what is analysed and how it is drawn.
class SpectrumBoxes {
  public:
    /// `services` must outlive this object.
    explicit SpectrumBoxes(const UserServices& services) : m_services(services) {}

    /// In the order of SpectrumLayout; their windows have been made.
    void Attach(const std::array<HWND, kSpectrumBoxes>& boxes, const ScreenDensity& density);
    /// Fills them with what there is to choose, and shows what is chosen.
    void Fill(const SpectrumCommands& spectra);
    /// The boxes have another font.
    void DensityChanged();
    [[nodiscard]] SpectrumChoices Chosen() const;
    /// That they want, in pixels.
    [[nodiscard]] const std::array<std::int32_t, kSpectrumBoxes>& Widths() const { return m_widths; }
    /// Of a closed box.
    [[nodiscard]] std::int32_t Height() const;

  private:
    void Measure(std::size_t box);
    void Fill(std::size_t box, const std::vector<std::u16string>& texts, std::size_t chosen);
    [[nodiscard]] std::size_t Line(std::size_t box) const;

    const UserServices& m_services;
    std::array<HWND, kSpectrumBoxes> m_boxes{};
    const ScreenDensity* m_density = nullptr;
    std::vector<std::int16_t> m_signals;  ///< by line
    std::vector<std::int32_t> m_lengths;  ///< by line
    std::array<std::int32_t, kSpectrumBoxes> m_widths{};
};

}  // namespace quillon
